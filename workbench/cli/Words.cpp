#include "Words.h"

#include <QtCore/QRegularExpression>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

struct Tokens
{
    QStringList words;
    QList<qsizetype> starts;
    qsizetype end = 0;  // of the last word
    bool isQuoteOpen = false;
};

Tokens tokensOf(const QString &line)
{
    Tokens tokens;
    bool isInWord = false;
    for (qsizetype i = 0; i < line.size(); ++i) {
        const QChar character = line.at(i);
        if (!tokens.isQuoteOpen && character.isSpace()) {
            isInWord = false;
            continue;
        }
        if (!isInWord && character == u'#')
            break;
        if (!std::exchange(isInWord, true)) {
            tokens.starts.append(i);
            tokens.words.append(QString());
        }
        if (character == u'"') {
            tokens.isQuoteOpen = !tokens.isQuoteOpen;
        } else {
            if (tokens.isQuoteOpen && character == u'\\' && i + 1 < line.size())
                ++i;
            tokens.words.last().append(line.at(i));
        }
        tokens.end = i + 1;
    }
    return tokens;
}

// The line as it is written from one place to another.
QString written(const QString &line, qsizetype begin, qsizetype end)
{
    return line.sliced(begin, end - begin).trimmed();
}

}  // namespace

std::optional<QStringList> wordsOf(const QString &line)
{
    const Tokens tokens = tokensOf(line);
    return tokens.isQuoteOpen ? std::nullopt : std::optional<QStringList>(tokens.words);
}

QString withoutComment(const QString &line)
{
    const Tokens tokens = tokensOf(line);
    return tokens.starts.isEmpty() ? QString() : written(line, tokens.starts.first(), tokens.end);
}

QString behindFirstWord(const QString &line)
{
    const Tokens tokens = tokensOf(line);
    return tokens.starts.size() < 2 ? QString() : written(line, tokens.starts.at(1), tokens.end);
}

QString withoutLastWord(const QString &line)
{
    const Tokens tokens = tokensOf(line);
    return tokens.starts.isEmpty() ? QString() : written(line, tokens.starts.first(), tokens.starts.last());
}

std::optional<int> numberOf(const QString &word)
{
    // Qt reads more than that as a number: blanks around it, and a sign or another 0x behind 0x.
    static const QRegularExpression form(
        QRegularExpression::anchoredPattern(u"0x[0-9A-Fa-f]+|[-+]?[0-9]+"_s));
    if (!form.match(word).hasMatch())
        return std::nullopt;
    bool isNumber = false;
    const int number = word.toInt(&isNumber, word.startsWith(u"0x") ? 16 : 10);
    return isNumber ? std::optional<int>(number) : std::nullopt;
}

std::optional<int> onlyNumber(const QStringList &words, int lowest, int highest)
{
    const std::optional<int> number = words.size() == 1 ? numberOf(words.first()) : std::nullopt;
    return number && *number >= lowest && *number <= highest ? number : std::nullopt;
}

QString withoutAddresses(QString line)
{
    static const QRegularExpression address(u"\\b0x[0-9a-f]{6,16}\\b"_s);
    return line.replace(address, u"0x..."_s).trimmed();
}

std::optional<DeviceId> deviceIdOf(const QString &word)
{
    bool isNumber = false;
    const DeviceId id = word.toULongLong(&isNumber, 10);
    return isNumber ? std::optional<DeviceId>(id) : std::nullopt;
}
