#include "Workers.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QMetaObject>
#include <QtCore/QSemaphore>
#include <QtCore/QThread>

#include <memory>

void runAtOnce(const std::vector<std::function<void()>> &functions)
{
    const int count = static_cast<int>(functions.size());
    QSemaphore ready;
    QSemaphore begin;
    int finished = 0;  // this thread's
    std::vector<std::unique_ptr<QThread>> threads;
    for (const auto &function : functions) {
        threads.emplace_back(QThread::create([&] {
            ready.release();
            begin.acquire();
            function();
            QMetaObject::invokeMethod(
                QCoreApplication::instance(), [&] { ++finished; }, Qt::QueuedConnection);
        }));
        threads.back()->start();
    }
    ready.acquire(count);
    begin.release(count);
    while (finished < count)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    for (const auto &thread : threads)
        thread->wait();
    QCoreApplication::sendPostedEvents();
}
