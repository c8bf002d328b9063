#include "PluginInspection.h"

#include <QtCore/QCborValue>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QLibraryInfo>
#include <QtCore/QOperatingSystemVersion>
#include <QtCore/QPluginLoader>
#include <QtCore/QVersionNumber>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

using Outcome = PluginJudgement::Outcome;

constexpr QLatin1StringView deviceIidPrefix{"com.orvane.KVX.Plugin.LogicalDevice."};
constexpr qint64 largestFile = qint64{256} * 1024 * 1024;

constexpr bool isWindows = QOperatingSystemVersion::currentType() == QOperatingSystemVersion::Windows;
constexpr LibraryFile::Format ownFormat =
    isWindows ? LibraryFile::Format::PortableExecutable : LibraryFile::Format::Elf;

PluginJudgement failure(Outcome outcome, const QString &file, const QString &cause)
{
    return {outcome, u'"' + file + u"\" "_s + cause};
}

QString giveThePlugin()
{
    return u"; give the path of a device plugin library"_s;
}

std::optional<PluginJudgement> unusableFile(const QFileInfo &file)
{
    const QString path = file.filePath();
    if (!file.exists())
        return failure(Outcome::MissingFile, path, u"does not exist"_s + giveThePlugin());
    if (file.isDir())
        return failure(Outcome::MissingFile, path, u"is a directory, no library"_s + giveThePlugin());
    if (!file.isFile())
        return failure(Outcome::MissingFile, path, u"is no regular file"_s + giveThePlugin());
    if (file.size() == 0)
        return failure(Outcome::MissingFile, path, u"is empty; build or copy it again"_s);
    if (file.size() > largestFile)
        return failure(Outcome::NotALibrary, path,
                       u"is larger than 256 MiB, which no plugin is"_s + giveThePlugin());
    return {};
}

std::optional<PluginJudgement> unusableLibrary(const QString &path, const LibraryFile &library)
{
    if (library.format == LibraryFile::Format::Unknown)
        return failure(Outcome::NotALibrary, path, library.defect + giveThePlugin());
    if (library.format != ownFormat)
        return failure(Outcome::NotALibrary, path,
                       u"is a library for another system (%1); give the path of a plugin for this one"_s.arg(
                           isWindows ? u"Linux"_s : u"Windows"_s));
    if (!library.defect.isEmpty())
        return failure(Outcome::NotALibrary, path, library.defect + u"; build or copy it again"_s);
    if (library.pluginMetadata.isEmpty())
        return failure(Outcome::NotAPlugin, path,
                       u"is a library, but no Qt plugin (it holds no plugin metadata)"_s + giveThePlugin());
    // Qt's plugin loader crashes on some metadata that breaks off or has a text that is no UTF-8.
    constexpr qsizetype headerSize = 4;
    QCborParserError end;
    const bool isMap = QCborValue::fromCbor(library.pluginMetadata.mid(headerSize), &end).isMap();
    if (!isMap || end.error != QCborError::NoError)
        return failure(Outcome::NotAPlugin, path, u"holds damaged plugin metadata; build or copy it again"_s);
    return {};
}

}  // namespace

PluginDemands PluginDemands::own()
{
    const QVersionNumber version = QLibraryInfo::version();
    return {deviceIidPrefix,
            QT_VERSION_CHECK(version.majorVersion(), version.minorVersion(), version.microVersion()),
            QLibraryInfo::isDebugBuild(), isWindows};
}

QString qtVersionText(int version)
{
    return u"%1.%2.%3"_s.arg(version >> 16).arg((version >> 8) & 0xff).arg(version & 0xff);
}

PluginJudgement judgeMetadata(const QString &file, const QJsonObject &metaData, const PluginDemands &demands)
{
    const QString iid = metaData.value("IID"_L1).toString();
    if (!iid.startsWith(demands.iidPrefix))
        return failure(Outcome::ForeignIid, file,
                       u"is a plugin of another kind (\"%1\")"_s.arg(iid.simplified()) + giveThePlugin());

    const int version = metaData.value("version"_L1).toInt();
    const int majorMask = 0xff0000;
    const int minorMask = 0x00ff00;
    if ((version & majorMask) != (demands.qtVersion & majorMask) ||
        (version & minorMask) > (demands.qtVersion & minorMask))
        return failure(
            Outcome::OtherQtVersion, file,
            u"was built with Qt %1, which Qt %2 here does not load; build it with Qt %2 or older"_s.arg(
                qtVersionText(version), qtVersionText(demands.qtVersion)));

    const bool isDebug = metaData.value("debug"_L1).toBool();
    if (demands.mustMatchBuildType && isDebug != demands.isDebugBuild)
        return failure(
            Outcome::OtherBuildType, file,
            u"is a %1 build and Qt here is a %2 build, which do not mix; build it as %2"_s.arg(
                isDebug ? u"debug"_s : u"release"_s, demands.isDebugBuild ? u"debug"_s : u"release"_s));
    return {};
}

PluginInspection inspectPlugin(const QString &file)
{
    PluginInspection inspection;
    const QFileInfo info(file);
    inspection.file = info.absoluteFilePath();
    if (const auto unusable = unusableFile(info)) {
        inspection.judgement = *unusable;
        return inspection;
    }
    QFile opened(inspection.file);
    if (!opened.open(QFile::ReadOnly)) {
        inspection.judgement =
            failure(Outcome::MissingFile, file,
                    u"cannot be read ("_s + opened.errorString() + u"); check its permissions"_s);
        return inspection;
    }
    // No more than there is: Qt makes room for all that is asked for.
    inspection.contents = readLibraryFile(opened.read(std::min(largestFile, info.size())));
    if (const auto unusable = unusableLibrary(file, inspection.contents)) {
        inspection.judgement = *unusable;
        return inspection;
    }
    // Without hints, which Qt shares among all loaders of a file: the one that a loader begins with would
    // keep a library in the process for ever that is loaded elsewhere now.
    QPluginLoader loader;
    loader.setLoadHints({});
    loader.setFileName(inspection.file);
    inspection.metaData = loader.metaData();
    inspection.judgement = inspection.metaData.isEmpty()
                               ? failure(Outcome::NotAPlugin, file,
                                         u"cannot be read as a Qt plugin ("_s + loader.errorString() +
                                             u"); build or copy it again"_s)
                               : judgeMetadata(file, inspection.metaData, PluginDemands::own());
    return inspection;
}
