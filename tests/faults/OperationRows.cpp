#include "OperationRows.h"

#include "PluginFixture.h"
#include "TableCalls.h"

#include <QtCore/QMetaObject>

using namespace Qt::StringLiterals;

namespace OperationRows {

std::function<void(PluginFixture &, HostedDevice &)> hosted(const HostedCall &call)
{
    return [call](PluginFixture &, HostedDevice &device) { call(device); };
}

Operation sameEverywhere(const char *name, const HostedCall &call, const QString &line, const QString &effect,
                         SignalThread signalThread)
{
    return {name, hosted(call), line + effect, line, line + effect, line, signalThread};
}

Operation always(const char *name, const HostedCall &call, const QString &lines, SignalThread signalThread)
{
    return {name, hosted(call), lines, lines, lines, lines, signalThread};
}

namespace {

// The name of an operation, and the operation.
#define MOUSE(name) #name, &ILogicalDeviceGen3Mouse::name

// Answers running while the device runs, and unbound else.
template <typename Method>
Operation getter(const char *name, Method method, QLatin1StringView running, QLatin1StringView unbound)
{
    const QString line = u"call "_s + QString::fromLatin1(name) + u"() -> "_s;
    return {name,
            [name, method](PluginFixture &fixture, HostedDevice &device) {
                TableCalls(fixture.timeline, device)(name, method);
            },
            line + running,
            line + running,
            line + unbound,
            line + unbound};
}

template <typename Method>
Operation getter(const char *name, Method method, QLatin1StringView answer)
{
    return getter(name, method, answer, answer);
}

template <typename Method, typename... Arguments>
Operation silent(const char *name, Method method, const QString &line, Arguments... arguments)
{
    return {name,
            [name, method, arguments...](PluginFixture &fixture, HostedDevice &device) {
                TableCalls(fixture.timeline, device)(name, method, arguments...);
            },
            line,
            line,
            line,
            line};
}

constexpr QLatin1StringView no("false");
constexpr QLatin1StringView yes("true");
constexpr QLatin1StringView zero("0");
constexpr QLatin1StringView none("[]");

Operations gettersOfTheDevice()
{
    return {
        getter(MOUSE(deviceType), "2"_L1),
        getter(MOUSE(deviceClass), "7"_L1),
        getter(MOUSE(name), R"("Orvane Tessa Mouse")"_L1),
        getter(MOUSE(instanceId), R"("random")"_L1),
        getter(MOUSE(firmwareVersion), "258"_L1, zero),
        getter(MOUSE(iid), R"("com.orvane.KVX.Plugin.LogicalDevice.RV418")"_L1),
        getter(MOUSE(deviceValue), "32"_L1, zero),
        getter(MOUSE(modelCode), R"("RV418")"_L1),
        getter(MOUSE(physicalDevice), R"("physical device")"_L1),
        getter(MOUSE(deviceImage), R"("0 bytes")"_L1),
        getter(MOUSE(hasBatteryLevel), yes, no),
        getter(MOUSE(batteryLevel), "80"_L1, "-1"_L1),
        getter(MOUSE(statusValue), "31"_L1, zero),
        getter(MOUSE(query24), zero),
        silent(MOUSE(pairedHostName), u"call pairedHostName(1) -> \"\""_s, 1),
        getter(MOUSE(isDPILevelSupported), no),
        getter(MOUSE(dpiLevel), zero),
        getter(MOUSE(query30), none),
        getter(MOUSE(isDPILevelChangePending), no),
        getter(MOUSE(isSmartPointerSupported), yes, no),
        getter(MOUSE(query33), zero),
        getter(MOUSE(levelValue), "33"_L1, zero),
        getter(MOUSE(query35), no),
        getter(MOUSE(defaultProfile), R"("51 bytes")"_L1),
    };
}

Operations gettersOfTheMouse()
{
    return {
        getter(MOUSE(query53), no),
        getter(MOUSE(dpiValue), zero),
        getter(MOUSE(dpiMin), "100"_L1, zero),
        getter(MOUSE(dpiMax), "8000"_L1, zero),
        getter(MOUSE(dpiDelta), "50"_L1),
        getter(MOUSE(isDPIValueChangePending), no),
        getter(MOUSE(isDPIValueSupported), yes),
        getter(MOUSE(activeDpiSlotIndex), "2"_L1),
        getter(MOUSE(dpiSlotValues), none),
        getter(MOUSE(dpiButtonId), "15"_L1),
        getter(MOUSE(isActiveDpiSlotIndexChangePending), no),
        getter(MOUSE(isDpiSlotValuesChangePending), no),
        getter(MOUSE(isDpiButtonIdChangePending), no),
        getter(MOUSE(query70), "1"_L1),
        getter(MOUSE(isReportRateSupported), yes),
        getter(MOUSE(reportRate), "500"_L1, zero),
        getter(MOUSE(reportRateValues), R"(["125", "250", "500", "1000"])"_L1, none),
        getter(MOUSE(isReportRateChangePending), no),
        getter(MOUSE(isScrollInversionEnabled), no),
        getter(MOUSE(query88), no),
        getter(MOUSE(query89), no),
        getter(MOUSE(query91), no),
        getter("ppid", &ILogicalDeviceGen3::ppid, R"("")"_L1),
    };
}

// Qt 6.4 looks for a slot by the text that Q_ARG makes of the type's name, so a template's parameter would
// not do.
bool invoke(QObject *device, const char *slot)
{
    return QMetaObject::invokeMethod(device, slot, Qt::DirectConnection);
}

bool invoke(QObject *device, const char *slot, int value)
{
    return QMetaObject::invokeMethod(device, slot, Qt::DirectConnection, Q_ARG(int, value));
}

bool invoke(QObject *device, const char *slot, const QString &value)
{
    return QMetaObject::invokeMethod(device, slot, Qt::DirectConnection, Q_ARG(QString, value));
}

// By name, and on the calling thread.
template <typename... Arguments>
std::function<void(PluginFixture &, HostedDevice &)> invoked(const char *slot, const Arguments &...arguments)
{
    return [slot, arguments...](PluginFixture &fixture, HostedDevice &device) {
        fixture.timeline.record(TimelineEntry::Kind::Call, device.id(), QString::fromLatin1(slot),
                                {QJsonValue(arguments)...});
        if (!invoke(device.object(), slot, arguments...))
            fixture.timeline.recordVerdict(u"there is no slot %1"_s.arg(QString::fromLatin1(slot)));
    };
}

std::function<void(PluginFixture &, HostedDevice &)> signalled(const char *entry,
                                                               void (FakeReceiver::*signal)(int), int value)
{
    return [entry, signal, value](PluginFixture &fixture, HostedDevice &device) {
        fixture.timeline.record(TimelineEntry::Kind::Call, device.id(), QString::fromLatin1(entry), {value});
        Q_EMIT(fixture.receiver.*signal)(value);
    };
}

}  // namespace

Operations getters()
{
    Operations operations = gettersOfTheDevice();
    const Operations others = gettersOfTheMouse();
    operations.insert(operations.end(), others.begin(), others.end());
    return operations;
}

Operations operationsWithoutEffect()
{
    return {
        silent(MOUSE(setDpiLevel), u"call setDpiLevel(3)"_s, 3),
        silent(MOUSE(setDpiValue), u"call setDpiValue(800)"_s, 800),
        silent(MOUSE(setScrollInversionEnabled), u"call setScrollInversionEnabled(true)"_s, true),
        silent(MOUSE(notify38), u"call notify38()"_s),
        silent(MOUSE(notify42), u"call notify42()"_s),
        silent(MOUSE(notify43), u"call notify43()"_s),
        silent(MOUSE(notify44), u"call notify44()"_s),
        silent(MOUSE(notify87), u"call notify87()"_s),
        silent(MOUSE(notify90), u"call notify90()"_s),
        silent(MOUSE(notify92), u"call notify92()"_s),
        silent(MOUSE(notify93), u"call notify93()"_s),
    };
}

Operations operationsByName()
{
    const QString timeout = u"call onSmartPointerCtrReleaseTimerTimeout()"_s;
    const QString slotMin = u"call onDpiMinChanged(50)"_s;
    const QString slotMax = u"call onDpiMaxChanged(4000)"_s;
    const QString slotPpid = u"call onPPIDChanged(\"P\")"_s;
    const QString signalMin = u"call receiver::dpiMinChanged(50)"_s;
    const QString signalMax = u"call receiver::dpiMaxChanged(4000)"_s;
    const QString min = u"\nsignal dpiMinChanged(50)"_s;
    const QString max = u"\nsignal dpiMaxChanged(4000)"_s;
    const QString ppid = u"\nsignal ppidChanged(\"P\")"_s;
    return {
        // No key is held that it could release.
        {"onSmartPointerCtrReleaseTimerTimeout", invoked("onSmartPointerCtrReleaseTimerTimeout"), timeout,
         timeout, timeout, timeout},
        {"onDpiMinChanged", invoked("onDpiMinChanged", 50), slotMin + min, slotMin, slotMin + min, slotMin,
         SignalThread::Calling},
        {"onDpiMaxChanged", invoked("onDpiMaxChanged", 4000), slotMax + max, slotMax, slotMax + max, slotMax,
         SignalThread::Calling},
        {"onPPIDChanged", invoked("onPPIDChanged", u"P"_s), slotPpid + ppid, slotPpid, slotPpid + ppid,
         slotPpid, SignalThread::Calling},
        // Nobody listens before the start.
        {"receiver::dpiMinChanged", signalled("receiver::dpiMinChanged", &FakeReceiver::dpiMinChanged, 50),
         signalMin + min, signalMin, signalMin, signalMin},
        {"receiver::dpiMaxChanged", signalled("receiver::dpiMaxChanged", &FakeReceiver::dpiMaxChanged, 4000),
         signalMax + max, signalMax, signalMax, signalMax},
    };
}

}  // namespace OperationRows
