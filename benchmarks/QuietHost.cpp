#include "QuietHost.h"

#include "ReportRateInfo.h"

QuietReceiver::QuietReceiver() : ReceiverBase(m_unused) {}

quintptr QuietReceiver::forwardedCall(quintptr /*argument1*/, quintptr /*argument2*/, quintptr /*argument3*/)
{
    return 0;
}

uint QuietReceiver::getFirmwareVersion(DeviceId /*id*/)
{
    return 0x0102;
}

bool QuietReceiver::hasBatteryLevel(DeviceId /*id*/)
{
    return true;
}

int QuietReceiver::getBatteryLevel(DeviceId /*id*/)
{
    return 80;
}

bool QuietReceiver::setDisabledButtonsOrKeysMask(DeviceId /*id*/, quint8 /*mask*/)
{
    return true;
}

int QuietReceiver::getStatusValue(DeviceId /*id*/)
{
    return 0;
}

int QuietReceiver::getDeviceValue(DeviceId /*id*/)
{
    return 0;
}

quintptr QuietReceiver::forwardedOperation(DeviceId /*id*/, quintptr /*argument2*/, quintptr /*argument3*/)
{
    return 0;
}

bool QuietReceiver::isSmartPointerSupported(DeviceId /*id*/)
{
    return true;
}

bool QuietReceiver::setReportRate(DeviceId /*id*/, int /*rate*/)
{
    return true;
}

bool QuietReceiver::getReportRateInfo(DeviceId /*id*/, ReportRateInfo *info)
{
    *info = {0, 125, {125, 250, 500, 1000}};
    return true;
}

int QuietReceiver::getLevelValue(DeviceId /*id*/)
{
    return 0;
}

bool QuietReceiver::setDpiButtonAndActiveSlot(DeviceId /*id*/, int /*dpiButtonId*/,
                                              int /*activeDpiSlotIndex*/)
{
    return true;
}

bool QuietReceiver::setDpiSlotValues(DeviceId /*id*/, const quint16 /*values*/[5], int /*dpiButtonId*/,
                                     int /*activeDpiSlotIndex*/)
{
    return true;
}

bool QuietReceiver::requestInitialState2(DeviceId /*id*/)
{
    return true;
}

bool QuietReceiver::requestInitialState1(DeviceId /*id*/)
{
    return true;
}

bool QuietReceiver::requestInitialState3(DeviceId /*id*/)
{
    return true;
}

void QuietServices::reserved0() {}

void QuietServices::reserved1() {}

void QuietServices::reserved2() {}

void QuietServices::buttonEvent(const QString & /*pluginIid*/, int /*buttonNumber*/, bool /*isPressed*/)
{
    ++events;
}

void QuietServices::setCtrlKeyPressed(bool /*isPressed*/)
{
    ++events;
}

void QuietListener::onNumber(int /*number*/)
{
    ++signalCount;
}

void QuietListener::onFlag(bool /*isSet*/)
{
    ++signalCount;
}

void QuietListener::onTexts(const QStringList & /*texts*/)
{
    ++signalCount;
}

void QuietListener::onTimeout()
{
    ++signalCount;
}
