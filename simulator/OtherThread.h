#pragma once

#include <QtCore/QObject>
#include <QtCore/QThread>

#include <functional>

/// A second thread with an event loop, for calls from where a device does not live. Joined on destruction.
class OtherThread
{
public:
    OtherThread();
    ~OtherThread();
    Q_DISABLE_COPY_MOVE(OtherThread)

    /// Runs the function there and waits until it has returned; the caller's event loop does not run meanwhile.
    void run(const std::function<void()> &function);

    /// For objects that shall live there.
    QThread *thread() { return &m_thread; }

private:
    QThread m_thread;
    QObject m_context;
};

/// Delivers what is queued for objects of this thread, and what that queues in turn.
void deliverQueuedCalls();
