#pragma once

#include <QtCore/QSemaphore>
#include <QtCore/QThread>

#include <functional>

/// A second thread without an event loop, which runs one function at a time while its caller waits. Nothing of a
/// step is left to be done when run() has returned, not even the freeing of a block, so what comes next can be
/// counted exactly. Joined on destruction.
class StepThread : private QThread
{
public:
    StepThread() { start(); }

    ~StepThread() override
    {
        run({});
        wait();
    }

    Q_DISABLE_COPY_MOVE(StepThread)

    void run(const std::function<void()> &step)
    {
        m_step = &step;
        m_begin.release();
        m_end.acquire();
    }

private:
    void run() override
    {
        for (bool goesOn = true; goesOn;) {
            m_begin.acquire();
            goesOn = static_cast<bool>(*m_step);
            if (goesOn)
                (*m_step)();
            m_end.release();
        }
    }

    const std::function<void()> *m_step = nullptr;
    QSemaphore m_begin;
    QSemaphore m_end;
};
