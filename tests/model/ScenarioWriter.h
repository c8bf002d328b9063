#pragma once

#include "Operation.h"

#include <QtCore/QStringList>

#include <array>
#include <optional>

/// Writes operations as commands of kvx run, and those that have none there as comments.
class ScenarioWriter
{
public:
    ScenarioWriter();

    void write(const Operation &operation);
    void writeComment(const QString &text);
    /// The lines must be those of the operation that was written last.
    void expectLines(const Operation &operation, const QStringList &lines);
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
    void writeFaults(int slot);
    void writeWithoutCommand(const QString &text);
    void writeReceiver(const Operation &operation);
    void use(int slot);
    bool isMouse(int slot) const { return m_receivers.at(static_cast<std::size_t>(slot)).has_value(); }
    int mouseCount() const;
    const ReceiverAnswers &answersFor(int slot) const;

    QStringList m_lines;
    std::array<std::optional<int>, deviceSlotCount> m_receivers;  // of the mice that are there
    std::array<ReceiverAnswers, 2> m_answers;
    int m_currentSlot = -1;
    bool m_isCommand = false;
    bool m_isWhole = true;
};
