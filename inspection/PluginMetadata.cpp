#include "PluginMetadata.h"

#include "LibraryFile.h"

#include <QtCore/QCborMap>
#include <QtCore/QCborValue>
#include <QtCore/QLibraryInfo>
#include <QtCore/QVersionNumber>

using namespace Qt::StringLiterals;

// The header is the format's version, Qt's version in two bytes, and what the build requires. The keys of the
// map are Qt's as well.
std::optional<PluginMetadata> PluginMetadata::decode(const QByteArray &bytes)
{
    constexpr qsizetype headerSize = 4;
    constexpr qsizetype largest = qsizetype(1024) * 1024;  // decoded, it takes many times the room
    constexpr quint8 newestFormat = 1;
    constexpr int iidKey = 2;
    constexpr int classNameKey = 3;
    if (bytes.size() < headerSize || bytes.size() > largest)
        return {};
    const auto header = [&bytes](qsizetype index) { return static_cast<quint8>(bytes.at(index)); };
    // Qt's plugin loader crashes on some maps that break off or have a text that is no UTF-8.
    QCborParserError end;
    const QCborValue value = QCborValue::fromCbor(bytes.sliced(headerSize), &end);
    if (header(0) > newestFormat || end.error != QCborError::NoError || !value.isMap())
        return {};
    const QCborMap map = value.toMap();
    const int debugFlag = header(0) == 0 ? 1 : 0x80;
    return PluginMetadata{map.value(iidKey).toString(), map.value(classNameKey).toString(),
                          QT_VERSION_CHECK(header(1), header(2), 0), (header(3) & debugFlag) != 0};
}

HostQt HostQt::own()
{
    const QVersionNumber version = QLibraryInfo::version();
    return {QT_VERSION_CHECK(version.majorVersion(), version.minorVersion(), version.microVersion()),
            QLibraryInfo::isDebugBuild(), LibraryFile::ownSystem == LibraryFile::System::Windows};
}

QString refusalOf(const PluginMetadata &metadata, const HostQt &qt)
{
    if (!metadata.iid.startsWith("com.orvane.KVX.Plugin.LogicalDevice."_L1))
        return u"is a plugin of another kind (\"%1\"); give the path of a device plugin library"_s.arg(
            metadata.iid.simplified());
    constexpr int majorMask = 0xff0000;
    constexpr int minorMask = 0x00ff00;
    if ((metadata.qtVersion & majorMask) != (qt.version & majorMask) ||
        (metadata.qtVersion & minorMask) > (qt.version & minorMask))
        return u"was built with Qt %1, which Qt %2 here does not load; build it with Qt %2 or older"_s.arg(
            qtVersionText(metadata.qtVersion), qtVersionText(qt.version));
    if (qt.mustMatchBuildType && metadata.isDebug != qt.isDebug)
        return u"is a %1 build and Qt here is a %2 build, which do not mix; build it as %2"_s.arg(
            metadata.isDebug ? u"debug"_s : u"release"_s, qt.isDebug ? u"debug"_s : u"release"_s);
    return {};
}

QString qtVersionText(int version)
{
    return u"%1.%2"_s.arg(version >> 16).arg((version >> 8) & 0xff);
}
