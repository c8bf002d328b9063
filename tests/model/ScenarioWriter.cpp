#include "ScenarioWriter.h"

#include "ScenarioCommand.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

using Kind = Operation::Kind;

// As the lines are while there is one mouse only.
void withoutIds(QStringList &lines)
{
    for (const DeviceId id : deviceIds)
        lines.replaceInStrings(u" [%1] "_s.arg(id), u" "_s);
}

DeviceId idOf(int slot)
{
    return deviceIds.at(static_cast<std::size_t>(slot));
}

QString reportLine(const Operation &report)
{
    return u"report [%1] %2"_s.arg(QString::number(idOf(report.slot)), reportText(report));
}

}  // namespace

bool isLogLine(const QString &line)
{
    return line.startsWith(u"debug") || line.startsWith(u"warning") || line.startsWith(u"critical");
}

ScenarioWriter::ScenarioWriter()
{
    m_lines.append(u"resend-limit 1000000"_s);
}

void ScenarioWriter::write(const Operation &operation)
{
    m_isCommand = false;
    switch (operation.kind) {
    case Kind::CreateDevice:
        return writeCreation(operation);
    case Kind::DestroyDevice:
        return writeDestruction(operation);
    case Kind::ChangeReceiver:
        return writeReceiver(operation);
    case Kind::Initialize:
        return writeLogSwitches(operation);
    case Kind::DeliverQueuedCalls:
        m_isQueuePossible = false;
        return appendCommand(u"settle"_s);
    default:
        break;
    }
    const QString command = scenarioCommand(operation);
    const bool isOneLine = !command.isEmpty() && !command.contains(u'\n');
    if (isOneLine && placeOf(operation.slot))
        writeCall(operation, command);
    else
        writeWithoutCommand(
            u"device %1: %2"_s.arg(QString::number(idOf(operation.slot)), callComment(operation)));
}

void ScenarioWriter::appendCommand(const QString &command)
{
    m_lines.append(command);
    m_isCommand = true;
}

// As long as something waits for the event loop, nothing else may let it run.
void ScenarioWriter::writeCall(const Operation &operation, QString command)
{
    const bool isDirect = operation.route == Operation::Route::Direct;
    if (operation.route == Operation::Route::OtherThread)
        m_isQueuePossible = true;
    const bool isUsual = isDirect && !m_isQueuePossible;
    if (isDirect && m_isQueuePossible && command.startsWith(u"report "))
        command.prepend(u"at-once "_s);
    if (!isUsual && !command.endsWith(u" nowait"))
        command.append(u" nowait"_s);
    use(operation.slot);
    appendCommand(routeWords(operation.route) + command);
}

void ScenarioWriter::writeLogSwitches(const Operation &operation)
{
    const auto state = [](bool isOn) { return isOn ? u"on"_s : u"off"_s; };
    const std::array<bool, 3> &switches = operation.logSwitches;
    // Once kvx does it by itself.
    if (std::exchange(m_isInitialized, true))
        appendCommand(u"log debug %1 warning %2 critical %3"_s.arg(state(switches[0]), state(switches[1]),
                                                                   state(switches[2])));
}

void ScenarioWriter::writeComment(const QString &text)
{
    const QStringList lines = text.split(u'\n');
    for (const QString &line : lines)
        m_lines.append(u"# "_s + line);
}

void ScenarioWriter::writeWithoutCommand(const QString &text)
{
    writeComment(text);
    m_isWhole = false;
}

void ScenarioWriter::writeCreation(const Operation &operation)
{
    const QString id = QString::number(idOf(operation.slot));
    m_places.at(static_cast<std::size_t>(operation.slot)) = operation.physical;
    m_currentSlot = operation.slot;
    if (!isMouse(operation.slot))
        return appendCommand(deviceCommand(operation.physical, id));
    if (operation.physical == Physical::SecondReceiver)
        writeWithoutCommand(u"device %1 is on another receiver"_s.arg(id));
    QStringList words{u"mouse"_s, id};
    const QList<QPair<QString, QString>> all = mouseFields(answersFor(operation.slot));
    for (const auto &[name, value] : all)
        words.append(name + u'=' + value);
    appendCommand(words.join(u' '));
    writeFaults(operation.slot);
}

void ScenarioWriter::writeDestruction(const Operation &operation)
{
    use(operation.slot);
    appendCommand(u"remove"_s);
    m_places.at(static_cast<std::size_t>(operation.slot)).reset();
    m_currentSlot = -1;
}

void ScenarioWriter::writeFaults(int slot)
{
    const QString effect = answersFor(slot).acceptsRequests ? u"drop"_s : u"refuse"_s;
    for (const QString &request : answeredRequests())
        m_lines.append(u"fault %1 %2 always"_s.arg(request, effect));
}

void ScenarioWriter::writeReceiver(const Operation &operation)
{
    ReceiverAnswers &answers = m_answers.at(static_cast<std::size_t>(operation.receiver));
    const QList<QPair<QString, QString>> before = mouseFields(answers);
    const bool isAcceptanceOther = answers.acceptsRequests != operation.answers.acceptsRequests;
    answers = operation.answers;
    const QList<QPair<QString, QString>> after = mouseFields(answers);
    if (isAcceptanceOther)
        m_lines.append(u"clear-faults"_s);
    for (int slot = 0; slot < deviceSlotCount; ++slot) {
        if (!isMouse(slot))
            continue;
        const bool isOnReceiver = receiverOf(*placeOf(slot)) == operation.receiver;
        for (qsizetype i = 0; isOnReceiver && i < after.size(); ++i) {
            if (after.at(i) == before.at(i))
                continue;
            use(slot);
            m_lines.append(
                u"set %1 %2"_s.arg(after.at(i).first, QString(after.at(i).second).replace(u',', u' ')));
        }
        if (isAcceptanceOther) {
            use(slot);
            writeFaults(slot);
        }
    }
}

void ScenarioWriter::expectLines(const Operation &operation, const Operation *insideReport,
                                 const QStringList &lines)
{
    // What is only kept back leaves no line.
    if (operation.route == Operation::Route::InsideRequest)
        return;
    const bool isOwnReport = isReport(operation.kind) || operation.kind == Kind::MouseEventCallBack;
    const QString thread = operation.route == Operation::Route::OtherThread ? u" on thread 2"_s : QString();
    QStringList wanted;
    if (isOwnReport)
        wanted.append(reportLine(operation) + thread);
    for (const QString &line : lines) {
        // Reports have a line of their own in place of the call's, and the receiver's signals have one, too.
        const bool isCallOfReport = line.startsWith(u"call") && (isOwnReport || !wanted.isEmpty());
        if (isLogLine(line) || isCallOfReport)
            continue;
        wanted.append(line);
        const QString request = line.section(u"] "_s, 1).section(u'(', 0, 0);
        if (!line.startsWith(u"receiver") || !answeredRequests().contains(request))
            continue;
        const QString effect = line.contains(u"-> true"_s) ? u"drop"_s : u"refuse"_s;
        wanted.append(u"verdict "_s + line.section(u' ', 1, 1) + u" fault on "_s + request + u": "_s +
                      effect + thread);
        if (const Operation *report = std::exchange(insideReport, nullptr))
            wanted.append(reportLine(*report) + thread);
    }
    if (deviceCount() < 2)
        withoutIds(wanted);
    m_lines.append((u"expect timeline "_s + wanted.join(u" | "_s)).trimmed());
}

void ScenarioWriter::expectLog(const QStringList &lines)
{
    m_lines.append((u"expect log "_s + lines.join(u" | "_s)).trimmed());
}

void ScenarioWriter::expectLogLine(const QString &line)
{
    // All is said already: there is nothing to wait for.
    m_lines.append(u"wait %1 0"_s.arg(line));
}

void ScenarioWriter::expectValue(DeviceId device, const QString &getter, const QString &value)
{
    const auto slot =
        static_cast<int>(std::find(deviceIds.cbegin(), deviceIds.cend(), device) - deviceIds.cbegin());
    if (!placeOf(slot))
        return;
    use(slot);
    m_lines.append(u"expect %1 %2"_s.arg(getter, value.isEmpty() ? u"\"\""_s : value));
}

QString ScenarioWriter::text() const
{
    return m_lines.join(u'\n') + u'\n';
}

void ScenarioWriter::use(int slot)
{
    if (m_currentSlot == slot)
        return;
    m_currentSlot = slot;
    m_lines.append(u"use "_s + QString::number(idOf(slot)));
}

int ScenarioWriter::deviceCount() const
{
    return static_cast<int>(std::count_if(m_places.cbegin(), m_places.cend(),
                                          [](const auto &place) { return place.has_value(); }));
}

const ReceiverAnswers &ScenarioWriter::answersFor(int slot) const
{
    return m_answers.at(static_cast<std::size_t>(receiverOf(placeOf(slot).value()).value()));
}
