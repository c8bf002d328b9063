#include "LogicalDevice.h"

#include <QtCore/QMutex>

namespace {

// The started devices of the process in order of start, and the lock of the list and of every device's
// instance number. Created when the library is loaded, gone when it is unloaded.
struct InstanceRegistry
{
    QMutex mutex;
    QList<ILogicalDevice *> registered;
    // Deregistration searches this list too, though nothing ever adds to it: kept as it is.
    QList<ILogicalDevice *> alwaysEmpty;
};

InstanceRegistry registry;  // clazy:exclude=non-pod-global-static

}  // namespace

int LogicalDevice::instanceNumber() const
{
    const QMutexLocker lock(&registry.mutex);
    return m_instanceNumber;
}

// Emissions on the own thread happen under the lock: kept, the host relies on it.
void LogicalDevice::registerInstance(bool add)
{
    const QMutexLocker lock(&registry.mutex);
    if (add) {
        registry.registered.append(this);
        const int count = static_cast<int>(registry.registered.size());
        m_instanceNumber = count > 1 ? count : 0;
    } else {
        registry.registered.removeOne(this);
        registry.alwaysEmpty.removeOne(this);
    }
    if (registry.registered.isEmpty())
        return;

    int number = registry.registered.size() > 1 ? 1 : 0;
    const QList<ILogicalDevice *> toRenumber = registry.registered;
    for (ILogicalDevice *device : toRenumber)
        static_cast<LogicalDevice *>(device)->m_instanceNumber = number++;

    const QList<ILogicalDevice *> toAnnounce = registry.registered;
    for (ILogicalDevice *listed : toAnnounce) {
        auto *device = static_cast<LogicalDevice *>(listed);
        device->emitOnOwnThread([device] { Q_EMIT device->instanceNumberChanged(device->m_instanceNumber); });
    }
}
