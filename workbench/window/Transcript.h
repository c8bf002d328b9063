#pragma once

#include "Engine.h"

#include <QtCore/QHash>

/// What was sent since the child's start, as a scenario: "kvx run" plays it as it is. Therefore a request that had
/// another outcome than confirmed expects that one, a line that the child could not use is a comment, and "help" is left
/// out.
class Transcript : public QObject
{
    Q_OBJECT

public:
    explicit Transcript(Engine *engine, QObject *parent = nullptr);

    const QStringList &lines() const { return m_lines; }
    /// One line each, with a line break at the end.
    QString text() const;

Q_SIGNALS:
    void cleared();
    void lineAdded(const QString &line);
    /// index: from 0.
    void lineChanged(qsizetype index, const QString &line);

private:
    void clear();
    void addLine(int number, const QString &line);
    void takeAnswer(const Answer &answer);

    QStringList m_lines;
    QHash<int, qsizetype> m_unanswered;  // index of the line, by its number
};
