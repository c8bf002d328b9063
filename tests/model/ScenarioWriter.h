#pragma once

#include "Operation.h"

#include <QtCore/QStringList>

#include <array>
#include <optional>

/// A line of the timeline that comes from the log.
bool isLogLine(const QString &line);

/// Writes operations as commands of kvx run, and those that have none there as comments.
class ScenarioWriter
{
public:
    ScenarioWriter();

    void write(const Operation &operation);
    void writeComment(const QString &text);
    /// The lines must be those of the operation that was written last. insideReport: what was kept back and made
    /// inside it; null when there was none.
    void expectLines(const Operation &operation, const Operation *insideReport, const QStringList &lines);
    /// All that the operation that was written last leaves in the log.
    void expectLog(const QStringList &lines);
    /// A line of the log; one that is the same but came earlier would do as well.
    void expectLogLine(const QString &line);
    void expectValue(DeviceId device, const QString &getter, const QString &value);

    /// Whether the operation that was written last is a command.
    bool isCommand() const { return m_isCommand; }
    /// Whether commands stand for all of it, so that what they lead to can be expected.
    bool isWhole() const { return m_isWhole; }
    QString text() const;

private:
    void writeCreation(const Operation &operation);
    void writeDestruction(const Operation &operation);
    void writeLogSwitches(const Operation &operation);
    void writeCall(const Operation &operation, QString command);
    void appendCommand(const QString &command);
    void writeFaults(int slot);
    void writeWithoutCommand(const QString &text);
    void writeReceiver(const Operation &operation);
    void use(int slot);
    /// None when the device is not there.
    std::optional<Physical> placeOf(int slot) const { return m_places.at(static_cast<std::size_t>(slot)); }
    bool isMouse(int slot) const { return placeOf(slot) && receiverOf(*placeOf(slot)); }
    int deviceCount() const;
    const ReceiverAnswers &answersFor(int slot) const;

    QStringList m_lines;
    std::array<std::optional<Physical>, deviceSlotCount> m_places;
    std::array<ReceiverAnswers, 2> m_answers;
    int m_currentSlot = -1;
    bool m_isCommand = false;
    bool m_isInitialized = false;
    bool m_isQueuePossible = false;  // calls may wait for the event loop
    bool m_isWhole = true;
};
