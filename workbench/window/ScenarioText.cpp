#include "ScenarioText.h"

#include <algorithm>

using namespace Qt::StringLiterals;

qsizetype commentStart(const QString &line)
{
    bool isQuoted = false;
    bool isWordStart = true;
    for (qsizetype i = 0; i < line.size(); ++i) {
        const QChar letter = line[i];
        if (isQuoted && letter == u'\\') {
            ++i;
        } else if (letter == u'"') {
            isQuoted = !isQuoted;
        } else if (!isQuoted && isWordStart && letter == u'#') {
            return i;
        }
        isWordStart = !isQuoted && letter.isSpace();
    }
    return line.size();
}

QString scenarioWords(const QStringList &texts)
{
    QStringList words;
    for (QString word : texts) {
        const bool needsQuotes =
            word.isEmpty() || word.startsWith(u'#') || word.contains(u'"') ||
            std::any_of(word.cbegin(), word.cend(), [](QChar character) { return character.isSpace(); });
        if (needsQuotes)
            word = u'"' + word.replace(u'\\', R"(\\)"_L1).replace(u'"', R"(\")"_L1) + u'"';
        words.append(word);
    }
    return words.join(u' ');
}

QString commandWord(const QString &line)
{
    return line.left(commentStart(line)).trimmed().section(u' ', 0, 0);
}
