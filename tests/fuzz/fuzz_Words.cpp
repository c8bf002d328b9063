#include "FuzzTarget.h"
#include "Words.h"

#include <limits>

using namespace Qt::StringLiterals;

namespace {

// The value of a digit; no value when the base has no such digit.
std::optional<int> digitOf(QChar character, int base)
{
    const qsizetype digit = u"0123456789abcdef"_s.indexOf(character, 0, Qt::CaseInsensitive);
    return digit >= 0 && digit < base ? std::optional<int>(static_cast<int>(digit)) : std::nullopt;
}

// Nothing but digits behind a sign, or behind 0x.
std::optional<int> plainNumber(const QString &word)
{
    const bool isHexadecimal = word.startsWith(u"0x");
    const bool isNegative = word.startsWith(u'-');
    const bool isSigned = isNegative || word.startsWith(u'+');
    const int base = isHexadecimal ? 16 : 10;
    const QString digits = word.mid(isHexadecimal ? 2 : isSigned ? 1 : 0);
    qint64 number = 0;
    for (const QChar character : digits) {
        const std::optional<int> digit = digitOf(character, base);
        if (!digit || number > std::numeric_limits<int>::max())
            return std::nullopt;
        number = number * base + *digit;
    }
    if (isNegative)
        number = -number;
    if (digits.isEmpty() || number < std::numeric_limits<int>::min() ||
        number > std::numeric_limits<int>::max())
        return std::nullopt;
    return static_cast<int>(number);
}

QString quoted(QString word)
{
    word.replace(u'\\', u"\\\\"_s).replace(u'"', u"\\\""_s);
    return u'"' + word + u'"';
}

void checkWords(const QString &line, const QStringList &words)
{
    qsizetype size = 0;
    QStringList quotedWords;
    for (const QString &word : words) {
        size += word.size();
        quotedWords.append(quoted(word));
        mustHold(numberOf(word) == plainNumber(word), "a number is digits, behind a sign or 0x");
    }
    mustHold(size <= line.size(), "words do not grow the line");
    mustHold(wordsOf(quotedWords.join(u' ')) == words, "words in quotes are the same words");
    mustHold(wordsOf(quotedWords.join(u'\t') + u" # comment"_s) == words, "a comment is no word");
}

void checkLine(const QString &line)
{
    const QString text = withoutComment(line);
    mustHold(text.size() <= line.size() && line.contains(text), "a line without comment is a part of it");
    mustHold(text == text.trimmed(), "no blanks are around it");
    mustHold(withoutComment(text) == text, "it has no other comment");
    const std::optional<QStringList> words = wordsOf(line);
    mustHold(words == wordsOf(text), "a comment changes no word");
    mustHold(!words || words->isEmpty() == text.isEmpty(), "only an empty line has no words");
    if (words)
        checkWords(line, *words);
    else
        mustHold(text.contains(u'"'), "a line with an open quote has a quote");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString text =
        QString::fromUtf8(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const QStringList lines = text.split(u'\n');
    for (const QString &line : lines)
        checkLine(line);
    return 0;
}
