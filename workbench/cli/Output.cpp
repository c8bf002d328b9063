#include "Output.h"

#include <QtCore/QByteArray>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

void write(std::FILE *stream, const QString &line)
{
    const QByteArray bytes = (line + u'\n').toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stream);
    std::fflush(stream);
}

}  // namespace

void printLine(const QString &line)
{
    write(stdout, line);
}

void printError(const QString &message)
{
    write(stderr, onOneLine(u"kvx: "_s + message));
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
