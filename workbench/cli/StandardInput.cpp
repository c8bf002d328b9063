#include "StandardInput.h"

#include <QtCore/QEventLoop>
#include <QtCore/QList>
#include <QtCore/QMutex>
#include <QtCore/QMutexLocker>
#include <QtCore/QWaitCondition>

#include <array>
#include <cerrno>
#include <thread>
#include <utility>

#ifdef Q_OS_WIN
#include <io.h>
#else
#include <unistd.h>
#endif

struct StandardInput::Shared
{
    QMutex mutex;
    QWaitCondition hasRoom;
    QList<QByteArray> lines;
    qsizetype size = 0;  // of the lines, in bytes
    bool isAtEnd = false;
    QEventLoop *waiting = nullptr;  // in nextLine()

    // Of the thread.
    void readAll();
    void add(const QByteArray &line);
    void end();
    void wake() const;
};

namespace {

using Bytes = std::array<char, 1 << 16>;

// 0 at the end. Not by a stream of the C library: the program's end could wait for the lock that a reader
// holds.
int readBytes(Bytes &bytes)
{
#ifdef Q_OS_WIN
    return _read(0, bytes.data(), static_cast<unsigned>(bytes.size()));
#else
    ssize_t count = 0;
    do {
        count = read(STDIN_FILENO, bytes.data(), bytes.size());
    } while (count < 0 && errno == EINTR);
    return static_cast<int>(count);
#endif
}

}  // namespace

// With the mutex held.
void StandardInput::Shared::wake() const
{
    if (waiting)
        QMetaObject::invokeMethod(waiting, &QEventLoop::quit, Qt::QueuedConnection);
}

void StandardInput::Shared::add(const QByteArray &line)
{
    constexpr qsizetype mostBytes = 4 * longestLine;
    const QMutexLocker locker(&mutex);
    while (size > mostBytes)
        hasRoom.wait(&mutex);
    lines.append(line);
    size += line.size() + 1;
    wake();
}

void StandardInput::Shared::end()
{
    const QMutexLocker locker(&mutex);
    isAtEnd = true;
    wake();
}

void StandardInput::Shared::readAll()
{
    Bytes bytes;
    QByteArray line;
    for (int count = readBytes(bytes); count > 0; count = readBytes(bytes)) {
        for (int i = 0; i < count; ++i) {
            const char byte = bytes.at(static_cast<std::size_t>(i));
            if (byte == '\n')
                add(std::exchange(line, {}));
            else if (line.size() <= longestLine)
                line.append(byte);
        }
    }
    if (!line.isEmpty())
        add(line);
    end();
}

StandardInput::StandardInput() : m_shared(std::make_shared<Shared>())
{
    std::thread([shared = m_shared] { shared->readAll(); }).detach();
}

StandardInput::~StandardInput() = default;

std::optional<QByteArray> StandardInput::nextLine()
{
    QMutexLocker locker(&m_shared->mutex);
    while (m_shared->lines.isEmpty() && !m_shared->isAtEnd) {
        QEventLoop loop;
        m_shared->waiting = &loop;
        locker.unlock();
        loop.exec();
        locker.relock();
        m_shared->waiting = nullptr;
    }
    if (m_shared->lines.isEmpty())
        return std::nullopt;
    QByteArray line = m_shared->lines.takeFirst();
    m_shared->size -= line.size() + 1;
    m_shared->hasRoom.wakeAll();
    return line;
}
