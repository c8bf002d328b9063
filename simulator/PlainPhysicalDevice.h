#pragma once

#include "IPhysicalDevice.h"
#include "Timeline.h"
#include "TimelineValue.h"

/// A physical device of another kind: no receiver. Records the forwarded call.
class PlainPhysicalDevice : public IPhysicalDevice
{
public:
    explicit PlainPhysicalDevice(Timeline &timeline) : m_timeline(timeline) {}

    quintptr forwardedResult = 99;

    void reserved0() override { m_timeline.recordVerdict(QStringLiteral("reserved0 must not be called")); }

    quintptr forwardedCall(quintptr argument1, quintptr argument2, quintptr argument3) override
    {
        m_timeline.record(TimelineEntry::Kind::Receiver, {}, QStringLiteral("forwardedCall"),
                          {timelineValue(argument1), timelineValue(argument2), timelineValue(argument3)},
                          timelineValue(forwardedResult));
        return forwardedResult;
    }

private:
    Timeline &m_timeline;
};
