#include "ScenarioText.h"

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

QString commandWord(const QString &line)
{
    return line.left(commentStart(line)).trimmed().section(u' ', 0, 0);
}
