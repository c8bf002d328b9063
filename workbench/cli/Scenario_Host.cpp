#include "MouseFields.h"
#include "Scenario.h"
#include "Words.h"

using namespace Qt::StringLiterals;

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
    return checkNewDevice();
}

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
    return checkNewDevice();
}

CommandResult Scenario::checkNewDevice()
{
    const HostedDevice &device = *m_workbench.device();
    if (device.device() && device.gen3())
        return {};
    return CommandResult::difference(
        u"createLogicalDevice: expected a QObject with %1 and %2, seen something else"_s.arg(
            QLatin1StringView(ILogicalDeviceGen3Mouse_iid), QLatin1StringView(ILogicalDeviceGen3_iid)));
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

CommandResult Scenario::unload(const QStringList & /*words*/)
{
    if (!m_workbench.unload())
        return CommandResult::difference(u"unload: the library is still in the process"_s);
    return {};
}

CommandResult Scenario::loadAgain(const QStringList &words)
{
    if (m_workbench.host.factory())
        return CommandResult::unusable(u"the plugin is loaded; put this behind \"unload\""_s);
    QStringList rest = words;
    const bool isInitialized = rest.isEmpty() || rest.last() != u"uninitialized";
    if (!isInitialized)
        rest.removeLast();
    QString copyName;
    if (rest.size() == 2 && rest.first() == u"as")
        copyName = rest.last();
    else if (!rest.isEmpty())
        return wrongWord(words.join(u' '), u"known here; write load [as NAME] [uninitialized]"_s);
    if (copyName.contains(u'/') || copyName.contains(u'\\'))
        return wrongWord(copyName, u"the name of a file without a folder"_s);
    const std::optional<QString> reason = m_workbench.loadAgain(copyName, isInitialized);
    return reason ? CommandResult::difference(u"load: "_s + *reason) : CommandResult();
}

CommandResult Scenario::receiver(const QStringList &words)
{
    constexpr int mostReceivers = 9;
    const std::optional<int> number = onlyNumber(words, 1, mostReceivers);
    if (!number)
        return wrongWord(words.join(u' '), u"the number of a receiver, 1 to %1"_s.arg(mostReceivers));
    m_workbench.useReceiver(*number);
    return {};
}

CommandResult Scenario::categories(const QStringList &words)
{
    for (const QString &rule : words) {
        const QString state = rule.section(u'=', 1);
        if (rule.startsWith(u'=') || (state != u"true" && state != u"false"))
            return wrongWord(rule, u"a rule; write CATEGORY=true or CATEGORY.debug=false"_s);
    }
    m_workbench.setCategoryRules(words.join(u'\n'));
    return {};
}

CommandResult Scenario::log(const QStringList &words)
{
    QStringList names;
    for (const char *name : Workbench::logSwitchNames)
        names.append(QString::fromLatin1(name));
    Workbench::LogSwitches switches = m_workbench.logSwitches();
    if (words.isEmpty())
        return wrongWord(QString(), u"a log switch: "_s + names.join(u", "_s));
    for (qsizetype i = 0; i < words.size(); i += 2) {
        const qsizetype index = names.indexOf(words.at(i));
        const QString state = words.value(i + 1);
        if (index < 0)
            return wrongWord(words.at(i), u"a log switch: "_s + names.join(u", "_s));
        if (state != u"on" && state != u"off")
            return wrongWord(state, u"on or off, for the log switch "_s + words.at(i));
        switches.at(static_cast<std::size_t>(index)) = state == u"on";
    }
    if (!m_workbench.setLogSwitches(switches))
        return compare(u"initialize"_s, u"true"_s, u"false"_s);
    return {};
}

CommandResult Scenario::answerDelay(const QStringList &words)
{
    const std::optional<int> delay = onlyNumber(words, 0);
    if (!delay)
        return wrongWord(words.join(u' '), u"a number of milliseconds"_s);
    for (SimulatedReceiver *receiver : m_workbench.receivers())
        receiver->setAnswerDelay(std::chrono::milliseconds(*delay));
    return {};
}

CommandResult Scenario::resendLimit(const QStringList &words)
{
    const std::optional<int> limit = onlyNumber(words, 1);
    if (!limit)
        return wrongWord(words.join(u' '), u"a number of repetitions, 1 or more"_s);
    for (SimulatedReceiver *receiver : m_workbench.receivers())
        receiver->setResendLimit(*limit);
    return {};
}

CommandResult Scenario::deadline(const QStringList &words)
{
    const std::optional<int> limit = onlyNumber(words, 0);
    if (!limit)
        return wrongWord(words.join(u' '), u"a number of milliseconds"_s);
    m_workbench.deadline = std::chrono::milliseconds(*limit);
    return {};
}
