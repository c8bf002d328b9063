#include "MouseFields.h"
#include "Scenario.h"
#include "Words.h"

using namespace Qt::StringLiterals;

namespace {

// The arguments of a report or an alteration in the form of the timeline: five slot values are one array, the
// rates behind reportRateChangedCallBack a record, a number a number, anything else a text.
std::optional<QJsonArray> messageArguments(const QString &operation, const QStringList &words)
{
    QJsonArray numbers;
    for (const QString &word : words) {
        const std::optional<int> number = numberOf(word);
        if (number)
            numbers.append(*number);
    }
    const bool isAllNumbers = numbers.size() == words.size();
    if (operation.startsWith(u"dpiSlotValues")) {
        if (!isAllNumbers || numbers.size() != dpiSlotCount)
            return std::nullopt;
        return QJsonArray{QJsonValue(numbers)};
    }
    if (operation == u"setDpiSlotValues") {
        if (!isAllNumbers || numbers.size() != dpiSlotCount + 2)
            return std::nullopt;
        QJsonArray values;
        for (int i = 0; i < dpiSlotCount; ++i)
            values.append(numbers.takeAt(0));
        return QJsonArray{QJsonValue(values), numbers.at(0), numbers.at(1)};
    }
    if (operation == u"reportRateChangedCallBack") {
        if (!isAllNumbers || numbers.isEmpty() || numbers.size() > 5)
            return std::nullopt;
        ReportRateInfo info{};
        info.currentRate = static_cast<quint16>(numbers.at(0).toInt());
        for (qsizetype i = 1; i < numbers.size(); ++i)
            info.supportedRates[i - 1] = static_cast<quint16>(numbers.at(i).toInt());
        return QJsonArray{timelineValue(&info)};
    }
    if (operation == u"ppidChangedCallBack")
        return words.size() == 1 ? std::optional<QJsonArray>(QJsonArray{words.at(0)}) : std::nullopt;
    if (words == QStringList{u"true"_s} || words == QStringList{u"false"_s})
        return QJsonArray{words == QStringList{u"true"_s}};
    return isAllNumbers && !numbers.isEmpty() ? std::optional<QJsonArray>(numbers) : std::nullopt;
}

const QStringList &reportNames()
{
    static const QStringList names{u"dpiMinChanged"_s,
                                   u"dpiMaxChanged"_s,
                                   u"reportRateConfirmed"_s,
                                   u"reportRateChangedCallBack"_s,
                                   u"dpiValueChangedCallBack"_s,
                                   u"dpiSlotValuesConfirmed"_s,
                                   u"dpiSlotValuesChangedCallBack"_s,
                                   u"activeDpiSlotIndexConfirmed"_s,
                                   u"activeDpiSlotIndexChangedCallBack"_s,
                                   u"dpiButtonIdConfirmed"_s,
                                   u"dpiButtonIdChangedCallBack"_s,
                                   u"ppidChangedCallBack"_s,
                                   u"setFirmwareVersion"_s,
                                   u"setBatteryLevel"_s,
                                   u"capabilityChangedCallBack"_s,
                                   u"mouseEventCallBack"_s};
    return names;
}

const QStringList &receiverNames()
{
    static const QStringList names{u"getFirmwareVersion"_s,
                                   u"hasBatteryLevel"_s,
                                   u"getBatteryLevel"_s,
                                   u"setDisabledButtonsOrKeysMask"_s,
                                   u"getStatusValue"_s,
                                   u"getDeviceValue"_s,
                                   u"isSmartPointerSupported"_s,
                                   u"setReportRate"_s,
                                   u"getReportRateInfo"_s,
                                   u"getLevelValue"_s,
                                   u"setDpiButtonAndActiveSlot"_s,
                                   u"setDpiSlotValues"_s,
                                   u"requestInitialState1"_s,
                                   u"requestInitialState2"_s,
                                   u"requestInitialState3"_s};
    return names;
}

// More copies of a message show nothing new, and copies of copies would soon fill the memory.
constexpr int mostRepeats = 1000;

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

}  // namespace

CommandResult Scenario::mouse(const QStringList &words)
{
    const std::optional<DeviceId> id = deviceIdOf(words.value(0));
    if (!id)
        return wrongWord(words.value(0), u"a mouse id; write a whole number"_s);
    SimulatedMouse mouse;
    const QStringList fields = words.mid(1);
    for (const QString &word : fields) {
        const QString field = word.section(u'=', 0, 0);
        const QStringList values = word.section(u'=', 1).split(u',');
        if (const std::optional<QString> problem = setMouseField(mouse, field, values))
            return CommandResult::unusable(*problem);
    }
    if (!m_workbench.addMouse(*id, mouse))
        return CommandResult::unusable(u"there is a mouse %1 already; see use"_s.arg(*id));
    return {};
}

CommandResult Scenario::use(const QStringList &words)
{
    const std::optional<DeviceId> id = deviceIdOf(words.value(0));
    if (!id || words.size() != 1)
        return wrongWord(words.join(u' '), u"a mouse id; write a whole number"_s);
    if (!m_workbench.useMouse(*id))
        return CommandResult::unusable(u"there is no mouse %1; add it with \"mouse %1\""_s.arg(*id));
    return {};
}

CommandResult Scenario::remove(const QStringList & /*words*/)
{
    m_workbench.removeMouse();
    return {};
}

CommandResult Scenario::set(const QStringList &words)
{
    std::optional<QString> problem;
    m_workbench.receiver.changeMouse(m_workbench.currentMouse(), [&](SimulatedMouse &mouse) {
        problem = setMouseField(mouse, words.value(0), words.mid(1));
    });
    return problem ? CommandResult::unusable(*problem) : CommandResult();
}

CommandResult Scenario::act(const std::function<QList<MouseMessage>(SimulatedMouse &)> &action)
{
    m_workbench.receiver.act(m_workbench.currentMouse(), action);
    return settled();
}

CommandResult Scenario::press(const QStringList &words)
{
    const QString button = words.join(u' ');
    if (button == u"dpi")
        return act([](SimulatedMouse &mouse) { return mouse.pressDpiButton(); });
    if (button == u"smart")
        return act([](SimulatedMouse &mouse) { return mouse.pressSmartPointerKey(); });
    const std::optional<int> number = numberOf(button);
    if (!number || *number < 1 || *number > 5)
        return wrongWord(button, u"a button: 1 to 5, dpi or smart"_s);
    return act([&](SimulatedMouse &mouse) { return mouse.pressButton(*number); });
}

CommandResult Scenario::release(const QStringList &words)
{
    const QString button = words.join(u' ');
    if (button == u"dpi")
        return {};
    if (button == u"smart")
        return act([](SimulatedMouse &mouse) { return mouse.releaseSmartPointerKey(); });
    const std::optional<int> number = numberOf(button);
    if (!number || *number < 1 || *number > 5)
        return wrongWord(button, u"a button: 1 to 5, dpi or smart"_s);
    return act([&](SimulatedMouse &mouse) { return mouse.releaseButton(*number); });
}

CommandResult Scenario::drain(const QStringList &words)
{
    const std::optional<int> percent = numberOf(words.value(0));
    if (!percent || *percent < -100 || *percent > 100 || words.size() != 1)
        return wrongWord(words.join(u' '), u"a number of percent, -100 to 100"_s);
    return act([&](SimulatedMouse &mouse) { return mouse.drainBattery(*percent); });
}

CommandResult Scenario::sleep(const QStringList & /*words*/)
{
    return act([](SimulatedMouse &mouse) { return mouse.sleep(); });
}

CommandResult Scenario::wake(const QStringList & /*words*/)
{
    return act([](SimulatedMouse &mouse) { return mouse.wake(); });
}

CommandResult Scenario::report(const QStringList &words)
{
    const QString operation = words.value(0);
    if (!reportNames().contains(operation))
        return wrongWord(operation, u"a report; there are "_s + reportNames().join(u", "_s));
    const std::optional<QJsonArray> arguments = messageArguments(operation, words.mid(1));
    if (!arguments)
        return wrongWord(words.mid(1).join(u' '), u"what %1 reports"_s.arg(operation));
    if (operation == u"mouseEventCallBack" && m_route != Route::Usual && m_route != Route::AtOnce)
        return CommandResult::unusable(
            u"mouseEventCallBack must come on the device's thread; write \"report\" or \"at-once report\""_s);
    sendReport({operation, *arguments});
    return settled();
}

void Scenario::sendReport(const MouseMessage &report)
{
    const DeviceId id = m_workbench.currentMouse();
    switch (m_route) {
    case Route::Usual:
        m_workbench.receiver.report(id, report);
        break;
    case Route::InsideRequest:
        m_workbench.receiver.reportInsideRequest(id, report);
        break;
    case Route::OtherThread:
    case Route::AtOnce:
        callDevice([&] { m_workbench.receiver.reportAtOnce(id, report); });
        break;
    }
}

CommandResult Scenario::fault(const QStringList &words)
{
    ReceiverFault fault;
    fault.operation = words.value(0);
    fault.device = m_workbench.currentMouse();
    if (!reportNames().contains(fault.operation) && !receiverNames().contains(fault.operation))
        return wrongWord(fault.operation, u"an operation of receiver or mouse; there are %1, %2"_s.arg(
                                              receiverNames().join(u", "_s), reportNames().join(u", "_s)));
    QStringList values = words.mid(2);
    if (!takeTimes(values, fault.times))
        return wrongWord(words.last(), u"a number of times; write times N or always"_s);

    const QString effect = words.value(1);
    const std::optional<int> number = numberOf(values.value(0));
    const bool hasOneNumber = number && *number >= 0 && values.size() == 1;
    if (effect == u"repeat" && hasOneNumber && *number > mostRepeats)
        return wrongWord(values.first(), u"a number of copies, 0 to %1"_s.arg(mostRepeats));
    if (effect == u"refuse" && values.isEmpty()) {
        fault.effect = ReceiverFault::Effect::Refuse;
    } else if (effect == u"drop" && values.isEmpty()) {
        fault.effect = ReceiverFault::Effect::Drop;
    } else if (effect == u"delay" && hasOneNumber) {
        fault.effect = ReceiverFault::Effect::Delay;
        fault.delay = std::chrono::milliseconds(*number);
    } else if (effect == u"repeat" && hasOneNumber) {
        fault.effect = ReceiverFault::Effect::Repeat;
        fault.repeats = *number;
    } else if (effect == u"alter") {
        const std::optional<QJsonArray> arguments = messageArguments(fault.operation, values);
        if (!arguments)
            return wrongWord(values.join(u' '), u"what %1 carries"_s.arg(fault.operation));
        fault.effect = ReceiverFault::Effect::Alter;
        fault.arguments = *arguments;
    } else {
        return wrongWord(words.mid(1).join(u' '),
                         u"an effect: refuse, drop, delay MS, repeat N or alter VALUE..."_s);
    }
    m_workbench.receiver.addFault(fault);
    return {};
}

CommandResult Scenario::faults(const QStringList & /*words*/)
{
    const QList<ReceiverFault> faults = m_workbench.receiver.faults();
    for (const ReceiverFault &fault : faults) {
        const QString times =
            fault.times == ReceiverFault::always ? u"always"_s : u"times %1"_s.arg(fault.times);
        m_print(u"%1 %2 %3"_s.arg(fault.operation, ReceiverFault::effectName(fault.effect), times));
    }
    return {};
}

CommandResult Scenario::clearFaults(const QStringList & /*words*/)
{
    m_workbench.receiver.clearFaults();
    return {};
}

CommandResult Scenario::answerDelay(const QStringList &words)
{
    const std::optional<int> delay = numberOf(words.value(0));
    if (!delay || *delay < 0 || words.size() != 1)
        return wrongWord(words.join(u' '), u"a number of milliseconds"_s);
    m_workbench.receiver.setAnswerDelay(std::chrono::milliseconds(*delay));
    return {};
}

CommandResult Scenario::resendLimit(const QStringList &words)
{
    const std::optional<int> limit = numberOf(words.value(0));
    if (!limit || *limit < 1 || words.size() != 1)
        return wrongWord(words.join(u' '), u"a number of repetitions, 1 or more"_s);
    m_workbench.receiver.setResendLimit(*limit);
    return {};
}
