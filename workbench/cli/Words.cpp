#include "Words.h"

namespace {

// Where the comment begins, or the length of the line.
qsizetype commentStart(const QString &line)
{
    bool isQuoted = false;
    for (qsizetype i = 0; i < line.size(); ++i) {
        if (isQuoted && line.at(i) == u'\\')
            ++i;
        else if (line.at(i) == u'"')
            isQuoted = !isQuoted;
        else if (!isQuoted && line.at(i) == u'#' && (i == 0 || line.at(i - 1).isSpace()))
            return i;
    }
    return line.size();
}

}  // namespace

QString withoutComment(const QString &line)
{
    return line.left(commentStart(line)).trimmed();
}

std::optional<QStringList> wordsOf(const QString &line)
{
    QStringList words;
    QString word;
    bool isInWord = false;
    bool isQuoted = false;
    const QString text = withoutComment(line);
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar character = text.at(i);
        if (!isQuoted && character.isSpace()) {
            if (isInWord)
                words.append(word);
            word.clear();
            isInWord = false;
            continue;
        }
        isInWord = true;
        if (character == u'"')
            isQuoted = !isQuoted;
        else if (isQuoted && character == u'\\' && i + 1 < text.size())
            word.append(text.at(++i));
        else
            word.append(character);
    }
    if (isQuoted)
        return std::nullopt;
    if (isInWord)
        words.append(word);
    return words;
}

std::optional<int> numberOf(const QString &word)
{
    const bool isHexadecimal = word.startsWith(u"0x");
    bool isNumber = false;
    const int number = isHexadecimal ? word.sliced(2).toInt(&isNumber, 16) : word.toInt(&isNumber, 10);
    return isNumber ? std::optional<int>(number) : std::nullopt;
}
