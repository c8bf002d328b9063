#pragma once

#include "Engine.h"

/// Plays a scenario in a fresh child: each line after the answer to the one before. It ends at the first line that did
/// not go as the scenario wants.
class ScenarioPlayer : public QObject
{
    Q_OBJECT

public:
    enum class State { Idle, Playing, Paused };

    explicit ScenarioPlayer(Engine *engine, QObject *parent = nullptr);

    State state() const { return m_state; }
    /// The line that waits for its answer or comes next, from 0; -1 while nothing is played.
    qsizetype currentLine() const;

    /// Plays from the beginning in a fresh child, or goes on when it is paused. The lines do not matter then.
    void play(const QStringList &lines);
    /// Plays up to and including the next line that has a command, and pauses.
    void step(const QStringList &lines);
    /// Stops before the next line; the child goes on.
    void pause();
    /// Ends the child too, whatever it is doing.
    void stop();

Q_SIGNALS:
    /// Another state or another current line.
    void changed();
    /// A line did not go as the scenario wants.
    void failed(qsizetype line, const Answer &answer);
    /// The child ended while it played.
    void broken(qsizetype line, const EngineEnd &end);
    /// All lines were played.
    void finished();

private:
    void begin(const QStringList &lines);
    void goOn();
    void sendLine(const QString &line);
    void takeAnswer(const Answer &answer);
    void takeEnd(const EngineEnd &end);
    void becomeIdle();
    bool needsSettling() const;

    Engine *m_engine;
    State m_state = State::Idle;
    QStringList m_lines;
    qsizetype m_next = 0;
    bool m_awaitsChild = false;  // restart() was called; the old child may end yet
    bool m_awaitsState = false;
    bool m_isStepping = false;
    int m_awaitedAnswer = 0;  // number of the line; 0 for none
};
