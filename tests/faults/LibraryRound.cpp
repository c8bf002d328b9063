#include "LibraryRound.h"

#include "ILogicalDevicePlugin.h"
#include "PluginFixture.h"
#include "ProcessState.h"
#include "StepThread.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

constexpr const char *roundsVariable = "KVX_LIFECYCLE_ROUNDS";

constexpr quint8 smartPointerDown = 0x80;

// What a life leaves to be seen, in the order in which it is looked at.
struct Life
{
    bool hasProfileWhileLoaded = false;
    int loneNumber = -1;
    int firstNumber = -1;
    int secondNumber = -1;
    int delivered = -1;
    int deliveredLate = -1;
    bool isUnloaded = false;
    bool isInProcess = true;
    bool hasProfileAfterwards = true;
};

QString text(const Life &life)
{
    const auto yesNo = [](bool value) { return value ? u"yes"_s : u"no"_s; };
    return u"profile %1, alone %2, together %3 and %4, queued calls delivered %5, "
           "delivered after their device %6, unloaded %7, still in the process %8, profile left %9"_s
               .arg(yesNo(life.hasProfileWhileLoaded))
               .arg(life.loneNumber)
               .arg(life.firstNumber)
               .arg(life.secondNumber)
               .arg(life.delivered)
               .arg(life.deliveredLate)
               .arg(yesNo(life.isUnloaded), yesNo(life.isInProcess), yesNo(life.hasProfileAfterwards));
}

bool hasProfile()
{
    return QFile::exists(u":/com.orvane.KVX.Plugin.LogicalDevice.RV418/DefaultProfile.json"_s);
}

// Three calls whose rest waits for the device's thread.
void queueCalls(HostedDevice &device, StepThread &otherThread, int value)
{
    otherThread.run([&] {
        device.setFirmwareVersion(static_cast<uint>(value));
        device.setBatteryLevel(value);
        device.setReportRate(value);
    });
}

int deliveredSignals(PluginFixture &fixture)
{
    fixture.timeline.clear();
    QCoreApplication::sendPostedEvents();
    return static_cast<int>(fixture.timeline.entries().size());
}

}  // namespace

void useOnce(PluginFixture &fixture, HostedDevice &device)
{
    constexpr quint16 values[5] = {200, 300, 400, 500, 600};
    Q_EMIT fixture.receiver.dpiMinChanged(100);
    Q_EMIT fixture.receiver.dpiMaxChanged(8000);
    device.setDpiSlotValues({u"200"_s, u"300"_s, u"400"_s, u"500"_s, u"600"_s});
    device.dpiSlotValuesConfirmed(values);
    device.setActiveDpiSlotIndex(3);
    device.activeDpiSlotIndexConfirmed(3);
    device.setDpiButtonId(4);
    device.setReportRate(1000);
    device.reportRateConfirmed(1000);
    device.disbaleButtonsOrKeys({1, 2});
    device.ppidChangedCallBack(u"RV418-0001"_s);
    device.applySettings({{u"speed"_s, 3}});
    // The release of the key is left to a timer that runs when the device goes.
    device.mouseEventCallBack(smartPointerDown);
    device.device()->defaultProfile();
    device.device()->deviceImage();
}

QString liveOnce(StepThread &otherThread)
{
    Life life;
    {
        PluginFixture fixture;
        life.hasProfileWhileLoaded = hasProfile();
        // Kept when the device is gone, and so are the recorders of its signals.
        const std::unique_ptr<HostedDevice> first = fixture.host.createDevice(&fixture.receiver, 1);
        first->start();
        life.loneNumber = first->device()->instanceNumber();
        // Nobody destroys this one.
        const std::unique_ptr<HostedDevice> second = fixture.host.createDevice(&fixture.receiver, 2);
        second->start();
        life.firstNumber = first->device()->instanceNumber();
        life.secondNumber = second->device()->instanceNumber();
        useOnce(fixture, *first);
        queueCalls(*first, otherThread, 250);
        life.delivered = deliveredSignals(fixture);
        queueCalls(*first, otherThread, 125);
        fixture.host.factory()->destroyDevice(first->device());
        life.deliveredLate = deliveredSignals(fixture);
        queueCalls(*second, otherThread, 125);
        life.isUnloaded = fixture.host.unload();
        life.deliveredLate += deliveredSignals(fixture);
    }
    life.isInProcess = isLibraryInProcess(QFileInfo(PluginFixture::builtPluginFile()).fileName());
    life.hasProfileAfterwards = hasProfile();
    return text(life);
}

QString wholeLife()
{
    return u"profile yes, alone 0, together 1 and 2, queued calls delivered 4, delivered after their device "
           u"0, "
           "unloaded yes, still in the process no, profile left no"_s;
}

int roundsToPlay()
{
    if (!qEnvironmentVariableIsSet(roundsVariable))
        return KVX_LIFECYCLE_ROUNDS;
    bool isNumber = false;
    const int rounds = qEnvironmentVariableIntValue(roundsVariable, &isNumber);
    if (!isNumber || rounds < 1)
        qFatal("%s is no whole number above 0; give one, or leave it unset", roundsVariable);
    return rounds;
}
