#include "Lines.h"

// Emitted wherever the report is heard.
namespace Model {

void onDpiMinChanged(World &world, Device &device, int value)
{
    if (value == device.dpiMin)
        return;
    debug(world, "Updating dpiMin : ", value);
    device.dpiMin = value;
    signal(world, device, "dpiMinChanged", value);
}

void onDpiMaxChanged(World &world, Device &device, int value)
{
    if (value == device.dpiMax)
        return;
    debug(world, "Updating dpiMax : ", value);
    device.dpiMax = value;
    signal(world, device, "dpiMaxChanged", value);
}

void dpiValueChanged(World &world, Device &device, int value)
{
    if (value == device.dpiValue)
        return;
    debug(world, "Updating dpiValue : ", value);
    device.dpiValue = value;
    signal(world, device, "dpiValueChanged", value);
}

void onPpidChanged(World &world, Device &device, const QString &ppid)
{
    debug(world, "onPPIDChanged enter");
    if (ppid != device.ppid) {
        debug(world, "Updating ppid : ", ppid);
        device.ppid = ppid;
        signal(world, device, "ppidChanged", ppid);
    }
    debug(world, "onPPIDChanged exit");
}

}  // namespace Model
