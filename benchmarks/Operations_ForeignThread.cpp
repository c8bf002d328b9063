#include "MeasuredDevice.h"
#include "Subject.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QSemaphore>

#include <algorithm>
#include <thread>

namespace {

// So many reports are queued before they are delivered. With many more the allocator tidies up now and then,
// which has little to do with whose blocks they are.
constexpr qint64 reportsInQueue = 100;

// The device lives in the calling thread; another one reports, then this one delivers. They never run at the
// same time, so nobody waits for a lock.
template <typename Measured>
class ForeignBattery final : public Operation
{
public:
    template <typename... Arguments>
    explicit ForeignBattery(Arguments... arguments) : m_measured(arguments...)
    {
        m_listeners.connect(m_measured.object(), SIGNAL(batteryLevelChanged(int)), SLOT(onNumber(int)));
    }
    Q_DISABLE_COPY_MOVE(ForeignBattery)
    ~ForeignBattery() override
    {
        m_wanted = 0;
        m_go.release();
        m_reporter.join();
    }

    void run(qint64 calls) override
    {
        for (qint64 left = calls; left > 0; left -= reportsInQueue) {
            m_wanted = std::min(left, reportsInQueue);
            m_go.release();
            m_done.acquire();
            // Of all objects, as an event loop does: Qt keeps the places of what is delivered to one alone.
            QCoreApplication::sendPostedEvents();
        }
    }

private:
    void work()
    {
        for (m_go.acquire(); m_wanted > 0; m_go.acquire()) {
            for (qint64 number = 0; number < m_wanted; ++number)
                m_measured.device().setBatteryLevel(static_cast<int>(50 + (number & 1)));
            m_done.release();
        }
    }

    Listeners m_listeners;
    Measured m_measured;
    qint64 m_wanted = 0;  // handed over by the semaphores; 0: the end
    QSemaphore m_go;
    QSemaphore m_done;
    std::thread m_reporter{[this] { work(); }};
};

}  // namespace

void addForeignThread(std::vector<Subject> &subjects)
{
    const QString name = QStringLiteral("battery level changed by another thread");
    subjects.push_back(
        {name, reportsInQueue, [] { return std::make_unique<ForeignBattery<MeasuredDevice>>(Log::Off); }});
    subjects.push_back({name + QStringLiteral("/floor"), reportsInQueue,
                        [] { return std::make_unique<ForeignBattery<MeasuredFloor>>(); }});
}
