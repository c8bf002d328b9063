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

QJsonValue SimulatedReceiver::answer(const DeviceOperation &operation, std::optional<DeviceId> id,
                                     const QJsonArray &arguments)
{
    const QString name = operation.text();
    if (!id) {
        timeline().record(TimelineEntry::Kind::Receiver, {}, name, arguments, arguments.at(0), m_number);
        return arguments.at(0);
    }
    bool isKnown = false;
    const bool isRequest = operation.side == DeviceOperation::Side::Request;
    QJsonValue result = true;
    changeMouse(*id, [&](const SimulatedMouse &mouse) {
        isKnown = true;
        if (&operation == &reads::getReportRateInfo)
            result = mouse.knowsReportRates;
        else if (!isRequest)
            result = valueRead(operation, mouse);
    });
    const std::optional<ReceiverFault> fault = isKnown ? takeFault(operation, *id) : std::nullopt;
    if (!isKnown || (fault && fault->effect == Effect::Refuse))
        result = isRequest || operation.forms.front() == ValueForm::Flag ? QJsonValue(false) : QJsonValue(0);
    else if (fault && fault->effect == Effect::Alter && !isRequest)
        result = fault->arguments.at(0);
    timeline().record(TimelineEntry::Kind::Receiver, id, name, arguments, result, m_number);
    if (!isKnown)
        timeline().recordVerdict(u"the receiver knows no mouse with the id "_s + QString::number(*id), id);
    if (fault)
        recordFault(*fault, *id);
    if (isRequest) {
        const bool isAnswered = countRepetition(*id, operation);
        deliverKeptReport();
        if (isAnswered && result.toBool())
            forward(*id, {&operation, arguments}, fault);
    }
    return result;
}

void SimulatedReceiver::forward(DeviceId id, MouseMessage request, const std::optional<ReceiverFault> &fault)
{
    std::chrono::milliseconds delay = m_answerDelay;
    int copies = 1;
    if (fault && fault->effect == Effect::Drop)
        copies = 0;
    if (fault && fault->effect == Effect::Delay)
        delay += fault->delay;
    if (fault && fault->effect == Effect::Repeat)
        copies += fault->repeats;
    if (fault && fault->effect == Effect::Alter)
        request.arguments = fault->arguments;
    for (int copy = 0; copy < copies; ++copy)
        enqueue(Transit::Kind::Request, id, request, delay);
}

bool SimulatedReceiver::countRepetition(DeviceId id, const DeviceOperation &operation)
{
    int repetitions = 0;
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
    }
    if (repetitions < m_resendLimit)
        return true;
    timeline().recordVerdict(u"%1 was sent again %2 times without an agreeing confirmation; it gets no more "
                             "answers"_s.arg(operation.text())
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
        reportAtOnce(report->id, report->message);
}

std::optional<ReceiverFault> SimulatedReceiver::takeFault(const DeviceOperation &operation, DeviceId id)
{
    const QMutexLocker locker(&m_mutex);
    const auto hit = std::find_if(m_faults.begin(), m_faults.end(), [&](const ReceiverFault &fault) {
        return fault.operation == &operation && fault.device.value_or(id) == id;
    });
    if (hit == m_faults.end())
        return {};
    std::optional<ReceiverFault> fault = *hit;
    if (hit->times != ReceiverFault::always)
        --hit->times;
    if (hit->times == 0)
        m_faults.erase(hit);
    return fault;
}

void SimulatedReceiver::recordFault(const ReceiverFault &fault, DeviceId id)
{
    timeline().recordVerdict(u"fault on %1: %2"_s.arg(fault.operation->text(), fault.effectName()), id);
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
            reportAtOnce(transit.id, transit.message);
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
    QList<MouseMessage> reports;
    changeMouse(id, [&](SimulatedMouse &mouse) { reports = mouse.take(request); });
    for (const MouseMessage &report : std::as_const(reports))
        reportAtOnce(id, report);
}

void SimulatedReceiver::reportAtOnce(DeviceId id, const MouseMessage &report)
{
    if (!attachedDevice(id))
        return;
    const std::optional<ReceiverFault> fault = takeFault(*report.operation, id);
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
    timeline().record(TimelineEntry::Kind::Report, id, report.operation->text(), report.arguments,
                      QJsonValue::Undefined, m_number);
    std::optional<Delivery> outer;
    {
        const QMutexLocker locker(&m_mutex);
        outer = std::exchange(m_delivery, Delivery{id, report.operation, QThread::currentThreadId(), false});
    }
    callDevice(*device, report);
    const QMutexLocker locker(&m_mutex);
    if (!m_delivery->isAnsweredByRequest)
        m_repetitions[id].remove(report.operation);
    m_delivery = outer;
}

void SimulatedReceiver::callDevice(ILogicalDeviceGen3Mouse &device, const MouseMessage &report)
{
    if (report.operation == &receiverSignals::dpiMinChanged)
        Q_EMIT dpiMinChanged(report.arguments.at(0).toInt());
    else if (report.operation == &receiverSignals::dpiMaxChanged)
        Q_EMIT dpiMaxChanged(report.arguments.at(0).toInt());
    else
        report.operation->call(device, report.arguments);
}

ILogicalDeviceGen3Mouse *SimulatedReceiver::attachedDevice(DeviceId id) const
{
    const QMutexLocker locker(&m_mutex);
    const Attachment attachment = m_devices.value(id);
    return attachment.object ? attachment.device : nullptr;
}
