#include "Output.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>

using namespace Qt::StringLiterals;

namespace {

std::atomic<int> outputError = 0;

// 0, or the error.
int write(std::FILE *stream, const QByteArray &lines)
{
    const auto size = static_cast<std::size_t>(lines.size());
    return std::fwrite(lines.constData(), 1, size, stream) == size && std::fflush(stream) == 0 ? 0 : errno;
}

}  // namespace

void printLine(const QString &line)
{
    printLines((line + u'\n').toUtf8());
}

void printLines(const QByteArray &lines)
{
    if (const int error = write(stdout, lines))
        outputError = error;
}

QString outputProblem()
{
    const int error = outputError;
    return error == 0 || error == EPIPE ? QString() : QString::fromLocal8Bit(std::strerror(error));
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
