#include "Transcript.h"

#include "ScenarioText.h"

using namespace Qt::StringLiterals;

Transcript::Transcript(Engine *engine, QObject *parent) : QObject(parent)
{
    connect(engine, &Engine::started, this, [this, engine] {
        if (engine->sentCount() == 0)
            clear();
    });
    connect(engine, &Engine::sent, this, &Transcript::addLine);
    connect(engine, &Engine::answered, this, &Transcript::takeAnswer);
}

QString Transcript::text() const
{
    return m_lines.isEmpty() ? QString() : m_lines.join(u'\n') + u'\n';
}

void Transcript::clear()
{
    m_lines.clear();
    m_unanswered.clear();
    Q_EMIT cleared();
}

void Transcript::addLine(int number, const QString &line)
{
    if (number == 1)
        clear();
    if (commandWord(line) == "help"_L1)
        return;
    m_unanswered.insert(number, m_lines.size());
    m_lines.append(line);
    Q_EMIT lineAdded(line);
}

void Transcript::takeAnswer(const Answer &answer)
{
    const auto unanswered = m_unanswered.constFind(answer.number);
    if (unanswered == m_unanswered.cend())
        return;
    const qsizetype index = *unanswered;
    m_unanswered.erase(unanswered);
    QString &line = m_lines[index];
    if (answer.result == "unusable"_L1)
        line = u"# unusable: %1 (%2)"_s.arg(line, answer.message).replace(u'\n', u' ');
    else if (answer.result == "refused"_L1 || answer.result == "pending"_L1)
        line = line.left(commentStart(line)).trimmed() + u" => "_s + answer.result;
    else
        return;
    Q_EMIT lineChanged(index, line);
}
