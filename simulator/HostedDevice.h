#pragma once

#include "DeviceId.h"
#include "Operations.h"
#include "SignalRecorder.h"
#include "Timeline.h"

/// One logical device as its host has it: the views of its interfaces, its recorded signals, and each operation with an
/// effect. PluginHost::createDevice() makes it.
///
/// An operation records the call and then calls the device's operation of the same name. The interfaces' headers state
/// meaning, units, errors and signals of each; so do they for the getters, which are called through the views and not
/// recorded. Any thread, as far as the device's operation allows it. A request only begins here: the mouse's answer comes
/// through the event loop (waitForTimeline()).
/// Does not own the device; PluginHost deletes it.
class HostedDevice
{
public:
    /// device must be a QObject; timeline and device must outlive this object's last call.
    HostedDevice(Timeline &timeline, ILogicalDeviceGen3Mouse *device, DeviceId id);
    Q_DISABLE_COPY_MOVE(HostedDevice)

    /// The views and the QObject of the device; valid until it is destroyed or the library unloaded.
    ILogicalDeviceGen3Mouse *device() const { return m_device; }
    ILogicalDeviceGen3 *gen3() const { return m_gen3; }
    QObject *object() const { return m_object; }
    /// The mouse's id, which its entries on the timeline have.
    DeviceId id() const { return m_id; }

    /// Calls an operation of Operations.h with arguments as the timeline has them. Returns its result, undefined for
    /// none.
    QJsonValue call(const DeviceOperation &operation, const QJsonArray &arguments);
    /// The same with the operation's own types.
    template <auto function, typename... Arguments>
    auto call(const CallableOperation<function> &operation, const Arguments &...arguments)
    {
        const quint64 entry = m_timeline.record(TimelineEntry::Kind::Call, m_id, operation.text(),
                                                {timelineValue(arguments)...});
        auto &view = viewOf<InterfaceOf<decltype(function)>>(*m_device);
        if constexpr (std::is_void_v<decltype((view.*function)(passed(arguments)...))>) {
            (view.*function)(passed(arguments)...);
        } else {
            const auto result = (view.*function)(passed(arguments)...);
            m_timeline.setResult(entry, timelineValue(result));
            return result;
        }
    }

    /// What the host calls.
    bool start() { return call(calls::start); }
    void stop() { call(calls::stop); }
    quintptr forwardToPhysicalDevice(quintptr argument1, quintptr argument2, quintptr argument3)
    {
        return call(calls::forwardToPhysicalDevice, argument1, argument2, argument3);
    }
    quintptr query26(quintptr argument1, quintptr argument2, quintptr argument3)
    {
        return call(calls::query26, argument1, argument2, argument3);
    }
    void applySettings(const QVariantMap &settings) { call(calls::applySettings, settings); }
    void resetSettings() { call(calls::resetSettings); }
    void setButtonsOrKeysToDefault() { call(calls::setButtonsOrKeysToDefault); }
    void disbaleButtonsOrKeys(const QList<int> &buttons) { call(calls::disbaleButtonsOrKeys, buttons); }
    void setActiveDpiSlotIndex(int index) { call(calls::setActiveDpiSlotIndex, index); }
    void setDpiSlotValues(const QStringList &values) { call(calls::setDpiSlotValues, values); }
    void setDpiButtonId(int buttonId) { call(calls::setDpiButtonId, buttonId); }
    void setReportRate(int rate) { call(calls::setReportRate, rate); }
    /// What the receiver reports, for a test that plays the mouse itself. SimulatedReceiver reports without these.
    void setFirmwareVersion(uint fwVersion) { call(reports::setFirmwareVersion, fwVersion); }
    void setBatteryLevel(int newBatteryLevel) { call(reports::setBatteryLevel, newBatteryLevel); }
    void capabilityChangedCallBack(quint8 capability)
    {
        call(reports::capabilityChangedCallBack, capability);
    }
    void mouseEventCallBack(quint8 mouseEvent) { call(reports::mouseEventCallBack, mouseEvent); }
    void dpiValueChangedCallBack(int value) { call(reports::dpiValueChangedCallBack, value); }
    void activeDpiSlotIndexConfirmed(int index) { call(reports::activeDpiSlotIndexConfirmed, index); }
    void activeDpiSlotIndexChangedCallBack(int index)
    {
        call(reports::activeDpiSlotIndexChangedCallBack, index);
    }
    void dpiSlotValuesConfirmed(const quint16 values[5]) { call(reports::dpiSlotValuesConfirmed, values); }
    void dpiSlotValuesChangedCallBack(const quint16 values[5])
    {
        call(reports::dpiSlotValuesChangedCallBack, values);
    }
    void dpiButtonIdConfirmed(int buttonId) { call(reports::dpiButtonIdConfirmed, buttonId); }
    void dpiButtonIdChangedCallBack(int buttonId) { call(reports::dpiButtonIdChangedCallBack, buttonId); }
    void reportRateConfirmed(int rate) { call(reports::reportRateConfirmed, rate); }
    void reportRateChangedCallBack(const ReportRateInfo *info)
    {
        call(reports::reportRateChangedCallBack, info);
    }
    void ppidChangedCallBack(const QString &ppid) { call(reports::ppidChangedCallBack, ppid); }

private:
    Timeline &m_timeline;
    ILogicalDeviceGen3Mouse *m_device;
    QObject *m_object;
    ILogicalDeviceGen3 *m_gen3;
    DeviceId m_id;
    SignalRecorder m_signalRecorder;
};
