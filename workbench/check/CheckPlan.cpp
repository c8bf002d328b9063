#include "CheckPlan.h"

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
    return plan.inspection.refusal;
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

// Nobody waits for a check whose reports cannot be written.
QString whyNotWritable(const QStringList &names)
{
    for (const QString &name : names) {
        QSaveFile file(name);
        if (!name.isEmpty() && !file.open(QSaveFile::WriteOnly))
            return u"\"%1\" cannot be written: %2; give a file in a folder that is there"_s.arg(
                name, file.errorString());
        file.cancelWriting();
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
    return problem.isEmpty() ? whyNotWritable({options.junitFile, options.jsonFile, options.htmlFile})
                             : problem;
}
