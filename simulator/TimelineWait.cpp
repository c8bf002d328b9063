#include "TimelineWait.h"

#include "Timeline.h"

#include <QtCore/QEventLoop>
#include <QtCore/QTimer>

bool waitForTimeline(Timeline &timeline, const std::function<bool()> &condition,
                     std::chrono::milliseconds deadline)
{
    QEventLoop loop;
    bool isMet = false;
    const auto check = [&] {
        isMet = isMet || condition();
        if (isMet)
            loop.quit();
    };
    // Queued, so that the condition sees what the entry's operation has done.
    timeline.setObserver(
        [&](const TimelineEntry &) { QMetaObject::invokeMethod(&loop, check, Qt::QueuedConnection); });
    QTimer repetition;
    QObject::connect(&repetition, &QTimer::timeout, &loop, check);
    repetition.start(std::chrono::milliseconds(5));
    QTimer limit;
    limit.setSingleShot(true);
    QObject::connect(&limit, &QTimer::timeout, &loop, &QEventLoop::quit);
    limit.start(deadline);
    QMetaObject::invokeMethod(&loop, check, Qt::QueuedConnection);
    loop.exec();
    timeline.setObserver({});
    return isMet;
}
