#pragma once

#include "IFloorDevice.h"

#include <QtCore/QObject>

/// Makes floors, behind the loader as the product's factory is.
class FloorFactory final : public QObject, public IFloorFactory
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID IFloorFactory_iid)
    Q_INTERFACES(IFloorFactory)

public:
    IFloorDevice *createFloorDevice(IPhysicalDeviceDongle *receiver, IHostServices *hostServices) override;
};
