#include "Scenario.h"
#include "Words.h"

using namespace Qt::StringLiterals;

namespace {

using Mouse = ILogicalDeviceGen3Mouse;

ExitCode codeOf(const QString &outcome)
{
    if (outcome == u"refused")
        return ExitCode::Refused;
    return outcome == u"pending" ? ExitCode::Pending : ExitCode::Success;
}

// Whether the receiver refused such a request of this mouse since then, be it the request itself or a
// repetition.
bool wasRefused(const Timeline &timeline, quint64 since, DeviceId mouse, const QString &operation)
{
    const QList<TimelineEntry> entries = timeline.entriesAfter(since);
    for (const TimelineEntry &entry : entries) {
        if (entry.kind == TimelineEntry::Kind::Receiver && entry.device == mouse && entry.name == operation &&
            !entry.result.toBool())
            return true;
    }
    return false;
}

}  // namespace

CommandResult Scenario::request(const QString &receiverOperation, bool (Mouse::*pending)() const,
                                const std::function<void(HostedDevice &)> &call)
{
    HostedDevice &device = *m_workbench.device();
    const quint64 before = m_workbench.timeline.lastSequence();
    callDevice([&] { call(device); });
    const auto isPending = [&] { return pending && (device.device()->*pending)(); };
    if (!m_isWaiting)
        return {};
    m_workbench.settle([&] { return pending && !isPending(); });
    QString outcome = isPending() ? u"pending"_s : u"confirmed"_s;
    if (wasRefused(m_workbench.timeline, before, device.id(), receiverOperation))
        outcome = u"refused"_s;

    if (m_wantedOutcome.isEmpty() && outcome != u"confirmed")
        return {codeOf(outcome), u"the request is "_s + outcome, false};
    if (!m_wantedOutcome.isEmpty() && outcome != m_wantedOutcome)
        return CommandResult::difference(
            u"the request: expected %1, seen %2"_s.arg(m_wantedOutcome, outcome));
    return settled();
}

CommandResult Scenario::start(const QStringList & /*words*/)
{
    bool isStarted = false;
    m_workbench.noteStart();
    callDevice([&] { isStarted = m_workbench.device()->start(); });
    if (!isStarted)
        return CommandResult::difference(u"start: expected true, seen false"_s);
    return settled();
}

CommandResult Scenario::stop(const QStringList & /*words*/)
{
    callDevice([this] { m_workbench.device()->stop(); });
    return settled();
}

CommandResult Scenario::setReportRate(const QStringList &words)
{
    const std::optional<int> rate = numberOf(words.value(0));
    if (!rate || words.size() != 1)
        return wrongWord(words.join(u' '), u"one rate in Hz"_s);
    return request(u"setReportRate"_s, &Mouse::isReportRateChangePending,
                   [&](HostedDevice &device) { device.setReportRate(*rate); });
}

CommandResult Scenario::setDpiSlotValues(const QStringList &words)
{
    return request(u"setDpiSlotValues"_s, &Mouse::isDpiSlotValuesChangePending,
                   [&](HostedDevice &device) { device.setDpiSlotValues(words); });
}

CommandResult Scenario::setActiveDpiSlotIndex(const QStringList &words)
{
    const std::optional<int> index = numberOf(words.value(0));
    if (!index || words.size() != 1)
        return wrongWord(words.join(u' '), u"one slot index"_s);
    return request(u"setDpiButtonAndActiveSlot"_s, &Mouse::isActiveDpiSlotIndexChangePending,
                   [&](HostedDevice &device) { device.setActiveDpiSlotIndex(*index); });
}

CommandResult Scenario::setDpiButtonId(const QStringList &words)
{
    const std::optional<int> id = numberOf(words.value(0));
    if (!id || words.size() != 1)
        return wrongWord(words.join(u' '), u"one button id"_s);
    return request(u"setDpiButtonAndActiveSlot"_s, &Mouse::isDpiButtonIdChangePending,
                   [&](HostedDevice &device) { device.setDpiButtonId(*id); });
}

CommandResult Scenario::disableButtons(const QStringList &words)
{
    QList<int> buttons;
    for (const QString &word : words) {
        const std::optional<int> button = numberOf(word);
        if (!button)
            return wrongWord(word, u"a button number"_s);
        buttons.append(*button);
    }
    return request(u"setDisabledButtonsOrKeysMask"_s, nullptr,
                   [&](HostedDevice &device) { device.disbaleButtonsOrKeys(buttons); });
}

CommandResult Scenario::setButtonsToDefault(const QStringList & /*words*/)
{
    return request(u"setDisabledButtonsOrKeysMask"_s, nullptr,
                   [](HostedDevice &device) { device.setButtonsOrKeysToDefault(); });
}

CommandResult Scenario::applySettings(const QStringList &words)
{
    QVariantMap settings;
    for (const QString &word : words) {
        const qsizetype equals = word.indexOf(u'=');
        if (equals < 1)
            return wrongWord(word, u"a setting; write NAME=VALUE"_s);
        const QString value = word.sliced(equals + 1);
        const std::optional<int> number = numberOf(value);
        settings.insert(word.left(equals), number ? QVariant(*number) : QVariant(value));
    }
    callDevice([&] { m_workbench.device()->applySettings(settings); });
    return settled();
}

CommandResult Scenario::resetSettings(const QStringList & /*words*/)
{
    return request(u"setDisabledButtonsOrKeysMask"_s, nullptr,
                   [](HostedDevice &device) { device.resetSettings(); });
}
