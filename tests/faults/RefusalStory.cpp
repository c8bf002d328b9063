#include "RefusalStory.h"

#include "PluginFixture.h"

#include <functional>

using namespace Qt::StringLiterals;

namespace {

/// Accepts all calls but one.
class RefusingReceiver : public FakeReceiver
{
public:
    RefusingReceiver(Timeline &timeline, int refusedCall) : FakeReceiver(timeline), m_refusedCall(refusedCall)
    {}

    int calls = 0;
    int refusals = 0;

    bool setDisabledButtonsOrKeysMask(DeviceId id, quint8 mask) override
    {
        decide();
        return FakeReceiver::setDisabledButtonsOrKeysMask(id, mask);
    }
    bool setReportRate(DeviceId id, int rate) override
    {
        decide();
        return FakeReceiver::setReportRate(id, rate);
    }
    bool getReportRateInfo(DeviceId id, ReportRateInfo *info) override
    {
        decide();
        answers.hasReportRateInfo = answers.acceptsRequests;
        return FakeReceiver::getReportRateInfo(id, info);
    }
    bool setDpiButtonAndActiveSlot(DeviceId id, int dpiButtonId, int activeDpiSlotIndex) override
    {
        decide();
        return FakeReceiver::setDpiButtonAndActiveSlot(id, dpiButtonId, activeDpiSlotIndex);
    }
    bool setDpiSlotValues(DeviceId id, const quint16 values[5], int dpiButtonId,
                          int activeDpiSlotIndex) override
    {
        decide();
        return FakeReceiver::setDpiSlotValues(id, values, dpiButtonId, activeDpiSlotIndex);
    }
    bool requestInitialState1(DeviceId id) override
    {
        decide();
        return FakeReceiver::requestInitialState1(id);
    }
    bool requestInitialState2(DeviceId id) override
    {
        decide();
        return FakeReceiver::requestInitialState2(id);
    }
    bool requestInitialState3(DeviceId id) override
    {
        decide();
        return FakeReceiver::requestInitialState3(id);
    }

private:
    void decide()
    {
        ++calls;
        answers.acceptsRequests = calls != m_refusedCall;
        if (!answers.acceptsRequests)
            ++refusals;
    }

    int m_refusedCall;
};

struct Step
{
    RequestKind kind;
    bool settles;
    std::function<void(HostedDevice &)> call;
};

using Steps = std::vector<Step>;

constexpr bool settles = true;
constexpr bool goesOn = false;
constexpr quint16 firstValues[5] = {700, 750, 800, 850, 900};
constexpr quint16 secondValues[5] = {1100, 1200, 1300, 1400, 1500};
constexpr quint16 otherValues[5] = {800, 1600, 2400, 3200, 4000};
const ReportRateInfo otherRates{0, 333, {250, 1000, 0, 0}};

// A rate that is refused at once lets a later one be waited for, so the mouse confirms both.
Steps reportRates()
{
    constexpr RequestKind kind = RequestKind::ReportRate;
    return {
        {kind, settles, [](HostedDevice &device) { device.reportRateConfirmed(125); }},
        {kind, goesOn, [](HostedDevice &device) { device.setReportRate(1000); }},
        {kind, goesOn, [](HostedDevice &device) { device.setReportRate(250); }},
        {kind, goesOn, [](HostedDevice &device) { device.reportRateConfirmed(500); }},
        {kind, goesOn, [](HostedDevice &device) { device.reportRateConfirmed(1000); }},
        {kind, settles, [](HostedDevice &device) { device.reportRateConfirmed(250); }},
        {kind, goesOn, [](HostedDevice &device) { device.reportRateChangedCallBack(&otherRates); }},
        {kind, settles, [](HostedDevice &device) { device.reportRateConfirmed(250); }},
    };
}

Steps slotValues()
{
    constexpr RequestKind kind = RequestKind::SlotValues;
    return {
        {kind, goesOn,
         [](HostedDevice &device) {
             device.setDpiSlotValues({u"200"_s, u"300"_s, u"400"_s, u"500"_s, u"600"_s});
         }},
        {kind, goesOn,
         [](HostedDevice &device) {
             device.setDpiSlotValues({u"700"_s, u"750"_s, u"800"_s, u"850"_s, u"900"_s});
         }},
        {kind, goesOn, [](HostedDevice &device) { device.dpiSlotValuesConfirmed(otherValues); }},
        {kind, goesOn, [](HostedDevice &device) { device.dpiSlotValuesConfirmed(firstValues); }},
        {kind, settles, [](HostedDevice &device) { device.dpiSlotValuesChangedCallBack(firstValues); }},
    };
}

Steps activeSlots()
{
    constexpr RequestKind kind = RequestKind::ActiveSlot;
    return {
        {kind, goesOn, [](HostedDevice &device) { device.setActiveDpiSlotIndex(3); }},
        {kind, goesOn, [](HostedDevice &device) { device.setActiveDpiSlotIndex(4); }},
        {kind, goesOn, [](HostedDevice &device) { device.activeDpiSlotIndexConfirmed(5); }},
        {kind, goesOn, [](HostedDevice &device) { device.activeDpiSlotIndexConfirmed(4); }},
        {kind, settles, [](HostedDevice &device) { device.activeDpiSlotIndexChangedCallBack(4); }},
    };
}

Steps dpiButtons()
{
    constexpr RequestKind kind = RequestKind::DpiButton;
    return {
        {kind, goesOn, [](HostedDevice &device) { device.setDpiButtonId(6); }},
        {kind, goesOn, [](HostedDevice &device) { device.setDpiButtonId(7); }},
        {kind, goesOn, [](HostedDevice &device) { device.dpiButtonIdConfirmed(8); }},
        {kind, goesOn, [](HostedDevice &device) { device.dpiButtonIdConfirmed(7); }},
        {kind, settles, [](HostedDevice &device) { device.dpiButtonIdChangedCallBack(7); }},
    };
}

Steps divertedButtons()
{
    constexpr RequestKind kind = RequestKind::None;
    return {
        {kind, goesOn, [](HostedDevice &device) { device.disbaleButtonsOrKeys({1}); }},
        {kind, goesOn, [](HostedDevice &device) { device.disbaleButtonsOrKeys({2, 3}); }},
        {kind, goesOn, [](HostedDevice &device) { device.capabilityChangedCallBack(1); }},
        {kind, goesOn, [](HostedDevice &device) { device.setButtonsOrKeysToDefault(); }},
    };
}

// The mouse answers when all are pending, the last first.
Steps allAtOnce()
{
    return {
        {RequestKind::ReportRate, goesOn, [](HostedDevice &device) { device.setReportRate(1000); }},
        {RequestKind::SlotValues, goesOn,
         [](HostedDevice &device) {
             device.setDpiSlotValues({u"1100"_s, u"1200"_s, u"1300"_s, u"1400"_s, u"1500"_s});
         }},
        {RequestKind::ActiveSlot, goesOn, [](HostedDevice &device) { device.setActiveDpiSlotIndex(2); }},
        {RequestKind::None, goesOn, [](HostedDevice &device) { device.disbaleButtonsOrKeys({4, 5}); }},
        {RequestKind::DpiButton, goesOn, [](HostedDevice &device) { device.setDpiButtonId(9); }},
        {RequestKind::DpiButton, settles, [](HostedDevice &device) { device.dpiButtonIdConfirmed(9); }},
        {RequestKind::ActiveSlot, settles,
         [](HostedDevice &device) { device.activeDpiSlotIndexConfirmed(2); }},
        {RequestKind::SlotValues, goesOn,
         [](HostedDevice &device) { device.dpiSlotValuesConfirmed(secondValues); }},
        {RequestKind::SlotValues, settles,
         [](HostedDevice &device) { device.dpiSlotValuesChangedCallBack(secondValues); }},
        {RequestKind::ReportRate, settles, [](HostedDevice &device) { device.reportRateConfirmed(1000); }},
    };
}

Steps story(RefusingReceiver &receiver)
{
    Steps steps{
        {RequestKind::None, goesOn, [](HostedDevice &device) { device.start(); }},
        {RequestKind::None, goesOn,
         [&receiver](HostedDevice &) {
             Q_EMIT receiver.dpiMinChanged(100);
             Q_EMIT receiver.dpiMaxChanged(8000);
         }},
    };
    for (const Steps &part :
         {reportRates(), slotValues(), activeSlots(), dpiButtons(), divertedButtons(), allAtOnce()})
        steps.insert(steps.end(), part.begin(), part.end());
    return steps;
}

QString shownValues(const HostedDevice &device)
{
    const ILogicalDeviceGen3Mouse &mouse = *device.device();
    return u"rate %1 of %2, slots %3, active %4, DPI %5, button %6"_s.arg(mouse.reportRate())
        .arg(mouse.reportRateValues().join(u' '), mouse.dpiSlotValues().join(u' '))
        .arg(mouse.activeDpiSlotIndex())
        .arg(mouse.dpiValue())
        .arg(mouse.dpiButtonId());
}

}  // namespace

StorySeen playStory(int refusedCall)
{
    PluginFixture fixture({false, true, true});
    RefusingReceiver receiver(fixture.timeline, refusedCall);
    // A rate that is not on offer makes the start ask for another.
    receiver.answers.reportRateInfo = {0, 333, {500, 125, 0, 0}};
    HostedDevice &device = fixture.create(&receiver, PluginFixture::mouse);
    StorySeen seen;
    const Steps steps = story(receiver);
    for (const Step &step : steps) {
        step.call(device);
        const ILogicalDeviceGen3Mouse &mouse = *device.device();
        seen.steps.push_back(
            {step.kind,
             step.settles,
             fixture.take(),
             {mouse.isReportRateChangePending(), mouse.isDpiSlotValuesChangePending(),
              mouse.isActiveDpiSlotIndexChangePending(), mouse.isDpiButtonIdChangePending()}});
    }
    seen.values = shownValues(device);
    seen.calls = receiver.calls;
    seen.refusals = receiver.refusals;
    // Before its receiver goes.
    fixture.destroy(device);
    return seen;
}

QStringList refusableOperations()
{
    return {u"getReportRateInfo"_s,
            u"requestInitialState1"_s,
            u"requestInitialState2"_s,
            u"requestInitialState3"_s,
            u"setDisabledButtonsOrKeysMask"_s,
            u"setDpiButtonAndActiveSlot"_s,
            u"setDpiSlotValues"_s,
            u"setReportRate"_s};
}
