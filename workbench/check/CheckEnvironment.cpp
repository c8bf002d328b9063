#include "CheckEnvironment.h"

#include "PluginInspection.h"

#include <QtCore/QCryptographicHash>
#include <QtCore/QFile>
#include <QtCore/QLibraryInfo>
#include <QtCore/QSysInfo>

using namespace Qt::StringLiterals;

namespace {

QString buildType(bool isDebug)
{
    return isDebug ? u"debug"_s : u"release"_s;
}

QString hashOf(const QString &fileName)
{
    QFile file(fileName);
    QCryptographicHash hash(QCryptographicHash::Sha256);
    return file.open(QFile::ReadOnly) && hash.addData(&file) ? QString::fromLatin1(hash.result().toHex())
                                                             : u"unknown"_s;
}

}  // namespace

QList<std::pair<QString, QString>> checkEnvironment(const PluginInspection &library)
{
    const PluginMetadata metadata = library.metadata.value_or(PluginMetadata());
    QList<std::pair<QString, QString>> environment = {
        {u"build"_s,
         u"%1, built with Qt %2, %3"_s.arg(library.contents.kind(), qtVersionText(metadata.qtVersion),
                                           buildType(metadata.isDebug))},
        {u"SHA-256"_s, hashOf(library.file)},
        {u"host"_s, u"kvx %1, %2, %3"_s.arg(QStringLiteral(KVX_VERSION), QStringLiteral(KVX_COMPILER),
                                            buildType(QLibraryInfo::isDebugBuild()))},
        {u"Qt"_s, QLibraryInfo::version().toString()},
        {u"system"_s, QSysInfo::prettyProductName() + u' ' + QSysInfo::currentCpuArchitecture()}};
    if (const QString note = noteOnName(library); !note.isEmpty())
        environment.append({u"note"_s, note});
    return environment;
}
