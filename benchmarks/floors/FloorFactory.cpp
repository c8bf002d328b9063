#include "FloorFactory.h"

#include "FloorDevice.h"

IFloorDevice *FloorFactory::createFloorDevice(IPhysicalDeviceDongle *receiver, IHostServices *hostServices)
{
    return new FloorDevice(receiver, hostServices);
}
