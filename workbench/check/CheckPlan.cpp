#include "CheckPlan.h"

#include <QtCore/QFileInfo>
#include <QtCore/QSaveFile>
#include <QtCore/QThread>
#include <QtCore/QUuid>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

// Each answers what is wrong.

QString takeTimeout(const QString &timeout, CheckPlan &plan)
{
    constexpr int usual = 20;
    constexpr int longest = 24 * 60 * 60;
    bool isNumber = true;
    const int seconds = timeout.isEmpty() ? usual : timeout.toInt(&isNumber);
    if (timeout == u"off")
        return {};
    if (!isNumber || seconds < 1 || seconds > longest)
        return u"--timeout \"%1\" is no number of seconds from 1 to %2; \"off\" waits for ever"_s.arg(timeout)
            .arg(longest);
    plan.settings.deadline = std::chrono::seconds(seconds);
    return {};
}

QString takeLibrary(const QString &file, CheckPlan &plan)
{
    plan.inspection = inspectPlugin(file);
    plan.settings.pluginFile = plan.inspection.file;
    const bool isScenario =
        !plan.inspection.refusal.isEmpty() && select({{file}, {}, Level::Stress}).problem.isEmpty();
    return plan.inspection.refusal + (isScenario ? u"; the library comes first"_s : QString());
}

QString takeScenarios(const CheckOptions &options, CheckPlan &plan)
{
    Selected selected = select({options.names, options.excluded, plan.level});
    plan.scenarios = std::move(selected.scenarios);
    return selected.problem;
}

QString takeWaivers(const QString &file, CheckPlan &plan)
{
    if (file.isEmpty())
        return {};
    Waivers read = readWaivers(file);
    plan.waivers = std::move(read.all);
    return read.problem;
}

// "/dev/stdout" and the like: writing a new file there would take the old one, with all output, from its
// reader.
bool isOpenStream(const QFileInfo &file)
{
    const auto isInProc = [](const QString &name) {
        return QFileInfo(QFileInfo(name).path()).canonicalFilePath().startsWith("/proc/"_L1);
    };
    return isInProc(file.filePath()) || isInProc(file.symLinkTarget());
}

// Nobody waits for a check whose reports cannot be written.
QString whyNotWritable(const QString &name)
{
    const QFileInfo info(name);
    if (isOpenStream(info) || (info.exists() && !info.isFile()))
        return u"\"%1\" is no regular file; give the name of a file"_s.arg(name);
    QSaveFile file(name);
    if (!file.open(QSaveFile::WriteOnly))
        return u"\"%1\" cannot be written: %2; give a file in a folder that is there"_s.arg(
            name, file.errorString());
    file.cancelWriting();
    return {};
}

bool isSameFile(const QFileInfo &one, const QFileInfo &other)
{
    return one.exists() || other.exists()
               ? one == other
               : one.fileName() == other.fileName() && QFileInfo(one.path()) == QFileInfo(other.path());
}

// Checks the files of the reports: none may replace one that the check reads, or another report.
QString whyNoReports(const CheckOptions &options, const QList<ContractScenario> &scenarios)
{
    QList<std::pair<QString, QString>> taken{{options.pluginFile, u"the library to check"_s},
                                             {options.waiverFile, u"the file of waivers"_s}};
    for (const ContractScenario &scenario : scenarios)
        taken.append({scenario.file, u"a scenario to run"_s});
    for (const auto &[file, option] : {std::pair(options.junitFile, u"--junit"_s),
                                       {options.jsonFile, u"--json"_s},
                                       {options.htmlFile, u"--html"_s}}) {
        if (file.isEmpty())
            continue;
        if (const QString problem = whyNotWritable(file); !problem.isEmpty())
            return problem;
        for (const auto &[other, what] : std::as_const(taken)) {
            if (isSameFile(QFileInfo(file), QFileInfo(other)))
                return u"%1 \"%2\" is %3; give another file"_s.arg(option, file, what);
        }
        taken.append({file, u"the file of "_s + option});
    }
    return {};
}

}  // namespace

QString makePlan(const CheckOptions &options, CheckPlan &plan)
{
    plan.level = levelOf(options.level).value_or(Level::Contract);
    plan.settings.seed = options.seed.value_or(QUuid::createUuid().data1);
    plan.settings.jobs = options.jobs.value_or(QThread::idealThreadCount());
    QString problem = takeTimeout(options.timeout, plan);
    if (problem.isEmpty())
        problem = takeLibrary(options.pluginFile, plan);
    if (problem.isEmpty())
        problem = takeScenarios(options, plan);
    if (problem.isEmpty())
        problem = takeWaivers(options.waiverFile, plan);
    return problem.isEmpty() ? whyNoReports(options, plan.scenarios) : problem;
}
