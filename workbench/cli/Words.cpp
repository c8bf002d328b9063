#include "Words.h"

#include <algorithm>

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

// Qt reads more than that as a number: blanks around it, and a sign or another 0x behind 0x.
bool isDigits(const QString &text, bool isHexadecimal)
{
    return !text.isEmpty() && std::all_of(text.cbegin(), text.cend(), [&](QChar character) {
        const char16_t code = character.unicode();
        return (code >= u'0' && code <= u'9') ||
               (isHexadecimal && ((code >= u'a' && code <= u'f') || (code >= u'A' && code <= u'F')));
    });
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

QString behindFirstWord(const QString &line)
{
    bool isQuoted = false;
    const QString text = withoutComment(line);
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (isQuoted && text.at(i) == u'\\')
            ++i;
        else if (text.at(i) == u'"')
            isQuoted = !isQuoted;
        else if (!isQuoted && text.at(i).isSpace())
            return text.sliced(i).trimmed();
    }
    return {};
}

std::optional<int> numberOf(const QString &word)
{
    const bool isHexadecimal = word.startsWith(u"0x");
    const bool isSigned = word.startsWith(u'-') || word.startsWith(u'+');
    const QString digits = word.sliced(isHexadecimal ? 2 : isSigned ? 1 : 0);
    if (!isDigits(digits, isHexadecimal))
        return std::nullopt;
    bool isNumber = false;
    const int number = isHexadecimal ? digits.toInt(&isNumber, 16) : word.toInt(&isNumber, 10);
    return isNumber ? std::optional<int>(number) : std::nullopt;
}

std::optional<DeviceId> deviceIdOf(const QString &word)
{
    bool isNumber = false;
    const DeviceId id = word.toULongLong(&isNumber, 10);
    return isNumber ? std::optional<DeviceId>(id) : std::nullopt;
}
