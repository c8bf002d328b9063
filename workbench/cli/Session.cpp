#include "Session.h"

#include "TimelineWait.h"

using namespace Qt::StringLiterals;

namespace {

// Far longer than anything here takes: it ends a session that hangs.
constexpr std::chrono::seconds deadline{30};

}  // namespace

Session::Session(const QString &pluginFile) : m_pluginFile(pluginFile)
{
    m_receiver.setMouse(mouseId, SimulatedMouse());
}

QList<Session::Step> Session::steps()
{
    return {{u"check the metadata"_s, &Session::checkMetadata},
            {u"initialize the factory"_s, &Session::initializeFactory},
            {u"create the device"_s, &Session::createDevice},
            {u"start the device"_s, &Session::startDevice},
            {u"await the mouse's state"_s, &Session::awaitInitialState},
            {u"change the report rate"_s, &Session::changeReportRate},
            {u"ask for a report rate that is refused"_s, &Session::refuseReportRate},
            {u"hear the report rate unasked"_s, &Session::reportRateUnasked},
            {u"meet a confirmation that disagrees"_s, &Session::disagreeAboutReportRate},
            {u"change the DPI slot values"_s, &Session::changeDpiSlotValues},
            {u"ask for slot values that are refused"_s, &Session::refuseDpiSlotValues},
            {u"meet slot values that disagree"_s, &Session::disagreeAboutDpiSlotValues},
            {u"change the active DPI slot"_s, &Session::changeActiveDpiSlot},
            {u"lose a confirmation of the active slot"_s, &Session::loseActiveDpiSlotConfirmation},
            {u"change the DPI button, answered late"_s, &Session::changeDpiButton},
            {u"press the DPI button"_s, &Session::pressDpiButton},
            {u"read the default profile"_s, &Session::readDefaultProfile},
            {u"divert buttons to the host"_s, &Session::divertButtons},
            {u"give the buttons back"_s, &Session::giveButtonsBack},
            {u"tap the smart-pointer key"_s, &Session::tapSmartPointer},
            {u"apply and reset settings"_s, &Session::applyAndResetSettings},
            {u"change a capability"_s, &Session::changeCapability},
            {u"drain the battery"_s, &Session::drainBattery},
            {u"request something of a sleeping mouse"_s, &Session::sleepAndWake},
            {u"stop the device"_s, &Session::stopDevice},
            {u"destroy the device"_s, &Session::destroyDevice},
            {u"unload the plugin"_s, &Session::unloadPlugin}};
}

std::optional<QString> Session::load()
{
    return m_host.load(m_pluginFile);
}

void Session::run(const std::function<void(const QList<TimelineEntry> &)> &afterStep)
{
    const QList<Step> all = steps();
    for (const Step &step : all) {
        const quint64 before = m_timeline.lastSequence();
        m_step = step.name;
        m_stepStart = m_timeline.recordVerdict(u"step: "_s + m_step);
        (this->*step.play)();
        const QList<TimelineEntry> entries = m_timeline.entriesAfter(before);
        countEntries(entries);
        afterStep(entries);
        if (!m_differences.isEmpty())
            return;
    }
}

QList<QPair<QString, QString>> Session::summary() const
{
    using Kind = TimelineEntry::Kind;
    const auto count = [this](Kind kind) { return QString::number(m_entryCounts.value(kind)); };
    QList<QPair<QString, QString>> summary = m_values;
    summary.append({u"calls"_s, count(Kind::Call)});
    summary.append({u"receiver calls"_s, count(Kind::Receiver)});
    summary.append({u"reports"_s, count(Kind::Report)});
    summary.append({u"signals"_s, count(Kind::Signal)});
    summary.append({u"log lines"_s, count(Kind::Log)});
    return summary;
}

void Session::check(const QString &what, const QString &expected, const QString &seen)
{
    ++m_checkCount;
    if (expected == seen)
        return;
    m_differences.append({m_step, what, expected, seen});
    m_timeline.recordVerdict(u"%1 differs: expected %2, seen %3"_s.arg(what, expected, seen));
}

void Session::checkTimeline(const QStringList &expected)
{
    const QStringList seen = stepLines();
    // The first line that differs says more than two long lists.
    const qsizetype count = qMax(expected.size(), seen.size());
    for (qsizetype index = 0; index < count; ++index) {
        const QString nothing = u"nothing"_s;
        const QString expectedLine = expected.value(index, nothing);
        const QString seenLine = seen.value(index, nothing);
        if (expectedLine != seenLine || index == count - 1) {
            check(u"line %1 of the timeline"_s.arg(index + 1), expectedLine, seenLine);
            return;
        }
    }
}

QStringList Session::stepLines() const
{
    QStringList lines;
    const QList<TimelineEntry> entries = m_timeline.entriesAfter(m_stepStart);
    for (const TimelineEntry &entry : entries) {
        if (entry.kind != TimelineEntry::Kind::Log)
            lines.append(Timeline::line(entry, Timeline::Style::Plain));
    }
    return lines;
}

void Session::awaitReceiver()
{
    awaitEvent([this] { return m_receiver.isIdle(); });
}

void Session::awaitEvent(const std::function<bool()> &condition)
{
    check(u"that the mouse answers in time"_s, true, waitForTimeline(m_timeline, condition, deadline));
}

void Session::countEntries(const QList<TimelineEntry> &entries)
{
    for (const TimelineEntry &entry : entries)
        ++m_entryCounts[entry.kind];
}

void Session::readValues()
{
    const ILogicalDeviceGen3Mouse &device = *m_device->device();
    const uint firmware = device.firmwareVersion();
    m_values = {{u"mouse"_s, u"%1, %2"_s.arg(device.modelCode(), device.name())},
                {u"firmware"_s, u"%1 (0x%2)"_s.arg(firmware).arg(firmware, 4, 16, QLatin1Char('0'))},
                {u"battery"_s, u"%1 %"_s.arg(device.batteryLevel())},
                {u"DPI"_s, u"%1 (%2 to %3), slot %4 of %5"_s.arg(device.dpiValue())
                               .arg(device.dpiMin())
                               .arg(device.dpiMax())
                               .arg(device.activeDpiSlotIndex())
                               .arg(device.dpiSlotValues().join(u", "_s))},
                {u"DPI button"_s, QString::number(device.dpiButtonId())},
                {u"product id"_s, m_device->gen3()->ppid()},
                {u"report rate"_s, u"%1 Hz"_s.arg(device.reportRate())},
                {u"report rates"_s, device.reportRateValues().join(u", "_s)},
                {u"instance"_s, QString::number(device.instanceNumber())}};
}
