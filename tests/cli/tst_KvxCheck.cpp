#include "Kvx.h"
#include "PluginFixture.h"
#include "ScenarioFiles.h"
#include "ThisSystem.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QProcess>
#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

using namespace Qt::StringLiterals;

namespace {

// What the libraries of the tests do wrong.
constexpr QLatin1StringView noSignal{"report-rate-flag-without-signal"};
constexpr QLatin1StringView crash{"crash-without-receiver"};
constexpr QLatin1StringView hang{"lock-taken-twice"};

// Scenarios that meet those faults.
QStringList passes()
{
    return {u"mouse 1"_s, u"expect modelCode RV418"_s};
}

QStringList makesNoDevice()
{
    return {u"expect metadata {\"IID\":\"com.orvane.KVX.Plugin.LogicalDevice.RV418\","
            "\"archlevel\":0,\"className\":\"LogicalDevicePlugin\"}"_s};
}

QStringList requestsARate()
{
    return {u"mouse 1"_s,
            u"start"_s,
            u"setReportRate 1000"_s,
            u"= call setReportRate(1000)"_s,
            u"= debug RV418.LogicalDevice: Updating new report rate :  1000"_s,
            u"= signal isReportRateChangePendingChanged(true)"_s,
            u"= receiver setReportRate(1000) -> true"_s,
            u"= signal reportRateChanged(1000)"_s,
            u"= report reportRateConfirmed(1000)"_s,
            u"= debug RV418.LogicalDevice: reportRateConfirmed rate : 1000 , reportRatePending : 1000"_s,
            u"= signal isReportRateChangePendingChanged(false)"_s};
}

QStringList crashes()
{
    return {u"device 1 none"_s, u"start"_s, u"query26 1 2 3"_s, u"expect modelCode RV418"_s};
}

QStringList hangs()
{
    return {u"mouse 1"_s, u"start"_s, u"expect modelCode RV418"_s};
}

QStringList failsAlways()
{
    return {u"mouse 1"_s, u"expect modelCode RV419"_s};
}

KvxRun check(const QStringList &arguments, const QString &library = PluginFixture::builtPluginFile())
{
    return runKvx(QStringList{u"check"_s, library} + arguments);
}

KvxRun checkBroken(QLatin1StringView fault, const QStringList &arguments)
{
    return check(arguments, brokenLibrary(fault));
}

QString lastLine(const KvxRun &run)
{
    return run.output.isEmpty() ? QString() : run.output.last();
}

// What is behind a name in the block of a failure.
QString field(const KvxRun &run, const QString &name)
{
    for (const QString &line : run.output) {
        if (line.startsWith(u"  "_s + name + u' '))
            return line.sliced(name.size() + 2).trimmed();
    }
    return {};
}

// A line for each scenario: how it ended, and its name; in the order of the names.
QStringList verdicts(const KvxRun &run)
{
    static const QRegularExpression line(
        u"^(pass|fail|crash|timeout|skipped|waived|kit error) +[^ :].*[^0-9]$"_s);
    QStringList lines = run.output.filter(line);
    lines.sort();
    return lines;
}

KvxRun runInShell(const QString &command)
{
    if (!ThisSystem::isWindows)
        return runProgram(u"/bin/sh"_s, {u"-c"_s, command});
    QStringList words = QProcess::splitCommand(command);
    const QString program = words.takeFirst();
    return runProgram(program, words);
}

// What --list or --explain prints.
QJsonArray listedScenarios(const QStringList &arguments = {u"--list"_s})
{
    const KvxRun run = runKvx(QStringList{u"check"_s} + arguments + QStringList{u"--json"_s});
    const QJsonObject object = QJsonDocument::fromJson(run.output.join(u'\n').toUtf8()).object();
    return object.value("schemaVersion"_L1).toInt() == 1 ? object.value("scenarios"_L1).toArray()
                                                         : QJsonArray();
}

}  // namespace

class tst_KvxCheck : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void soundLibraryKeepsWhatWasRun();
    void failureSaysWhatAndWhy();
    void severityDecides_data();
    void severityDecides();
    void crashNamesTheLastCall();
    void crashCountsWhateverTheSeverity();
    void hangIsATimeout();
    void scenarioForAnotherSystemIsSkipped();
    void wrongScenarioIsNoFaultOfTheLibrary_data();
    void wrongScenarioIsNoFaultOfTheLibrary();
    void failureAnswersBesideAKitError();
    void waivers_data();
    void waivers();
    void wrongWaivers_data();
    void wrongWaivers();
    void repeatCommandRepeats();
    void seedsAreRepeatable();
    void jobsChangeNothing();
    void inProcessFindsTheSame();
    void logRulesOfTheUserChangeNothing();
    void renamedLibraryIsNoted();
    void reportsAreWritten();
    void reportReplacesNoOtherFile_data();
    void reportReplacesNoOtherFile();
    void listHasEveryScenario();
    void levelsIncludeThoseBefore_data();
    void levelsIncludeThoseBefore();
    void foldersAndExclusionsSelect();
    void explanationHasTheLines();
    void badUsage_data();
    void badUsage();
    void unusableLibrary_data();
    void unusableLibrary();

private:
    ScenarioFiles m_files;
};

void tst_KvxCheck::soundLibraryKeepsWhatWasRun()
{
    const KvxRun run = check({u"session"_s, m_files.write(u"rate"_s, requestsARate())});
    QCOMPARE(run.errors, QStringList());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.output.filter(u"note: "_s), QStringList());
    QCOMPARE(verdicts(run),
             QStringList({u"pass       "_s + m_files.path(u"rate.kvx"_s), u"pass       session"_s}));
    const QJsonArray all = listedScenarios({u"--list"_s, u"--level"_s, u"contract"_s});
    QCOMPARE(lastLine(run),
             u"keeps the part of the contract that was run (1 of %1 scenarios): 2 pass"_s.arg(all.size()));
}

void tst_KvxCheck::failureSaysWhatAndWhy()
{
    const QString file = m_files.write(u"rate"_s, requestsARate());
    const KvxRun run = checkBroken(noSignal, {file, u"session"_s});
    QCOMPARE(run.exitCode, 1);
    QVERIFY(run.output.contains(u"FAIL "_s + file));
    QCOMPARE(field(run, u"promise"_s), u"What rate promises"_s);
    QCOMPARE(field(run, u"otherwise"_s), u"A host suffers"_s);
    QVERIFY2(field(run, u"found"_s).startsWith(u"scenario line 9: "_s), qPrintable(field(run, u"found"_s)));
    const qsizetype block = run.output.indexOf(u"  expected (-) and actual (+):"_s);
    QCOMPARE(run.output.mid(block + 1, 5),
             QStringList({u"         call setReportRate(1000)"_s,
                          u"         debug RV418.LogicalDevice: Updating new report rate :  1000"_s,
                          u"    => - signal isReportRateChangePendingChanged(true)"_s,
                          u"         receiver setReportRate(1000) -> true"_s,
                          u"         signal reportRateChanged(1000)"_s}));
    QVERIFY(run.output.contains(u"  log of the library:"_s));
    QVERIFY(run.output.contains(u"    debug RV418.LogicalDevice: Updating new report rate :  1000"_s));
    QCOMPARE(lastLine(run), u"does not keep the contract: 2 fail"_s);
}

void tst_KvxCheck::severityDecides_data()
{
    QTest::addColumn<QString>("severity");
    QTest::addColumn<int>("exitCode");
    QTest::newRow("error") << u"error"_s << 1;
    QTest::newRow("warning") << u"warning"_s << 0;
    QTest::newRow("note") << u"note"_s << 0;
}

void tst_KvxCheck::severityDecides()
{
    QFETCH(const QString, severity);
    QFETCH(const int, exitCode);
    const QString file = m_files.write(u"severity"_s, failsAlways(), {u"# severity: "_s + severity});
    const KvxRun run = check({file});
    QCOMPARE(run.exitCode, exitCode);
    QVERIFY(run.output.contains(u"FAIL "_s + file + (exitCode == 1 ? QString() : u" (%1)"_s.arg(severity))));
}

void tst_KvxCheck::crashNamesTheLastCall()
{
    const KvxRun run = checkBroken(crash, {m_files.write(u"crash"_s, crashes())});
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(field(run, u"last step"_s), u"call query26(1, 2, 3)"_s);
#ifdef KVX_SANITIZED
    const QString how = u"the process ended with exit code 1"_s;
    QVERIFY(!run.output.filter(u"standard error"_s).isEmpty());  // of its standard error
#else
    const QString how = ThisSystem::isWindows ? u"0xC0000005 (access violation)"_s : u"SIGSEGV"_s;
#endif
    QCOMPARE(field(run, u"found"_s), u"scenario line 6: "_s + how + u" in \"query26 1 2 3\""_s);
    QCOMPARE(lastLine(run), u"does not keep the contract: 1 crash"_s);
}

void tst_KvxCheck::crashCountsWhateverTheSeverity()
{
    const KvxRun run = checkBroken(crash, {m_files.write(u"crash"_s, crashes(), {u"# severity: note"_s})});
    QCOMPARE(run.exitCode, 1);
}

void tst_KvxCheck::hangIsATimeout()
{
    const QString file = m_files.write(u"hang"_s, hangs());
    const KvxRun run = checkBroken(hang, {file, m_files.write(u"passes"_s, makesNoDevice())});
    QCOMPARE(run.exitCode, 1);
    QVERIFY(verdicts(run).contains(u"timeout    "_s + file));
    QVERIFY2(QRegularExpression(u"^scenario line 5: no progress for [0-9.]+ s in \"start\"$"_s)
                 .match(field(run, u"found"_s))
                 .hasMatch(),
             qPrintable(field(run, u"found"_s)));
    QCOMPARE(field(run, u"last step"_s), u"receiver getLevelValue() -> 3"_s);
    QCOMPARE(lastLine(run), u"does not keep the contract: 1 pass, 1 timeout"_s);
}

void tst_KvxCheck::scenarioForAnotherSystemIsSkipped()
{
    const QString other = QString(ThisSystem::otherName).toLower();
    const QString file = m_files.write(u"other"_s, failsAlways(), {u"# system: "_s + other});
    const KvxRun run = check({file});
    QCOMPARE(run.exitCode, 3);
    QVERIFY(run.output.contains(u"skipped: %1: for %2 only"_s.arg(file, ThisSystem::otherName)));
    QCOMPARE(lastLine(run), u"no answer, no scenario ran: 1 skipped"_s);
    QCOMPARE(check({file, m_files.write(u"passes"_s, passes())}).exitCode, 0);
}

void tst_KvxCheck::wrongScenarioIsNoFaultOfTheLibrary_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("says");
    QTest::newRow("no-command") << u"frobnicate"_s << u"is no command"_s;
    QTest::newRow("expects-nothing") << u"mouse 1"_s << u"expects nothing"_s;
}

void tst_KvxCheck::wrongScenarioIsNoFaultOfTheLibrary()
{
    QFETCH(const QString, line);
    QFETCH(const QString, says);
    const KvxRun run = check({m_files.write(u"wrong"_s, {line}), m_files.write(u"passes"_s, passes())});
    QCOMPARE(run.exitCode, 3);
    QVERIFY2(field(run, u"found"_s).contains(says), qPrintable(field(run, u"found"_s)));
    QCOMPARE(lastLine(run), u"no answer, kvx could not run 1 scenario: 1 pass, 1 kit error"_s);
}

void tst_KvxCheck::failureAnswersBesideAKitError()
{
    const KvxRun run =
        check({m_files.write(u"wrong"_s, {u"frobnicate"_s}), m_files.write(u"fails"_s, failsAlways())});
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(lastLine(run), u"does not keep the contract: 1 fail, 1 kit error"_s);
}

void tst_KvxCheck::waivers_data()
{
    QTest::addColumn<QString>("until");
    QTest::addColumn<QString>("waived");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("line");
    const QString fails = m_files.write(u"fails"_s, failsAlways());
    const QString sound = m_files.write(u"passes"_s, passes());
    const QString known = u"waived: "_s + fails + u": known for years"_s;
    QTest::newRow("for-ever") << QString() << fails << 0 << known;
    QTest::newRow("until-a-day") << u"until = 2999-12-31"_s << fails << 0 << known;
    QTest::newRow("past-its-day")
        << u"until = 2001-01-31"_s << fails << 1
        << u"problem: the waiver for \"%1\" ended on 2001-01-31; repair the library or agree "
           "on a later day"_s.arg(fails);
    QTest::newRow("passes")
        << QString() << sound << 1
        << u"problem: the waiver for \"%1\" is not needed any more, the scenario passes; delete it"_s.arg(
               sound);
    QTest::newRow("no-scenario")
        << QString() << u"no/such"_s << 1
        << u"problem: the waiver for \"no/such\" names no scenario; correct or delete it"_s;
    QTest::newRow("folder") << QString() << u"report-rate"_s << 1
                            << u"problem: the waiver for \"report-rate\" names a folder, which cannot be "
                               "waived; name its scenarios"_s;
}

void tst_KvxCheck::waivers()
{
    QFETCH(const QString, until);
    QFETCH(const QString, waived);
    QFETCH(const int, exitCode);
    QFETCH(const QString, line);
    const QString file = m_files.writeText(
        u"waivers.toml"_s,
        u"[[waiver]]\nname = \"\"\"%1\"\"\"\nreason = \"known for years\"\n%2\n"_s.arg(waived, until));
    // It fails in any case where its waiver is another's.
    const bool isOther = waived != m_files.path(u"fails.kvx"_s);
    QStringList names{m_files.path(u"passes.kvx"_s)};
    if (!isOther)
        names.append(m_files.path(u"fails.kvx"_s));
    const KvxRun run = check(names + QStringList{u"--waivers"_s, file});
    QCOMPARE(run.errors, QStringList());
    QCOMPARE(run.exitCode, exitCode);
    QVERIFY2(run.output.contains(line), qPrintable(run.output.join(u'\n')));
    if (isOther)
        QCOMPARE(lastLine(run), u"the waivers are not right: 1 pass"_s);
    else if (exitCode == 0)
        QVERIFY2(lastLine(run).endsWith(u") except for 1 waived failure: 1 pass, 1 waived"_s),
                 qPrintable(lastLine(run)));
}

void tst_KvxCheck::wrongWaivers_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("says");
    const QString whole = u"[[waiver]]\nname = \"a\"\nreason = \"b\"\n"_s;
    QTest::newRow("no-toml") << u"[[waiver\n"_s << u"; a waiver begins with [[waiver]]"_s;
    QTest::newRow("other-table") << u"\n[other]\n"_s << u"line 2: only tables [[waiver]] may be here"_s;
    QTest::newRow("no-tables") << u"waiver = [1]\n"_s << u"line 1: only tables [[waiver]] may be here"_s;
    QTest::newRow("no-reason") << u"[[waiver]]\nname = \"a\"\n"_s
                               << u"line 1: a waiver needs a name and a reason"_s;
    QTest::newRow("empty-reason") << u"[[waiver]]\nname = \"a\"\nreason = \" \"\n"_s
                                  << u"line 1: a waiver needs a name and a reason"_s;
    QTest::newRow("twice") << whole + whole << u"line 4: \"a\" has two waivers; delete one"_s;
    QTest::newRow("unknown-key") << whole + u"who = \"me\"\n"_s << u"line 4: \"who\" is wrong"_s;
    QTest::newRow("no-day") << whole + u"until = \"soon\"\n"_s << u"line 4: \"until\" is wrong"_s;
}

void tst_KvxCheck::wrongWaivers()
{
    QFETCH(const QString, text);
    QFETCH(const QString, says);
    const QString file = m_files.writeText(u"wrong.toml"_s, text);
    const KvxRun run = check({u"session"_s, u"--waivers"_s, file});
    QCOMPARE(run.exitCode, 2);
    QCOMPARE(run.output, QStringList());
    QCOMPARE(run.errors.size(), 1);
    QVERIFY2(run.errors.first().startsWith(u"kvx: \"%1\" line "_s.arg(file)) &&
                 run.errors.first().contains(says),
             qPrintable(run.errors.first()));
}

void tst_KvxCheck::repeatCommandRepeats()
{
    const QString fails = m_files.write(u"fails"_s, failsAlways());
    const QString failsFromHere = QDir().relativeFilePath(fails);
    const KvxRun run = check({m_files.write(u"passes"_s, passes()), failsFromHere, u"--seed"_s, u"77"_s},
                             QDir().relativeFilePath(PluginFixture::builtPluginFile()));
    // What is printed may be used in another folder.
    QVERIFY2(field(run, u"repeat"_s).contains(QFileInfo(PluginFixture::builtPluginFile()).absoluteFilePath()),
             qPrintable(field(run, u"repeat"_s)));
    const KvxRun again = runInShell(field(run, u"repeat"_s));
    QCOMPARE(again.errors, QStringList());
    QCOMPARE(again.exitCode, 1);
    QCOMPARE(verdicts(again), QStringList{u"fail       "_s + fails});
    QCOMPARE(field(again, u"found"_s), field(run, u"found"_s));
    QCOMPARE(field(again, u"repeat"_s), field(run, u"repeat"_s));
}

void tst_KvxCheck::seedsAreRepeatable()
{
    const auto seedOf = [this](const QStringList &options) {
        const QString report = m_files.path(u"seed.json"_s);
        const KvxRun run = check(QStringList{u"session"_s, u"--json"_s, report} + options);
        QFile file(report);
        if (run.exitCode != 0 || !file.open(QFile::ReadOnly))
            return QString();
        const QJsonObject object = QJsonDocument::fromJson(file.readAll()).object();
        const QString seed = QString::number(object.value("seed"_L1).toInteger());
        return run.output.filter(u"seed "_s + seed).isEmpty()
                   ? QString()
                   : seed + u' ' +
                         QString::number(object.value("scenarios"_L1)
                                             .toArray()
                                             .at(0)
                                             .toObject()
                                             .value("seed"_L1)
                                             .toInteger());
    };
    // The same on every system.
    QCOMPARE(seedOf({u"--seed"_s, u"7"_s}), u"7 1612577638"_s);
    const QString first = seedOf({});
    QVERIFY(!first.isEmpty());
    QVERIFY(first != seedOf({}));
    QCOMPARE(seedOf({u"--seed"_s, first.section(u' ', 0, 0)}), first);
}

void tst_KvxCheck::jobsChangeNothing()
{
    QStringList names;
    for (int number = 0; number < 3; ++number) {
        names += m_files.write(u"crash%1-x"_s.arg(number), crashes());
        names += m_files.write(u"fails%1-x"_s.arg(number), failsAlways());
        names += m_files.write(u"passes%1-x"_s.arg(number), passes());
    }
    const KvxRun one = checkBroken(crash, names + QStringList{u"--jobs"_s, u"1"_s});
    const KvxRun eight = checkBroken(crash, names + QStringList{u"--jobs"_s, u"8"_s});
    QCOMPARE(verdicts(one).size(), 9);
    QCOMPARE(verdicts(eight), verdicts(one));
    QCOMPARE(eight.exitCode, one.exitCode);
    // What went wrong comes in the order of the plan.
    const QRegularExpression heading(u"^(FAIL|CRASH) "_s);
    QCOMPARE(eight.output.filter(heading), one.output.filter(heading));
}

void tst_KvxCheck::inProcessFindsTheSame()
{
    const QStringList names{m_files.write(u"fails"_s, failsAlways()), m_files.write(u"passes"_s, passes()),
                            m_files.write(u"wrong"_s, {u"frobnicate"_s}), u"session"_s};
    const KvxRun children = check(names);
    const KvxRun here = check(names + QStringList{u"--in-process"_s});
    QCOMPARE(verdicts(children).size(), 4);
    QCOMPARE(verdicts(here), verdicts(children));
    QCOMPARE(here.exitCode, children.exitCode);
    QCOMPARE(field(here, u"found"_s), field(children, u"found"_s));
    // A crash is not caught: the point of it.
    QCOMPARE(checkBroken(crash, {m_files.write(u"crash"_s, crashes()), u"--in-process"_s})
                 .output.filter(u"crash   "_s),
             QStringList());
}

void tst_KvxCheck::logRulesOfTheUserChangeNothing()
{
    qputenv("QT_LOGGING_RULES", "*=false");
    qputenv("QT_FATAL_WARNINGS", "1");
    const KvxRun run = check({u"session"_s});
    qunsetenv("QT_LOGGING_RULES");
    qunsetenv("QT_FATAL_WARNINGS");
    QCOMPARE(run.exitCode, 0);
}

void tst_KvxCheck::renamedLibraryIsNoted()
{
    const QString renamed = m_files.path(u"other"_s);
    QVERIFY(QFile::copy(PluginFixture::builtPluginFile(), renamed));
    const KvxRun run = check({m_files.write(u"passes"_s, passes())}, renamed);
    QCOMPARE(
        run.output.value(2),
        u"note: the file is named other; the host loads %1, and under another name start() fails; rename "
        "it and check again"_s.arg(QFileInfo(PluginFixture::builtPluginFile()).fileName()));
}

void tst_KvxCheck::reportsAreWritten()
{
    const QStringList names{u"junit"_s, u"json"_s, u"html"_s};
    QStringList options{m_files.write(u"fails"_s, failsAlways()), m_files.write(u"passes"_s, passes())};
    for (const QString &name : names)
        options += {u"--"_s + name, m_files.path(u"report."_s + name)};
    QCOMPARE(check(options).exitCode, 1);
    for (const QString &name : names) {
        QFile file(m_files.path(u"report."_s + name));
        QVERIFY2(file.open(QFile::ReadOnly), qPrintable(name));
        const QByteArray bytes = file.readAll();
        QVERIFY2(bytes.contains("What fails promises"), bytes.constData());
    }
}

void tst_KvxCheck::reportReplacesNoOtherFile_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QString>("says");
    const QString library = m_files.path(QFileInfo(PluginFixture::builtPluginFile()).fileName());
    const QString waivers = m_files.path(u"waivers.toml"_s);
    const QString scenario = m_files.path(u"passes.kvx"_s);
    const QString other = m_files.path(u"new"_s);
    const QString otherWay = m_files.path(u"../%1/new"_s.arg(QFileInfo(m_files.path({})).dir().dirName()));
    QTest::newRow("library") << QStringList{u"--json"_s, other, u"--html"_s, library}
                             << u"--html \"%1\" is the library to check"_s.arg(library);
    QTest::newRow("waivers") << QStringList{u"--json"_s, waivers}
                             << u"--json \"%1\" is the file of waivers"_s.arg(waivers);
    QTest::newRow("scenario") << QStringList{u"--junit"_s, scenario}
                              << u"--junit \"%1\" is a scenario to run"_s.arg(scenario);
    QTest::newRow("another-report") << QStringList{u"--json"_s, other, u"--html"_s, otherWay}
                                    << u"--html \"%1\" is the file of --json"_s.arg(otherWay);
#ifdef Q_OS_WIN
    const QString otherName = library.toUpper();
#else
    const QString otherName = m_files.path(u"link"_s);
    QFile::link(library, otherName);
#endif
    QTest::newRow("other-name") << QStringList{u"--html"_s, otherName}
                                << u"--html \"%1\" is the library to check"_s.arg(otherName);
}

void tst_KvxCheck::reportReplacesNoOtherFile()
{
    QFETCH(const QStringList, options);
    QFETCH(const QString, says);
    const QString library = m_files.path(QFileInfo(PluginFixture::builtPluginFile()).fileName());
    QFile::copy(PluginFixture::builtPluginFile(), library);
    const QString waivers = m_files.writeText(u"waivers.toml"_s, {});
    const KvxRun run =
        check(QStringList{m_files.write(u"passes"_s, passes()), u"--waivers"_s, waivers} + options, library);
    QCOMPARE(run.exitCode, 2);
    QCOMPARE(run.output, QStringList());
    QCOMPARE(run.errors, QStringList{u"kvx: %1; give another file"_s.arg(says)});
    QVERIFY(!QFile::exists(m_files.path(u"new"_s)));
}

void tst_KvxCheck::listHasEveryScenario()
{
    QStringList names;
    const QJsonArray scenarios = listedScenarios();
    for (const auto &value : scenarios) {
        const QJsonObject scenario = value.toObject();
        names.append(scenario.value("name"_L1).toString());
        for (const QString &key : {u"title"_s, u"why"_s, u"level"_s, u"severity"_s})
            QVERIFY2(!scenario.value(key).toString().isEmpty(), qPrintable(names.last() + u' ' + key));
    }
    QVERIFY(names.contains(u"session"_s));
    const KvxRun list = runKvx({u"check"_s, u"--list"_s});
    QCOMPARE(list.exitCode, 0);
    QStringList listed;
    for (const QString &line : list.output)
        listed.append(line.section(u' ', 0, 0));
    QCOMPARE(listed, names);
}

void tst_KvxCheck::levelsIncludeThoseBefore_data()
{
    QTest::addColumn<QStringList>("levels");
    QTest::newRow("load") << QStringList{u"load"_s};
    QTest::newRow("contract") << QStringList{u"load"_s, u"contract"_s};
    QTest::newRow("stress") << QStringList{u"load"_s, u"contract"_s, u"stress"_s};
}

void tst_KvxCheck::levelsIncludeThoseBefore()
{
    QFETCH(const QStringList, levels);
    QStringList expected;
    const QJsonArray scenarios = listedScenarios();
    for (const auto &value : scenarios) {
        if (levels.contains(value.toObject().value("level"_L1).toString()))
            expected.append(value.toObject().value("name"_L1).toString());
    }
    const KvxRun list = runKvx({u"check"_s, u"--list"_s, u"--level"_s, levels.last()});
    QStringList listed;
    for (const QString &line : list.output)
        listed.append(line.section(u' ', 0, 0));
    QCOMPARE(listed, expected);
    QCOMPARE(list.exitCode, expected.isEmpty() ? 2 : 0);
}

void tst_KvxCheck::foldersAndExclusionsSelect()
{
    const QString sound = m_files.write(u"passes"_s, passes());
    const QString fails = m_files.write(u"fails"_s, failsAlways());
    // A name is taken once, whatever its level.
    const KvxRun run = check({u"session"_s, sound, u"session"_s, u"--level"_s, u"load"_s});
    QCOMPARE(verdicts(run), QStringList({u"pass       "_s + sound, u"pass       session"_s}));
    const KvxRun without = check({u"--exclude"_s, u"session"_s, sound, u"session"_s});
    QCOMPARE(verdicts(without), QStringList{u"pass       "_s + sound});
    QCOMPARE(check({fails, sound}).exitCode, 1);
}

void tst_KvxCheck::explanationHasTheLines()
{
    const KvxRun run = runKvx({u"check"_s, u"--explain"_s, u"session"_s});
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.output.value(0), u"scenario  session"_s);
    for (const QString &line :
         {u"level     contract"_s, u"severity  error"_s, u"system    any"_s, u"    7  mouse 42"_s})
        QVERIFY2(run.output.contains(line), qPrintable(line));
    QCOMPARE(run.output.filter(QRegularExpression(u"^(promise|why)   +\\S"_s)).size(), 2);

    const QJsonArray explained = listedScenarios({u"--explain"_s, u"session"_s});
    QCOMPARE(explained.size(), 1);
    QJsonObject scenario = explained.first().toObject();
    // The table has what the head has.
    constexpr int tableLines = 6;
    constexpr int headLines = 3;
    QStringList numbered;
    const QJsonArray lines = scenario.take("lines"_L1).toArray();
    for (int index = headLines; index < lines.size() - 1; ++index)
        numbered.append(u"%1  %2"_s.arg(index + 1, 5).arg(lines.at(index).toString()));
    QCOMPARE(run.output.sliced(tableLines), numbered);
    QVERIFY(listedScenarios().contains(scenario));
}

void tst_KvxCheck::badUsage_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("says");
    const QString library = PluginFixture::builtPluginFile();
    const auto row = [&](const char *tag, const QStringList &arguments, const QString &says) {
        QTest::newRow(tag) << QStringList{u"check"_s} + arguments << says;
    };
    row("no-library", {}, u"the library is missing"_s);
    row("unknown-option", {library, u"--loud"_s}, u"--loud; see kvx check --help"_s);
    row("near-name", {library, u"sesion"_s},
        u"\"sesion\" is no scenario and no folder of the contract; near are session"_s);
    row("far-name", {library, u"nosuch"_s},
        u"\"nosuch\" is no scenario and no folder of the contract; see kvx check --list"_s);
    row("second-library", {library, library},
        u"is a file, but no scenario (*.kvx); check one library at a time"_s);
    row("library-last", {u"load/one-device"_s, library}, u"; the library comes first"_s);
    row("wrong-head", {library, m_files.write(u"red"_s, passes(), {u"# colour: red"_s})},
        u"red.kvx\" line 4: \"colour\" is no key"_s);
    row("no-head", {library, m_files.writeText(u"bare.kvx"_s, u"mouse 1\n"_s)},
        u"bare.kvx\" line 1: the head has no title; write \"# title: ...\""_s);
    row("near-exclusion", {library, u"--exclude"_s, u"sessions"_s}, u"near are session"_s);
    row("explain-nothing", {u"--explain"_s, u"sesion"_s}, u"near are session"_s);
    row("list-nothing", {u"--list"_s, u"sesion"_s}, u"near are session"_s);
    row("nothing-left", {library, u"session"_s, u"--exclude"_s, u"session"_s},
        u"no scenario is left to run"_s);
    row("no-file", {library, u"/nowhere/x.kvx"_s}, u"\"/nowhere/x.kvx\" is no file"_s);
    row("level", {library, u"--level"_s, u"high"_s}, u"--level"_s);
    row("no-jobs", {library, u"--jobs"_s, u"0"_s}, u"--jobs"_s);
    row("jobs-no-number", {library, u"--jobs"_s, u"many"_s}, u"--jobs"_s);
    row("seed", {library, u"--seed"_s, u"-1"_s}, u"--seed"_s);
    row("seed-too-large", {library, u"--seed"_s, u"4294967296"_s}, u"--seed"_s);
    row("timeout-zero", {library, u"--timeout"_s, u"0"_s}, u"--timeout \"0\" is no number of seconds"_s);
    row("timeout-word", {library, u"--timeout"_s, u"soon"_s},
        u"--timeout \"soon\" is no number of seconds"_s);
    row("json-without-file", {library, u"--json"_s}, u"--json needs the file to write"_s);
    row("list-into-file", {u"--list"_s, u"--json"_s, u"x.json"_s}, u"takes no file"_s);
    row("explain-into-file", {u"--explain"_s, u"session"_s, u"--json"_s, u"x.json"_s}, u"takes no file"_s);
    row("waivers-missing", {library, u"--waivers"_s, u"/nowhere/x.toml"_s},
        u"\"/nowhere/x.toml\" cannot be read"_s);
    for (const char *const option : {"--junit", "--json", "--html"})
        row(option, {library, QString::fromLatin1(option), u"/nowhere/x"_s},
            u"\"/nowhere/x\" cannot be written"_s);
    row("no-regular-file", {library, u"--json"_s, u"/"_s}, u"\"/\" is no regular file; give the name"_s);
}

void tst_KvxCheck::badUsage()
{
    QFETCH(const QStringList, arguments);
    QFETCH(const QString, says);
    const KvxRun run = runKvx(arguments);
    QCOMPARE(run.exitCode, 2);
    QCOMPARE(run.output, QStringList());
    QCOMPARE(run.errors.size(), 1);
    QVERIFY2(run.errors.first().startsWith(u"kvx: "_s) && run.errors.first().contains(says),
             qPrintable(run.errors.first()));
}

void tst_KvxCheck::unusableLibrary_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("cause");
    QTest::newRow("missing") << u"/nowhere/x.so"_s << u"does not exist"_s;
    QTest::newRow("directory") << u"/"_s << u"is a directory"_s;
    QTest::newRow("foreign") << wrongLibrary(u"ForeignPlugin"_s) << u"plugin of another kind"_s;
    QTest::newRow("no-plugin") << wrongLibrary(u"NoPlugin"_s) << u"no Qt plugin"_s;
}

void tst_KvxCheck::unusableLibrary()
{
    QFETCH(const QString, file);
    QFETCH(const QString, cause);
    const KvxRun run = check({u"session"_s}, file);
    QCOMPARE(run.exitCode, 2);
    QCOMPARE(run.output, QStringList());
    QCOMPARE(run.errors.size(), 1);
    QVERIFY2(run.errors.first().contains(cause), qPrintable(run.errors.first()));
}

QTEST_GUILESS_MAIN(tst_KvxCheck)
#include "tst_KvxCheck.moc"
