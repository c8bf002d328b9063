#include "Lines.h"

#include <algorithm>
#include <limits>

namespace Model {

namespace {

void emitPendingFlag(World &world, Device &device)
{
    emitOnDeviceThread(world, device, "isDpiSlotValuesChangePendingChanged", &Device::isSlotValuesPending);
}

QStringList decimals(const QList<quint16> &values)
{
    QStringList all;
    for (const quint16 value : values)
        all.append(QString::number(value));
    return all;
}

// 0 for what cannot be sent.
quint16 slotValue(World &world, const Device &device, const QString &text)
{
    bool isNumber = false;
    const uint number = text.toUInt(&isNumber, 10);
    if (isNumber) {
        const auto word = static_cast<quint16>(number & 0xffffU);
        if (word == 0 || word == std::numeric_limits<quint16>::max())
            return word;
        if (device.dpiMin <= word && word <= device.dpiMax)
            return word;
    }
    warn(world, "Ignoring slot value : ", text);
    return 0;
}

void send(World &world, Device &device, const QList<quint16> &values)
{
    debug(world, "Setting dpi slot values : ", values);
    if (!device.isBound) {
        warnOfNoReceiver(world);
        return;
    }
    const bool isAccepted = request(world, device, "setDpiSlotValues",
                                    argumentText(values.constData(), device.buttonId, device.activeSlot));
    if (isAccepted) {
        device.pendingSlotValues = values;
    } else {
        warn(world, "Dongle set dpi slot values failed");
        device.pendingSlotValues.clear();
    }
    if (device.isSlotValuesPending != isAccepted) {
        device.isSlotValuesPending = isAccepted;
        emitPendingFlag(world, device);
    }
}

// What was requested as 0 agrees with anything.
bool agree(const QList<quint16> &requested, const SlotValues &confirmed)
{
    return std::equal(requested.cbegin(), requested.cend(), confirmed.cbegin(), confirmed.cend(),
                      [](quint16 request, quint16 answer) { return request == 0 || request == answer; });
}

}  // namespace

void setDpiSlotValues(World &world, Device &device, const QStringList &texts)
{
    if (device.dpiMin < 1 || device.dpiMax < 1) {
        warn(world, "Ignoring SET command, dpi min and max are not set");
    } else if (texts.size() != 5) {
        warn(world, "Invalid SET command, dpiSlotValues parameter must have size 5");
    } else {
        QList<quint16> values;
        for (const QString &text : texts)
            values.append(slotValue(world, device, text));
        send(world, device, values);
    }
    debug(world, "setDpiSlotValues exit");
}

void dpiSlotValuesConfirmed(World &world, Device &device, const SlotValues &values)
{
    debug(world, "dpiSlotValuesConfirmed enter, values :", static_cast<const void *>(values.data()));
    if (device.isSlotValuesPending && !agree(device.pendingSlotValues, values)) {
        send(world, device, QList<quint16>(device.pendingSlotValues));
    } else if (device.isSlotValuesPending) {
        dpiSlotValuesChanged(world, device, QList<quint16>(values.cbegin(), values.cend()));
        device.isSlotValuesPending = false;
        emitPendingFlag(world, device);
    }
    debug(world, "dpiSlotValuesConfirmed exit");
}

void dpiSlotValuesChanged(World &world, Device &device, const QList<quint16> &values)
{
    debug(world, "onDpiSlotValuesChanged enter");
    if (values != device.slotValues) {
        debug(world, "Updating dpiSlotValues : ", values);
        device.slotValues = values;
        callOnDeviceThread(world, device, [](World &itsWorld, Device &itsDevice) {
            signal(itsWorld, itsDevice, "dpiSlotValuesChanged", decimals(itsDevice.slotValues));
        });
    }
    debug(world, "onDpiSlotValuesChanged exit");
}

}  // namespace Model
