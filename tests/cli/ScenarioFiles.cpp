#include "ScenarioFiles.h"

#include "PluginFixture.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1StringView folderName{"it's $HOME"};

}  // namespace

ScenarioFiles::ScenarioFiles()
{
    QDir(m_folder.path()).mkdir(folderName);
}

QString ScenarioFiles::write(const QString &name, const QStringList &lines, const QStringList &more) const
{
    const QStringList head{u"# title: What "_s + name + u" promises"_s, u"# why: A host suffers"_s};
    const bool hasLevel = !more.filter(u"level:"_s).isEmpty();
    const QStringList level{hasLevel ? QStringList() : QStringList{u"# level: contract"_s}};
    return writeText(name + u".kvx"_s, (head + level + more + lines).join(u'\n') + u'\n');
}

QString ScenarioFiles::writeText(const QString &name, const QString &text) const
{
    QFile file(path(name));
    if (!file.open(QFile::WriteOnly) || file.write(text.toUtf8()) < 0)
        qFatal("%s cannot be written", qPrintable(file.fileName()));
    return file.fileName();
}

QString ScenarioFiles::path(const QString &name) const
{
    return m_folder.filePath(folderName + u'/' + name);
}

QString brokenLibrary(const QString &name)
{
    return QStringLiteral(KVX_BROKEN_LIBRARIES "/") + name + u'/' +
           QFileInfo(PluginFixture::builtPluginFile()).fileName();
}
