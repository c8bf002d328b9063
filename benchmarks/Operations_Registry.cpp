#include "IPhysicalDevice.h"
#include "Operations.h"

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

void listen(Listeners &listeners, QObject *device)
{
    listeners.connect(*device, SIGNAL(instanceNumberChanged(int)), SLOT(onNumber(int)));
}

// With so many devices registered and heard, one more comes and goes: each time all of them get a number and
// signal it, the newcomer, to whom nobody listens, at its coming only.
class ProductRegistry final : public Operation
{
public:
    explicit ProductRegistry(int deviceCount) : m_logState(Variant::Product, m_services)
    {
        for (int made = 0; made < deviceCount; ++made)
            listen(m_listeners, dynamic_cast<QObject *>(makeDevice()));
    }
    Q_DISABLE_COPY_MOVE(ProductRegistry)
    ~ProductRegistry() override
    {
        // Backwards, because the registry is searched from its start.
        while (!m_devices.empty()) {
            m_factory->destroyDevice(m_devices.back());
            m_devices.pop_back();
        }
    }

    void run(qint64 times) override
    {
        for (qint64 number = 0; number < times; ++number) {
            m_factory->destroyDevice(makeDevice());
            m_devices.pop_back();
        }
    }

private:
    IDevice *makeDevice()
    {
        ILogicalDevice *device = m_factory->createLogicalDevice(&m_noReceiver, 1);
        m_devices.push_back(device);
        device->start();
        return device;
    }

    QuietServices m_services;
    NoReceiver m_noReceiver;
    LogState m_logState;
    Listeners m_listeners;
    ILogicalDevicePlugin *m_factory = libraries().product.root<ILogicalDevicePlugin>();
    std::vector<IDevice *> m_devices;
};

class FloorRegistry final : public Operation
{
public:
    explicit FloorRegistry(int deviceCount)
    {
        for (int made = 0; made < deviceCount; ++made) {
            m_devices.push_back(makeDevice());
            listen(m_listeners, dynamic_cast<QObject *>(m_devices.back().get()));
        }
    }
    Q_DISABLE_COPY_MOVE(FloorRegistry)
    ~FloorRegistry() override
    {
        while (!m_devices.empty())
            m_devices.pop_back();
    }

    void run(qint64 times) override
    {
        for (qint64 number = 0; number < times; ++number)
            makeDevice();
    }

private:
    std::unique_ptr<IFloorDevice> makeDevice()
    {
        std::unique_ptr<IFloorDevice> device(m_factory->createFloorDevice(nullptr, nullptr));
        device->start();
        return device;
    }

    Listeners m_listeners;
    IFloorFactory *m_factory = libraries().floors.root<IFloorFactory>();
    std::vector<std::unique_ptr<IFloorDevice>> m_devices;
};

template <typename Registry>
void add(std::vector<Subject> &subjects, Variant variant, int deviceCount)
{
    subjects.push_back(
        {QStringLiteral("registry-%1/%2").arg(QString::number(deviceCount), variantName(variant)), 1,
         [deviceCount] { return std::make_unique<Registry>(deviceCount); }});
}

}  // namespace

void addRegistry(std::vector<Subject> &subjects)
{
    for (const int deviceCount : {0, 1, 10, 100, 200, 500, 1000}) {
        add<ProductRegistry>(subjects, Variant::Product, deviceCount);
        add<FloorRegistry>(subjects, Variant::Floor, deviceCount);
    }
}
