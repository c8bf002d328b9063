#include "PluginInspection.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 largestFile = qint64{256} * 1024 * 1024;
constexpr QLatin1StringView giveThePlugin{"; give the path of a device plugin library"};
constexpr QLatin1StringView copyAgain{"; build or copy it again"};

QString refusalToRead(const QFileInfo &file)
{
    if (!file.exists())
        return u"does not exist"_s + giveThePlugin;
    if (file.isDir())
        return u"is a directory, no library"_s + giveThePlugin;
    // Opening a pipe would wait for its other end.
    if (!file.isFile())
        return u"is no regular file"_s + giveThePlugin;
    if (file.size() == 0)
        return u"is empty"_s + copyAgain;
    if (file.size() > largestFile)
        return u"is larger than 256 MiB, which no plugin is"_s + giveThePlugin;
    return {};
}

QString refusalToLoad(const PluginInspection &inspection)
{
    const LibraryFile &contents = inspection.contents;
    if (contents.system == LibraryFile::System::Unknown)
        return contents.defect + giveThePlugin;
    if (!contents.defect.isEmpty())
        return contents.defect + copyAgain;
    if (contents.pluginMetadata.isEmpty())
        return u"is a library, but no Qt plugin (it holds no plugin metadata)"_s + giveThePlugin;
    if (!inspection.metadata)
        return u"holds damaged plugin metadata"_s + copyAgain;
    if (!contents.isForThisSystem())
        return u"is a %1, which cannot be loaded here; give the path of a plugin for this system"_s.arg(
            contents.kind());
    return refusalOf(*inspection.metadata, HostQt::own());
}

QString sentence(const QString &file, const QString &refusal)
{
    return refusal.isEmpty() ? QString() : u'"' + file + u"\" "_s + refusal;
}

}  // namespace

QString noteOnName(const PluginInspection &inspection)
{
    const QString iid = u"com.orvane.KVX.Plugin.LogicalDevice.RV418"_s;
    const bool isForWindows = inspection.contents.system == LibraryFile::System::Windows;
    const QString right = iid + (isForWindows ? u".dll"_s : u".so"_s);
    const QString name = QFileInfo(inspection.file).fileName();
    if (!inspection.metadata || inspection.metadata->iid != iid ||
        name.compare(right, isForWindows ? Qt::CaseInsensitive : Qt::CaseSensitive) == 0)
        return {};
    return u"the file is named %1; the host loads %2, and under another name start() fails; rename it and "
           "check again"_s.arg(name, right);
}

PluginInspection inspectPlugin(const QString &file, QByteArrayView bytes)
{
    PluginInspection inspection;
    inspection.file = QFileInfo(file).absoluteFilePath();
    inspection.contents = readLibraryFile(bytes);
    inspection.metadata = PluginMetadata::decode(inspection.contents.pluginMetadata);
    inspection.refusal = sentence(file, refusalToLoad(inspection));
    return inspection;
}

PluginInspection inspectPlugin(const QString &file)
{
    const QFileInfo info(file);
    QFile opened(file);
    QString refusal = refusalToRead(info);
    if (refusal.isEmpty() && !opened.open(QFile::ReadOnly))
        refusal = u"cannot be read (%1); check its permissions"_s.arg(opened.errorString());
    if (!refusal.isEmpty())
        return {info.absoluteFilePath(), {}, {}, sentence(file, refusal)};
    // No more than there is: Qt makes room for all that is asked for.
    return inspectPlugin(file, opened.read(std::min(largestFile, info.size())));
}
