#include "Scenario.h"
#include "Words.h"

#include <QtCore/QJsonObject>
#include <QtCore/QMetaObject>
#include <QtCore/QVariant>

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

using Routes = Scenario::Command::Routes;

// More copies of a message show nothing new, and copies of copies would soon fill the memory.
constexpr int mostRepeats = 1000;

// In the order of ValueForm.
constexpr std::array formTexts{
    "a number", "true or false", "a text",        "texts",
    "numbers",  "NAME=VALUE...", "5 slot values", "the rate in force and up to 4 on offer"};

QString wantedArguments(const DeviceOperation &operation)
{
    QStringList texts;
    for (std::size_t i = 0; i < operation.formCount; ++i)
        texts.append(QString::fromLatin1(formTexts.at(static_cast<std::size_t>(operation.forms.at(i)))));
    return u"what %1 takes: "_s.arg(operation.text()) +
           (texts.isEmpty() ? u"nothing"_s : texts.join(u" and "_s));
}

// The numbers at the front of the words, no more than so many; no value when there is something else among
// them.
std::optional<QJsonArray> takeNumbers(QStringList &words, qsizetype most)
{
    QJsonArray numbers;
    while (!words.isEmpty() && numbers.size() < most) {
        const std::optional<int> number = numberOf(words.takeFirst());
        if (!number)
            return std::nullopt;
        numbers.append(*number);
    }
    return numbers;
}

std::optional<QJsonValue> takeReportRates(QStringList &words)
{
    ReportRateInfo info{};
    const std::optional<QJsonArray> rates =
        takeNumbers(words, 1 + static_cast<qsizetype>(std::size(info.supportedRates)));
    if (!rates || rates->isEmpty())
        return std::nullopt;
    info.currentRate = static_cast<quint16>(rates->first().toInt());
    for (qsizetype i = 1; i < rates->size(); ++i)
        info.supportedRates[i - 1] = static_cast<quint16>(rates->at(i).toInt());
    return timelineValue(&info);
}

std::optional<QJsonValue> takeSettings(QStringList &words)
{
    QJsonObject settings;
    const QStringList taken = std::exchange(words, {});
    for (const QString &word : taken) {
        const qsizetype equals = word.indexOf(u'=');
        if (equals < 1)
            return std::nullopt;
        const QString value = word.sliced(equals + 1);
        const std::optional<int> number = numberOf(value);
        settings.insert(word.left(equals), number ? QJsonValue(*number) : QJsonValue(value));
    }
    return settings;
}

// A value as the timeline has it, from the front of the words.
std::optional<QJsonValue> takeValue(ValueForm form, QStringList &words)
{
    switch (form) {
    case ValueForm::Number:
    case ValueForm::Numbers:
    case ValueForm::SlotValues: {
        const qsizetype most = form == ValueForm::Number       ? 1
                               : form == ValueForm::SlotValues ? dpiSlotCount
                                                               : words.size();
        const std::optional<QJsonArray> numbers = takeNumbers(words, most);
        if (!numbers || numbers->size() != most)
            return std::nullopt;
        return form == ValueForm::Number ? numbers->first() : QJsonValue(*numbers);
    }
    case ValueForm::Flag:
        if (words.value(0) != u"true" && words.value(0) != u"false")
            return std::nullopt;
        return words.takeFirst() == u"true";
    case ValueForm::Text:
        return words.isEmpty() ? std::nullopt : std::optional<QJsonValue>(words.takeFirst());
    case ValueForm::Texts:
        return timelineValue(std::exchange(words, {}));
    case ValueForm::Settings:
        return takeSettings(words);
    case ValueForm::ReportRates:
        break;
    }
    return takeReportRates(words);
}

std::optional<QJsonArray> argumentsOf(const DeviceOperation &operation, QStringList words)
{
    QJsonArray arguments;
    for (std::size_t i = 0; i < operation.formCount; ++i) {
        const std::optional<QJsonValue> value = takeValue(operation.forms.at(i), words);
        if (!value)
            return std::nullopt;
        arguments.append(*value);
    }
    return words.isEmpty() ? std::optional<QJsonArray>(arguments) : std::nullopt;
}

// Reads "times N" or "always" from the end of the words.
bool takeTimes(QStringList &words, int &times)
{
    if (!words.isEmpty() && words.last() == u"always") {
        times = ReceiverFault::always;
        words.removeLast();
        return true;
    }
    if (words.size() < 2 || words.at(words.size() - 2) != u"times")
        return true;
    const std::optional<int> number = numberOf(words.takeLast());
    words.removeLast();
    times = number.value_or(0);
    return times > 0;
}

// Reads the effect and its values. False when they do not fit.
bool setEffect(ReceiverFault &fault, const QString &name, const QStringList &values)
{
    using Effect = ReceiverFault::Effect;
    const auto *const found =
        std::find_if(ReceiverFault::effectNames.begin(), ReceiverFault::effectNames.end(),
                     [&](const char *known) { return name == QLatin1StringView(known); });
    if (found == ReceiverFault::effectNames.end())
        return false;
    fault.effect = static_cast<Effect>(found - ReceiverFault::effectNames.begin());
    const std::optional<int> number = onlyNumber(values, 0);
    switch (fault.effect) {
    case Effect::Refuse:
    case Effect::Drop:
        return values.isEmpty();
    case Effect::Delay:
        fault.delay = std::chrono::milliseconds(number.value_or(0));
        return number.has_value();
    case Effect::Repeat:
        fault.repeats = number.value_or(0);
        return number.has_value();
    case Effect::Alter:
        break;
    }
    const std::optional<QJsonArray> arguments = argumentsOf(*fault.operation, values);
    fault.arguments = arguments.value_or(QJsonArray());
    return arguments.has_value();
}

}  // namespace

CommandResult Scenario::callOperation(const QStringList &words)
{
    const Command &command = *m_command;
    HostedDevice &device = *m_workbench.device();
    const std::optional<QJsonArray> arguments = argumentsOf(*command.operation, words);
    if (!arguments)
        return wrongWord(words.join(u' '), wantedArguments(*command.operation));
    const quint64 before = m_workbench.timeline.lastSequence();
    if (command.operation == &calls::start)
        m_workbench.noteStart();
    else if (command.operation == &calls::stop)
        m_workbench.noteStop();
    QJsonValue result;
    callDevice([&] { result = device.call(*command.operation, *arguments); });
    if (result.isBool() && result.toBool() == (m_wantedOutcome == u"refused"))
        return compare(command.operation->text(), m_wantedOutcome == u"refused" ? u"false"_s : u"true"_s,
                       result.toBool() ? u"true"_s : u"false"_s);
    return m_isWaiting && command.request ? outcomeOf(command, before) : settle();
}

// Waits until the request is not pending any more or nothing more can come.
CommandResult Scenario::outcomeOf(const Command &command, quint64 before)
{
    const HostedDevice &device = *m_workbench.device();
    const auto isPending = [&] { return command.isPending && (device.device()->*command.isPending)(); };
    m_workbench.settle([&] { return command.isPending && !isPending(); });
    // The request itself or a repetition.
    const QList<TimelineEntry> entries = m_workbench.timeline.entriesAfter(before);
    const bool isRefused = std::any_of(entries.cbegin(), entries.cend(), [&](const TimelineEntry &entry) {
        return entry.kind == TimelineEntry::Kind::Receiver && entry.device == device.id() &&
               entry.name == command.request->text() && !entry.result.toBool();
    });
    const QString outcome = isRefused ? u"refused"_s : isPending() ? u"pending"_s : u"confirmed"_s;
    if (m_wantedOutcome.isEmpty() && outcome != u"confirmed")
        return {isRefused ? ExitCode::Refused : ExitCode::Pending,
                u"the request is "_s + outcome,
                false,
                {},
                {},
                {}};
    if (!m_wantedOutcome.isEmpty()) {
        CommandResult result = compare(u"the request"_s, m_wantedOutcome, outcome);
        if (result.code != ExitCode::Success)
            return result;
    }
    return settle();
}

CommandResult Scenario::callOther(const QStringList &words)
{
    const QStringList destructors{u"~ILogicalDeviceGen3Mouse"_s, u"~ILogicalDeviceGen3"_s};
    if (words.size() == 1 && destructors.contains(words.first())) {
        if (m_route != Route::Usual)
            return CommandResult::unusable(
                u"a device is deleted on its own thread; write \"call %1\""_s.arg(words.first()));
        m_workbench.deleteDevice(words.first() == destructors.last());
        return {};
    }
    const DeviceOperation *operation = findOperation(otherOperations(), words.value(0));
    if (!operation)
        return wrongWord(words.value(0), u"an operation without a command of its own; there are "_s +
                                             (operationNames(otherOperations()) + destructors).join(u", "_s));
    const std::optional<QJsonArray> arguments = argumentsOf(*operation, words.mid(1));
    if (!arguments)
        return wrongWord(words.mid(1).join(u' '), wantedArguments(*operation));
    callDevice([&] { m_workbench.device()->call(*operation, *arguments); });
    return settle();
}

CommandResult Scenario::invokeSlot(const QStringList &words)
{
    const QMetaObject &metaObject = *m_workbench.device()->object()->metaObject();
    QStringList known;
    for (int index = QObject::staticMetaObject.methodCount(); index < metaObject.methodCount(); ++index) {
        const QMetaMethod method = metaObject.method(index);
        if (method.methodType() != QMetaMethod::Slot)
            continue;
        if (words.value(0) == QLatin1StringView(method.name()))
            return invokeSlot(method, words.mid(1));
        known.append(QString::fromLatin1(method.name()));
    }
    return CommandResult::difference(
        u"the device's slots: expected %1, seen %2"_s.arg(words.value(0), known.join(u", "_s)),
        {words.value(0)}, known);
}

CommandResult Scenario::invokeSlot(const QMetaMethod &method, const QStringList &words)
{
    QVariantList values(words.cbegin(), words.cend());
    bool fits = values.size() == method.parameterCount();
    for (int index = 0; fits && index < method.parameterCount(); ++index)
        fits = values[index].convert(method.parameterMetaType(index));
    if (!fits)
        return wrongWord(words.join(u' '),
                         u"what %1 takes"_s.arg(QLatin1StringView(method.methodSignature())));
    std::vector<void *> arguments{nullptr};
    for (QVariant &value : values)
        arguments.push_back(value.data());
    HostedDevice &device = *m_workbench.device();
    callDevice([&] {
        m_workbench.timeline.record(TimelineEntry::Kind::Call, device.id(),
                                    QString::fromLatin1(method.name()), QJsonArray::fromVariantList(values));
        QMetaObject::metacall(device.object(), QMetaObject::InvokeMetaMethod, method.methodIndex(),
                              arguments.data());
    });
    return settle();
}

CommandResult Scenario::report(const QStringList &words)
{
    const DeviceOperation *operation = findOperation(operationsToDevice(), words.value(0));
    if (!operation)
        return wrongWord(words.value(0),
                         u"a report; there are "_s + operationNames(operationsToDevice()).join(u", "_s));
    const std::optional<QJsonArray> arguments = argumentsOf(*operation, words.mid(1));
    if (!arguments)
        return wrongWord(words.mid(1).join(u' '), wantedArguments(*operation));
    if (operation == &reports::mouseEventCallBack && m_route != Route::Usual && m_route != Route::AtOnce)
        return CommandResult::unusable(
            u"%1 must come on the device's thread; write \"report\" or \"at-once report\""_s.arg(
                operation->text()));
    const DeviceId id = m_workbench.currentMouse();
    const MouseMessage message{operation, *arguments};
    if (m_route == Route::Usual)
        m_workbench.currentReceiver().report(id, message);
    else if (m_route == Route::InsideRequest)
        m_workbench.currentReceiver().reportInsideRequest(id, message);
    else
        callDevice([&] { m_workbench.currentReceiver().reportAtOnce(id, message); });
    return settle();
}

CommandResult Scenario::fault(const QStringList &words)
{
    const QList<const DeviceOperation *> known = operationsWithFaults();
    ReceiverFault fault;
    fault.operation = findOperation(known, words.value(0));
    fault.device = m_workbench.currentMouse();
    if (!fault.operation)
        return wrongWord(words.value(0), u"an operation of receiver or mouse; there are "_s +
                                             operationNames(known).join(u", "_s));
    QStringList values = words.mid(2);
    if (!takeTimes(values, fault.times))
        return wrongWord(words.last(), u"a number of times; write times N or always"_s);
    if (!setEffect(fault, words.value(1), values)) {
        if (fault.effect == ReceiverFault::Effect::Alter)
            return wrongWord(values.join(u' '), wantedArguments(*fault.operation));
        return wrongWord(words.mid(1).join(u' '),
                         u"an effect: refuse, drop, delay MS, repeat N or alter VALUE..."_s);
    }
    if (fault.repeats > mostRepeats)
        return wrongWord(values.first(), u"a number of copies, 0 to %1"_s.arg(mostRepeats));
    m_workbench.currentReceiver().addFault(fault);
    return {};
}

CommandResult Scenario::faults(const QStringList & /*words*/)
{
    QList<ReceiverFault> faults;
    for (const SimulatedReceiver *receiver : m_workbench.receivers())
        faults.append(receiver->faults());
    for (const ReceiverFault &fault : std::as_const(faults))
        m_print(faultText(fault));
    return {};
}

QList<const DeviceOperation *> Scenario::operationsWithFaults()
{
    return operationsToReceiver() + operationsToDevice();
}

QString Scenario::faultText(const ReceiverFault &fault)
{
    const QString times = fault.times == ReceiverFault::always ? u"always"_s : u"times %1"_s.arg(fault.times);
    return u"%1 %2 %3"_s.arg(fault.operation->text(), fault.effectName(), times);
}

CommandResult Scenario::clearFaults(const QStringList & /*words*/)
{
    for (SimulatedReceiver *receiver : m_workbench.receivers())
        receiver->clearFaults();
    return {};
}

CommandResult Scenario::runBy(Route route, const QStringList &words)
{
    const auto isPossible = [route](const Command &command) {
        return command.routes == Routes::All ||
               (route == Route::OtherThread && command.routes == Routes::OtherThread);
    };
    const Command *command = findCommand(words.value(0));
    if (!command || !isPossible(*command)) {
        QStringList known;
        for (const Command &candidate : commands()) {
            if (isPossible(candidate))
                known.append(QString::fromLatin1(candidate.name));
        }
        return wrongWord(words.value(0), u"a command that can come so; there are "_s + known.join(u", "_s));
    }
    m_route = route;
    return dispatch(*command, words.mid(1));
}

void Scenario::callDevice(const std::function<void()> &call)
{
    if (m_route == Route::OtherThread)
        m_workbench.runOnOtherThread(call);
    else
        call();
}
