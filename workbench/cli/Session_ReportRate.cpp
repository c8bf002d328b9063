#include "Session.h"

using namespace Qt::StringLiterals;

namespace {

QString pendingSignal(bool isPending)
{
    return u"signal isReportRateChangePendingChanged(%1)"_s.arg(isPending ? u"true"_s : u"false"_s);
}

}  // namespace

void Session::changeReportRate()
{
    m_device->setReportRate(1000);
    check(u"the report rate before its confirmation"_s, 1000, m_device->device()->reportRate());
    check(u"that it is pending"_s, true, m_device->device()->isReportRateChangePending());
    awaitReceiver();
    checkTimeline({u"call setReportRate(1000)"_s, pendingSignal(true),
                   u"receiver setReportRate(1000) -> true"_s, u"signal reportRateChanged(1000)"_s,
                   u"report reportRateConfirmed(1000)"_s, pendingSignal(false)});
    check(u"the report rate"_s, 1000, m_device->device()->reportRate());
    check(u"that it is pending"_s, false, m_device->device()->isReportRateChangePending());
    check(u"the report rate of the mouse"_s, 1000, m_receiver.mouse(mouseId).reportRate);
}

void Session::refuseReportRate()
{
    ReceiverFault refusal;
    refusal.operation = u"setReportRate"_s;
    refusal.effect = ReceiverFault::Effect::Refuse;
    m_receiver.addFault(refusal);
    m_device->setReportRate(250);
    checkTimeline({u"call setReportRate(250)"_s, pendingSignal(true),
                   u"receiver setReportRate(250) -> false"_s, u"verdict fault on setReportRate: refuse"_s,
                   pendingSignal(false), u"signal reportRateChanged(250)"_s});
    check(u"the report rate after a refusal"_s, 250, m_device->device()->reportRate());
    check(u"the report rate of the mouse"_s, 1000, m_receiver.mouse(mouseId).reportRate);
}

void Session::reportRateUnasked()
{
    m_receiver.report(mouseId, {u"reportRateConfirmed"_s, {1000}});
    awaitReceiver();
    checkTimeline({u"report reportRateConfirmed(1000)"_s, u"signal reportRateChanged(1000)"_s});
    check(u"the report rate"_s, 1000, m_device->device()->reportRate());
}

void Session::disagreeAboutReportRate()
{
    ReceiverFault alteration;
    alteration.operation = u"reportRateConfirmed"_s;
    alteration.effect = ReceiverFault::Effect::Alter;
    alteration.arguments = {125};
    m_receiver.addFault(alteration);
    m_device->setReportRate(500);
    awaitReceiver();
    // The disagreeing rate is taken without a signal, and the request goes out again.
    checkTimeline({u"call setReportRate(500)"_s, pendingSignal(true),
                   u"receiver setReportRate(500) -> true"_s, u"signal reportRateChanged(500)"_s,
                   u"verdict fault on reportRateConfirmed: alter"_s, u"report reportRateConfirmed(125)"_s,
                   u"receiver setReportRate(500) -> true"_s, u"signal reportRateChanged(500)"_s,
                   u"report reportRateConfirmed(500)"_s, pendingSignal(false)});
    check(u"the report rate"_s, 500, m_device->device()->reportRate());
    check(u"that it is pending"_s, false, m_device->device()->isReportRateChangePending());
}
