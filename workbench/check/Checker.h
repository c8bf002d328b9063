#pragma once

#include "CheckReport.h"
#include "Contract.h"

#include <QtCore/QEventLoop>
#include <QtCore/QObject>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

class ChildProcess;

/// What all scenarios of a check have in common.
struct CheckSettings
{
    /// The library, as an absolute path.
    QString pluginFile;
    /// Of the whole check; each scenario's own is made from it.
    quint32 seed = 0;
    /// How many processes there are at a time.
    int jobs = 1;
    /// How long a process may write nothing; none for ever.
    std::optional<std::chrono::milliseconds> deadline;
};

/// The same on every system, and for each scenario another one.
quint32 seedOf(const QString &scenario, quint32 checkSeed);

/// Runs scenarios, each in a process of its own, several at a time.
class Checker
{
public:
    /// finished: called for each verdict, in the order in which they come.
    Checker(const CheckSettings &settings, const QList<ContractScenario> &scenarios,
            std::function<void(ScenarioVerdict)> finished);
    ~Checker();
    Q_DISABLE_COPY_MOVE(Checker)

    /// Returns when all have run, or after stop().
    void run();
    /// Ends all processes; what has not finished gets no verdict.
    void stop();

private:
    struct Job
    {
        ScenarioVerdict verdict;
        std::unique_ptr<ChildProcess> process;
    };

    void measure();
    void startMore();
    void start(const ContractScenario &scenario);
    void finish(const Job *job);

    CheckSettings m_settings;
    QList<ContractScenario> m_waiting;
    std::function<void(ScenarioVerdict)> m_finished;
    std::unique_ptr<ChildProcess> m_measurement;
    std::vector<std::unique_ptr<Job>> m_jobs;
    bool m_isStopped = false;
    QEventLoop m_loop;
};
