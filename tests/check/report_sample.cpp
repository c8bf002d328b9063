// report_sample SAMPLE FILE: writes the report of a check that never was, with what no library makes on
// demand, in the format that the file's suffix says. The samples: "broken" has all verdicts and texts that
// are hard to write, "kept" and "mild" keep the contract, "part" keeps a part of it, "incomplete", "skipped"
// and "stale" do not, though no scenario fails.

#include "CheckReport.h"
#include "ReportFiles.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFileInfo>

#include <cstdio>

using namespace Qt::StringLiterals;
using std::chrono::milliseconds;

namespace {

constexpr quint32 largestSeed = 4'294'967'295;

ScenarioVerdict verdictOf(const QString &name, Verdict verdict, const QString &message = {})
{
    ScenarioVerdict made;
    made.name = name;
    made.head.title = u"The promise of %1"_s.arg(name);
    made.head.why = u"A host that relies on it would show a wrong value."_s;
    made.verdict = verdict;
    made.unwaived = verdict;
    made.message = message;
    made.seed = largestSeed;
    made.time = milliseconds(1234);
    made.repeatCommand = u"kvx check '/opt/a library.so' %1 --seed 4294967295"_s.arg(name);
    return made;
}

ScenarioVerdict failure()
{
    ScenarioVerdict made =
        verdictOf(u"report-rate/refused"_s, Verdict::Fail, u"another signal was expected"_s);
    made.head.title = u"A refused report rate is not pending any more"_s;
    made.head.why = u"The host's window would show the change as pending for ever."_s;
    made.line = 12;
    made.expected = QStringList{u"call setReportRate(125)"_s, u"signal reportRateChanged(125)"_s,
                                u"signal isReportRateChangePendingChanged(false)"_s};
    made.actual = QStringList{u"call setReportRate(125)"_s, u"signal reportRateChanged(1000)"_s,
                              u"signal isReportRateChangePendingChanged(false)"_s,
                              u"log debug com.orvane.KVX.device \""_s + QString(300, u'x') + u'"'};
    made.log = QStringList{u"debug setReportRate enter"_s, QString(), u"debug setReportRate exit"_s};
    return made;
}

ScenarioVerdict hostileFailure()
{
    ScenarioVerdict made =
        verdictOf(u"log/hostile"_s, Verdict::Fail, u"</script><script>document.title = 'owned'</script>"_s);
    const QString control =
        u"bell \a, escape \x1b[31m, zero "_s + QChar(0) + u", noncharacter \uffff, line \u2028 end"_s;
    const QString directions = u"right-to-left \u202e override"_s;
    const QString lone = u"half a pair "_s + QChar(0xd83d) + u" and back \\ ]]> & \"quoted\" 'text'"_s;
    made.expected = QStringList{u"log \"<img src=x onerror=alert(1)>\""_s, u"smile \U0001f600"_s};
    made.actual = QStringList{u"log \"<img src=x onerror=alert(1)>\""_s, u"smile \U0001f601"_s};
    made.log = QStringList{control, directions, lone, u"\u0645\u0631\u062d\u0628\u0627 \u4f60\u597d"_s};
    made.standardError = u"first line\r\n{{seed}} {{{seed}}} <!-- \n"_s;
    return made;
}

ScenarioVerdict shorter()
{
    ScenarioVerdict made = verdictOf(u"session"_s, Verdict::Fail, u"a line is missing at the end"_s);
    made.expected = QStringList{u"call stop()"_s, u"signal stopped()"_s};
    made.actual = QStringList{u"call stop()"_s};
    return made;
}

ScenarioVerdict warning()
{
    ScenarioVerdict made = verdictOf(u"log/texts"_s, Verdict::Fail, u"a log line has another text"_s);
    made.head.severity = Severity::Warning;
    return made;
}

ScenarioVerdict crash()
{
    ScenarioVerdict made =
        verdictOf(u"settings/capability"_s, Verdict::Crash, u"SIGSEGV in \"applySettings\""_s);
    made.line = 7;
    made.lastCall = u"call applySettings({\"dpi\": 800})"_s;
    made.standardError = u"Segmentation fault\n"_s;
    return made;
}

ScenarioVerdict waived()
{
    ScenarioVerdict made =
        verdictOf(u"dpi-button/refused"_s, Verdict::Waived, u"another value was expected"_s);
    made.unwaived = Verdict::Fail;
    made.waiver = u"known, mended in the next version"_s;
    return made;
}

ScenarioVerdict skipped()
{
    ScenarioVerdict made = verdictOf(u"entry-points/windows"_s, Verdict::Skipped, u"for Windows only"_s);
    made.head.system = u"windows"_s;
    return made;
}

CheckReport kept()
{
    CheckReport report;
    report.pluginFile = u"/opt/<b>a library</b> & more/\u00e9t\u00e9.so"_s;
    report.environment.append({u"Qt of kvx"_s, u"6.8.2"_s});
    report.environment.append({u"System"_s, u"Debian GNU/Linux 13 (trixie) <x86_64>"_s});
    report.seed = largestSeed;
    report.level = Level::Stress;
    report.started = QDateTime::fromString(u"2024-02-29T23:59:58.007Z"_s, Qt::ISODateWithMs);
    report.time = milliseconds(61'500);
    report.verdicts.append(verdictOf(u"identity/type"_s, Verdict::Pass));
    report.verdicts.append(skipped());
    report.verdicts.append(waived());
    report.planned = report.verdicts.size();
    report.contractSize = report.planned;
    return report;
}

CheckReport withMore(const QList<ScenarioVerdict> &verdicts)
{
    CheckReport report = kept();
    report.verdicts.append(verdicts);
    report.planned = report.verdicts.size();
    report.contractSize = report.planned;
    return report;
}

std::optional<CheckReport> sample(const QString &name)
{
    if (name == u"kept")
        return kept();
    if (name == u"mild")
        return withMore({warning()});
    if (name == u"incomplete") {
        CheckReport report = kept();
        report.planned = 60;
        report.contractSize = 60;
        report.interruption = u"SIGINT"_s;
        return report;
    }
    if (name == u"part" || name == u"skipped") {
        CheckReport report = kept();
        report.verdicts = {name == u"part" ? verdictOf(u"identity/type"_s, Verdict::Pass) : skipped()};
        report.planned = 1;
        return report;
    }
    CheckReport report =
        name == u"broken"
            ? withMore({failure(), hostileFailure(), shorter(), warning(), crash(),
                        verdictOf(u"threads/getters"_s, Verdict::Timeout, u"no progress for 20 s"_s),
                        verdictOf(u"registry/wrong"_s, Verdict::KitError, u"the scenario has no title"_s)})
            : kept();
    report.problems.append(u"the waiver of <dpi-range> names no scenario"_s);
    report.problems.append(u"the waiver of identity/type is past its day"_s);
    if (name == u"broken" || name == u"stale")
        return report;
    return std::nullopt;
}

std::optional<QString> write(const CheckReport &report, const QString &file)
{
    const QString suffix = QFileInfo(file).suffix();
    return suffix == u"xml"    ? writeJUnit(report, file)
           : suffix == u"json" ? writeJson(report, file)
                               : writeHtml(report, file);
}

}  // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const std::optional<CheckReport> report = sample(arguments.value(1));
    if (!report || arguments.size() != 3) {
        std::fputs("report_sample: write report_sample SAMPLE FILE; the source has the samples\n", stderr);
        return 2;
    }
    const std::optional<QString> problem = write(*report, arguments.at(2));
    if (problem)
        std::fputs(qUtf8Printable(*problem + u'\n'), stderr);
    return problem ? 1 : 0;
}
