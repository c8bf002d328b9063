#include "ScenarioWriter.h"

#include "ScenarioCommand.h"

#include <algorithm>

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

}  // namespace

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
        // What kvx does by itself.
        if (operation.logSwitches != std::array<bool, 3>{true, true, true})
            writeWithoutCommand(u"the factory: "_s + callText(operation));
        return;
    case Kind::DeliverQueuedCalls:
        return writeComment(u"the event loop is emptied"_s);
    default:
        break;
    }
    const QString command = scenarioCommand(operation);
    const bool isOneLine = !command.isEmpty() && !command.contains(u'\n');
    if (!isOneLine || operation.route != Operation::Route::Direct || !isMouse(operation.slot)) {
        writeWithoutCommand(
            u"device %1: %2"_s.arg(QString::number(idOf(operation.slot)), callComment(operation)));
        return;
    }
    use(operation.slot);
    m_lines.append(command);
    m_isCommand = true;
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
    if (operation.physical != Physical::FirstReceiver)
        writeWithoutCommand(u"device %1 is %2"_s.arg(id, placeComment(operation.physical)));
    const std::optional<int> receiver = receiverOf(operation.physical);
    m_receivers.at(static_cast<std::size_t>(operation.slot)) = receiver;
    if (!receiver)
        return;
    QStringList words{u"mouse"_s, id};
    const QList<QPair<QString, QString>> all = mouseFields(answersFor(operation.slot));
    for (const auto &[name, value] : all)
        words.append(name + u'=' + value);
    m_lines.append(words.join(u' '));
    m_currentSlot = operation.slot;
    writeFaults(operation.slot);
}

void ScenarioWriter::writeDestruction(const Operation &operation)
{
    if (!isMouse(operation.slot)) {
        writeComment(u"device %1 is destroyed"_s.arg(idOf(operation.slot)));
        return;
    }
    use(operation.slot);
    m_lines.append(u"remove"_s);
    m_isCommand = true;
    m_receivers.at(static_cast<std::size_t>(operation.slot)).reset();
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
        const bool isOnReceiver = m_receivers.at(static_cast<std::size_t>(slot)) == operation.receiver;
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

void ScenarioWriter::expectLines(const Operation &operation, const QStringList &lines)
{
    QStringList wanted;
    for (const QString &line : lines) {
        if (line.startsWith(u"debug") || line.startsWith(u"warning") || line.startsWith(u"critical"))
            continue;
        wanted.append(line);
        const QString request = line.section(u"] "_s, 1).section(u'(', 0, 0);
        if (line.startsWith(u"receiver") && answeredRequests().contains(request)) {
            const QString effect = line.endsWith(u"true") ? u"drop"_s : u"refuse"_s;
            wanted.append(u"verdict "_s + line.section(u' ', 1, 1) + u" fault on "_s + request + u": "_s +
                          effect);
        }
    }
    if (isReport(operation.kind) || operation.kind == Kind::MouseEventCallBack) {
        // The receiver's own signals have no line of call here, and the rates come with another first word.
        const QString own =
            u"report [%1] %2"_s.arg(QString::number(idOf(operation.slot)), callText(operation));
        if (!wanted.isEmpty() && wanted.first().startsWith(u"call"))
            wanted.removeFirst();
        if (operation.kind != Kind::ReportRateChangedCallBack)
            wanted.prepend(own);
    }
    if (mouseCount() < 2)
        withoutIds(wanted);
    if (!wanted.isEmpty())
        m_lines.append(u"expect timeline "_s + wanted.join(u" | "_s));
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
    if (!isMouse(slot))
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

int ScenarioWriter::mouseCount() const
{
    return static_cast<int>(
        std::count_if(m_receivers.cbegin(), m_receivers.cend(),
                      [](const std::optional<int> &receiver) { return receiver.has_value(); }));
}

const ReceiverAnswers &ScenarioWriter::answersFor(int slot) const
{
    return m_answers.at(static_cast<std::size_t>(m_receivers.at(static_cast<std::size_t>(slot)).value()));
}
