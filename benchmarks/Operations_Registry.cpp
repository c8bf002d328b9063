#include "IPhysicalDevice.h"
#include "MeasuredDevice.h"
#include "Subject.h"

namespace {

// So that starting a device is its registration and little else.
class NoReceiver final : public IPhysicalDevice
{
public:
    void reserved0() override {}
    quintptr forwardedCall(quintptr /*argument1*/, quintptr /*argument2*/, quintptr /*argument3*/) override
    {
        return 0;
    }
};

// With so many devices registered and heard, one more comes and goes: each time all of them get a number and
// signal it, the newcomer, to whom nobody listens, at its coming only.
class Registry final : public Operation
{
public:
    explicit Registry(int others)
    {
        for (int made = 0; made < others; ++made) {
            m_others.push_back(startedDevice());
            m_listeners.connect(*dynamic_cast<QObject *>(m_others.back()), SIGNAL(instanceNumberChanged(int)),
                                SLOT(onNumber(int)));
        }
    }
    Q_DISABLE_COPY_MOVE(Registry)
    ~Registry() override
    {
        // Backwards, because the registry is searched from its start.
        for (; !m_others.empty(); m_others.pop_back())
            factory().destroyDevice(m_others.back());
    }

    void run(qint64 calls) override
    {
        for (qint64 number = 0; number < calls; ++number)
            factory().destroyDevice(startedDevice());
    }

private:
    ILogicalDevice *startedDevice()
    {
        ILogicalDevice *device = factory().createLogicalDevice(&m_noReceiver, 1);
        device->start();
        return device;
    }

    QuietServices m_services;
    LogState m_logState{Log::Off, m_services};
    NoReceiver m_noReceiver;
    Listeners m_listeners;
    std::vector<ILogicalDevice *> m_others;
};

}  // namespace

void addRegistry(std::vector<Subject> &subjects)
{
    for (const int others : {0, 10, 100, 1000}) {
        subjects.push_back({QStringLiteral("device comes and goes, %1 others").arg(others), 1,
                            [others] { return std::make_unique<Registry>(others); }});
    }
}
