#include "Checker.h"

#include "ChildProcess.h"
#include "Judgement.h"

#include <QtCore/QTimer>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

// How long kvx inspect takes, which only loads the library, on a machine for which the deadlines are meant.
constexpr std::chrono::milliseconds usualLoadTime{250};

}  // namespace

quint32 seedOf(const QString &scenario, quint32 checkSeed)
{
    // The 32 bits of Fowler, Noll and Vo: any hash will do that does not change between versions.
    constexpr quint32 basis = 2166136261;
    constexpr quint32 prime = 16777619;
    const QByteArray bytes = QByteArray::number(checkSeed) + ' ' + scenario.toUtf8();
    quint32 hash = basis;
    for (const char byte : bytes)
        hash = (hash ^ static_cast<quint8>(byte)) * prime;
    return hash;
}

Checker::Checker(const CheckSettings &settings, const QList<ContractScenario> &scenarios,
                 std::function<void(ScenarioVerdict)> finished)
    : m_settings(settings), m_waiting(scenarios), m_finished(std::move(finished))
{}

Checker::~Checker() = default;

void Checker::run()
{
    // From inside the loop, which it may end.
    QTimer::singleShot(0, &m_loop, [this] { m_settings.deadline ? measure() : startMore(); });
    m_loop.exec();
}

void Checker::stop()
{
    m_isStopped = true;
    m_waiting.clear();
    m_measurement.reset();
    m_jobs.clear();
    m_loop.quit();
}

// A slow machine, or one with another system's programs on an emulator, gets longer deadlines.
void Checker::measure()
{
    const auto ended = [this] {
        const double factor =
            std::max(1.0, std::chrono::duration<double>(m_measurement->time()) / usualLoadTime);
        // A library that hangs when it is loaded measures nothing.
        if (m_measurement->end() != ChildProcess::End::Timeout)
            m_settings.deadline =
                std::chrono::duration_cast<std::chrono::milliseconds>(*m_settings.deadline * factor);
        m_measurement.reset();
        startMore();
    };
    m_measurement = std::make_unique<ChildProcess>(
        QStringList{u"inspect"_s, m_settings.pluginFile}, m_settings.deadline,
        [this, ended] { QMetaObject::invokeMethod(&m_loop, ended, Qt::QueuedConnection); });
}

void Checker::startMore()
{
    while (!m_isStopped && !m_waiting.isEmpty() && m_jobs.size() < static_cast<std::size_t>(m_settings.jobs))
        start(m_waiting.takeFirst());
    if (m_jobs.empty())
        m_loop.quit();
}

void Checker::start(const ContractScenario &scenario)
{
    ScenarioVerdict verdict = newVerdict(scenario, seedOf(scenario.name, m_settings.seed));
    if (judgeUnrun(scenario, verdict)) {
        m_finished(std::move(verdict));
        return;
    }
    m_jobs.push_back(std::make_unique<Job>());
    Job *const job = m_jobs.back().get();
    job->verdict = std::move(verdict);
    const auto ended = [this, job] {
        QMetaObject::invokeMethod(&m_loop, [this, job] { finish(job); }, Qt::QueuedConnection);
    };
    job->process = std::make_unique<ChildProcess>(
        QStringList{u"run"_s, u"--steps"_s, u"--seed"_s, QString::number(job->verdict.seed), u"--plugin"_s,
                    m_settings.pluginFile, scenario.file},
        m_settings.deadline, ended);
}

void Checker::finish(const Job *job)
{
    const auto place =
        std::find_if(m_jobs.begin(), m_jobs.end(), [&](const auto &one) { return one.get() == job; });
    if (place == m_jobs.end())
        return;
    ScenarioVerdict verdict = std::move((*place)->verdict);
    judge(*(*place)->process, verdict);
    m_jobs.erase(place);
    m_finished(std::move(verdict));
    startMore();
}
