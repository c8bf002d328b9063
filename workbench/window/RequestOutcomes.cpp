#include "RequestOutcomes.h"

#include "DeviceState.h"
#include "LineSender.h"

#include <QtCore/QJsonDocument>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace {

struct Request
{
    QLatin1StringView command;
    // What the receiver is asked for.
    QLatin1StringView operation;
    // How the state names it while it is pending; empty for one that is never pending.
    QLatin1StringView property;
};

constexpr std::array requests{
    Request{"setReportRate"_L1, "setReportRate"_L1, "reportRate"_L1},
    Request{"setDpiSlotValues"_L1, "setDpiSlotValues"_L1, "dpiSlotValues"_L1},
    Request{"setActiveDpiSlotIndex"_L1, "setDpiButtonAndActiveSlot"_L1, "activeDpiSlotIndex"_L1},
    Request{"setDpiButtonId"_L1, "setDpiButtonAndActiveSlot"_L1, "dpiButtonId"_L1},
    Request{"disbaleButtonsOrKeys"_L1, "setDisabledButtonsOrKeysMask"_L1, {}},
    Request{"setButtonsOrKeysToDefault"_L1, "setDisabledButtonsOrKeysMask"_L1, {}},
    Request{"resetSettings"_L1, "setDisabledButtonsOrKeysMask"_L1, {}},
};

// Null for a call without an outcome.
const Request *requestOf(const QString &command)
{
    const auto *const found = std::find_if(
        requests.begin(), requests.end(), [&](const Request &request) { return request.command == command; });
    return found == requests.end() ? nullptr : found;
}

QString keyOf(const QString &device, const QString &name)
{
    return device + u' ' + name;
}

bool isRefusal(const Entry &entry)
{
    return QJsonDocument::fromJson(entry.json.toUtf8())["result"_L1] == QJsonValue(false);
}

QSet<QString> pendingOf(const QJsonObject &state)
{
    QSet<QString> pending;
    const QJsonArray devices = state.value("devices"_L1).toArray();
    for (const auto value : devices) {
        const QJsonObject device = value.toObject();
        const QJsonArray properties = device.value("pending"_L1).toArray();
        for (const Request &request : requests) {
            if (properties.contains(QString(request.property)))
                pending.insert(keyOf(DeviceState::idOf(device), request.command));
        }
    }
    return pending;
}

}  // namespace

RequestOutcomes::RequestOutcomes(Engine *engine, LineSender *sender, QObject *parent)
    : QObject(parent), m_engine(engine), m_sender(sender)
{
    connect(sender, &LineSender::answered, this, &RequestOutcomes::takeAnswer);
    connect(engine, &Engine::entriesCame, this, &RequestOutcomes::takeEntries);
    connect(engine, &Engine::stateChanged, this, &RequestOutcomes::takeState);
    connect(engine, &Engine::started, this, &RequestOutcomes::forget);
    connect(engine, &Engine::ended, this, &RequestOutcomes::forget);
}

void RequestOutcomes::send(const QString &command, const QString &words)
{
    const Request *request = requestOf(command);
    const QString line = words.isEmpty() ? command : command + u' ' + words;
    const int number = m_sender->send(request ? line + u" nowait"_s : line);
    if (number == 0)
        return;
    m_sent.insert(number, command);
    if (request && m_settles)
        m_sender->send(u"settle"_s);
    Q_EMIT changed();
}

RequestOutcomes::Outcome RequestOutcomes::outcome(const QString &command) const
{
    if (std::find(m_sent.cbegin(), m_sent.cend(), command) != m_sent.cend())
        return Outcome::Sent;
    const QString key = keyOf(DeviceState::currentId(m_engine->state()), command);
    return m_pending.contains(key) ? Outcome::Pending : m_outcomes.value(key, Outcome::None);
}

void RequestOutcomes::takeAnswer(const Answer &answer)
{
    const QString command = m_sent.take(answer.number);
    if (command.isEmpty())
        return;
    // The state of before the line: its device is the one that the line was for.
    const QString device = DeviceState::currentId(m_engine->state());
    const Request *request = requestOf(command);
    const QString key = keyOf(device, command);
    Outcome &outcome = m_outcomes[key];
    // The state that follows says whether it is pending now.
    m_pending.remove(key);
    if (answer.result != "done"_L1)
        outcome = Outcome::Wrong;
    else if (!request)
        outcome = Outcome::Done;
    else if (m_refusals.remove(keyOf(device, request->operation)))
        outcome = Outcome::Refused;
    else
        outcome = Outcome::Confirmed;
    Q_EMIT changed();
}

void RequestOutcomes::takeEntries(const QList<Entry> &entries)
{
    for (const Entry &entry : entries) {
        if (!entry.device)
            continue;
        const QString device = QString::number(*entry.device);
        if (entry.kind == "receiver"_L1)
            noteRefusal(device, entry);
        else if (entry.kind == "signal"_L1)
            forgetConfirmation(device, entry.name);
    }
}

// A later call of the operation replaces what is known of an earlier one.
void RequestOutcomes::noteRefusal(const QString &device, const Entry &entry)
{
    const QString key = keyOf(device, entry.name);
    if (isRefusal(entry))
        m_refusals.insert(key);
    else
        m_refusals.remove(key);
}

// The mouse has changed the value by itself: what it confirmed is no longer in force.
void RequestOutcomes::forgetConfirmation(const QString &device, const QString &signal)
{
    for (const Request &request : requests) {
        const QString key = keyOf(device, request.command);
        if (!request.property.isEmpty() && signal == request.property + "Changed"_L1 &&
            !m_pending.contains(key))
            m_outcomes.remove(key);
    }
}

void RequestOutcomes::takeState(const QJsonObject &state)
{
    const QSet<QString> pending = pendingOf(state);
    const QSet<QString> ended = QSet<QString>(m_pending).subtract(pending);
    for (const QString &key : ended) {
        const QString device = key.section(u' ', 0, 0);
        const Request *request = requestOf(key.section(u' ', 1));
        m_outcomes.insert(key, m_refusals.remove(keyOf(device, request->operation)) ? Outcome::Refused
                                                                                    : Outcome::Confirmed);
    }
    m_pending = pending;
    Q_EMIT changed();
}

void RequestOutcomes::forget()
{
    m_sent.clear();
    m_refusals.clear();
    m_pending.clear();
    m_outcomes.clear();
    Q_EMIT changed();
}
