// A host's first lines: everything they need comes with the package. Exit code 0 when the library that is
// named makes a device of the right kind.
#include "IHostServices.h"
#include "ILogicalDeviceGen3Mouse.h"
#include "ILogicalDevicePlugin.h"
#include "IPhysicalDevice.h"
#include "IPhysicalDeviceDongle.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QPluginLoader>

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QPluginLoader loader(QCoreApplication::arguments().value(1));
    auto *factory = qobject_cast<ILogicalDevicePlugin *>(loader.instance());
    if (!factory || !factory->initialize(nullptr, false, false, false))
        return 1;
    ILogicalDevice *device = factory->createLogicalDevice(nullptr, 1);
    const bool isMouse = device && device->modelCode() == QStringLiteral("RV418");
    factory->destroyDevice(device);
    return isMouse ? 0 : 1;
}
