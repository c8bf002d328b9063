#include "Output.h"

#include <QtCore/QByteArray>
#include <QtCore/QCoreApplication>
#include <QtCore/QDir>

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

void printEntries(const QList<TimelineEntry> &entries, Timeline::Style style)
{
    for (const TimelineEntry &entry : entries)
        printLine(Timeline::line(entry, style));
}

void printEntriesAsJson(const QList<TimelineEntry> &entries)
{
    for (const TimelineEntry &entry : entries)
        printLine(QString::fromUtf8(Timeline::jsonLine(entry)));
}

QString libraryBesideTheProgram()
{
#ifdef Q_OS_WIN
    const QString suffix = u".dll"_s;
#else
    const QString suffix = u".so"_s;
#endif
    return QDir(QCoreApplication::applicationDirPath())
        .filePath(u"com.orvane.KVX.Plugin.LogicalDevice.RV418"_s + suffix);
}
