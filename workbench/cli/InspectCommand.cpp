#include "InspectCommand.h"

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
    printLine(name.leftJustified(nameWidth) + value);
}

QString headerText(const QByteArray &metadata)
{
    constexpr qsizetype headerSize = 4;
    const QByteArray header = metadata.first(qMin(headerSize, metadata.size()));
    QStringList bytes;
    for (const char byte : header)
        bytes.append(QString::number(static_cast<quint8>(byte)));
    return bytes.join(u' ');
}

QString qtText(const QJsonObject &metaData)
{
    const int version = metaData.value("version"_L1).toInt();
    const QString build = metaData.value("debug"_L1).toBool() ? u"debug"_s : u"release"_s;
    // Plugin metadata tells no patch level.
    return u"Qt %1.%2, %3"_s.arg(version >> 16).arg((version >> 8) & 0xff).arg(build);
}

void printExports(const QStringList &exports)
{
    QStringList entryPoints;
    QStringList others;
    for (const QString &name : exports)
        (name.startsWith(u"qt_plugin_") ? entryPoints : others).append(name);
    printField(u"entry points"_s, entryPoints.isEmpty() ? u"none"_s : entryPoints.join(u", "_s));
    printField(u"other exports"_s, others.isEmpty() ? u"none"_s : others.join(u", "_s));
}

void printInspection(const PluginInspection &inspection)
{
    printField(u"file"_s, inspection.file);
    printField(u"format"_s,
               (inspection.contents.format == LibraryFile::Format::Elf ? u"Linux"_s : u"Windows"_s) +
                   u" library, "_s + inspection.contents.architecture);
    printField(u"IID"_s, inspection.metaData.value("IID"_L1).toString());
    printField(u"class"_s, inspection.metaData.value("className"_L1).toString());
    printField(u"metadata header"_s, headerText(inspection.contents.pluginMetadata));
    printField(u"built with"_s, qtText(inspection.metaData));
    printExports(inspection.contents.exports);
    printField(u"needs"_s, inspection.contents.neededLibraries.join(u", "_s));
}

}  // namespace

ExitCode runInspect(const QString &file)
{
    const PluginInspection inspection = inspectPlugin(file);
    if (!inspection.metaData.isEmpty())
        printInspection(inspection);
    if (!inspection.judgement.isLoadable()) {
        printError(inspection.judgement.reason);
        return ExitCode::Unusable;
    }
    // Only loading tells whether all that the library needs is there.
    Timeline timeline;
    PluginHost host(timeline);
    if (const std::optional<QString> reason = host.load(file)) {
        printError(*reason);
        return ExitCode::Unusable;
    }
    printField(u"loads here"_s, u"yes, with Qt "_s + QLibraryInfo::version().toString());
    return ExitCode::Success;
}
