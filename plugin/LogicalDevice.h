#pragma once

#include "ButtonBits.h"
#include "DeviceId.h"
#include "ILogicalDeviceGen3.h"
#include "ILogicalDeviceGen3Mouse.h"

#include <QtCore/QMetaObject>
#include <QtCore/QObject>
#include <QtCore/QTimer>

#include <bitset>
#include <chrono>
#include <utility>

class IHostServices;
class IPhysicalDeviceDongle;
class LogicalDevicePlugin;

/// One mouse as the host sees it. One class and one state; each feature is a translation unit of its own:
///
///   LogicalDevice.cpp                   construction, identity
///   LogicalDevice_Lifecycle.cpp         start, stop, binding the receiver
///   LogicalDevice_InstanceRegistry.cpp  numbering of the started devices
///   LogicalDevice_DeviceInfo.cpp        firmware version, battery, values read at start, image
///   LogicalDevice_Dpi.cpp               DPI range, current DPI, product id string
///   LogicalDevice_DpiSlotValues.cpp     the five DPI presets
///   LogicalDevice_ActiveDpiSlot.cpp     the preset in force
///   LogicalDevice_DpiButton.cpp         the button that cycles them
///   LogicalDevice_ReportRate.cpp        report rates
///   LogicalDevice_Settings.cpp          settings, capabilities
///   LogicalDevice_Buttons.cpp           default profile, diversion of buttons
///   LogicalDevice_MouseEvents.cpp       reports of diverted buttons, smart-pointer key
///   LogicalDevice_FixedAnswers.cpp      what this model answers with a constant
///
/// The operations are documented in the interfaces.
class LogicalDevice final : public QObject, public ILogicalDeviceGen3Mouse, public ILogicalDeviceGen3
{
    Q_OBJECT
    Q_INTERFACES(IDevice ILogicalDevice ILogicalDeviceGen3Mouse ILogicalDeviceGen3)

public:
    // LogicalDevice.cpp
    LogicalDevice(IPhysicalDevice *physicalDevice, DeviceId deviceId, LogicalDevicePlugin *owner);
    Q_DISABLE_COPY_MOVE(LogicalDevice)
    ~LogicalDevice() override;
    int deviceType() const override;
    int deviceClass() const override;
    QString name() const override;
    QUuid instanceId() const override;
    QString iid() const override;
    QString modelCode() const override;
    IPhysicalDevice *physicalDevice() const override;
    quintptr forwardToPhysicalDevice(quintptr argument1, quintptr argument2, quintptr argument3) override;
    quintptr query26(quintptr argument1, quintptr argument2, quintptr argument3) override;

    // LogicalDevice_Lifecycle.cpp
    bool start() override;
    void stop() override;

    // LogicalDevice_InstanceRegistry.cpp
    int instanceNumber() const override;

    // LogicalDevice_DeviceInfo.cpp
    uint firmwareVersion() const override;
    void setFirmwareVersion(uint fwVersion) override;
    bool hasBatteryLevel() const override;
    int batteryLevel() const override;
    void setBatteryLevel(int newBatteryLevel) override;
    int deviceValue() const override;
    int statusValue() const override;
    int levelValue() const override;
    QByteArray deviceImage() const override;

    // LogicalDevice_Dpi.cpp
    int dpiValue() const override;
    int dpiMin() const override;
    int dpiMax() const override;
    int dpiDelta() const override;
    void setDpiValue(int value) override;
    bool isDPIValueChangePending() const override;
    bool isDPIValueSupported() const override;
    void dpiValueChangedCallBack(int value) override;
    QString ppid() const override;
    void ppidChangedCallBack(QString ppid) override;

    // LogicalDevice_DpiSlotValues.cpp
    QStringList dpiSlotValues() const override;
    void setDpiSlotValues(QStringList values) override;
    bool isDpiSlotValuesChangePending() const override;
    void dpiSlotValuesConfirmed(const quint16 values[5]) override;
    void dpiSlotValuesChangedCallBack(const quint16 values[5]) override;

    // LogicalDevice_ActiveDpiSlot.cpp
    int activeDpiSlotIndex() const override;
    void setActiveDpiSlotIndex(int index) override;
    bool isActiveDpiSlotIndexChangePending() const override;
    void activeDpiSlotIndexConfirmed(int index) override;
    void activeDpiSlotIndexChangedCallBack(int index) override;

    // LogicalDevice_DpiButton.cpp
    int dpiButtonId() const override;
    void setDpiButtonId(int buttonId) override;
    bool isDpiButtonIdChangePending() const override;
    void dpiButtonIdConfirmed(int buttonId) override;
    void dpiButtonIdChangedCallBack(int buttonId) override;

    // LogicalDevice_ReportRate.cpp
    bool isReportRateSupported() const override;
    int reportRate() const override;
    void setReportRate(int rate) override;
    QStringList reportRateValues() const override;
    bool isReportRateChangePending() const override;
    void reportRateConfirmed(int rate) override;
    void reportRateChangedCallBack(const ReportRateInfo *info) override;

    // LogicalDevice_Settings.cpp
    void applySettings(const QVariantMap &settings) override;
    void resetSettings() override;
    void capabilityChangedCallBack(quint8 capability) override;
    bool isSmartPointerSupported() const override;

    // LogicalDevice_Buttons.cpp
    QByteArray defaultProfile() const override;
    void setButtonsOrKeysToDefault() override;
    void disbaleButtonsOrKeys(QList<int> buttonOrKeys) override;

    // LogicalDevice_MouseEvents.cpp
    void mouseEventCallBack(quint8 mouseEvent) override;

    // LogicalDevice_FixedAnswers.cpp
    int query24() const override;
    QString pairedHostName(int switchIndex) const override;
    bool isDPILevelSupported() const override;
    int dpiLevel() const override;
    void setDpiLevel(int newDPILevel) override;
    QStringList query30() const override;
    bool isDPILevelChangePending() const override;
    int query33() const override;
    bool query35() const override;
    void notify38() override;
    void notify42() override;
    void notify43() override;
    void notify44() override;
    bool query53() const override;
    int query70() const override;
    bool isScrollInversionEnabled() const override;
    void setScrollInversionEnabled(bool newValue) override;
    void notify87() override;
    bool query88() const override;
    bool query89() const override;
    void notify90() override;
    bool query91() const override;
    void notify92() override;
    void notify93() override;

    // Signals and private slots: their order is binary contract, and differs from that of the interfaces.
Q_SIGNALS:
    void stopped(IDevice *iDevice) override;
    void instanceNumberChanged(int instanceNumber) override;
    void batteryLevelChanged(int newBatteryLevel) override;
    void pairedHostNameChanged(int switchIndex, QString newHostName) override;
    void firmwareVersionChanged(uint fwVersion) override;
    void dpiLevelChanged(int newDPILevel) override;
    void isDPILevelChangePendingChanged(bool pending) override;
    void isDPILevelSupportedChanged(bool newIsSupported) override;
    void isSmartPointerSupportedChanged(bool newIsSupported) override;
    void chargingStatusAndStateChanged(int newChargingStatusAndStateChanged) override;
    void dpiValueChanged(int newDPILevel) override;
    void dpiMinChanged(int newValue) override;
    void dpiMaxChanged(int newValue) override;
    void dpiDeltaChanged(int newValue) override;
    void isDPIValueChangePendingChanged(bool pending) override;
    void isDPIValueSupportedChanged(bool newIsSupported) override;
    void activeDpiSlotIndexChanged(int index) override;
    void dpiSlotValuesChanged(QStringList values) override;
    void isActiveDpiSlotIndexChangePendingChanged(bool isPending) override;
    void isDpiSlotValuesChangePendingChanged(bool isPending) override;
    void dpiButtonIdChanged(int buttonId) override;
    void isDpiButtonIdChangePendingChanged(bool isPending) override;
    void isReportRateSupportedChanged(bool newIsSupported) override;
    void reportRateChanged(int newDPILevel) override;
    void reportRateValuesChanged(QStringList reportRateValues) override;
    void isReportRateChangePendingChanged(bool pending) override;
    void isScrollInversionEnabledChanged(bool newValue) override;
    void isScrollInversionEnabledChangePendingChanged(bool isPending) override;
    void ppidChanged(QString ppid) override;

private Q_SLOTS:
    void onSmartPointerCtrReleaseTimerTimeout();
    void onDpiMinChanged(int value);
    void onDpiMaxChanged(int value);
    void onPPIDChanged(QString ppid);

private:
    // Emits now on the device's thread, else queues the emission there. The closure reads the member when it
    // runs, so two quick changes from elsewhere deliver the later value twice: kept, the host relies on it.
    template <typename Emission>
    void emitOnOwnThread(Emission emission)
    {
        if (isOnOwnThread())
            emission();
        else
            QMetaObject::invokeMethod(this, std::move(emission), Qt::QueuedConnection);
    }

    bool isOnOwnThread() const;

    // Stores a pending flag and, when that changes it, emits its signal on the device's thread.
    void setPendingFlag(bool LogicalDevice::*flag, void (LogicalDevice::*changed)(bool), bool isPending);

    void bindDongle();
    void registerInstance(bool add);

    void sendDpiSlotValues(QList<quint16> values);
    void onDpiSlotValuesChanged(QList<quint16> values);
    void setDpiSlotValuesChangePending(bool isPending);

    void onActiveDpiSlotIndexChanged(int index);
    void setActiveDpiSlotIndexChangePending(bool isPending);

    void onDpiButtonIdChanged(int buttonId);
    void setDpiButtonIdChangePending(bool isPending);

    enum class CurrentRate { Keep, Take };
    struct ListedRates
    {
        bool hasCurrent = false;
        bool hasPreferred = false;
    };
    ListedRates readReportRates(const ReportRateInfo &info, QStringList *rates, CurrentRate currentRate);
    void initReportRate(const ReportRateInfo &info);
    void requestFallbackReportRate(const ReportRateInfo &info, bool isPreferredRateListed);
    void setReportRateChangePending(bool pending);
    void emitReportRateChanged();

    void resetDisabledButtonsOrKeysMask();
    bool sendDisabledButtonsOrKeysMask();

    // The host sees a tap of Ctrl: released with the smart-pointer key or after this time, whichever is
    // first.
    static constexpr std::chrono::milliseconds smartPointerCtrReleaseDelay{25};
    void updateButtons(IHostServices *hostServices, std::bitset<lastButton> isDown);

    // Also the parent, if the device is created on the factory's thread.
    LogicalDevicePlugin *m_ownerPlugin = nullptr;
    IPhysicalDevice *m_physicalDevice = nullptr;  // the host's
    DeviceId m_deviceId = 0;
    QUuid m_instanceId;
    QString m_name;
    uint m_firmwareVersion = 0;
    QString m_reservedText;     // kept: the object's layout has it; nothing reads or writes it
    int m_instanceNumber = 1;   // guarded by the instance registry's mutex
    int m_hasBatteryLevel = 0;  // 0 or 1
    int m_batteryLevel = -1;    // percent; -1 while not known
    quint8 m_disabledButtonsOrKeysMask = 0;
    std::bitset<lastButton> m_isButtonPressed;  // bit n - 1 is button n
    int m_statusValue = 0;
    IPhysicalDeviceDongle *m_dongle = nullptr;  // m_physicalDevice as a receiver, once bound
    int m_deviceValue = 0;
    bool m_isSmartPointerSupported = false;
    bool m_isSmartPointerEnabled = false;
    bool m_isSmartPointerConfigured = false;
    bool m_isSmartPointerCtrPressed = false;
    QTimer m_smartPointerCtrReleaseTimer;
    int m_levelValue = 0;
    int m_dpiMin = 0;
    int m_dpiMax = 0;
    int m_dpiValue = 0;
    int m_activeDpiSlotIndex = 2;  // 1-based
    QList<quint16> m_dpiSlotValues;
    QList<quint16> m_pendingDpiSlotValues;
    int m_dpiButtonId = 15;
    bool m_isActiveDpiSlotIndexChangePending = false;
    bool m_isDpiSlotValuesChangePending = false;
    bool m_isDpiButtonIdChangePending = false;
    int m_pendingActiveDpiSlotIndex = 0;  // 0: none
    int m_pendingDpiButtonId = 0;         // 0: none
    int m_reportRate = 0;                 // Hz
    int m_reportRatePending = 0;          // Hz; 0: none
    bool m_isReportRateChangePending = false;
    QStringList m_reportRateValues;  // Hz
    QString m_ppid;
};
