#include "Workers.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QEventLoop>
#include <QtCore/QMetaObject>
#include <QtCore/QSemaphore>
#include <QtCore/QThread>

#include <memory>

void runAtOnce(const std::vector<std::function<void()>> &functions)
{
    const int count = static_cast<int>(functions.size());
    QSemaphore ready;
    QSemaphore begin;
    int finished = 0;  // this thread's, as is the loop
    QEventLoop loop;
    std::vector<std::unique_ptr<QThread>> threads;
    for (const auto &function : functions) {
        threads.emplace_back(QThread::create([&] {
            ready.release();
            begin.acquire();
            function();
            QMetaObject::invokeMethod(
                &loop,
                [&] {
                    if (++finished == count)
                        loop.quit();
                },
                Qt::QueuedConnection);
        }));
        threads.back()->start();
    }
    ready.acquire(count);
    begin.release(count);
    loop.exec();
    for (const auto &thread : threads)
        thread->wait();
    QCoreApplication::sendPostedEvents();
}
