#pragma once

#include "ILogicalDevice.h"

struct ReportRateInfo;

/// A third-generation mouse: DPI slots, DPI button and report rate.
///
/// A request (set...) goes to the receiver at once and stays pending until the mouse confirms it. There is
/// no time-out. A request that the receiver refuses ends, and ends an earlier one that was still pending: a
/// warning, and the flag is false. A further accepted request replaces the pending one, except for
/// the report rate; the flag is true already, so it is not signalled. A confirmation of another value sends the pending
/// request again, without limit. It does nothing when it confirms the active slot or DPI button in force or
/// the rate that reportRate() answers, which is the one requested last, when the slot index or button id
/// is below 1, or when the pending number is negative. A requested slot value of 0 agrees with any value.
/// With nothing pending a confirmation is taken as the mouse's own report, except for slot values. Operations
/// that end in Confirmed or CallBack are the mouse's reports: the host's physical-device side calls them.
/// Without a bound receiver a request sends nothing and writes a warning.
class KVX_INTERFACE ILogicalDeviceGen3Mouse : public ILogicalDevice
{
public:
    /// False.
    virtual bool query53() const = 0;
    /// The DPI at which the mouse runs; 0 until known. Not clamped to the range.
    virtual int dpiValue() const = 0;
    /// The lowest DPI that the mouse accepts; below 1 while not known.
    virtual int dpiMin() const = 0;
    /// The highest DPI that the mouse accepts; below 1 while not known.
    virtual int dpiMax() const = 0;
    /// The step between DPI values to offer the user: 50.
    virtual int dpiDelta() const = 0;
    /// Does nothing: the DPI follows the active slot.
    virtual void setDpiValue(int value) = 0;
    /// False.
    virtual bool isDPIValueChangePending() const = 0;
    /// True.
    virtual bool isDPIValueSupported() const = 0;
    /// The active DPI slot, 1 to 5; 2 until the mouse reports it.
    virtual int activeDpiSlotIndex() const = 0;
    /// The five DPI slot values as decimal numbers, in slot order; empty until the mouse reports them.
    virtual QStringList dpiSlotValues() const = 0;
    /// The button that cycles through the DPI slots, as the mouse numbers it; 15 until the mouse reports it.
    virtual int dpiButtonId() const = 0;
    /// Asks for another active slot. Not checked against 1 to 5; the flag of an accepted request for an
    /// index below 1 stays set until a further request ends it, and a negative one blocks confirmations
    /// until then. The confirmed index again is ignored. Emits isActiveDpiSlotIndexChangePendingChanged
    /// when the flag changes.
    virtual void setActiveDpiSlotIndex(int index) = 0;
    /// Asks for other slot values: five decimal numbers in slot order. Refused with a warning while dpiMin()
    /// or dpiMax() is below 1 and when there are not five. Each number is cut to 16 bits; one that is no
    /// number, or outside the range and neither 0 nor 65535, is sent as 0 with a warning.
    /// Emits isDpiSlotValuesChangePendingChanged when the flag changes.
    virtual void setDpiSlotValues(QStringList values) = 0;
    /// Asks for another DPI button; 0 means the default, 6. A negative id is sent too, and blocks
    /// confirmations until a further request. The confirmed id again is ignored. Emits
    /// isDpiButtonIdChangePendingChanged when the flag changes.
    virtual void setDpiButtonId(int buttonId) = 0;
    /// Whether a request for the active slot waits for its confirmation.
    virtual bool isActiveDpiSlotIndexChangePending() const = 0;
    /// Whether a request for slot values waits for its confirmation.
    virtual bool isDpiSlotValuesChangePending() const = 0;
    /// Whether a request for the DPI button waits for its confirmation.
    virtual bool isDpiButtonIdChangePending() const = 0;
    /// 1.
    virtual int query70() const = 0;
    /// True.
    virtual bool isReportRateSupported() const = 0;
    /// The report rate in Hz as last requested, confirmed or reported; 0 until known.
    virtual int reportRate() const = 0;
    /// Asks the receiver for another report rate; the request is pending until reportRateConfirmed(). rate
    /// in Hz; not checked against reportRateValues(). The current value again is ignored. reportRate()
    /// answers the new rate at once and keeps it when the receiver refuses. While a request is pending,
    /// another one is sent too, but the first stays the one that is waited for. A request for 0 sets the
    /// flag with nothing to wait for; only a confirmation of 0, or a refusal, clears it. While a negative
    /// rate is pending, confirmations of other rates are ignored. Emits isReportRateChangePendingChanged
    /// when the flag changes, twice when a request from idle is refused, then reportRateChanged; neither
    /// without a bound receiver, where reportRate() answers the new rate all the same.
    virtual void setReportRate(int rate) = 0;
    /// The report rates on offer, in Hz as decimal numbers, in the receiver's order.
    virtual QStringList reportRateValues() const = 0;
    /// Whether a request for the report rate waits for its confirmation.
    virtual bool isReportRateChangePending() const = 0;
    /// False: these mice cannot invert their wheel.
    virtual bool isScrollInversionEnabled() const = 0;
    /// The mouse reports the DPI at which it runs. Stored unchecked; the same value again is ignored.
    /// Emits dpiValueChanged, on the calling thread.
    virtual void dpiValueChangedCallBack(int value) = 0;
    /// Does nothing.
    virtual void setScrollInversionEnabled(bool newValue) = 0;
    /// The mouse reports the rate that it uses now, in Hz, in answer to a request. With another rate pending
    /// that one is sent again, unless rate is what reportRate() answers.
    /// Emits isReportRateChangePendingChanged, then reportRateChanged.
    virtual void reportRateConfirmed(int rate) = 0;
    /// The mouse reports its list of rates and the rate in force. info is valid during the call only and
    /// must not be null. When the rate in force is not listed, 125 Hz is requested if it is listed and a
    /// receiver is bound, else the first listed rate. An empty list empties reportRateValues() and gives a
    /// warning. Emits reportRateValuesChanged when the list changed, then what reportRateConfirmed() or
    /// setReportRate() emit.
    virtual void reportRateChangedCallBack(const ReportRateInfo *info) = 0;
    /// The mouse answers a request for the active slot. An index below 1 is ignored.
    /// Emits isActiveDpiSlotIndexChangePendingChanged, then activeDpiSlotIndexChanged and dpiValueChanged. Off
    /// the device's thread the first two are queued and dpiValueChanged is emitted at once, so it normally comes
    /// first.
    virtual void activeDpiSlotIndexConfirmed(int index) = 0;
    /// The mouse reports its active slot unasked; the same index again is ignored. At a change the DPI
    /// becomes the value of that slot, if known. Emits activeDpiSlotIndexChanged and dpiValueChanged, off the
    /// device's thread as activeDpiSlotIndexConfirmed() does.
    virtual void activeDpiSlotIndexChangedCallBack(int index) = 0;
    /// The mouse answers a request for slot values with what it took; ignored when none is pending. Any value
    /// agrees with a requested 0. values: five DPI values in slot order, valid during the call only.
    /// Emits dpiSlotValuesChanged, then isDpiSlotValuesChangePendingChanged.
    virtual void dpiSlotValuesConfirmed(const quint16 values[5]) = 0;
    /// The mouse reports its slot values unasked; a pending request stays pending. values as above.
    /// The DPI does not follow a change of the value in the active slot.
    /// Emits dpiSlotValuesChanged.
    virtual void dpiSlotValuesChangedCallBack(const quint16 values[5]) = 0;
    /// The mouse answers a request for the DPI button. An id below 1 is ignored.
    /// Emits isDpiButtonIdChangePendingChanged, then dpiButtonIdChanged.
    virtual void dpiButtonIdConfirmed(int buttonId) = 0;
    /// The mouse reports its DPI button unasked. Emits dpiButtonIdChanged.
    virtual void dpiButtonIdChangedCallBack(int buttonId) = 0;
    /// Does nothing.
    virtual void notify87() = 0;
    /// False.
    virtual bool query88() const = 0;
    /// False.
    virtual bool query89() const = 0;
    /// Does nothing.
    virtual void notify90() = 0;
    /// False.
    virtual bool query91() const = 0;
    /// Does nothing, like the next.
    virtual void notify92() = 0;
    virtual void notify93() = 0;

    /// Signal: the DPI changed. Emitted on the thread of the report.
    /// kept: the host relies on the parameter's name, here and in reportRateChanged.
    virtual void dpiValueChanged(int newDPILevel) = 0;
    /// Signal: the lowest DPI changed. Carries the reported value. Emitted on the thread that runs the private slot
    /// onDpiMinChanged(int): the device's, unless somebody calls the slot directly. The same holds for the next.
    virtual void dpiMinChanged(int newValue) = 0;
    /// Signal: the highest DPI changed.
    virtual void dpiMaxChanged(int newValue) = 0;
    /// Signal, never emitted by these mice.
    virtual void dpiDeltaChanged(int newValue) = 0;
    /// Signal, never emitted by these mice.
    virtual void isDPIValueChangePendingChanged(bool pending) = 0;
    /// Signal, never emitted by these mice.
    virtual void isDPIValueSupportedChanged(bool newIsSupported) = 0;
    /// Signal: the active slot changed.
    virtual void activeDpiSlotIndexChanged(int index) = 0;
    /// Signal: the slot values changed.
    virtual void dpiSlotValuesChanged(QStringList values) = 0;
    /// Signal: the DPI button changed.
    virtual void dpiButtonIdChanged(int buttonId) = 0;
    /// Signal: a request for the active slot went out or ended.
    virtual void isActiveDpiSlotIndexChangePendingChanged(bool isPending) = 0;
    /// Signal: a request for slot values went out or ended.
    virtual void isDpiSlotValuesChangePendingChanged(bool isPending) = 0;
    /// Signal: a request for the DPI button went out or ended.
    virtual void isDpiButtonIdChangePendingChanged(bool isPending) = 0;
    /// Signal: reportRate() answers another rate, or a refused or repeated request was sent.
    virtual void reportRateChanged(int newDPILevel) = 0;
    /// Signal: the list of report rates changed.
    virtual void reportRateValuesChanged(QStringList reportRateValues) = 0;
    /// Signal: a request for the report rate went out or ended.
    virtual void isReportRateChangePendingChanged(bool pending) = 0;
    /// Signal, never emitted by these mice.
    virtual void isReportRateSupportedChanged(bool newIsSupported) = 0;
    /// Signal, never emitted by these mice.
    virtual void isScrollInversionEnabledChanged(bool newValue) = 0;
    /// Signal, never emitted by these mice.
    virtual void isScrollInversionEnabledChangePendingChanged(bool isPending) = 0;

    ~ILogicalDeviceGen3Mouse() override {}
};

#define ILogicalDeviceGen3Mouse_iid "com.orvane.KVX.Plugin.ILogicalDeviceGen3Mouse"
Q_DECLARE_INTERFACE(ILogicalDeviceGen3Mouse, ILogicalDeviceGen3Mouse_iid)
