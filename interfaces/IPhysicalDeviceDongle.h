#pragma once

#include "DeviceId.h"
#include "InterfaceVisibility.h"

#include <QtCore/QtGlobal>

struct ReportRateInfo;

/// A wireless receiver: the physical device behind this family of mice. The host implements it in an object
/// that is also an IPhysicalDevice and a QObject with the signals dpiMinChanged(int) and dpiMaxChanged(int);
/// the plugin finds receiver and QObject by dynamic_cast and connects to the signals in IDevice::start().
///
/// Every operation names the mouse by its id and is called on the thread of the operation that needs it. A
/// request should be confirmed only after its operation has returned, from the event loop: a confirmation
/// from inside it comes before the device knows that the request was accepted. With no earlier request
/// pending, slot values are then dropped, the active slot and the DPI button are taken for an unasked report
/// and the request stays pending; only the report rate is confirmed. With an earlier request pending, the
/// confirmation is compared with the earlier one: another active slot, DPI button or slot value sends the
/// earlier request again, and the new report rate does nothing. A device plugin never calls the operations
/// named reservedN; they keep the others at their places in the table.
class KVX_INTERFACE IPhysicalDeviceDongle
{
public:
    virtual void reserved0() = 0;
    virtual void reserved1() = 0;
    virtual void reserved2() = 0;
    virtual void reserved3() = 0;
    virtual void reserved4() = 0;
    virtual void reserved5() = 0;
    virtual void reserved6() = 0;
    virtual void reserved7() = 0;
    virtual void reserved8() = 0;
    virtual void reserved9() = 0;
    virtual void reserved10() = 0;
    virtual void reserved11() = 0;
    virtual void reserved12() = 0;
    virtual void reserved13() = 0;
    virtual void reserved14() = 0;
    virtual void reserved15() = 0;
    virtual void reserved16() = 0;
    virtual void reserved17() = 0;
    virtual void reserved18() = 0;
    virtual void reserved19() = 0;
    virtual void reserved20() = 0;
    virtual void reserved21() = 0;
    virtual void reserved22() = 0;
    virtual void reserved23() = 0;
    virtual void reserved24() = 0;
    virtual void reserved25() = 0;
    virtual void reserved26() = 0;
    virtual void reserved27() = 0;
    virtual void reserved28() = 0;
    virtual void reserved29() = 0;
    virtual void reserved30() = 0;
    virtual void reserved31() = 0;
    virtual void reserved32() = 0;

    /// The firmware version of the mouse. Read once by each IDevice::start().
    virtual uint getFirmwareVersion(DeviceId id) = 0;

    /// Whether the mouse reports its battery level. Read once by each start.
    virtual bool hasBatteryLevel(DeviceId id) = 0;

    /// The battery level in percent. Read by start, only when hasBatteryLevel() answered true.
    virtual int getBatteryLevel(DeviceId id) = 0;

    /// Diverts the buttons whose bits are set to the host and gives all others back to the mouse.
    /// mask: bits 0 to 4 are buttons 1 to 5, bit 7 is the smart-pointer key, bits 5 and 6 are never set.
    /// The plugin ignores the answer.
    virtual bool setDisabledButtonsOrKeysMask(DeviceId id, quint8 mask) = 0;

    /// What ILogicalDevice::statusValue() answers afterwards. Read once by each start.
    virtual int getStatusValue(DeviceId id) = 0;

    virtual void reserved38() = 0;
    virtual void reserved39() = 0;
    virtual void reserved40() = 0;
    virtual void reserved41() = 0;

    /// What IDevice::deviceValue() answers afterwards. Read once by each start.
    virtual int getDeviceValue(DeviceId id) = 0;

    /// Receives what a caller passes to ILogicalDevice::query26(): id replaces the first argument, the other
    /// two are opaque and unchanged. The answer is returned to that caller.
    virtual quintptr forwardedOperation(DeviceId id, quintptr argument2, quintptr argument3) = 0;

    virtual void reserved44() = 0;
    virtual void reserved45() = 0;
    virtual void reserved46() = 0;
    virtual void reserved47() = 0;

    /// Whether the mouse has a smart-pointer key. Read by start and on every capability change.
    virtual bool isSmartPointerSupported(DeviceId id) = 0;

    virtual void reserved49() = 0;
    virtual void reserved50() = 0;
    virtual void reserved51() = 0;

    /// Asks the mouse for another report rate, in Hz, unchecked. True when the request was accepted; the
    /// outcome arrives later through ILogicalDeviceGen3Mouse::reportRateConfirmed().
    virtual bool setReportRate(DeviceId id, int rate) = 0;

    /// Fills info with the report rates of the mouse; info is valid during the call only. True when the
    /// record was filled. Read by start.
    virtual bool getReportRateInfo(DeviceId id, ReportRateInfo *info) = 0;

    virtual void reserved54() = 0;

    /// What ILogicalDevice::levelValue() answers afterwards. Read last by each start.
    virtual int getLevelValue(DeviceId id) = 0;

    virtual void reserved56() = 0;
    virtual void reserved57() = 0;
    virtual void reserved58() = 0;

    /// Asks the mouse for another DPI button or another active DPI slot. dpiButtonId: the one in force when
    /// only the slot changes. activeDpiSlotIndex: expected to be 1 to 5 but unchecked, 0 when only the
    /// button changes. True when the request was accepted; the outcome arrives through
    /// dpiButtonIdConfirmed() or activeDpiSlotIndexConfirmed().
    virtual bool setDpiButtonAndActiveSlot(DeviceId id, int dpiButtonId, int activeDpiSlotIndex) = 0;

    /// Asks the mouse for other DPI slot values, together with the button and active slot in force.
    /// values: five DPI values in slot order, valid during the call only; 0 and 65535 are passed unchecked.
    /// True when the request was accepted; the outcome arrives through dpiSlotValuesConfirmed().
    virtual bool setDpiSlotValues(DeviceId id, const quint16 values[5], int dpiButtonId,
                                  int activeDpiSlotIndex) = 0;

    /// The second of three requests that start makes for the mouse's state; the answers arrive as reports.
    /// The plugin ignores the result, here and in the other two.
    virtual bool requestInitialState2(DeviceId id) = 0;

    /// The first of the three requests.
    virtual bool requestInitialState1(DeviceId id) = 0;

    virtual void reserved63() = 0;
    virtual void reserved64() = 0;

    /// The last of the three requests.
    virtual bool requestInitialState3(DeviceId id) = 0;

    virtual ~IPhysicalDeviceDongle() {}
};
