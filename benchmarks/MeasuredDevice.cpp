#include "MeasuredDevice.h"

#include "ILogicalDevicePlugin.h"

#include <QtCore/QLoggingCategory>

#include <cstdio>
#include <cstdlib>

namespace {

constexpr DeviceId deviceId = 1;

void throwAway(QtMsgType /*type*/, const QMessageLogContext & /*context*/, const QString & /*text*/) {}

ILogicalDevicePlugin *factoryOf(Variant variant)
{
    LoadedLibrary &library = variant == Variant::Unlogged ? libraries().unlogged : libraries().product;
    return library.root<ILogicalDevicePlugin>();
}

}  // namespace

LogState::LogState(Variant variant, IHostServices &services)
{
    const bool isOn = variant == Variant::Logging || variant == Variant::Filtered;
    factoryOf(variant)->initialize(&services, isOn, isOn, isOn);
    if (variant == Variant::Filtered)
        QLoggingCategory::setFilterRules(QStringLiteral("com.orvane.*=false"));
    m_previousHandler = qInstallMessageHandler(throwAway);
}

LogState::~LogState()
{
    libraries().product.root<ILogicalDevicePlugin>()->initialize(nullptr, false, false, false);
    QLoggingCategory::setFilterRules({});
    qInstallMessageHandler(m_previousHandler);
}

MeasuredDevice::MeasuredDevice(Variant variant)
    : m_logState(variant, m_services),
      m_factory(factoryOf(variant)),
      m_device(dynamic_cast<Interface *>(m_factory->createLogicalDevice(&m_receiver, deviceId))),
      m_object(dynamic_cast<QObject *>(m_device))
{
    if (!m_object || !m_device->start()) {
        std::fputs("measure: the library makes no mouse that starts; its tests say more: ./dev test\n",
                   stderr);
        std::exit(2);
    }
    Q_EMIT m_receiver.dpiMinChanged(100);
    Q_EMIT m_receiver.dpiMaxChanged(8000);
}

MeasuredDevice::~MeasuredDevice()
{
    m_factory->destroyDevice(m_device);
}

MeasuredFloor::MeasuredFloor(Variant /*variant*/)
    : m_device(libraries().floors.root<IFloorFactory>()->createFloorDevice(&m_receiver, &m_services)),
      m_object(dynamic_cast<QObject *>(m_device.get()))
{}

MeasuredFloor::~MeasuredFloor() = default;

void Listeners::connect(QObject &sender, const char *signal, const char *slot, int count)
{
    for (int made = 0; made < count; ++made) {
        m_listeners.push_back(std::make_unique<QuietListener>());
        QObject::connect(&sender, signal, m_listeners.back().get(), slot);
    }
}
