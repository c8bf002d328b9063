#include "RefusalStory.h"

#include "PluginFixture.h"
#include "RefusalChapters.h"

#include <array>

using namespace Qt::StringLiterals;

namespace {

const QList<const DeviceOperation *> &refusable()
{
    using namespace requests;
    static const QList<const DeviceOperation *> operations{&reads::getReportRateInfo,
                                                           &requestInitialState1,
                                                           &requestInitialState2,
                                                           &requestInitialState3,
                                                           &setDisabledButtonsOrKeysMask,
                                                           &setDpiButtonAndActiveSlot,
                                                           &setDpiSlotValues,
                                                           &setReportRate};
    return operations;
}

/// Accepts all calls but one.
class RefusingReceiver : public FakeReceiver
{
public:
    RefusingReceiver(Timeline &timeline, int refusedCall) : FakeReceiver(timeline), m_refusedCall(refusedCall)
    {}

    int calls = 0;
    int refusals = 0;

protected:
    QJsonValue answer(const DeviceOperation &operation, std::optional<DeviceId> id,
                      const QJsonArray &arguments) override
    {
        if (refusable().contains(&operation)) {
            ++calls;
            const bool isAccepted = calls != m_refusedCall;
            refusals += isAccepted ? 0 : 1;
            answers.acceptsRequests = isAccepted;
            answers.hasReportRateInfo = isAccepted;
        }
        return FakeReceiver::answer(operation, id, arguments);
    }

private:
    int m_refusedCall;
};

struct Flag
{
    QLatin1StringView signal;
    bool (ILogicalDeviceGen3Mouse::*isPending)() const;
};

constexpr Flag flags[] = {
    {QLatin1StringView("isReportRateChangePendingChanged"),
     &ILogicalDeviceGen3Mouse::isReportRateChangePending},
    {QLatin1StringView("isDpiSlotValuesChangePendingChanged"),
     &ILogicalDeviceGen3Mouse::isDpiSlotValuesChangePending},
    {QLatin1StringView("isActiveDpiSlotIndexChangePendingChanged"),
     &ILogicalDeviceGen3Mouse::isActiveDpiSlotIndexChangePending},
    {QLatin1StringView("isDpiButtonIdChangePendingChanged"),
     &ILogicalDeviceGen3Mouse::isDpiButtonIdChangePending},
};

// Which of the flags is not what the signals said so far.
QString flagProblem(const ILogicalDeviceGen3Mouse &mouse, const QStringList &lines)
{
    for (const Flag &flag : flags) {
        const qsizetype raised = lines.lastIndexOf(u"signal %1(true)"_s.arg(flag.signal));
        const qsizetype lowered = lines.lastIndexOf(u"signal %1(false)"_s.arg(flag.signal));
        if ((mouse.*flag.isPending)() != (raised > lowered))
            return u"%1 is not what it signalled after \"%2\""_s.arg(flag.signal, lines.constLast());
    }
    return {};
}

QString shownValues(const ILogicalDeviceGen3Mouse &mouse)
{
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
    for (const Chapter &chapter : chapters()) {
        for (const auto &step : chapter.steps) {
            step(device);
            seen.lines += fixture.take();
            if (seen.flagProblem.isEmpty())
                seen.flagProblem = flagProblem(*device.device(), seen.lines);
        }
    }
    seen.values = shownValues(*device.device());
    seen.calls = receiver.calls;
    seen.refusals = receiver.refusals;
    // Before its receiver goes.
    fixture.destroy(device);
    return seen;
}
