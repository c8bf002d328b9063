#include "PluginFixture.h"
#include "TableCalls.h"
#include "TimelineText.h"

#include <QtTest/QTest>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

// What the getters answer, in the order of the tables.
const char *const freshAnswers = R"(call deviceType() -> 2
call deviceClass() -> 7
call name() -> "Orvane Tessa Mouse"
call instanceId() -> "random"
call firmwareVersion() -> 0
call iid() -> "com.orvane.KVX.Plugin.LogicalDevice.RV418"
call deviceValue() -> 0
call modelCode() -> "RV418"
call physicalDevice() -> "physical device"
call deviceImage() -> "0 bytes"
call instanceNumber() -> 1
call hasBatteryLevel() -> false
call batteryLevel() -> -1
call statusValue() -> 0
call query24() -> 0
call pairedHostName(1) -> ""
call isDPILevelSupported() -> false
call dpiLevel() -> 0
call query30() -> []
call isDPILevelChangePending() -> false
call isSmartPointerSupported() -> false
call query33() -> 0
call levelValue() -> 0
call query35() -> false
call defaultProfile() -> "51 bytes"
call query53() -> false
call dpiValue() -> 0
call dpiMin() -> 0
call dpiMax() -> 0
call dpiDelta() -> 50
call isDPIValueChangePending() -> false
call isDPIValueSupported() -> true
call activeDpiSlotIndex() -> 2
call dpiSlotValues() -> []
call dpiButtonId() -> 15
call isActiveDpiSlotIndexChangePending() -> false
call isDpiSlotValuesChangePending() -> false
call isDpiButtonIdChangePending() -> false
call query70() -> 1
call isReportRateSupported() -> true
call reportRate() -> 0
call reportRateValues() -> []
call isReportRateChangePending() -> false
call isScrollInversionEnabled() -> false
call query88() -> false
call query89() -> false
call query91() -> false
call ppid() -> "")";

const char *const changedAnswers = R"(call deviceType() -> 2
call deviceClass() -> 7
call name() -> "Orvane Tessa Mouse"
call instanceId() -> "random"
call firmwareVersion() -> 7
call iid() -> "com.orvane.KVX.Plugin.LogicalDevice.RV418"
call deviceValue() -> 32
call modelCode() -> "RV418"
call physicalDevice() -> "physical device"
call deviceImage() -> "0 bytes"
call instanceNumber() -> 2
call hasBatteryLevel() -> true
call batteryLevel() -> 12
call statusValue() -> 31
call query24() -> 0
call pairedHostName(1) -> ""
call isDPILevelSupported() -> false
call dpiLevel() -> 0
call query30() -> []
call isDPILevelChangePending() -> false
call isSmartPointerSupported() -> true
call query33() -> 0
call levelValue() -> 33
call query35() -> false
call defaultProfile() -> "51 bytes"
call query53() -> false
call dpiValue() -> 1600
call dpiMin() -> 100
call dpiMax() -> 8000
call dpiDelta() -> 50
call isDPIValueChangePending() -> false
call isDPIValueSupported() -> true
call activeDpiSlotIndex() -> 3
call dpiSlotValues() -> ["400", "800", "1200", "1600", "2000"]
call dpiButtonId() -> 4
call isActiveDpiSlotIndexChangePending() -> true
call isDpiSlotValuesChangePending() -> true
call isDpiButtonIdChangePending() -> true
call query70() -> 1
call isReportRateSupported() -> true
call reportRate() -> 1000
call reportRateValues() -> ["125", "250", "500", "1000"]
call isReportRateChangePending() -> true
call isScrollInversionEnabled() -> false
call query88() -> false
call query89() -> false
call query91() -> false
call ppid() -> "RV418-0001")";

// The name of an operation, and the operation.
#define OPERATION(Interface, name) #name, &Interface::name
#define MOUSE(name) OPERATION(ILogicalDeviceGen3Mouse, name)
#define GEN3(name) OPERATION(ILogicalDeviceGen3, name)

void everyGetter(const TableCalls &ask)
{
    ask(MOUSE(deviceType));
    ask(MOUSE(deviceClass));
    ask(MOUSE(name));
    ask(MOUSE(instanceId));
    ask(MOUSE(firmwareVersion));
    ask(MOUSE(iid));
    ask(MOUSE(deviceValue));
    ask(MOUSE(modelCode));
    ask(MOUSE(physicalDevice));
    ask(MOUSE(deviceImage));
    ask(MOUSE(instanceNumber));
    ask(MOUSE(hasBatteryLevel));
    ask(MOUSE(batteryLevel));
    ask(MOUSE(statusValue));
    ask(MOUSE(query24));
    ask(MOUSE(pairedHostName), 1);
    ask(MOUSE(isDPILevelSupported));
    ask(MOUSE(dpiLevel));
    ask(MOUSE(query30));
    ask(MOUSE(isDPILevelChangePending));
    ask(MOUSE(isSmartPointerSupported));
    ask(MOUSE(query33));
    ask(MOUSE(levelValue));
    ask(MOUSE(query35));
    ask(MOUSE(defaultProfile));
    ask(MOUSE(query53));
    ask(MOUSE(dpiValue));
    ask(MOUSE(dpiMin));
    ask(MOUSE(dpiMax));
    ask(MOUSE(dpiDelta));
    ask(MOUSE(isDPIValueChangePending));
    ask(MOUSE(isDPIValueSupported));
    ask(MOUSE(activeDpiSlotIndex));
    ask(MOUSE(dpiSlotValues));
    ask(MOUSE(dpiButtonId));
    ask(MOUSE(isActiveDpiSlotIndexChangePending));
    ask(MOUSE(isDpiSlotValuesChangePending));
    ask(MOUSE(isDpiButtonIdChangePending));
    ask(MOUSE(query70));
    ask(MOUSE(isReportRateSupported));
    ask(MOUSE(reportRate));
    ask(MOUSE(reportRateValues));
    ask(MOUSE(isReportRateChangePending));
    ask(MOUSE(isScrollInversionEnabled));
    ask(MOUSE(query88));
    ask(MOUSE(query89));
    ask(MOUSE(query91));
    ask(GEN3(ppid));
}

}  // namespace

/// Every slot of the device's tables that no other test calls with the call on the timeline.
class tst_TableSlots : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyGetterOfAFreshDevice();
    void everyGetterAfterEverythingChanged();
    void operationsWithoutEffect();
    void everySignalIsEmittedByItsSlot();
    void deviceIsDeletedThroughEitherTable_data();
    void deviceIsDeletedThroughEitherTable();
};

void tst_TableSlots::everyGetterOfAFreshDevice()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.create();
    everyGetter(TableCalls(fixture.timeline, device));
    COMPARE_LINES(fixture.take(), linesOf(QString::fromLatin1(freshAnswers)));
}

void tst_TableSlots::everyGetterAfterEverythingChanged()
{
    PluginFixture fixture({false, false, false});
    fixture.started(1);
    HostedDevice &device = fixture.started();
    Q_EMIT fixture.receiver.dpiMinChanged(100);
    Q_EMIT fixture.receiver.dpiMaxChanged(8000);
    device.setFirmwareVersion(7);
    device.setBatteryLevel(12);
    device.dpiValueChangedCallBack(1600);
    device.activeDpiSlotIndexChangedCallBack(3);
    const quint16 values[] = {400, 800, 1200, 1600, 2000};
    device.dpiSlotValuesChangedCallBack(values);
    device.dpiButtonIdChangedCallBack(4);
    device.setActiveDpiSlotIndex(5);
    device.setDpiSlotValues({u"100"_s, u"200"_s, u"300"_s, u"400"_s, u"500"_s});
    device.setDpiButtonId(5);
    device.setReportRate(1000);
    device.ppidChangedCallBack(u"RV418-0001"_s);
    fixture.take();
    everyGetter(TableCalls(fixture.timeline, device));
    COMPARE_LINES(fixture.take(), linesOf(QString::fromLatin1(changedAnswers)));
}

void tst_TableSlots::operationsWithoutEffect()
{
    PluginFixture fixture;
    const TableCalls call(fixture.timeline, fixture.started());
    call(MOUSE(setDpiLevel), 3);
    call(MOUSE(notify38));
    call(MOUSE(notify42));
    call(MOUSE(notify43));
    call(MOUSE(notify44));
    call(MOUSE(setDpiValue), 800);
    call(MOUSE(setScrollInversionEnabled), true);
    call(MOUSE(notify87));
    call(MOUSE(notify90));
    call(MOUSE(notify92));
    call(MOUSE(notify93));
    COMPARE_LINES(fixture.take(), {u"call setDpiLevel(3)"_s, u"call notify38()"_s, u"call notify42()"_s,
                                   u"call notify43()"_s, u"call notify44()"_s, u"call setDpiValue(800)"_s,
                                   u"call setScrollInversionEnabled(true)"_s, u"call notify87()"_s,
                                   u"call notify90()"_s, u"call notify92()"_s, u"call notify93()"_s});
}

void tst_TableSlots::everySignalIsEmittedByItsSlot()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.create();
    const TableCalls call(fixture.timeline, device);
    call(MOUSE(stopped), static_cast<IDevice *>(device.device()));
    call(MOUSE(firmwareVersionChanged), 16U);
    call(MOUSE(instanceNumberChanged), 45);
    call(MOUSE(batteryLevelChanged), 46);
    call(MOUSE(pairedHostNameChanged), 47, u"host"_s);
    call(MOUSE(dpiLevelChanged), 48);
    call(MOUSE(isDPILevelChangePendingChanged), true);
    call(MOUSE(isDPILevelSupportedChanged), false);
    call(MOUSE(isSmartPointerSupportedChanged), true);
    call(MOUSE(chargingStatusAndStateChanged), 52);
    call(MOUSE(dpiValueChanged), 94);
    call(MOUSE(dpiMinChanged), 95);
    call(MOUSE(dpiMaxChanged), 96);
    call(MOUSE(dpiDeltaChanged), 97);
    call(MOUSE(isDPIValueChangePendingChanged), false);
    call(MOUSE(isDPIValueSupportedChanged), true);
    call(MOUSE(activeDpiSlotIndexChanged), 100);
    call(MOUSE(dpiSlotValuesChanged), QStringList{u"101"_s});
    call(MOUSE(dpiButtonIdChanged), 102);
    call(MOUSE(isActiveDpiSlotIndexChangePendingChanged), false);
    call(MOUSE(isDpiSlotValuesChangePendingChanged), true);
    call(MOUSE(isDpiButtonIdChangePendingChanged), false);
    call(MOUSE(reportRateChanged), 106);
    call(MOUSE(reportRateValuesChanged), QStringList{u"107"_s});
    call(MOUSE(isReportRateChangePendingChanged), true);
    call(MOUSE(isReportRateSupportedChanged), false);
    call(MOUSE(isScrollInversionEnabledChanged), true);
    call(MOUSE(isScrollInversionEnabledChangePendingChanged), false);
    call(GEN3(ppidChanged), u"G3 3"_s);

    // One signal each, of the same name and with the same values.
    const QStringList lines = fixture.timeline.lines();
    QCOMPARE(lines.size(), 2 * 29);
    QCOMPARE(lines.at(0), u"call stopped(\"device\")"_s);
    QCOMPARE(lines.at(1), u"signal stopped(\"this\")"_s);
    for (qsizetype i = 2; i < lines.size(); i += 2)
        QCOMPARE(lines.at(i + 1), u"signal "_s + lines.at(i).mid(5));
}

void tst_TableSlots::deviceIsDeletedThroughEitherTable_data()
{
    QTest::addColumn<QString>("destructor");
    QTest::newRow("mouse") << u"~ILogicalDeviceGen3Mouse"_s;
    QTest::newRow("gen3") << u"~ILogicalDeviceGen3"_s;
}

void tst_TableSlots::deviceIsDeletedThroughEitherTable()
{
    QFETCH(const QString, destructor);
    PluginFixture fixture;
    const std::unique_ptr<HostedDevice> device =
        fixture.host.createDevice(&fixture.receiver, PluginFixture::mouse);
    fixture.take();
    fixture.timeline.record(TimelineEntry::Kind::Call, PluginFixture::mouse, destructor);
    if (destructor == u"~ILogicalDeviceGen3")
        delete device->gen3();
    else
        delete device->device();
    COMPARE_LINES(fixture.take(), {u"call %1()"_s.arg(destructor), debugLine(u"~LogicalDevice enter"_s),
                                   debugLine(u"~LogicalDevice exit"_s)});
}

QTEST_GUILESS_MAIN(tst_TableSlots)
#include "tst_TableSlots.moc"
