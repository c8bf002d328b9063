#pragma once

#include "Engine.h"

#include <QtCore/QHash>
#include <QtCore/QMap>
#include <QtCore/QObject>
#include <QtCore/QSet>

class LineSender;

/// Sends requests to the current device and follows what becomes of them.
///
/// A request that the mouse confirms is sent with "nowait", so that the child shows it as pending meanwhile, and so that
/// the line ends no scenario when the request is refused. "settle" behind it keeps the next line until the mouse has
/// answered: played again, the lines have the same order. Without it, the next line comes while the request is pending.
class RequestOutcomes : public QObject
{
    Q_OBJECT

public:
    enum class Outcome {
        None,       ///< not sent yet
        Sent,       ///< the child has not come to it
        Pending,    ///< the device says so
        Confirmed,  ///< neither refused nor pending
        Refused,    ///< by the receiver
        Done,       ///< the call has no outcome
        Wrong,      ///< the line was not taken
    };

    /// Both must outlive the object.
    RequestOutcomes(Engine *engine, LineSender *sender, QObject *parent);

    void setSettles(bool settles) { m_settles = settles; }
    /// command: the operation's name. words: its arguments, as a scenario writes them.
    void send(const QString &command, const QString &words);
    /// The last one of this request, whoever sent it, on the current device; none when the mouse has changed the value since.
    Outcome outcome(const QString &command) const;

Q_SIGNALS:
    void changed();

private:
    void takeAnswer(const Answer &answer);
    void takeEntries(const QList<Entry> &entries);
    void noteRefusal(const QString &device, const Entry &entry);
    void forgetConfirmation(const QString &device, const QString &signal);
    void takeState(const QJsonObject &state);
    void forget();

    Engine *m_engine;
    LineSender *m_sender;
    bool m_settles = true;
    QMap<int, QString> m_sent;           // commands without an answer, by their lines' numbers
    QSet<QString> m_refusals;            // not yet seen in an outcome, by device and receiver's operation
    QSet<QString> m_pending;             // by device and command
    QHash<QString, Outcome> m_outcomes;  // by device and command
};
