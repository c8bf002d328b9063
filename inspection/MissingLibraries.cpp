#include "MissingLibraries.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QProcess>
#include <QtCore/QSet>

using namespace Qt::StringLiterals;

namespace {

QString found(const QStringList &missing, const QString &where)
{
    return u"%1 (%2)"_s.arg(missing.isEmpty() ? u"none"_s : missing.join(u", "_s), where);
}

QString askLdd(const QString &file)
{
    QProcess ldd;
    ldd.start(u"ldd"_s, {file});
    if (!ldd.waitForFinished())
        return u"unknown (ldd: %1)"_s.arg(ldd.errorString());
    if (ldd.exitStatus() != QProcess::NormalExit || ldd.exitCode() != 0)
        return u"unknown (ldd: %1)"_s.arg(QString::fromUtf8(ldd.readAllStandardError()).simplified());
    QStringList missing;
    const QStringList lines = QString::fromUtf8(ldd.readAllStandardOutput()).split(u'\n');
    for (const QString &line : lines) {
        const qsizetype arrow = line.indexOf(" => not found"_L1);
        if (arrow >= 0)
            missing.append(line.first(arrow).trimmed());
    }
    return found(missing, u"asked: ldd"_s);
}

// Windows resolves these itself; no file has such a name.
bool isApiSet(const QString &name)
{
    return name.startsWith("api-ms-"_L1, Qt::CaseInsensitive) ||
           name.startsWith("ext-ms-"_L1, Qt::CaseInsensitive);
}

QString search(const QStringList &needed, const QStringList &folders, const QString &where)
{
    // Windows does not care about the case.
    QSet<QString> present;
    for (const QString &folder : folders) {
        const QStringList files = QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::System);
        for (const QString &name : files)
            present.insert(name.toLower());
    }
    QStringList missing;
    for (const QString &name : needed) {
        if (!isApiSet(name) && !present.contains(name.toLower()))
            missing.append(name);
    }
    return found(missing, where);
}

}  // namespace

QString librariesNotFound(const QString &file, const LibraryFile &library)
{
    QStringList folders{QFileInfo(file).absolutePath()};
    if (!library.isForThisSystem())
        return search(library.neededLibraries, folders, u"searched: its folder"_s);
    if (library.system == LibraryFile::System::Linux)
        return askLdd(file);
    const QString windows = qEnvironmentVariable("SystemRoot");
    folders << QCoreApplication::applicationDirPath() << windows + u"/System32"_s << windows;
    folders << qEnvironmentVariable("PATH").split(QDir::listSeparator(), Qt::SkipEmptyParts);
    return search(library.neededLibraries, folders,
                  u"searched: its folder, that of kvx, those of Windows, PATH"_s);
}
