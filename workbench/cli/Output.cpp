#include "Output.h"

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

void write(std::FILE *stream, const QByteArray &lines)
{
    std::fwrite(lines.constData(), 1, static_cast<std::size_t>(lines.size()), stream);
    std::fflush(stream);
}

}  // namespace

void printLine(const QString &line)
{
    printLines((line + u'\n').toUtf8());
}

void printLines(const QByteArray &lines)
{
    write(stdout, lines);
}

void printError(const QString &message)
{
    write(stderr, (onOneLine(u"kvx: "_s + message) + u'\n').toUtf8());
}

QString onOneLine(QString text)
{
    for (QChar &character : text) {
        if (character.category() == QChar::Other_Control || character.category() == QChar::Separator_Line ||
            character.category() == QChar::Separator_Paragraph)
            character = u' ';
    }
    return text;
}
