#include "ScenarioPlayer.h"

#include "ScenarioText.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

ScenarioPlayer::ScenarioPlayer(Engine *engine, QObject *parent) : QObject(parent), m_engine(engine)
{
    connect(engine, &Engine::started, this, [this] {
        if (m_state == State::Idle)
            return;
        m_awaitsChild = false;
        m_awaitsState = true;
    });
    connect(engine, &Engine::stateChanged, this, [this] {
        if (std::exchange(m_awaitsState, false))
            goOn();
    });
    connect(engine, &Engine::answered, this, &ScenarioPlayer::takeAnswer);
    connect(engine, &Engine::ended, this, &ScenarioPlayer::takeEnd);
}

qsizetype ScenarioPlayer::currentLine() const
{
    if (m_state == State::Idle)
        return -1;
    return m_awaitedAnswer != 0 ? std::max<qsizetype>(m_next - 1, 0) : m_next;
}

void ScenarioPlayer::play(const QStringList &lines)
{
    m_isStepping = false;
    begin(lines);
}

void ScenarioPlayer::step(const QStringList &lines)
{
    m_isStepping = true;
    begin(lines);
}

void ScenarioPlayer::begin(const QStringList &lines)
{
    if (m_state == State::Playing)
        return;
    const bool isNew = m_state == State::Idle;
    m_state = State::Playing;
    if (isNew) {
        m_lines = lines;
        m_next = 0;
        m_awaitsChild = true;
        m_engine->restart();
    } else if (m_awaitedAnswer == 0 && !m_awaitsChild && !m_awaitsState) {
        goOn();
    }
    Q_EMIT changed();
}

void ScenarioPlayer::pause()
{
    if (m_state != State::Playing)
        return;
    m_state = State::Paused;
    Q_EMIT changed();
}

void ScenarioPlayer::stop()
{
    if (m_state == State::Idle)
        return;
    becomeIdle();
    m_engine->stop();
}

void ScenarioPlayer::goOn()
{
    if (m_state != State::Playing)
        return;
    if (m_next < m_lines.size()) {
        sendLine(m_lines.at(m_next++));
    } else if (needsSettling()) {
        m_lines.clear();
        sendLine(u"settle"_s);
    } else {
        becomeIdle();
        Q_EMIT finished();
    }
}

// The lines that "= LINE" did not compare are missed by the command behind them only.
bool ScenarioPlayer::needsSettling() const
{
    const auto last = std::find_if(m_lines.crbegin(), m_lines.crend(),
                                   [](const QString &line) { return !commandWord(line).isEmpty(); });
    return last != m_lines.crend() && commandWord(*last) == "="_L1;
}

void ScenarioPlayer::sendLine(const QString &line)
{
    m_awaitedAnswer = m_engine->sentCount() + 1;
    m_engine->send(line);
    Q_EMIT changed();
}

void ScenarioPlayer::takeAnswer(const Answer &answer)
{
    if (m_state == State::Idle || answer.number == 0 || answer.number != m_awaitedAnswer)
        return;
    const qsizetype line = currentLine();
    m_awaitedAnswer = 0;
    if (answer.result == "end"_L1)
        return;  // the child's end follows
    if (answer.result != "done"_L1 && answer.result != "skipped"_L1) {
        becomeIdle();
        Q_EMIT failed(line, answer);
        return;
    }
    const bool isAtCommand = line < m_lines.size() && !commandWord(m_lines.at(line)).isEmpty();
    if (m_isStepping && isAtCommand && m_state == State::Playing)
        m_state = State::Paused;
    goOn();
    Q_EMIT changed();
}

void ScenarioPlayer::takeEnd(const EngineEnd &end)
{
    const bool isFormerChild = m_awaitsChild && end.kind != EngineEnd::Kind::NotStarted;
    if (m_state == State::Idle || isFormerChild)
        return;
    const qsizetype line = currentLine();
    const bool isAtEnd = end.kind == EngineEnd::Kind::Finished;
    becomeIdle();
    if (isAtEnd)
        Q_EMIT finished();
    else
        Q_EMIT broken(line, end);
}

void ScenarioPlayer::becomeIdle()
{
    m_state = State::Idle;
    m_awaitsChild = false;
    m_awaitsState = false;
    m_awaitedAnswer = 0;
    Q_EMIT changed();
}
