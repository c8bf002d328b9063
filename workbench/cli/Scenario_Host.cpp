#include "Scenario.h"
#include "Words.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

const QStringList &switchNames()
{
    static const QStringList names{u"debug"_s, u"warning"_s, u"critical"_s};
    return names;
}

}  // namespace

CommandResult Scenario::device(const QStringList &words)
{
    const std::optional<DeviceId> id = deviceIdOf(words.value(0));
    if (!id)
        return wrongWord(words.value(0), u"a device id; write a whole number"_s);
    const QString physicalDevice = words.mid(1).join(u' ');
    if (physicalDevice != u"none" && physicalDevice != u"other")
        return wrongWord(physicalDevice, u"a physical device: none, or other for one that is no receiver"_s);
    if (!m_workbench.addDevice(*id, physicalDevice == u"other"))
        return CommandResult::unusable(u"there is a device %1 already; see use"_s.arg(*id));
    return {};
}

CommandResult Scenario::log(const QStringList &words)
{
    Workbench::LogSwitches switches = m_workbench.logSwitches();
    if (words.isEmpty())
        return wrongWord(QString(), u"a log switch: "_s + switchNames().join(u", "_s));
    for (qsizetype i = 0; i < words.size(); i += 2) {
        const qsizetype index = switchNames().indexOf(words.at(i));
        const QString state = words.value(i + 1);
        if (index < 0)
            return wrongWord(words.at(i), u"a log switch: "_s + switchNames().join(u", "_s));
        if (state != u"on" && state != u"off")
            return wrongWord(state, u"on or off, for the log switch "_s + words.at(i));
        switches.at(static_cast<std::size_t>(index)) = state == u"on";
    }
    m_workbench.setLogSwitches(switches);
    return {};
}

CommandResult Scenario::settle(const QStringList & /*words*/)
{
    return settled();
}

CommandResult Scenario::otherThread(const QStringList &words)
{
    static const QStringList known{u"start"_s,
                                   u"stop"_s,
                                   u"setReportRate"_s,
                                   u"setDpiSlotValues"_s,
                                   u"setActiveDpiSlotIndex"_s,
                                   u"setDpiButtonId"_s,
                                   u"disbaleButtonsOrKeys"_s,
                                   u"setButtonsOrKeysToDefault"_s,
                                   u"applySettings"_s,
                                   u"resetSettings"_s,
                                   u"report"_s};
    return runBy(Route::OtherThread, known, words);
}

CommandResult Scenario::atOnce(const QStringList &words)
{
    return runBy(Route::AtOnce, {u"report"_s}, words);
}

CommandResult Scenario::insideRequest(const QStringList &words)
{
    return runBy(Route::InsideRequest, {u"report"_s}, words);
}

CommandResult Scenario::runBy(Route route, const QStringList &known, const QStringList &words)
{
    const QString name = words.value(0);
    const auto command = std::find_if(commands().cbegin(), commands().cend(),
                                      [&](const Command &candidate) { return candidate.name == name; });
    if (!known.contains(name) || command == commands().cend())
        return wrongWord(name, u"a command that can come so; there are "_s + known.join(u", "_s));
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
