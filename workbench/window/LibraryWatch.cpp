#include "LibraryWatch.h"

#include <QtCore/QFileInfo>

#include <chrono>

namespace {

constexpr std::chrono::milliseconds settleTime{100};
constexpr std::chrono::milliseconds timeToNextLook{1000};

}  // namespace

LibraryWatch::LibraryWatch(QObject *parent) : QObject(parent)
{
    m_settled.setSingleShot(true);
    m_settled.setInterval(settleTime);
    m_nextLook.setSingleShot(true);
    m_nextLook.setInterval(timeToNextLook);
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, &m_settled, qOverload<>(&QTimer::start));
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, &m_settled, qOverload<>(&QTimer::start));
    connect(&m_settled, &QTimer::timeout, this, &LibraryWatch::look);
    connect(&m_nextLook, &QTimer::timeout, this, &LibraryWatch::look);
}

void LibraryWatch::watch(const QString &file)
{
    m_settled.stop();
    m_nextLook.stop();
    if (const QStringList watched = m_watcher.files() + m_watcher.directories(); !watched.isEmpty())
        m_watcher.removePaths(watched);
    m_file = file;
    if (!file.isEmpty())
        m_watcher.addPaths({file, QFileInfo(file).absolutePath()});
    acceptChange();
}

LibraryWatch::Stamp LibraryWatch::stamp() const
{
    const QFileInfo file(m_file);
    return file.isFile() ? Stamp{file.lastModified(), file.size()} : Stamp{};
}

void LibraryWatch::look()
{
    // The watcher forgets a file that was replaced. Before the file is read, so that no later change is
    // missed.
    if (QFileInfo::exists(m_file))
        m_watcher.addPath(m_file);
    const Stamp now = stamp();
    if (!now.time.isValid() || now.time != m_known.time || now.size != m_known.size)
        Q_EMIT changed();
}
