#include "ReceiverBase.h"

#include "Timeline.h"

using namespace Qt::StringLiterals;

ReceiverBase::ReceiverBase(Timeline &timeline, QObject *parent) : QObject(parent), m_timeline(timeline) {}

void ReceiverBase::recordReservedCall(int slot)
{
    const QString operation = u"reserved"_s + QString::number(slot);
    m_timeline.record(TimelineEntry::Kind::Receiver, {}, operation);
    m_timeline.recordVerdict(u"a plugin must not call "_s + operation + u" of the receiver"_s);
}
