#pragma once

#include "CheckReport.h"

#include <QtCore/QElapsedTimer>

/// Writes a check to standard output: a line for each scenario, and to a terminal its progress instead; at the end what
/// went wrong and a table.
class CheckPrinter
{
public:
    explicit CheckPrinter(qsizetype planned);

    /// note: what is wrong with the library's name; may be empty.
    void printBeginning(const CheckReport &report, const QString &note);
    void printVerdict(const ScenarioVerdict &verdict);
    void printEnd(const CheckReport &report);

private:
    void print(const QString &line);
    void printProgress();
    void clearProgress() const;
    void printFailure(const ScenarioVerdict &verdict);
    void printBlock(const QString &title, const QStringList &lines);
    void printTable(const CheckReport &report);

    const qsizetype m_planned;
    const bool m_isTerminal;
    qsizetype m_finished = 0;
    qsizetype m_notPassed = 0;
    QElapsedTimer m_clock;
};
