#include "SimulatedReceiver.h"

#include "ILogicalDeviceGen3Mouse.h"

#include <QtCore/QMutexLocker>

#include <utility>

SimulatedReceiver::SimulatedReceiver(Timeline &timeline, int number)
    : RecordingReceiver(timeline), m_number(number), m_timer(this)
{
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &SimulatedReceiver::deliverDue);
}

void SimulatedReceiver::setMouse(DeviceId id, const SimulatedMouse &mouse)
{
    const QMutexLocker locker(&m_mutex);
    m_mice.insert(id, mouse);
}

void SimulatedReceiver::removeMouse(DeviceId id)
{
    const QMutexLocker locker(&m_mutex);
    m_mice.remove(id);
}

SimulatedMouse SimulatedReceiver::mouse(DeviceId id) const
{
    const QMutexLocker locker(&m_mutex);
    return m_mice.value(id);
}

bool SimulatedReceiver::changeMouse(DeviceId id, const std::function<void(SimulatedMouse &)> &change)
{
    const QMutexLocker locker(&m_mutex);
    const auto mouse = m_mice.find(id);
    if (mouse == m_mice.end())
        return false;
    change(*mouse);
    return true;
}

void SimulatedReceiver::attach(DeviceId id, ILogicalDeviceGen3Mouse *device)
{
    const QMutexLocker locker(&m_mutex);
    m_devices.insert(id, {dynamic_cast<QObject *>(device), device});
}

void SimulatedReceiver::detach(DeviceId id)
{
    const QMutexLocker locker(&m_mutex);
    m_devices.remove(id);
    if (m_keptReport && m_keptReport->id == id)
        m_keptReport.reset();
}

void SimulatedReceiver::addFault(const ReceiverFault &fault)
{
    const QMutexLocker locker(&m_mutex);
    if (fault.times != 0)
        m_faults.append(fault);
}

void SimulatedReceiver::clearFaults()
{
    const QMutexLocker locker(&m_mutex);
    m_faults.clear();
}

QList<ReceiverFault> SimulatedReceiver::faults() const
{
    const QMutexLocker locker(&m_mutex);
    return m_faults;
}

bool SimulatedReceiver::act(DeviceId id, const std::function<QList<MouseMessage>(SimulatedMouse &)> &action)
{
    QList<MouseMessage> reports;
    const bool isKnown = changeMouse(id, [&](SimulatedMouse &mouse) { reports = action(mouse); });
    for (const MouseMessage &message : std::as_const(reports))
        report(id, message);
    return isKnown;
}

void SimulatedReceiver::report(DeviceId id, const MouseMessage &message)
{
    enqueue(Transit::Kind::Report, id, message, std::chrono::milliseconds::zero());
}

void SimulatedReceiver::reportInsideRequest(DeviceId id, const MouseMessage &message)
{
    const QMutexLocker locker(&m_mutex);
    m_keptReport = KeptReport{id, message};
}

bool SimulatedReceiver::isIdle() const
{
    const QMutexLocker locker(&m_mutex);
    return m_transits.isEmpty() && !m_delivery;
}
