#pragma once

#include "DeviceId.h"
#include "ILogicalDeviceGen3.h"
#include "ILogicalDeviceGen3Mouse.h"
#include "SignalRecorder.h"

#include <QtCore/QJsonArray>

#include <optional>

class Timeline;

/// One logical device as its host has it: the interface views, a recorder on its signals, and every operation
/// with an effect under its own name, which is written to the timeline as a call before it is made.
/// Getters are for the views. Operations may be called from any thread, as those of the device.
/// Does not own the device; PluginHost deletes it.
class HostedDevice
{
public:
    /// device must be a QObject; timeline and device must outlive this object's last call.
    HostedDevice(Timeline &timeline, ILogicalDeviceGen3Mouse *device, DeviceId id);
    Q_DISABLE_COPY_MOVE(HostedDevice)

    ILogicalDeviceGen3Mouse *device() const { return m_device; }
    ILogicalDeviceGen3 *gen3() const { return m_gen3; }
    QObject *object() const { return m_object; }
    DeviceId id() const { return m_id; }

    bool start();
    void stop();
    quintptr forwardToPhysicalDevice(quintptr argument1, quintptr argument2, quintptr argument3);
    quintptr query26(quintptr argument1, quintptr argument2, quintptr argument3);
    void setFirmwareVersion(uint fwVersion);
    void setBatteryLevel(int newBatteryLevel);
    void applySettings(const QVariantMap &settings);
    void resetSettings();
    void capabilityChangedCallBack(quint8 capability);
    void setButtonsOrKeysToDefault();
    void disbaleButtonsOrKeys(const QList<int> &buttonOrKeys);
    void mouseEventCallBack(quint8 mouseEvent);
    void dpiValueChangedCallBack(int value);
    void setActiveDpiSlotIndex(int index);
    void activeDpiSlotIndexConfirmed(int index);
    void activeDpiSlotIndexChangedCallBack(int index);
    void setDpiSlotValues(const QStringList &values);
    void dpiSlotValuesConfirmed(const quint16 values[5]);
    void dpiSlotValuesChangedCallBack(const quint16 values[5]);
    void setDpiButtonId(int buttonId);
    void dpiButtonIdConfirmed(int buttonId);
    void dpiButtonIdChangedCallBack(int buttonId);
    void setReportRate(int rate);
    void reportRateConfirmed(int rate);
    void reportRateChangedCallBack(const ReportRateInfo *info);
    void ppidChangedCallBack(const QString &ppid);

private:
    quint64 recordCall(const char *operation, const QJsonArray &arguments = {});

    Timeline &m_timeline;
    ILogicalDeviceGen3Mouse *m_device;
    QObject *m_object;
    ILogicalDeviceGen3 *m_gen3;
    DeviceId m_id;
    SignalRecorder m_signalRecorder;
};
