#include "HostedDevice.h"

#include "HostMap.h"
#include "Timeline.h"
#include "TimelineValue.h"

HostedDevice::HostedDevice(Timeline &timeline, ILogicalDeviceGen3Mouse *device, DeviceId id)
    : m_timeline(timeline),
      m_device(device),
      m_object(dynamic_cast<QObject *>(device)),
      m_gen3(qobject_cast<ILogicalDeviceGen3 *>(m_object)),
      m_id(id),
      m_signalRecorder(timeline, m_object, id)
{}

quint64 HostedDevice::recordCall(const char *operation, const QJsonArray &arguments)
{
    return m_timeline.record(TimelineEntry::Kind::Call, m_id, QString::fromLatin1(operation), arguments);
}

bool HostedDevice::start()
{
    const quint64 call = recordCall("start");
    const bool isLibraryFound = m_device->start();
    m_timeline.setResult(call, isLibraryFound);
    return isLibraryFound;
}

void HostedDevice::stop()
{
    recordCall("stop");
    m_device->stop();
}

quintptr HostedDevice::forwardToPhysicalDevice(quintptr argument1, quintptr argument2, quintptr argument3)
{
    const quint64 call =
        recordCall("forwardToPhysicalDevice",
                   {timelineValue(argument1), timelineValue(argument2), timelineValue(argument3)});
    const quintptr answer = m_device->forwardToPhysicalDevice(argument1, argument2, argument3);
    m_timeline.setResult(call, timelineValue(answer));
    return answer;
}

quintptr HostedDevice::query26(quintptr argument1, quintptr argument2, quintptr argument3)
{
    const quint64 call =
        recordCall("query26", {timelineValue(argument1), timelineValue(argument2), timelineValue(argument3)});
    const quintptr answer = m_device->query26(argument1, argument2, argument3);
    m_timeline.setResult(call, timelineValue(answer));
    return answer;
}

void HostedDevice::setFirmwareVersion(uint fwVersion)
{
    recordCall("setFirmwareVersion", {timelineValue(fwVersion)});
    m_device->setFirmwareVersion(fwVersion);
}

void HostedDevice::setBatteryLevel(int newBatteryLevel)
{
    recordCall("setBatteryLevel", {newBatteryLevel});
    m_device->setBatteryLevel(newBatteryLevel);
}

void HostedDevice::applySettings(const QVariantMap &settings)
{
    recordCall("applySettings", {timelineValue(settings)});
    m_device->applySettings(HostMap(settings).map());
}

void HostedDevice::resetSettings()
{
    recordCall("resetSettings");
    m_device->resetSettings();
}

void HostedDevice::capabilityChangedCallBack(quint8 capability)
{
    recordCall("capabilityChangedCallBack", {capability});
    m_device->capabilityChangedCallBack(capability);
}

void HostedDevice::setButtonsOrKeysToDefault()
{
    recordCall("setButtonsOrKeysToDefault");
    m_device->setButtonsOrKeysToDefault();
}

void HostedDevice::disbaleButtonsOrKeys(const QList<int> &buttonOrKeys)
{
    recordCall("disbaleButtonsOrKeys", {timelineValue(buttonOrKeys)});
    m_device->disbaleButtonsOrKeys(buttonOrKeys);
}

void HostedDevice::mouseEventCallBack(quint8 mouseEvent)
{
    recordCall("mouseEventCallBack", {mouseEvent});
    m_device->mouseEventCallBack(mouseEvent);
}

void HostedDevice::dpiValueChangedCallBack(int value)
{
    recordCall("dpiValueChangedCallBack", {value});
    m_device->dpiValueChangedCallBack(value);
}

void HostedDevice::setActiveDpiSlotIndex(int index)
{
    recordCall("setActiveDpiSlotIndex", {index});
    m_device->setActiveDpiSlotIndex(index);
}

void HostedDevice::activeDpiSlotIndexConfirmed(int index)
{
    recordCall("activeDpiSlotIndexConfirmed", {index});
    m_device->activeDpiSlotIndexConfirmed(index);
}

void HostedDevice::activeDpiSlotIndexChangedCallBack(int index)
{
    recordCall("activeDpiSlotIndexChangedCallBack", {index});
    m_device->activeDpiSlotIndexChangedCallBack(index);
}

void HostedDevice::setDpiSlotValues(const QStringList &values)
{
    recordCall("setDpiSlotValues", {timelineValue(values)});
    m_device->setDpiSlotValues(values);
}

void HostedDevice::dpiSlotValuesConfirmed(const quint16 values[5])
{
    recordCall("dpiSlotValuesConfirmed", {timelineValue(values)});
    m_device->dpiSlotValuesConfirmed(values);
}

void HostedDevice::dpiSlotValuesChangedCallBack(const quint16 values[5])
{
    recordCall("dpiSlotValuesChangedCallBack", {timelineValue(values)});
    m_device->dpiSlotValuesChangedCallBack(values);
}

void HostedDevice::setDpiButtonId(int buttonId)
{
    recordCall("setDpiButtonId", {buttonId});
    m_device->setDpiButtonId(buttonId);
}

void HostedDevice::dpiButtonIdConfirmed(int buttonId)
{
    recordCall("dpiButtonIdConfirmed", {buttonId});
    m_device->dpiButtonIdConfirmed(buttonId);
}

void HostedDevice::dpiButtonIdChangedCallBack(int buttonId)
{
    recordCall("dpiButtonIdChangedCallBack", {buttonId});
    m_device->dpiButtonIdChangedCallBack(buttonId);
}

void HostedDevice::setReportRate(int rate)
{
    recordCall("setReportRate", {rate});
    m_device->setReportRate(rate);
}

void HostedDevice::reportRateConfirmed(int rate)
{
    recordCall("reportRateConfirmed", {rate});
    m_device->reportRateConfirmed(rate);
}

void HostedDevice::reportRateChangedCallBack(const ReportRateInfo *info)
{
    recordCall("reportRateChangedCallBack", {timelineValue(info)});
    m_device->reportRateChangedCallBack(info);
}

void HostedDevice::ppidChangedCallBack(const QString &ppid)
{
    recordCall("ppidChangedCallBack", {ppid});
    m_gen3->ppidChangedCallBack(ppid);
}
