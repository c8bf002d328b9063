#include "CheckCommand.h"

#include "CheckEnvironment.h"
#include "CheckPlan.h"
#include "CheckPrinter.h"
#include "CheckSystem.h"
#include "Judgement.h"
#include "ReportFiles.h"
#include "ScenarioPlay.h"
#include "StepReader.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFileInfo>
#include <QtCore/QMutex>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

// With absolute paths: reports are read in other folders.
QString repeatCommand(const CheckOptions &options, const CheckReport &report, const ScenarioVerdict &verdict)
{
    QStringList words{QCoreApplication::arguments().constFirst(),
                      u"check"_s,
                      report.pluginFile,
                      isScenarioFile(verdict.name) ? QFileInfo(verdict.name).absoluteFilePath()
                                                   : verdict.name,
                      u"--seed"_s,
                      QString::number(report.seed)};
    if (!options.timeout.isEmpty())
        words += {u"--timeout"_s, options.timeout};
    std::transform(words.cbegin(), words.cend(), words.begin(), CheckSystem::quoted);
    return words.join(u' ');
}

// Without a process of its own: for a debugger.
ScenarioVerdict playHere(const ContractScenario &scenario, const CheckSettings &settings)
{
    ScenarioVerdict verdict = newVerdict(scenario, seedOf(scenario.name, settings.seed));
    if (judgeUnrun(scenario, verdict))
        return verdict;
    RunOptions options;
    options.file = scenario.file;
    options.pluginFile = settings.pluginFile;
    options.seed = verdict.seed;
    QElapsedTimer clock;
    clock.start();
    StepReader steps;
    QMutex mutex;
    playSteps(options, [&](const QString &line) {
        const QMutexLocker locker(&mutex);
        steps.add(line.toUtf8() + '\n');
    });
    judge(steps, verdict);
    verdict.time = std::chrono::milliseconds(clock.elapsed());
    return verdict;
}

class Check
{
public:
    Check(const CheckOptions &options, const CheckPlan &plan)
        : m_options(options), m_plan(plan), m_printer(plan.scenarios.size())
    {
        m_report.pluginFile = plan.inspection.file;
        m_report.environment = checkEnvironment(plan.inspection);
        m_report.seed = plan.settings.seed;
        m_report.level = plan.level;
        m_report.started = QDateTime::currentDateTimeUtc();
        m_report.planned = plan.scenarios.size();
        m_report.contractSize = select({{}, {}, std::max(plan.level, Level::Contract)}).scenarios.size();
    }

    ExitCode run()
    {
        m_printer.printBeginning(m_report, noteOnName(m_plan.inspection));
        QElapsedTimer clock;
        clock.start();
        m_options.isInProcess ? runHere() : runChildren();
        m_report.time = std::chrono::milliseconds(clock.elapsed());
        putInOrder();
        m_report.problems = staleWaivers(m_plan.waivers, m_today, m_report.verdicts, knownNames());
        m_printer.printEnd(m_report);
        return writeReports() ? exitCode() : ExitCode::Unusable;
    }

private:
    void runChildren()
    {
        Checker checker(m_plan.settings, m_plan.scenarios,
                        [this](ScenarioVerdict verdict) { note(std::move(verdict)); });
        const CheckSystem::Interruption interruption([&](const QString &name) {
            m_report.interruption = name;
            checker.stop();
        });
        checker.run();
    }

    void runHere()
    {
        for (const ContractScenario &scenario : m_plan.scenarios)
            note(playHere(scenario, m_plan.settings));
    }

    void note(ScenarioVerdict verdict)
    {
        applyWaiver(m_plan.waivers, m_today, verdict);
        verdict.repeatCommand = repeatCommand(m_options, m_report, verdict);
        m_printer.printVerdict(verdict);
        m_report.verdicts.append(std::move(verdict));
    }

    // Several at a time end in another order each time.
    void putInOrder()
    {
        QStringList order;
        for (const ContractScenario &scenario : m_plan.scenarios)
            order.append(scenario.name);
        std::sort(m_report.verdicts.begin(), m_report.verdicts.end(),
                  [&](const ScenarioVerdict &a, const ScenarioVerdict &b) {
                      return order.indexOf(a.name) < order.indexOf(b.name);
                  });
    }

    QStringList knownNames() const
    {
        QStringList names;
        const QList<ContractScenario> known = contractScenarios() + m_plan.scenarios;
        for (const ContractScenario &scenario : known)
            names.append(scenario.name);
        return names;
    }

    // A failure answers the question, whatever else did not run.
    ExitCode exitCode() const
    {
        switch (outcomeOf(m_report)) {
        case Outcome::Keeps:
        case Outcome::KeepsPart:
            return ExitCode::Success;
        case Outcome::Breaks:
        case Outcome::WrongWaivers:
            return ExitCode::Difference;
        case Outcome::NoAnswer:
            break;
        }
        return ExitCode::NoAnswer;
    }

    bool writeReports() const
    {
        bool areWritten = true;
        const auto write = [&](auto writer, const QString &file) {
            if (file.isEmpty())
                return;
            if (const std::optional<QString> reason = writer(m_report, file)) {
                printError(*reason);
                areWritten = false;
            }
        };
        write(writeJUnit, m_options.junitFile);
        write(writeJson, m_options.jsonFile);
        write(writeHtml, m_options.htmlFile);
        return areWritten;
    }

    const CheckOptions &m_options;
    const CheckPlan &m_plan;
    const QDate m_today = QDate::currentDate();
    CheckPrinter m_printer;
    CheckReport m_report;
};

}  // namespace

ExitCode runCheck(const CheckOptions &options)
{
    CheckSystem::ignoreClosedPipes();
    CheckPlan plan;
    if (const QString problem = makePlan(options, plan); !problem.isEmpty()) {
        printError(problem);
        return ExitCode::Unusable;
    }
    return Check(options, plan).run();
}
