#include "Scenario.h"

#include "Words.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace {

using Command = Scenario::Command;
using Device = ILogicalDeviceGen3Mouse;

}  // namespace

Scenario::Scenario(std::function<void(const QString &)> print) : m_print(std::move(print)) {}

std::optional<QString> Scenario::load(const QString &pluginFile)
{
    return m_workbench.load(pluginFile);
}

const QList<Scenario::Command> &Scenario::commands()
{
    using Kind = Command::Kind;
    using Needs = Command::Needs;
    using Routes = Command::Routes;
    const auto call = [](const DeviceOperation &operation, const QString &arguments, const QString &help,
                         const DeviceOperation *request = nullptr,
                         bool(Device::*isPending)() const = nullptr) {
        const Needs needs =
            &operation == &calls::forwardToPhysicalDevice ? Needs::PhysicalDevice : Needs::Device;
        return Command{operation.text(),
                       arguments,
                       help,
                       &Scenario::callOperation,
                       needs,
                       Kind::Action,
                       Routes::OtherThread,
                       &operation,
                       request,
                       isPending};
    };
    static const QList<Command> table{
        {u"mouse"_s, u"ID [FIELD=VALUE,...]..."_s, u"add a mouse and create its device"_s, &Scenario::mouse,
         Needs::Plugin},
        {u"use"_s, u"ID"_s, u"make another mouse the current one"_s, &Scenario::use, Needs::Nothing,
         Kind::Setting},
        {u"remove"_s, u""_s, u"destroy the current device and take its mouse away"_s, &Scenario::remove,
         Needs::Device},
        {u"device"_s, u"ID none|other"_s,
         u"add a device without a physical device, or with one that is no receiver"_s, &Scenario::device,
         Needs::Plugin},
        {u"log"_s, u"SWITCH on|off ..."_s, u"initialize the plugin again: debug, warning, critical"_s,
         &Scenario::log, Needs::Plugin},
        {u"unload"_s, u""_s, u"unload the plugin with all devices that are left"_s, &Scenario::unload,
         Needs::Plugin},
        call(calls::start, u""_s, u"start the current device; the mouse reports its state"_s),
        call(calls::stop, u""_s, u"stop it"_s),
        call(calls::setReportRate, u"HZ"_s, u"request a report rate"_s, &requests::setReportRate,
             &Device::isReportRateChangePending),
        call(calls::setDpiSlotValues, u"DPI..."_s, u"request slot values, as the texts given"_s,
             &requests::setDpiSlotValues, &Device::isDpiSlotValuesChangePending),
        call(calls::setActiveDpiSlotIndex, u"INDEX"_s, u"request the active slot"_s,
             &requests::setDpiButtonAndActiveSlot, &Device::isActiveDpiSlotIndexChangePending),
        call(calls::setDpiButtonId, u"ID"_s, u"request the DPI button; 0 is the default"_s,
             &requests::setDpiButtonAndActiveSlot, &Device::isDpiButtonIdChangePending),
        call(calls::disbaleButtonsOrKeys, u"[BUTTON]..."_s, u"divert these buttons to the host"_s,
             &requests::setDisabledButtonsOrKeysMask),
        call(calls::setButtonsOrKeysToDefault, u""_s, u"end the diversion of all buttons"_s,
             &requests::setDisabledButtonsOrKeysMask),
        call(calls::applySettings, u"[NAME=VALUE]..."_s, u"pass settings to the device"_s),
        call(calls::resetSettings, u""_s, u"reset the device's settings"_s,
             &requests::setDisabledButtonsOrKeysMask),
        call(calls::setDpiValue, u"DPI"_s, u"set the DPI, which this model does not do"_s),
        call(calls::forwardToPhysicalDevice, u"N N N"_s, u"pass three numbers to the physical device"_s),
        call(calls::query26, u"N N N"_s, u"pass three numbers to the receiver"_s),
        {u"press"_s, u"BUTTON"_s, u"press a button of the mouse: 1 to 5, dpi or smart"_s, &Scenario::press,
         Needs::Mouse},
        {u"release"_s, u"BUTTON"_s, u"release it"_s, &Scenario::release, Needs::Mouse},
        {u"drain"_s, u"PERCENT"_s, u"take from the mouse's battery; negative charges it"_s, &Scenario::drain,
         Needs::Mouse},
        {u"sleep"_s, u""_s, u"send the mouse to sleep"_s, &Scenario::sleep, Needs::Mouse},
        {u"wake"_s, u""_s, u"wake it"_s, &Scenario::wake, Needs::Mouse},
        {u"set"_s, u"FIELD VALUE..."_s, u"change the mouse without a report"_s, &Scenario::set, Needs::Mouse,
         Kind::Setting},
        {u"report"_s, u"OPERATION VALUE..."_s, u"let the mouse report something unasked"_s, &Scenario::report,
         Needs::Device, Kind::Action, Routes::All},
        {u"other-thread"_s, u"COMMAND"_s, u"make the call or the report from another thread"_s,
         &Scenario::otherThread, Needs::Device},
        {u"at-once"_s, u"report ..."_s, u"report before anything that waits for the event loop"_s,
         &Scenario::atOnce, Needs::Device},
        {u"inside-request"_s, u"report ..."_s, u"report before the next request is answered"_s,
         &Scenario::insideRequest, Needs::Device},
        {u"fault"_s, u"OPERATION EFFECT [VALUE]... [times N|always]"_s,
         u"refuse, delay MS, drop, repeat N or alter VALUE... the next such operation"_s, &Scenario::fault,
         Needs::Device, Kind::Setting},
        {u"faults"_s, u""_s, u"list the faults in force"_s, &Scenario::faults, Needs::Nothing, Kind::Setting},
        {u"clear-faults"_s, u""_s, u"end all faults"_s, &Scenario::clearFaults, Needs::Nothing,
         Kind::Setting},
        {u"answer-delay"_s, u"MS"_s, u"how long the mouse takes to answer"_s, &Scenario::answerDelay,
         Needs::Nothing, Kind::Setting},
        {u"resend-limit"_s, u"N"_s, u"how often a request may be sent again"_s, &Scenario::resendLimit,
         Needs::Nothing, Kind::Setting},
        {u"deadline"_s, u"MS"_s, u"how long requests are waited for"_s, &Scenario::deadline, Needs::Nothing,
         Kind::Setting},
        {u"show"_s, u"[VALUE]"_s, u"print the device's values, or one"_s, &Scenario::show, Needs::Device,
         Kind::Check},
        {u"timeline"_s, u"[N]"_s, u"print the timeline's last lines"_s, &Scenario::showTimeline,
         Needs::Nothing, Kind::Check},
        {u"="_s, u"LINE"_s,
         u"compare the next line that the last command left; with the first, all of them must be given"_s,
         &Scenario::expectNextLine, Needs::Nothing, Kind::Check},
        {u"expect"_s,
         u"VALUE TEXT... | signal LINE | timeline [LINE | LINE ...] | log [LINE | LINE ...] | metadata JSON"_s,
         u"compare a value, the next signal, the last lines without the log, the log of the last command, or "
         u"the "
         "plugin's metadata without its Qt version and build type"_s,
         &Scenario::expect, Needs::Nothing, Kind::Check},
        {u"wait"_s, u"EVENT [MS]"_s, u"wait for a timeline line that begins so"_s, &Scenario::wait,
         Needs::Nothing, Kind::Check},
        {u"settle"_s, u""_s, u"wait until the mouse has reported everything and nothing is queued"_s,
         &Scenario::settle},
        {u"help"_s, u""_s, u"print this"_s, &Scenario::help, Needs::Nothing, Kind::Setting},
        {u"quit"_s, u""_s, u"end"_s, &Scenario::quit},
    };
    return table;
}

QStringList Scenario::commandNames()
{
    QStringList names;
    for (const Command &command : commands())
        names.append(command.name);
    return names;
}

const Scenario::Command *Scenario::findCommand(const QString &name)
{
    for (const Command &command : commands()) {
        if (command.name == name)
            return &command;
    }
    return nullptr;
}

CommandResult Scenario::execute(const QString &line)
{
    std::optional<QStringList> words = wordsOf(line);
    if (!words)
        return CommandResult::unusable(u"a quote is left open"_s);
    if (words->isEmpty())
        return {};
    const QString name = words->takeFirst();
    const Command *command = findCommand(name);
    if (!command)
        return CommandResult::unusable(u"\"%1\" is no command; see help"_s.arg(name));
    if (command->run != &Scenario::expectNextLine) {
        CommandResult rest = finish();
        if (rest.code != ExitCode::Success)
            return rest;
    }

    m_rest = behindFirstWord(line);
    m_wantedOutcome.clear();
    m_isWaiting = true;
    m_route = Route::Usual;
    if (words->size() >= 2 && words->at(words->size() - 2) == u"=>") {
        m_wantedOutcome = words->takeLast();
        words->removeLast();
        if (!QStringList{u"confirmed"_s, u"refused"_s, u"pending"_s}.contains(m_wantedOutcome))
            return wrongWord(m_wantedOutcome, u"an outcome: confirmed, refused or pending"_s);
    } else if (!words->isEmpty() && words->last() == u"nowait") {
        m_isWaiting = false;
        words->removeLast();
    }
    if (command->kind == Command::Kind::Action)
        m_lastAction = m_workbench.timeline.lastSequence();
    return dispatch(*command, *words);
}

CommandResult Scenario::finish()
{
    const qsizetype compared = std::exchange(m_comparedLines, 0);
    const QStringList seen = linesAfter(m_lastAction, {});
    if (compared == 0 || compared >= seen.size())
        return {};
    return compare(u"line %1 of the last command"_s.arg(compared + 1), QString(), seen.at(compared));
}

CommandResult Scenario::dispatch(const Command &command, const QStringList &words)
{
    CommandResult missing = whatIsMissing(command.needs);
    if (missing.code != ExitCode::Success)
        return missing;
    if (command.arguments.isEmpty() && !words.isEmpty())
        return wrongWord(words.first(), u"wanted here; %1 takes no words"_s.arg(command.name));
    m_command = &command;
    return (this->*command.run)(words);
}

CommandResult Scenario::whatIsMissing(Command::Needs needs) const
{
    using Needs = Command::Needs;
    const HostedDevice *device = m_workbench.device();
    if (needs >= Needs::Plugin && !m_workbench.host.factory())
        return CommandResult::unusable(u"the plugin is unloaded; put this before \"unload\""_s);
    if (needs >= Needs::Device && !device)
        return CommandResult::unusable(u"there is no mouse yet; add one with \"mouse 1\""_s);
    if (needs == Needs::PhysicalDevice && !device->device()->physicalDevice())
        return CommandResult::unusable(
            u"device %1 has no physical device; see mouse and use"_s.arg(device->id()));
    if (needs == Needs::Mouse && !m_workbench.hasMouse())
        return CommandResult::unusable(u"device %1 has no mouse; see mouse and use"_s.arg(device->id()));
    return {};
}

QList<TimelineEntry> Scenario::takeEntries()
{
    QList<TimelineEntry> entries = m_workbench.timeline.entriesAfter(m_taken);
    m_taken = m_workbench.timeline.lastSequence();
    return entries;
}

Timeline::Style Scenario::lineStyle() const
{
    return m_workbench.hasSeveralDevices() ? Timeline::Style::WithDevice : Timeline::Style::Plain;
}

CommandResult Scenario::help(const QStringList & /*words*/)
{
    for (const Command &command : commands())
        m_print(u"  "_s + (command.name + u' ' + command.arguments).trimmed() + u"\n        "_s +
                command.help);
    m_print(u"A request waits for its outcome; \"nowait\" behind it does not, \"=> refused\" (confirmed, "
            u"pending) "
            "says which outcome is right. # begins a comment."_s);
    return {};
}

CommandResult Scenario::quit(const QStringList & /*words*/)
{
    CommandResult result;
    result.isEnd = true;
    return result;
}

CommandResult Scenario::settled()
{
    if (m_isWaiting && !m_workbench.settle())
        return CommandResult::difference(
            u"the mouse does not come to rest in %1 ms"_s.arg(m_workbench.deadline.count()));
    return {};
}

CommandResult Scenario::wrongWord(const QString &word, const QString &wanted)
{
    return CommandResult::unusable(u"\"%1\" is not %2"_s.arg(word, wanted));
}

QStringList Scenario::linesAfter(quint64 entry,
                                 const std::function<bool(const TimelineEntry &)> &isWanted) const
{
    QStringList lines;
    const QList<TimelineEntry> entries = m_workbench.timeline.entriesAfter(entry);
    for (const TimelineEntry &candidate : entries) {
        if (!isWanted || isWanted(candidate))
            lines.append(Timeline::line(candidate, lineStyle()));
    }
    return lines;
}
