#include "MouseReport.h"
#include "SimulatedReceiver.h"
#include "Timeline.h"

#include <QtCore/QMutexLocker>
#include <QtCore/QThread>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

using Clock = std::chrono::steady_clock;
using Effect = ReceiverFault::Effect;

// A timer counts no more milliseconds than an int holds.
constexpr std::chrono::milliseconds longestTimer = std::chrono::hours(24);

}  // namespace

bool SimulatedReceiver::request(const char *operation, DeviceId id, const QJsonArray &arguments)
{
    MouseMessage message{QString::fromLatin1(operation), arguments};
    bool isKnown = false;
    {
        const QMutexLocker locker(&m_mutex);
        isKnown = m_mice.contains(id);
    }
    const std::optional<ReceiverFault> fault = isKnown ? takeFault(message.operation, id) : std::nullopt;
    const bool isRefused = fault && fault->effect == Effect::Refuse;
    const bool isAccepted = isKnown && !isRefused;
    timeline().record(TimelineEntry::Kind::Receiver, id, message.operation, arguments, isAccepted);
    if (!isKnown)
        recordUnknownMouse(id);
    if (fault)
        recordFault(*fault, id);

    const bool isAnswered = countRepetition(id, message.operation);
    deliverKeptReport();
    if (!isAccepted || !isAnswered || (fault && fault->effect == Effect::Drop))
        return isAccepted;
    std::chrono::milliseconds delay = answerDelay();
    int copies = 1;
    if (fault && fault->effect == Effect::Delay)
        delay += fault->delay;
    if (fault && fault->effect == Effect::Repeat)
        copies += fault->repeats;
    if (fault && fault->effect == Effect::Alter)
        message.arguments = fault->arguments;
    for (int copy = 0; copy < copies; ++copy)
        enqueue(Transit::Kind::Request, id, message, delay);
    return isAccepted;
}

bool SimulatedReceiver::countRepetition(DeviceId id, const QString &operation)
{
    int repetitions = 0;
    int limit = 0;
    {
        const QMutexLocker locker(&m_mutex);
        const bool isRepetition =
            m_delivery && m_delivery->id == id && m_delivery->thread == QThread::currentThreadId();
        if (!isRepetition) {
            m_repetitions.remove(id);
            return true;
        }
        m_delivery->isAnsweredByRequest = true;
        repetitions = ++m_repetitions[id][m_delivery->operation];
        limit = m_resendLimit;
    }
    if (repetitions < limit)
        return true;
    timeline().recordVerdict(u"%1 was sent again %2 times without an agreeing confirmation; it gets no more "
                             "answers"_s.arg(operation)
                                 .arg(repetitions),
                             id);
    return false;
}

void SimulatedReceiver::deliverKeptReport()
{
    std::optional<KeptReport> report;
    {
        const QMutexLocker locker(&m_mutex);
        report = std::exchange(m_keptReport, std::nullopt);
    }
    if (report)
        sendReport(report->id, report->message);
}

std::optional<ReceiverFault> SimulatedReceiver::takeFault(const QString &operation, DeviceId id)
{
    const QMutexLocker locker(&m_mutex);
    return m_faults.take(operation, id);
}

void SimulatedReceiver::recordFault(const ReceiverFault &fault, DeviceId id)
{
    timeline().recordVerdict(
        u"fault on %1: %2"_s.arg(fault.operation, ReceiverFault::effectName(fault.effect)), id);
}

void SimulatedReceiver::recordUnknownMouse(DeviceId id)
{
    timeline().recordVerdict(u"the receiver knows no mouse with the id "_s + QString::number(id), id);
}

void SimulatedReceiver::enqueue(Transit::Kind kind, DeviceId id, const MouseMessage &message,
                                std::chrono::milliseconds delay)
{
    const Transit transit{Clock::now() + delay, kind, id, message};
    {
        const QMutexLocker locker(&m_mutex);
        const auto later = std::upper_bound(m_transits.cbegin(), m_transits.cend(), transit,
                                            [](const Transit &a, const Transit &b) { return a.due < b.due; });
        m_transits.insert(later, transit);
    }
    QMetaObject::invokeMethod(this, &SimulatedReceiver::scheduleDelivery);
}

void SimulatedReceiver::scheduleDelivery()
{
    const QMutexLocker locker(&m_mutex);
    if (m_transits.isEmpty())
        return;
    const auto remaining =
        std::chrono::ceil<std::chrono::milliseconds>(m_transits.first().due - Clock::now());
    m_timer.start(std::clamp(remaining, std::chrono::milliseconds::zero(), longestTimer));
}

void SimulatedReceiver::deliverDue()
{
    // What is sent meanwhile waits for the event loop, even without a delay.
    const Clock::time_point now = Clock::now();
    for (;;) {
        Transit transit;
        {
            const QMutexLocker locker(&m_mutex);
            if (m_transits.isEmpty() || m_transits.first().due > now)
                break;
            transit = m_transits.takeFirst();
        }
        switch (transit.kind) {
        case Transit::Kind::Request:
            arriveAtMouse(transit.id, transit.message);
            break;
        case Transit::Kind::Report:
            sendReport(transit.id, transit.message);
            break;
        case Transit::Kind::HeldReport:
            deliverReport(transit.id, transit.message);
            break;
        }
    }
    scheduleDelivery();
}

void SimulatedReceiver::arriveAtMouse(DeviceId id, const MouseMessage &request)
{
    std::optional<QList<MouseMessage>> reports;
    changeMouse(id, [&](SimulatedMouse &mouse) { reports = mouse.take(request); });
    if (!reports)
        return;
    for (const MouseMessage &report : std::as_const(*reports))
        sendReport(id, report);
}

void SimulatedReceiver::sendReport(DeviceId id, const MouseMessage &report)
{
    if (!attachedDevice(id))
        return;
    const std::optional<ReceiverFault> fault = takeFault(report.operation, id);
    if (!fault) {
        deliverReport(id, report);
        return;
    }
    recordFault(*fault, id);
    switch (fault->effect) {
    case Effect::Refuse:
    case Effect::Drop:
        break;
    case Effect::Delay:
        enqueue(Transit::Kind::HeldReport, id, report, fault->delay);
        break;
    case Effect::Repeat:
        for (int copy = 0; copy <= fault->repeats; ++copy)
            deliverReport(id, report);
        break;
    case Effect::Alter:
        deliverReport(id, {report.operation, fault->arguments});
        break;
    }
}

void SimulatedReceiver::deliverReport(DeviceId id, const MouseMessage &report)
{
    ILogicalDeviceGen3Mouse *device = attachedDevice(id);
    if (!device)
        return;
    timeline().record(TimelineEntry::Kind::Report, id, report.operation, report.arguments);
    std::optional<Delivery> outer;
    {
        const QMutexLocker locker(&m_mutex);
        outer = std::exchange(m_delivery, Delivery{id, report.operation, QThread::currentThreadId(), false});
    }
    callDevice(*device, id, report);
    const QMutexLocker locker(&m_mutex);
    if (!m_delivery->isAnsweredByRequest)
        m_repetitions[id].remove(report.operation);
    m_delivery = outer;
}

void SimulatedReceiver::callDevice(ILogicalDeviceGen3Mouse &device, DeviceId id, const MouseMessage &report)
{
    if (report.operation == u"dpiMinChanged")
        Q_EMIT dpiMinChanged(report.arguments.at(0).toInt());
    else if (report.operation == u"dpiMaxChanged")
        Q_EMIT dpiMaxChanged(report.arguments.at(0).toInt());
    else if (!deliverMouseReport(device, report))
        timeline().recordVerdict(u"there is no report with the name "_s + report.operation, id);
}

ILogicalDeviceGen3Mouse *SimulatedReceiver::attachedDevice(DeviceId id) const
{
    const QMutexLocker locker(&m_mutex);
    const Attachment attachment = m_devices.value(id);
    return attachment.object ? attachment.device : nullptr;
}
