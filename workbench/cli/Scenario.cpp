#include "Scenario.h"

#include "Words.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

Scenario::Scenario(std::function<void(const QString &)> print) : m_print(std::move(print)) {}

std::optional<QString> Scenario::load(const QString &pluginFile)
{
    return m_workbench.load(pluginFile);
}

const QList<Scenario::Command> &Scenario::commands()
{
    static const QList<Command> table{
        {u"mouse"_s, u"ID [FIELD=VALUE,...]..."_s, u"add a mouse and create its device"_s, &Scenario::mouse},
        {u"use"_s, u"ID"_s, u"make another mouse the current one"_s, &Scenario::use},
        {u"remove"_s, u""_s, u"destroy the current device and take its mouse away"_s, &Scenario::remove},
        {u"device"_s, u"ID none|other"_s,
         u"add a device without a physical device, or with one that is no receiver"_s, &Scenario::device},
        {u"log"_s, u"SWITCH on|off ..."_s, u"initialize the plugin anew: debug, warning, critical"_s,
         &Scenario::log},
        {u"start"_s, u""_s, u"start the current device and hear the mouse's state"_s, &Scenario::start},
        {u"stop"_s, u""_s, u"stop it"_s, &Scenario::stop},
        {u"setReportRate"_s, u"HZ"_s, u"ask for a report rate"_s, &Scenario::setReportRate},
        {u"setDpiSlotValues"_s, u"DPI..."_s, u"ask for slot values, as the texts given"_s,
         &Scenario::setDpiSlotValues},
        {u"setActiveDpiSlotIndex"_s, u"INDEX"_s, u"ask for the active slot"_s,
         &Scenario::setActiveDpiSlotIndex},
        {u"setDpiButtonId"_s, u"ID"_s, u"ask for the DPI button; 0 is the default"_s,
         &Scenario::setDpiButtonId},
        {u"disbaleButtonsOrKeys"_s, u"[BUTTON]..."_s, u"divert these buttons to the host"_s,
         &Scenario::disableButtons},
        {u"setButtonsOrKeysToDefault"_s, u""_s, u"give all buttons back to the mouse"_s,
         &Scenario::setButtonsToDefault},
        {u"applySettings"_s, u"[NAME=VALUE]..."_s, u"hand settings to the device"_s,
         &Scenario::applySettings},
        {u"resetSettings"_s, u""_s, u"reset the device's settings"_s, &Scenario::resetSettings},
        {u"press"_s, u"BUTTON"_s, u"press a button of the mouse: 1 to 5, dpi or smart"_s, &Scenario::press},
        {u"release"_s, u"BUTTON"_s, u"release it"_s, &Scenario::release},
        {u"drain"_s, u"PERCENT"_s, u"take from the mouse's battery; negative charges it"_s, &Scenario::drain},
        {u"sleep"_s, u""_s, u"send the mouse to sleep"_s, &Scenario::sleep},
        {u"wake"_s, u""_s, u"wake it"_s, &Scenario::wake},
        {u"set"_s, u"FIELD VALUE..."_s, u"change the mouse without a report"_s, &Scenario::set},
        {u"report"_s, u"OPERATION VALUE..."_s, u"let the mouse report something unasked"_s,
         &Scenario::report},
        {u"other-thread"_s, u"COMMAND"_s,
         u"make the request, the start, stop or report from another thread"_s, &Scenario::otherThread},
        {u"at-once"_s, u"report ..."_s, u"report before anything that waits for the event loop"_s,
         &Scenario::atOnce},
        {u"inside-request"_s, u"report ..."_s, u"report before the next request is answered"_s,
         &Scenario::insideRequest},
        {u"fault"_s, u"OPERATION EFFECT [VALUE]... [times N|always]"_s,
         u"refuse, delay MS, drop, repeat N or alter VALUE... the next such operation"_s, &Scenario::fault},
        {u"faults"_s, u""_s, u"list the faults in force"_s, &Scenario::faults},
        {u"clear-faults"_s, u""_s, u"end all faults"_s, &Scenario::clearFaults},
        {u"answer-delay"_s, u"MS"_s, u"how long the mouse takes to answer"_s, &Scenario::answerDelay},
        {u"resend-limit"_s, u"N"_s, u"how often a request may be sent again"_s, &Scenario::resendLimit},
        {u"show"_s, u"[VALUE]"_s, u"print the device's values, or one"_s, &Scenario::show},
        {u"timeline"_s, u"[N]"_s, u"print the timeline's last lines"_s, &Scenario::showTimeline},
        {u"expect"_s, u"VALUE TEXT... | signal LINE | timeline [LINE | LINE ...] | log [LINE | LINE ...]"_s,
         u"compare a value, the next signal, the last lines without the log, or the log of the last command"_s,
         &Scenario::expect},
        {u"wait"_s, u"EVENT [MS]"_s, u"wait for a timeline line that begins so"_s, &Scenario::wait},
        {u"settle"_s, u""_s, u"wait until the mouse has said all and nothing is queued"_s, &Scenario::settle},
        {u"deadline"_s, u"MS"_s, u"how long requests are waited for"_s, &Scenario::deadline},
        {u"help"_s, u""_s, u"print this"_s, &Scenario::help},
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

CommandResult Scenario::execute(const QString &line)
{
    std::optional<QStringList> words = wordsOf(line);
    if (!words)
        return CommandResult::unusable(u"a quote is left open"_s);
    if (words->isEmpty())
        return {};
    const QString name = words->takeFirst();
    const auto command = std::find_if(commands().cbegin(), commands().cend(),
                                      [&](const Command &known) { return known.name == name; });
    if (command == commands().cend())
        return CommandResult::unusable(u"\"%1\" is no command; see help"_s.arg(name));

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
    static const QStringList notJudged{u"use"_s,          u"set"_s,      u"fault"_s,  u"faults"_s,
                                       u"clear-faults"_s, u"show"_s,     u"expect"_s, u"wait"_s,
                                       u"timeline"_s,     u"deadline"_s, u"help"_s,   u"answer-delay"_s,
                                       u"resend-limit"_s};
    if (!notJudged.contains(name))
        m_lastAction = m_workbench.timeline.lastSequence();
    return dispatch(*command, *words);
}

CommandResult Scenario::dispatch(const Command &command, const QStringList &words)
{
    static const QStringList withoutDevice{
        u"mouse"_s,        u"use"_s,          u"help"_s,     u"quit"_s,   u"answer-delay"_s,
        u"resend-limit"_s, u"deadline"_s,     u"faults"_s,   u"device"_s, u"log"_s,
        u"settle"_s,       u"clear-faults"_s, u"timeline"_s, u"expect"_s, u"wait"_s};
    if (!m_workbench.device() && !withoutDevice.contains(command.name))
        return withoutAnyDevice();
    static const QStringList withMouse{u"set"_s, u"press"_s, u"release"_s, u"drain"_s, u"sleep"_s, u"wake"_s};
    if (!m_workbench.hasMouse() && withMouse.contains(command.name))
        return CommandResult::unusable(
            u"device %1 has no mouse; see mouse and use"_s.arg(m_workbench.currentMouse()));
    if (command.arguments.isEmpty() && !words.isEmpty())
        return wrongWord(words.first(), u"wanted here; %1 stands alone"_s.arg(command.name));
    return (this->*command.run)(words);
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

CommandResult Scenario::withoutAnyDevice()
{
    return CommandResult::unusable(u"there is no mouse yet; add one with \"mouse 1\""_s);
}

CommandResult Scenario::wrongWord(const QString &word, const QString &wanted) const
{
    return CommandResult::unusable(u"\"%1\" is not %2"_s.arg(word, wanted));
}

QStringList Scenario::eventLines(quint64 after) const
{
    QStringList lines;
    const QList<TimelineEntry> entries = m_workbench.timeline.entriesAfter(after);
    for (const TimelineEntry &entry : entries) {
        if (entry.kind != TimelineEntry::Kind::Log)
            lines.append(Timeline::line(entry, lineStyle()));
    }
    return lines;
}

QStringList Scenario::logLines(quint64 after) const
{
    QStringList lines;
    const QList<TimelineEntry> entries = m_workbench.timeline.entriesAfter(after);
    for (const TimelineEntry &entry : entries) {
        if (entry.kind == TimelineEntry::Kind::Log)
            lines.append(Timeline::line(entry, lineStyle()));
    }
    return lines;
}
