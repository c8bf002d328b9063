#include "MouseFields.h"
#include "Scenario.h"

using namespace Qt::StringLiterals;

namespace {

// Of bits, the first of which is number 1.
QJsonArray numbersOfBits(quint8 bits)
{
    QJsonArray numbers;
    for (int number = 1; bits != 0; ++number, bits >>= 1) {
        if ((bits & 1U) != 0)
            numbers.append(number);
    }
    return numbers;
}

QJsonObject mouseState(const SimulatedMouse &mouse)
{
    QJsonObject state = mouseFields(mouse);
    state.insert(u"isAsleep"_s, mouse.isAsleep);
    state.insert(u"heldButtons"_s, numbersOfBits(mouse.heldButtons));
    state.insert(u"disabledButtonsOrKeys"_s, numbersOfBits(mouse.disabledButtonsOrKeysMask));
    return state;
}

QString kindWord(DeviceOperation::Side side)
{
    if (side == DeviceOperation::Side::Request)
        return u"request"_s;
    return side == DeviceOperation::Side::Read ? u"read"_s : u"report"_s;
}

// setReportRate asks for a new reportRate.
QString requestedValue(const DeviceOperation &request)
{
    QString name = request.text().sliced(QStringLiteral("set").size());
    name[0] = name.at(0).toLower();
    return name;
}

QJsonObject valuesOf(ILogicalDeviceGen3Mouse &device)
{
    QJsonObject values;
    for (const DeviceOperation *operation : otherOperations()) {
        if (operation->isGetter)
            values.insert(operation->text(), plainValue(operation->call(device, {})));
    }
    return values;
}

}  // namespace

QJsonObject Scenario::state()
{
    QJsonArray devices;
    {
        // What a getter logs would be an entry for each state that is read.
        Timeline unused;
        m_workbench.timeline.redirectThisThread(&unused);
        for (const auto &[id, known] : m_workbench.devices())
            devices.append(deviceState(id, known));
        m_workbench.timeline.redirectThisThread(nullptr);
    }
    QJsonObject log;
    for (std::size_t i = 0; i < Workbench::logSwitchNames.size(); ++i)
        log.insert(QString::fromLatin1(Workbench::logSwitchNames.at(i)), m_workbench.logSwitches().at(i));
    return {{u"isLoaded"_s, m_workbench.host.factory() != nullptr},
            {u"current"_s,
             m_workbench.device() ? QJsonValue(QString::number(m_workbench.currentMouse())) : QJsonValue()},
            {u"devices"_s, devices},
            {u"faults"_s, faultsState()},
            {u"log"_s, log}};
}

QJsonObject Scenario::deviceState(DeviceId id, const Workbench::KnownDevice &known)
{
    QJsonObject state{{u"id"_s, QString::number(id)},
                      {u"isStarted"_s, known.starts > 0},
                      {u"isStopped"_s, known.isStopped},
                      {u"hasMouse"_s, known.hasMouse},
                      {u"receiver"_s, known.receiver->number()}};
    if (known.hasMouse)
        state.insert(u"mouse"_s, mouseState(known.receiver->mouse(id)));
    // Without these the factory has made something else.
    ILogicalDeviceGen3Mouse *device = known.device->device();
    if (!device || !known.device->gen3())
        return state;
    state.insert(u"values"_s, valuesOf(*device));
    QJsonArray pending;
    for (const Command &command : commands()) {
        if (command.isPending && (device->*command.isPending)())
            pending.append(requestedValue(*command.operation));
    }
    state.insert(u"pending"_s, pending);
    return state;
}

QJsonArray Scenario::faultsState()
{
    QJsonArray faults;
    for (const SimulatedReceiver *receiver : m_workbench.receivers()) {
        const QList<ReceiverFault> known = receiver->faults();
        for (const ReceiverFault &fault : known) {
            QJsonObject object{
                {u"operation"_s, fault.operation->text()},
                {u"effect"_s, fault.effectName()},
                {u"times"_s, fault.times == ReceiverFault::always ? QJsonValue(u"always"_s) : fault.times},
                {u"text"_s, faultText(fault)}};
            if (fault.device)
                object.insert(u"device"_s, QString::number(*fault.device));
            faults.append(object);
        }
    }
    return faults;
}

QJsonArray Scenario::operations()
{
    QJsonArray operations;
    const QList<const DeviceOperation *> known = operationsWithFaults();
    for (const DeviceOperation *operation : known)
        operations.append(
            QJsonObject{{u"name"_s, operation->text()}, {u"kind"_s, kindWord(operation->side)}});
    return operations;
}
