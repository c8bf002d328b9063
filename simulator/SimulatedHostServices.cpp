#include "SimulatedHostServices.h"

#include "Timeline.h"

using namespace Qt::StringLiterals;

SimulatedHostServices::SimulatedHostServices(Timeline &timeline) : m_timeline(timeline) {}

void SimulatedHostServices::reserved0()
{
    recordReservedCall(u"reserved0"_s);
}

void SimulatedHostServices::reserved1()
{
    recordReservedCall(u"reserved1"_s);
}

void SimulatedHostServices::reserved2()
{
    recordReservedCall(u"reserved2"_s);
}

void SimulatedHostServices::buttonEvent(const QString &pluginIid, int buttonNumber, bool isPressed)
{
    m_timeline.record(TimelineEntry::Kind::HostService, {}, u"buttonEvent"_s,
                      {pluginIid, buttonNumber, isPressed});
}

void SimulatedHostServices::setCtrlKeyPressed(bool isPressed)
{
    m_timeline.record(TimelineEntry::Kind::HostService, {}, u"setCtrlKeyPressed"_s, {isPressed});
}

void SimulatedHostServices::recordReservedCall(const QString &operation)
{
    m_timeline.record(TimelineEntry::Kind::HostService, {}, operation);
    m_timeline.recordVerdict(u"a plugin must not call "_s + operation + u" of the host services"_s);
}
