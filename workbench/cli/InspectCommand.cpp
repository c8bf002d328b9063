#include "Commands.h"
#include "MissingLibraries.h"
#include "PluginHost.h"
#include "PluginInspection.h"
#include "Timeline.h"

#include <QtCore/QLibraryInfo>
#include <QtCore/QVersionNumber>

using namespace Qt::StringLiterals;

namespace {

void printField(const QString &name, const QString &value)
{
    constexpr int nameWidth = 16;
    printLine(onOneLine(name.leftJustified(nameWidth) + value));
}

void printNames(const QString &name, const QStringList &values)
{
    printField(name, values.isEmpty() ? u"none"_s : values.join(u", "_s));
}

QString headerText(const QByteArray &metadata)
{
    constexpr qsizetype headerSize = 4;
    const QByteArray header = metadata.first(headerSize);
    QStringList bytes;
    for (const char byte : header)
        bytes.append(QString::number(static_cast<quint8>(byte)));
    return bytes.join(u' ');
}

void printContents(const LibraryFile &contents)
{
    QStringList entryPoints;
    QStringList others;
    for (const QString &name : contents.exports)
        (name.startsWith(u"qt_plugin_") ? entryPoints : others).append(name);
    printNames(u"entry points"_s, entryPoints);
    printNames(u"other exports"_s, others);
    printNames(u"needs"_s, contents.neededLibraries);
}

// Only loading shows whether the loader agrees with all that was read.
QString loadingResult(const QString &file)
{
    Timeline timeline;
    PluginHost host(timeline);
    const std::optional<QString> refusal = host.load(file);
    return refusal ? u"no: "_s + *refusal : u"yes, with Qt "_s + QLibraryInfo::version().toString();
}

}  // namespace

ExitCode runInspect(const QString &file)
{
    const PluginInspection inspection = inspectPlugin(file);
    if (!inspection.metadata) {
        printError(inspection.refusal);
        return ExitCode::Unusable;
    }
    const PluginMetadata &metadata = *inspection.metadata;
    const LibraryFile &contents = inspection.contents;
    printField(u"file"_s, inspection.file);
    printField(u"format"_s, contents.kind());
    printField(u"IID"_s, metadata.iid);
    printField(u"class"_s, metadata.className);
    printField(u"metadata header"_s, headerText(contents.pluginMetadata));
    printField(u"built with"_s, u"Qt %1, %2"_s.arg(qtVersionText(metadata.qtVersion),
                                                   metadata.isDebug ? u"debug"_s : u"release"_s));
    printContents(contents);
    printField(u"not found"_s, librariesNotFound(inspection.file, contents));
    printField(u"loads here"_s, loadingResult(file));
    if (const QString note = noteOnName(inspection); !note.isEmpty())
        printField(u"note"_s, note);
    return ExitCode::Success;
}
