#include "RecentFiles.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>

using namespace Qt::StringLiterals;

namespace {

constexpr auto key = "recentFiles"_L1;
constexpr qsizetype most = 10;

}  // namespace

RecentFiles::RecentFiles(QSettings *settings, QWidget *parent)
    : QMenu(tr("&Recent Files"), parent), m_settings(settings)
{
    setObjectName("recentFiles"_L1);
    fill();
}

void RecentFiles::add(const QString &path)
{
    const QString file = QFileInfo(path).absoluteFilePath();
    QStringList files = m_settings->value(key).toStringList();
    files.removeAll(file);
    files.prepend(file);
    m_settings->setValue(key, QStringList(files.mid(0, most)));
    fill();
}

void RecentFiles::fill()
{
    clear();
    const QStringList files = m_settings->value(key).toStringList();
    for (const QString &file : files) {
        QString text = QDir::toNativeSeparators(file);
        text.replace(u'&', "&&"_L1);  // a single one marks a key
        addAction(text, this, [this, file] { Q_EMIT fileWanted(file); });
    }
    setEnabled(!files.isEmpty());
}
