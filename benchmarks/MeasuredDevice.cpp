#include "MeasuredDevice.h"

#include <QtCore/QLoggingCategory>
#include <QtCore/QPluginLoader>

namespace {

constexpr DeviceId deviceId = 1;

void throwAway(QtMsgType /*type*/, const QMessageLogContext & /*context*/, const QString & /*text*/) {}

ILogicalDevicePlugin &loadedFactory()
{
    QPluginLoader loader(QStringLiteral(PRODUCT_FILE));
    auto *found = qobject_cast<ILogicalDevicePlugin *>(loader.instance());
    if (!found)
        qFatal("%s does not load: %s", PRODUCT_FILE, qUtf8Printable(loader.errorString()));
    return *found;
}

}  // namespace

ILogicalDevicePlugin &factory()
{
    static ILogicalDevicePlugin &loaded = loadedFactory();
    return loaded;
}

LogState::LogState(Log log, IHostServices &services)
{
    const bool isOn = log != Log::Off;
    factory().initialize(&services, isOn, isOn, isOn);
    if (log == Log::Filtered)
        QLoggingCategory::setFilterRules(QStringLiteral("com.orvane.*=false"));
    m_previousHandler = qInstallMessageHandler(throwAway);
}

LogState::~LogState()
{
    factory().initialize(nullptr, false, false, false);
    QLoggingCategory::setFilterRules({});
    qInstallMessageHandler(m_previousHandler);
}

MeasuredDevice::MeasuredDevice(Log log)
    : m_logState(log, m_services),
      m_device(dynamic_cast<ILogicalDeviceGen3Mouse *>(factory().createLogicalDevice(&m_receiver, deviceId))),
      m_object(dynamic_cast<QObject *>(m_device))
{
    m_device->start();
    Q_EMIT m_receiver.dpiMinChanged(100);
    Q_EMIT m_receiver.dpiMaxChanged(8000);
}

MeasuredDevice::~MeasuredDevice()
{
    factory().destroyDevice(m_device);
}

// On the heap, or the compiler would know the class behind the virtual calls.
MeasuredFloor::MeasuredFloor() : m_device(std::make_unique<FloorDevice>(&m_receiver, &m_services)) {}

void Listeners::connect(QObject &sender, const char *signal, const char *slot, int count)
{
    for (int made = 0; made < count; ++made) {
        m_listeners.push_back(std::make_unique<QuietListener>());
        QObject::connect(&sender, signal, m_listeners.back().get(), slot);
    }
}
