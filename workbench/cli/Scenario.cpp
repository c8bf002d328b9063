#include "Scenario.h"

#include "TimelineFile.h"
#include "Words.h"

#include <utility>

using namespace Qt::StringLiterals;

const QList<Scenario::Command> &Scenario::commands()
{
    using Device = ILogicalDeviceGen3Mouse;
    using Kind = Command::Kind;
    using Needs = Command::Needs;
    using Routes = Command::Routes;
    const auto call = [](const DeviceOperation &operation, const char *arguments, const char *help,
                         const DeviceOperation *request = nullptr,
                         bool(Device::*isPending)() const = nullptr) {
        Command command{operation.name, arguments, help, &Scenario::callOperation, Needs::Device};
        if (&operation == &calls::forwardToPhysicalDevice)
            command.needs = Needs::PhysicalDevice;
        command.routes = Routes::OtherThread;
        command.operation = &operation;
        command.request = request;
        command.isPending = isPending;
        return command;
    };
    static const QList<Command> table{
        {"mouse", "ID [FIELD=VALUE,...]...", "add a mouse and create its device", &Scenario::mouse,
         Needs::Plugin},
        {"use", "ID", "make another mouse the current one", &Scenario::use, Needs::Nothing, Kind::Setting},
        {"remove", "", "destroy the current device and take its mouse away", &Scenario::remove,
         Needs::Device},
        {"device", "ID none|other", "add a device without a physical device, or with one that is no receiver",
         &Scenario::device, Needs::Plugin},
        {"log", "SWITCH on|off ...", "initialize the plugin again: debug, warning, critical", &Scenario::log,
         Needs::Plugin},
        {"categories", "[RULE]...", "filter Qt's logging categories; alone: no rules", &Scenario::categories,
         Needs::Nothing, Kind::Setting},
        {"receiver", "NUMBER", "add mice from now on to another receiver; the first is 1",
         &Scenario::receiver, Needs::Nothing, Kind::Setting},
        {"unload", "", "unload the plugin with all devices that are left", &Scenario::unload, Needs::Plugin},
        {"load", "[as NAME] [uninitialized]",
         "load it again; from a copy with another file name; without initializing it", &Scenario::loadAgain},
        call(calls::start, "", "start the current device; the mouse reports its state"),
        call(calls::stop, "", "stop it"),
        call(calls::setReportRate, "HZ", "request a report rate", &requests::setReportRate,
             &Device::isReportRateChangePending),
        call(calls::setDpiSlotValues, "DPI...", "request slot values, as the texts given",
             &requests::setDpiSlotValues, &Device::isDpiSlotValuesChangePending),
        call(calls::setActiveDpiSlotIndex, "INDEX", "request the active slot",
             &requests::setDpiButtonAndActiveSlot, &Device::isActiveDpiSlotIndexChangePending),
        call(calls::setDpiButtonId, "ID", "request the DPI button; 0 is the default",
             &requests::setDpiButtonAndActiveSlot, &Device::isDpiButtonIdChangePending),
        call(calls::disbaleButtonsOrKeys, "[BUTTON]...", "divert these buttons to the host",
             &requests::setDisabledButtonsOrKeysMask),
        call(calls::setButtonsOrKeysToDefault, "", "end the diversion of all buttons",
             &requests::setDisabledButtonsOrKeysMask),
        call(calls::applySettings, "[NAME=VALUE]...", "pass settings to the device"),
        call(calls::resetSettings, "", "reset the device's settings",
             &requests::setDisabledButtonsOrKeysMask),
        call(calls::setDpiValue, "DPI", "set the DPI, which this model does not do"),
        call(calls::forwardToPhysicalDevice, "N N N", "pass three numbers to the physical device"),
        call(calls::query26, "N N N", "pass three numbers to the receiver"),
        {"call", "OPERATION [VALUE]...", "call any other operation of the device's tables",
         &Scenario::callOther, Needs::Device, Kind::Action, Routes::OtherThread},
        {"slot", "NAME [VALUE]...", "invoke a slot of the device by its name", &Scenario::invokeSlot,
         Needs::Device, Kind::Action, Routes::OtherThread},
        {"press", "BUTTON", "press a button of the mouse: 1 to 5, dpi or smart", &Scenario::press,
         Needs::Mouse},
        {"release", "BUTTON", "release it", &Scenario::release, Needs::Mouse},
        {"drain", "PERCENT", "take from the mouse's battery; negative charges it", &Scenario::drain,
         Needs::Mouse},
        {"sleep", "", "send the mouse to sleep", &Scenario::act<&SimulatedMouse::sleep>, Needs::Mouse},
        {"wake", "", "wake it", &Scenario::act<&SimulatedMouse::wake>, Needs::Mouse},
        {"set", "FIELD VALUE...", "change the mouse without a report", &Scenario::set, Needs::Mouse,
         Kind::Setting},
        {"report", "OPERATION VALUE...", "let the mouse report something unasked", &Scenario::report,
         Needs::Device, Kind::Action, Routes::All},
        {"other-thread", "COMMAND", "make the call or the report from another thread",
         &Scenario::runBy<Route::OtherThread>, Needs::Device},
        {"at-once", "report ...", "report before anything that waits for the event loop",
         &Scenario::runBy<Route::AtOnce>, Needs::Device},
        {"inside-request", "report ...", "report before the next request is answered",
         &Scenario::runBy<Route::InsideRequest>, Needs::Device},
        {"when", "LINE COMMAND", "run a command inside the next line of the next command that begins so",
         &Scenario::when, Needs::Plugin, Kind::Setting},
        {"fault", "OPERATION EFFECT [VALUE]... [times N|always]",
         "refuse, delay MS, drop, repeat N or alter VALUE... the next such operation", &Scenario::fault,
         Needs::Device, Kind::Setting},
        {"faults", "", "list the faults in force", &Scenario::faults, Needs::Nothing, Kind::Setting},
        {"clear-faults", "", "end all faults", &Scenario::clearFaults, Needs::Nothing, Kind::Setting},
        {"answer-delay", "MS", "how long the mouse takes to answer", &Scenario::answerDelay, Needs::Nothing,
         Kind::Setting},
        {"resend-limit", "N", "how often a request may be sent again", &Scenario::resendLimit, Needs::Nothing,
         Kind::Setting},
        {"deadline", "MS", "how long requests are waited for", &Scenario::deadline, Needs::Nothing,
         Kind::Setting},
        {"show", "[VALUE]", "print the device's values, or one", &Scenario::show, Needs::Device, Kind::Check},
        {"timeline", "[N]", "print the timeline's last lines", &Scenario::showTimeline, Needs::Nothing,
         Kind::Check},
        {"=", "LINE",
         "compare the next line that the last command left; with the first, all of them must be given; log "
         "lines count: \"log debug off\" before \"mouse\" leaves most of them out",
         &Scenario::expectNextLine, Needs::Nothing, Kind::Check},
        {"expect",
         "VALUE TEXT... | signal NAME(ARGUMENTS) | timeline [LINE | LINE ...] | log [LINE | LINE ...] | "
         "metadata JSON | exports NAME... | agreement | no-growth",
         "compare a value, the next signal that was not compared yet, counted from the start of the run, the "
         "last lines without the log, the log of the last command, the plugin's metadata without its Qt "
         "version and build type, the symbols that it exports, all values with their last signals and the "
         "mouse's, or what the process holds with what it held halfway through the last repeat",
         &Scenario::expect, Needs::Nothing, Kind::Check},
        {"wait", "EVENT [MS]", "wait for a timeline line that begins so", &Scenario::wait, Needs::Nothing,
         Kind::Check},
        {"settle", "", "wait until the mouse has reported everything and nothing is queued",
         &Scenario::settle},
        {"repeat", "N", "run the lines up to \"end\" N times", &Scenario::repeat, Needs::Nothing,
         Kind::Setting},
        {"end", "", "end the lines of repeat", &Scenario::end, Needs::Nothing, Kind::Setting},
        {"random", "N", "do N things that the seed chooses; after each, device and mouse must agree",
         &Scenario::random, Needs::Mouse},
        {"parallel", "THREADS COUNT", "let COUNT devices live on each of so many threads at once",
         &Scenario::parallel, Needs::Plugin},
        {"help", "", "print this", &Scenario::help, Needs::Nothing, Kind::Setting},
        {"quit", "", "end", &Scenario::quit},
    };
    return table;
}

Scenario::Scenario(std::function<void(const QString &)> print, quint32 seed)
    : m_print(std::move(print)), m_randomSteps(seed)
{
    keepInTimelineFile(m_workbench.timeline);
}

std::optional<QString> Scenario::load(const QString &pluginFile)
{
    return m_workbench.load(pluginFile);
}

QStringList Scenario::commandNames()
{
    QStringList names;
    for (const Command &command : commands())
        names.append(QString::fromLatin1(command.name));
    return names;
}

const Scenario::Command *Scenario::findCommand(const QString &name)
{
    for (const Command &command : commands()) {
        if (name == QLatin1StringView(command.name))
            return &command;
    }
    return nullptr;
}

CommandResult Scenario::execute(const QString &line, std::optional<qsizetype> index)
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
        CommandResult rest = uncomparedLine();
        if (rest.code != ExitCode::Success)
            return rest;
    }

    m_lineIndex = index;
    m_rest = behindFirstWord(line);
    m_wantedOutcome.clear();
    m_isWaiting = true;
    m_route = Route::Usual;
    if (words->size() >= 2 && words->at(words->size() - 2) == u"=>") {
        m_wantedOutcome = words->takeLast();
        words->removeLast();
        if (!QStringList{u"confirmed"_s, u"refused"_s, u"pending"_s}.contains(m_wantedOutcome))
            return wrongWord(m_wantedOutcome, u"an outcome: confirmed, refused or pending"_s);
        const Command *request = command->operation ? command : findCommand(words->value(0));
        if (!request || (!request->request && request->operation != &calls::start))
            return CommandResult::unusable(
                u"%1 is no request that has an outcome; delete \"=> %2\""_s.arg(name, m_wantedOutcome));
    } else if (!words->isEmpty() && words->last() == u"nowait") {
        m_isWaiting = false;
        words->removeLast();
    }
    if (command->kind != Command::Kind::Action)
        return dispatch(*command, *words);
    m_lastAction = m_workbench.timeline.lastSequence();
    CommandResult result = dispatch(*command, *words);
    CommandResult inside = takeInsideResult();
    return result.code == ExitCode::Success && inside.code != ExitCode::Success ? inside : result;
}

CommandResult Scenario::finish()
{
    CommandResult rest = uncomparedLine();
    if (rest.code == ExitCode::Success && m_repeat.isOpen)
        return CommandResult::unusable(u"\"repeat\" is not ended; put \"end\" behind its lines"_s);
    return rest;
}

CommandResult Scenario::uncomparedLine()
{
    const qsizetype compared = m_comparedLines.size();
    if (compared == 0)
        return {};
    CommandResult result;
    if (compared < linesAfter(m_lastAction, {}).size())
        result = compareLine(compared, QString());
    m_comparedLines.clear();
    return result;
}

CommandResult Scenario::dispatch(const Command &command, const QStringList &words)
{
    CommandResult missing = whatIsMissing(command.needs);
    if (missing.code != ExitCode::Success)
        return missing;
    if (*command.arguments == '\0' && !words.isEmpty())
        return wrongWord(words.first(),
                         u"wanted here; %1 takes no words"_s.arg(QLatin1StringView(command.name)));
    m_command = &command;
    return (this->*command.run)(words);
}

CommandResult Scenario::whatIsMissing(Command::Needs needs) const
{
    using Needs = Command::Needs;
    const HostedDevice *device = m_workbench.device();
    if (needs >= Needs::Plugin && !m_workbench.host.factory())
        return CommandResult::unusable(
            u"the plugin is unloaded; put this before \"unload\" or behind \"load\""_s);
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
    for (const Command &command : commands()) {
        const QString usage =
            u"%1 %2"_s.arg(QLatin1StringView(command.name), QLatin1StringView(command.arguments));
        m_print(u"  %1\n        %2"_s.arg(usage.trimmed(), QLatin1StringView(command.help)));
    }
    m_print(u"A request waits for its outcome; \"nowait\" behind it does not, \"=> refused\" (confirmed, "
            "pending) says which outcome is right. # begins a comment."_s);
    return {};
}

CommandResult Scenario::quit(const QStringList & /*words*/)
{
    CommandResult result;
    result.isEnd = true;
    return result;
}

CommandResult Scenario::settle(const QStringList & /*words*/)
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
