#include "Record.h"

#include <QtCore/QLatin1StringView>
#include <QtCore/QList>
#include <QtCore/QMutex>

#include <string>

namespace {

struct Event
{
    std::thread::id thread;
    QString text;
};

QMutex mutex;
QList<Event> events;
std::string currentWish;

}  // namespace

// The probe looks for both among what the program exports.

extern "C" __declspec(dllexport) void noteEvent(const char *text)
{
    const QMutexLocker locker(&mutex);
    events.append({std::this_thread::get_id(), QLatin1StringView(text)});
}

extern "C" __declspec(dllexport) bool isWishedOfProbe(const char *wish)
{
    return currentWish == wish;
}

QStringList Record::ofThread(std::thread::id thread)
{
    const QMutexLocker locker(&mutex);
    QStringList texts;
    for (const Event &event : std::as_const(events)) {
        if (event.thread == thread)
            texts.append(event.text);
    }
    return texts;
}

QStringList Record::take()
{
    const QStringList texts = ofThread(std::this_thread::get_id());
    const QMutexLocker locker(&mutex);
    events.clear();
    return texts;
}

void Record::setWish(const char *wish)
{
    currentWish = wish;
}
