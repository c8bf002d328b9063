#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QJsonObject>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>

/// Reads what kvx run --steps prints, and keeps what a verdict needs. Its memory is bounded, whatever comes.
class StepReader
{
public:
    struct Result
    {
        /// "pass", "difference", "unusable", "refused", "pending", "skipped" or "unloadable".
        QString word;
        int line = 0;
        QString message;
        QStringList expected;
        QStringList actual;
    };

    void add(const QByteArray &bytes);

    /// Whether the child has said that it is one.
    bool hasBegun() const { return m_hasBegun; }
    /// The command that ran last: its line in the scenario, 0 before the first one, and its text.
    int line() const { return m_line; }
    QString command() const { return m_command; }
    /// The call, request or report that began last.
    QString lastCall() const { return m_lastCall; }
    /// The last of the library's log lines.
    QStringList log() const { return m_log; }
    /// What the scenario ended with; nothing when it did not come to its end.
    std::optional<Result> result() const { return m_result; }

private:
    void readLine(const QByteArray &line);
    void noteLog(const QJsonObject &object);

    QByteArray m_unread;  // the beginning of a line
    bool m_hasBegun = false;
    int m_line = 0;
    QString m_command;
    QString m_lastCall;
    QStringList m_log;
    std::optional<Result> m_result;
};
