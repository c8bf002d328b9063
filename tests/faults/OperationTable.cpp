#include "OperationTable.h"

#include "OperationRows.h"
#include "PluginFixture.h"

using namespace Qt::StringLiterals;

using namespace OperationRows;

namespace {

constexpr quint16 factoryValues[5] = {800, 1600, 2400, 3200, 4000};
const ReportRateInfo otherRates{0, 250, {125, 250, 0, 0}};

Operations reportsOfTheMouse()
{
    return {
        {"capabilityChangedCallBack",
         hosted([](HostedDevice &device) { device.capabilityChangedCallBack(1); }),
         u"call capabilityChangedCallBack(1)\n"
         "receiver isSmartPointerSupported() -> false\n"
         "signal isSmartPointerSupportedChanged(false)"_s,
         u"call capabilityChangedCallBack(1)\n"
         "receiver isSmartPointerSupported() -> false"_s,
         u"call capabilityChangedCallBack(1)"_s, u"call capabilityChangedCallBack(1)"_s,
         SignalThread::Calling},
        sameEverywhere(
            "mouseEventCallBack", [](HostedDevice &device) { device.mouseEventCallBack(0x81); },
            u"call mouseEventCallBack(129)"_s,
            u"\nhost setCtrlKeyPressed(true)\n"
            "host buttonEvent(\"com.orvane.KVX.Plugin.LogicalDevice.RV418\", 1, true)"_s),
        sameEverywhere(
            "dpiValueChangedCallBack", [](HostedDevice &device) { device.dpiValueChangedCallBack(5); },
            u"call dpiValueChangedCallBack(5)"_s, u"\nsignal dpiValueChanged(5)"_s, SignalThread::Calling),
        sameEverywhere(
            "activeDpiSlotIndexConfirmed",
            [](HostedDevice &device) { device.activeDpiSlotIndexConfirmed(5); },
            u"call activeDpiSlotIndexConfirmed(5)"_s, u"\nsignal activeDpiSlotIndexChanged(5)"_s),
        sameEverywhere(
            "activeDpiSlotIndexChangedCallBack",
            [](HostedDevice &device) { device.activeDpiSlotIndexChangedCallBack(4); },
            u"call activeDpiSlotIndexChangedCallBack(4)"_s, u"\nsignal activeDpiSlotIndexChanged(4)"_s),
        // Nothing was asked for that it could confirm.
        always(
            "dpiSlotValuesConfirmed",
            [](HostedDevice &device) { device.dpiSlotValuesConfirmed(factoryValues); },
            u"call dpiSlotValuesConfirmed([800, 1600, 2400, 3200, 4000])"_s),
        sameEverywhere(
            "dpiSlotValuesChangedCallBack",
            [](HostedDevice &device) { device.dpiSlotValuesChangedCallBack(factoryValues); },
            u"call dpiSlotValuesChangedCallBack([800, 1600, 2400, 3200, 4000])"_s,
            u"\nsignal dpiSlotValuesChanged([\"800\", \"1600\", \"2400\", \"3200\", \"4000\"])"_s),
        sameEverywhere(
            "dpiButtonIdConfirmed", [](HostedDevice &device) { device.dpiButtonIdConfirmed(6); },
            u"call dpiButtonIdConfirmed(6)"_s, u"\nsignal dpiButtonIdChanged(6)"_s),
        sameEverywhere(
            "dpiButtonIdChangedCallBack", [](HostedDevice &device) { device.dpiButtonIdChangedCallBack(7); },
            u"call dpiButtonIdChangedCallBack(7)"_s, u"\nsignal dpiButtonIdChanged(7)"_s),
        sameEverywhere(
            "reportRateConfirmed", [](HostedDevice &device) { device.reportRateConfirmed(1000); },
            u"call reportRateConfirmed(1000)"_s, u"\nsignal reportRateChanged(1000)"_s),
        sameEverywhere(
            "reportRateChangedCallBack",
            [](HostedDevice &device) { device.reportRateChangedCallBack(&otherRates); },
            u"call reportRateChangedCallBack({\"currentRate\": 250, "
            "\"supportedRates\": [125, 250, 0, 0], \"unused\": 0})"_s,
            u"\nsignal reportRateValuesChanged([\"125\", \"250\"])\n"
            "signal reportRateChanged(250)"_s),
        sameEverywhere(
            "ppidChangedCallBack", [](HostedDevice &device) { device.ppidChangedCallBack(u"P"_s); },
            u"call ppidChangedCallBack(\"P\")"_s, u"\nsignal ppidChanged(\"P\")"_s, SignalThread::Calling),
    };
}

constexpr QLatin1StringView noReceiver("\nwarning RV418.LogicalDevice: Unknown IPhysicalDevice interface");

// A request that the mouse has to confirm: sent again as long as it has not, and pending once.
Operation request(const char *name, const HostedCall &call, const QString &line, const QString &sent,
                  const QString &pending, QLatin1StringView unbound = noReceiver)
{
    return {name, hosted(call), line + sent + pending, line + sent, line + unbound, line + unbound};
}

Operations requestsOfTheHost()
{
    return {
        request("setButtonsOrKeysToDefault", [](HostedDevice &device) { device.setButtonsOrKeysToDefault(); },
                u"call setButtonsOrKeysToDefault()"_s,
                u"\nreceiver setDisabledButtonsOrKeysMask(0) -> true"_s, {}),
        request("disbaleButtonsOrKeys", [](HostedDevice &device) { device.disbaleButtonsOrKeys({1, 5}); },
                u"call disbaleButtonsOrKeys([1, 5])"_s,
                u"\nreceiver setDisabledButtonsOrKeysMask(17) -> true"_s, {}),
        request(
            "setActiveDpiSlotIndex", [](HostedDevice &device) { device.setActiveDpiSlotIndex(5); },
            u"call setActiveDpiSlotIndex(5)"_s, u"\nreceiver setDpiButtonAndActiveSlot(15, 5) -> true"_s,
            u"\nsignal isActiveDpiSlotIndexChangePendingChanged(true)"_s),
        request(
            "setDpiSlotValues",
            [](HostedDevice &device) {
                device.setDpiSlotValues({u"200"_s, u"300"_s, u"400"_s, u"500"_s, u"600"_s});
            },
            u"call setDpiSlotValues([\"200\", \"300\", \"400\", \"500\", \"600\"])"_s,
            u"\nreceiver setDpiSlotValues([200, 300, 400, 500, 600], 15, 2) -> true"_s,
            u"\nsignal isDpiSlotValuesChangePendingChanged(true)"_s,
            // The range comes from the receiver, and is missed before the receiver itself.
            QLatin1StringView("\nwarning RV418.LogicalDevice: "
                              "Ignoring SET command, dpi min and max are not set")),
        request(
            "setDpiButtonId", [](HostedDevice &device) { device.setDpiButtonId(0); },
            u"call setDpiButtonId(0)"_s, u"\nreceiver setDpiButtonAndActiveSlot(6, 0) -> true"_s,
            u"\nsignal isDpiButtonIdChangePendingChanged(true)"_s),
        // Shows the new rate at once, so the second call asks for nothing new.
        {"setReportRate", hosted([](HostedDevice &device) { device.setReportRate(1000); }),
         u"call setReportRate(1000)\n"
         "signal isReportRateChangePendingChanged(true)\n"
         "receiver setReportRate(1000) -> true\n"
         "signal reportRateChanged(1000)"_s,
         u"call setReportRate(1000)"_s, u"call setReportRate(1000)"_s + noReceiver,
         u"call setReportRate(1000)"_s},
    };
}

Operations otherOperations()
{
    return {
        always(
            "stop", [](HostedDevice &device) { device.stop(); },
            u"call stop()\n"
            "signal stopped(\"this\")"_s,
            SignalThread::Calling),
        always(
            "forwardToPhysicalDevice", [](HostedDevice &device) { device.forwardToPhysicalDevice(1, 2, 3); },
            u"call forwardToPhysicalDevice(1, 2, 3) -> 77\n"
            "receiver forwardedCall(1, 2, 3) -> 77"_s),
        {"query26", hosted([](HostedDevice &device) { device.query26(1, 2, 3); }),
         u"call query26(1, 2, 3) -> 77\n"
         "receiver forwardedOperation(2, 3) -> 77"_s,
         u"call query26(1, 2, 3) -> 77\n"
         "receiver forwardedOperation(2, 3) -> 77"_s,
         u"call query26(1, 2, 3) -> 0"_s, u"call query26(1, 2, 3) -> 0"_s},
        always(
            "setFirmwareVersion", [](HostedDevice &device) { device.setFirmwareVersion(5); },
            u"call setFirmwareVersion(5)\n"
            "signal firmwareVersionChanged(5)"_s),
        sameEverywhere(
            "setBatteryLevel", [](HostedDevice &device) { device.setBatteryLevel(5); },
            u"call setBatteryLevel(5)"_s, u"\nsignal batteryLevelChanged(5)"_s),
        always(
            "applySettings", [](HostedDevice &device) { device.applySettings({{u"speed"_s, 3}}); },
            u"call applySettings({\"speed\": 3})"_s),
        always(
            "resetSettings", [](HostedDevice &device) { device.resetSettings(); }, u"call resetSettings()"_s),
    };
}

Operations all()
{
    Operations operations = otherOperations();
    for (const auto &part :
         {requestsOfTheHost(), reportsOfTheMouse(), getters(), operationsWithoutEffect(), operationsByName()})
        operations.insert(operations.end(), part.begin(), part.end());
    return operations;
}

}  // namespace

const Operations &everyOperation()
{
    static const Operations operations = all();
    return operations;
}

const std::vector<OperationWithoutRow> &operationsWithoutRow()
{
    static const std::vector<OperationWithoutRow> operations{
        {"start",
         "it leads from one moment of a device's life to another: tests of its own in tst_OperationOrder"},
        {"instanceNumber", "depends on the start alone, not on the receiver: contract/registry/"},
        {"~ILogicalDeviceGen3Mouse",
         "the device's last operation, which cannot come twice: contract/factory/"},
        {"~ILogicalDeviceGen3", "the same through the other table"},
    };
    return operations;
}

HostedDevice &runningDevice(PluginFixture &fixture)
{
    HostedDevice &device = fixture.started();
    Q_EMIT fixture.receiver.dpiMinChanged(100);
    Q_EMIT fixture.receiver.dpiMaxChanged(8000);
    fixture.receiver.answers.isSmartPointerSupported = false;
    fixture.timeline.clear();
    return device;
}
