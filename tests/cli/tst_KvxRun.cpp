#include "Kvx.h"
#include "PluginFixture.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

using namespace Qt::StringLiterals;

namespace {

KvxRun runFile(const QString &file, const QStringList &options = {})
{
    return runKvx(QStringList{u"run"_s, u"--plugin"_s, PluginFixture::builtPluginFile()} + options +
                  QStringList{file});
}

KvxRun runShell(const QByteArray &input)
{
    return runKvx({u"shell"_s, u"--plugin"_s, PluginFixture::builtPluginFile()}, input);
}

// What the page of examples shows of a scenario.
QStringList shownExample(const QString &name)
{
    QFile page(QStringLiteral(KVX_EXAMPLES "/../docs/examples.md"));
    if (!page.open(QIODevice::ReadOnly))
        return {};
    const QString section = QString::fromUtf8(page.readAll()).section(u"## "_s + name, 1);
    return section.section(u"```\n"_s, 1, 1).chopped(1).split(u'\n');
}

// Without what a start leaves, which the page does not show.
QStringList withoutStarts(const QStringList &output)
{
    QStringList lines;
    bool isStart = false;
    for (const QString &line : output) {
        if (!isStart || line.startsWith(u"> "))
            lines.append(line);
        isStart = line == u"> start" || (isStart && !line.startsWith(u"> "));
    }
    return lines;
}

QStringList examples()
{
    return QDir(QStringLiteral(KVX_EXAMPLES)).entryList({u"*.kvx"_s}, QDir::Files, QDir::Name);
}

}  // namespace

class tst_KvxRun : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyExamplePasses_data();
    void everyExamplePasses();
    void everyExampleIsShown_data() { everyExamplePasses_data(); }
    void everyExampleIsShown();
    void examplesAreAllThere();
    void outputShowsCommandsAndTimeline();
    void jsonHoldsTheTimelineOnly();
    void windowsLineEndsAreRead();
    void outcomes_data();
    void outcomes();
    void failedExpectations_data();
    void failedExpectations();
    void badLines_data();
    void badLines();
    void nothingRunsBehindABadLine();
    void unusableFiles_data();
    void unusableFiles();
    void expectationsThatHold();
    void allLinesOfACommandAreCompared_data();
    void allLinesOfACommandAreCompared();
    void unloadEndsThePlugin();
    void wordsMayBeQuoted();
    void everyRequestHasACommand();
    void everyFaultHasItsEffect();
    void mouseFieldsAreSet();
    void shellHasAMouseStarted();
    void shellGoesOnAfterAMistake();
    void shellEndsWithItsInput();
    void shellShowsEverything();
};

void tst_KvxRun::everyExamplePasses_data()
{
    QTest::addColumn<QString>("name");
    const QStringList names = examples();
    for (const QString &name : names)
        QTest::newRow(qPrintable(name)) << name;
}

void tst_KvxRun::everyExamplePasses()
{
    QFETCH(const QString, name);
    const KvxRun run = runFile(QDir(QStringLiteral(KVX_EXAMPLES)).filePath(name));
    QCOMPARE(run.errors, QStringList());
    QCOMPARE(run.exitCode, 0);
    QVERIFY(run.output.filter(QRegularExpression(u"^> (expect|wait) "_s)).size() >= 2);
}

void tst_KvxRun::everyExampleIsShown()
{
    QFETCH(const QString, name);
    const QStringList output =
        withoutStarts(runFile(QDir(QStringLiteral(KVX_EXAMPLES)).filePath(name)).output);
    const QStringList shown = shownExample(name);
    // Apart, because between two commands a timer may run out sooner or later.
    const QRegularExpression command(u"^> "_s);
    const QRegularExpression event(u"^(?!> |debug |warning )"_s);
    QCOMPARE(shown.filter(command), output.filter(command));
    QCOMPARE(shown.filter(event), output.filter(event));
}

void tst_KvxRun::examplesAreAllThere()
{
    QCOMPARE(examples(),
             QStringList({u"01-dpi-slots.kvx"_s, u"02-lost-confirmation.kvx"_s,
                          u"03-disagreeing-confirmation.kvx"_s, u"04-refused-report-rate.kvx"_s,
                          u"05-button-diversion.kvx"_s, u"06-smart-pointer-tap.kvx"_s, u"07-two-mice.kvx"_s,
                          u"08-sleep-and-wake.kvx"_s, u"09-dpi-button.kvx"_s}));
}

void tst_KvxRun::outputShowsCommandsAndTimeline()
{
    const KvxRun run = playLines({u"mouse 1"_s, u"start"_s, u"setReportRate 1000  # in Hz"_s, u""_s});
    QCOMPARE(run.exitCode, 0);
    const qsizetype command = run.output.indexOf(u"> setReportRate 1000"_s);
    QCOMPARE(
        run.output.mid(command),
        QStringList(
            {u"> setReportRate 1000"_s, u"call setReportRate(1000)"_s,
             u"debug RV418.LogicalDevice: Updating new report rate :  1000"_s,
             u"signal isReportRateChangePendingChanged(true)"_s, u"receiver setReportRate(1000) -> true"_s,
             u"signal reportRateChanged(1000)"_s, u"report reportRateConfirmed(1000)"_s,
             u"debug RV418.LogicalDevice: reportRateConfirmed rate : 1000 , reportRatePending : 1000"_s,
             u"signal isReportRateChangePendingChanged(false)"_s}));
}

void tst_KvxRun::jsonHoldsTheTimelineOnly()
{
    const KvxRun run = runFile(QStringLiteral(KVX_EXAMPLES "/04-refused-report-rate.kvx"), {u"--json"_s});
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.output.value(0), u"{\"schemaVersion\":1}"_s);
    for (qsizetype index = 1; index < run.output.size(); ++index) {
        const QJsonDocument document = QJsonDocument::fromJson(run.output.at(index).toUtf8());
        QVERIFY2(document.isObject(), qPrintable(run.output.at(index)));
        QCOMPARE(document.object().value("sequence"_L1).toInt(), static_cast<int>(index));
    }
}

void tst_KvxRun::windowsLineEndsAreRead()
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(u"scenario.kvx"_s));
    QVERIFY(file.open(QFile::WriteOnly));
    // With the mark that some editors put in front.
    file.write("\xef\xbb\xbfmouse 1\r\n\r\n# a comment\r\nstart\r\nexpect reportRate 500\r\n");
    file.close();
    const KvxRun run = runFile(file.fileName());
    QCOMPARE(run.errors, QStringList());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.output.filter(QRegularExpression(u"^> "_s)),
             QStringList({u"> mouse 1"_s, u"> start"_s, u"> expect reportRate 500"_s}));
}

void tst_KvxRun::outcomes_data()
{
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("error");
    const auto row = [](const char *tag, const QStringList &lines, int exitCode, const QString &error) {
        QTest::newRow(tag) << QStringList{u"mouse 1"_s, u"start"_s} + lines << exitCode << error;
    };
    row("confirmed", {u""_s, u"setReportRate 1000"_s}, 0, {});
    row("confirmed-as-said", {u""_s, u"setReportRate 1000 => confirmed"_s}, 0, {});
    row("value-in-force", {u""_s, u"setReportRate 500"_s}, 0, {});
    row("refused", {u"fault setReportRate refuse"_s, u"setReportRate 1000"_s}, 3,
        u"the request is refused"_s);
    row("refused-as-said", {u"fault setReportRate refuse"_s, u"setReportRate 1000 => refused"_s}, 0, {});
    row("not-refused", {u""_s, u"setReportRate 1000 => refused"_s}, 1,
        u"the request: expected refused, seen confirmed"_s);
    row("pending", {u"fault setDpiButtonAndActiveSlot drop"_s, u"setActiveDpiSlotIndex 3"_s}, 4,
        u"the request is pending"_s);
    row("pending-as-said", {u"fault setDpiSlotValues drop"_s, u"setDpiSlotValues 1 2 3 4 500 => pending"_s},
        0, {});
    row("not-pending", {u""_s, u"setDpiButtonId 3 => pending"_s}, 1,
        u"the request: expected pending, seen confirmed"_s);
    row("not-waited-for", {u"fault setReportRate drop"_s, u"setReportRate 1000 nowait"_s}, 0, {});
    row("mask-refused", {u"fault setDisabledButtonsOrKeysMask refuse"_s, u"disbaleButtonsOrKeys 1"_s}, 3,
        u"the request is refused"_s);
}

void tst_KvxRun::outcomes()
{
    QFETCH(const QStringList, lines);
    QFETCH(const int, exitCode);
    QFETCH(const QString, error);
    const KvxRun run = playLines(lines);
    QCOMPARE(run.errors, error.isEmpty() ? QStringList() : QStringList{errorAt(4, error)});
    QCOMPARE(run.exitCode, exitCode);
}

void tst_KvxRun::failedExpectations_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("error");
    QTest::newRow("value") << u"expect dpiButtonId 4"_s << u"dpiButtonId: expected \"4\", seen \"6\""_s;
    QTest::newRow("list") << u"expect reportRateValues 125"_s
                          << u"reportRateValues: expected \"125\", seen \"125 250 500 1000\""_s;
    QTest::newRow("signal")
        << u"expect signal dpiMinChanged(100)"_s
        << u"the next signal: expected dpiMinChanged(100), seen instanceNumberChanged(0)"_s;
    QTest::newRow("timeline") << u"expect timeline signal nothing() | signal more()"_s
                              << u"the last lines: expected signal nothing() | signal more(), seen "
                                 "call stop() | signal stopped(\"this\")"_s;
    QTest::newRow("no-timeline")
        << u"expect timeline"_s
        << u"the last lines: expected none, seen call stop() | signal stopped(\"this\")"_s;
    QTest::newRow("log") << u"expect log debug one | debug two"_s
                         << u"the log of the last command: expected debug one | debug two, seen "
                            "debug RV418.LogicalDevice: stop enter | debug RV418.LogicalDevice: stop exit"_s;
    QTest::newRow("no-log")
        << u"expect log"_s
        << u"the log of the last command: expected none, seen "
           "debug RV418.LogicalDevice: stop enter | debug RV418.LogicalDevice: stop exit"_s;
    QTest::newRow("metadata")
        << u"expect metadata {}"_s
        << u"the metadata: expected {}, seen {\"IID\":\"com.orvane.KVX.Plugin.LogicalDevice.RV418\","
           "\"archlevel\":0,\"className\":\"LogicalDevicePlugin\"}"_s;
    QTest::newRow("slot")
        << u"slot onNothing"_s
        << u"the device's slots: expected onNothing, seen "
           "onSmartPointerCtrReleaseTimerTimeout, onDpiMinChanged, onDpiMaxChanged, onPPIDChanged"_s;
    QTest::newRow("wait") << u"wait signal never() 10"_s
                          << u"expected signal never(), seen nothing of it in 10 ms"_s;
}

void tst_KvxRun::failedExpectations()
{
    QFETCH(const QString, line);
    QFETCH(const QString, error);
    const KvxRun run = playLines({u"mouse 1"_s, u"start"_s, u"stop"_s, line});
    QCOMPARE(run.errors, QStringList{errorAt(4, error)});
    QCOMPARE(run.exitCode, 1);
}

void tst_KvxRun::badLines_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("word");
    const auto row = [](const char *tag, const QString &line, const QString &word) {
        QTest::newRow(tag) << line << word;
    };
    row("no-command", u"frobnicate 1"_s, u"\"frobnicate\" is no command"_s);
    row("letter-case", u"Start"_s, u"\"Start\" is no command"_s);
    row("open-quote", u"set ppid \"abc"_s, u"a quote is left open"_s);
    row("rate-no-number", u"setReportRate fast"_s, u"\"fast\" is not what setReportRate takes: a number"_s);
    row("rate-missing", u"setReportRate"_s, u"\"\" is not what setReportRate takes: a number"_s);
    row("rate-twice", u"setReportRate 1 2"_s, u"\"1 2\" is not what setReportRate takes: a number"_s);
    row("rate-too-large", u"setReportRate 4294967296"_s,
        u"\"4294967296\" is not what setReportRate takes: a number"_s);
    row("slot-no-number", u"setActiveDpiSlotIndex x"_s,
        u"\"x\" is not what setActiveDpiSlotIndex takes: a number"_s);
    row("button-id-no-number", u"setDpiButtonId x"_s, u"\"x\" is not what setDpiButtonId takes: a number"_s);
    row("button-no-number", u"disbaleButtonsOrKeys 1 two"_s,
        u"\"1 two\" is not what disbaleButtonsOrKeys takes: numbers"_s);
    row("outcome", u"setReportRate 1 => maybe"_s, u"\"maybe\" is not an outcome"_s);
    row("superfluous", u"start now"_s, u"\"now\" is not wanted here"_s);
    row("setting-without-value", u"applySettings speed"_s,
        u"\"speed\" is not what applySettings takes: NAME=VALUE..."_s);
    row("press-nothing", u"press"_s, u"\"\" is not a button"_s);
    row("press-six", u"press 6"_s, u"\"6\" is not a button"_s);
    row("release-unknown", u"release wheel"_s, u"\"wheel\" is not a button"_s);
    row("drain", u"drain 101"_s, u"\"101\" is not a number of percent"_s);
    row("field", u"set colour red"_s, u"a mouse has no \"colour\""_s);
    row("field-value", u"set dpiMin low"_s, u"\"low\" is no value for dpiMin"_s);
    row("field-too-many", u"set dpiSlotValues 1 2 3 4 5 6"_s,
        u"\"1 2 3 4 5 6\" is no value for dpiSlotValues"_s);
    row("field-slot", u"set activeDpiSlotIndex 6"_s, u"\"6\" is no value for activeDpiSlotIndex"_s);
    row("mouse-id", u"mouse one"_s, u"\"one\" is not a mouse id"_s);
    row("mouse-twice", u"mouse 1"_s, u"there is a mouse 1 already"_s);
    row("mouse-field", u"mouse 2 colour=red"_s, u"a mouse has no \"colour\""_s);
    row("use-unknown", u"use 9"_s, u"there is no mouse 9"_s);
    row("use-negative", u"use -1"_s, u"\"-1\" is not a mouse id"_s);
    row("report-unknown", u"report weather 1"_s, u"\"weather\" is not a report"_s);
    row("report-value", u"report dpiValueChangedCallBack"_s,
        u"\"\" is not what dpiValueChangedCallBack takes: a number"_s);
    row("report-four-slots", u"report dpiSlotValuesConfirmed 1 2 3 4"_s,
        u"\"1 2 3 4\" is not what dpiSlotValuesConfirmed takes: 5 slot values"_s);
    row("report-six-rates", u"report reportRateChangedCallBack 1 2 3 4 5 6"_s,
        u"\"1 2 3 4 5 6\" is not what reportRateChangedCallBack takes: the rate in force"_s);
    row("fault-unknown", u"fault weather drop"_s, u"\"weather\" is not an operation"_s);
    row("fault-effect", u"fault setReportRate explode"_s, u"\"explode\" is not an effect"_s);
    row("fault-delay", u"fault setReportRate delay"_s, u"\"delay\" is not an effect"_s);
    row("fault-times", u"fault setReportRate drop times 0"_s, u"\"0\" is not a number of times"_s);
    row("fault-alter", u"fault dpiSlotValuesConfirmed alter 1"_s,
        u"\"1\" is not what dpiSlotValuesConfirmed takes: 5 slot values"_s);
    row("answer-delay", u"answer-delay -1"_s, u"\"-1\" is not a number of milliseconds"_s);
    row("resend-limit", u"resend-limit 0"_s, u"\"0\" is not a number of repetitions"_s);
    row("deadline", u"deadline soon"_s, u"\"soon\" is not a number of milliseconds"_s);
    row("show", u"show weather"_s, u"\"weather\" is not a value"_s);
    row("timeline", u"timeline 0"_s, u"\"0\" is not a number of lines"_s);
    row("expect", u"expect weather fine"_s, u"\"weather\" is not a value"_s);
    row("wait", u"wait"_s, u"wait for what?"_s);
    row("outcome-of-no-request", u"stop => confirmed"_s,
        u"stop is no request that has an outcome; delete \"=> confirmed\""_s);
    row("call-nothing", u"call"_s,
        u"\"\" is not an operation without a command of its own; there are deviceType"_s);
    row("call-command", u"call start"_s, u"\"start\" is not an operation without a command of its own"_s);
    row("call-report", u"call reportRateConfirmed 5"_s, u"\"reportRateConfirmed\" is not an operation"_s);
    row("call-value", u"call pairedHostName"_s, u"\"\" is not what pairedHostName takes: a number"_s);
    row("call-getter-value", u"call deviceType 1"_s, u"\"1\" is not what deviceType takes: nothing"_s);
    row("call-destructor", u"other-thread call ~ILogicalDeviceGen3"_s,
        u"a device is deleted on its own thread; write \"call ~ILogicalDeviceGen3\""_s);
    row("slot-value", u"slot onDpiMinChanged low"_s, u"\"low\" is not what onDpiMinChanged(int) takes"_s);
    row("slot-values", u"slot onDpiMinChanged 1 2"_s, u"\"1 2\" is not what onDpiMinChanged(int) takes"_s);
    row("receiver", u"receiver 0"_s, u"\"0\" is not the number of a receiver, 1 to 9"_s);
    row("receiver-nothing", u"receiver"_s, u"\"\" is not the number of a receiver"_s);
    row("categories", u"categories debug=off"_s, u"\"debug=off\" is not a rule"_s);
    row("load", u"load"_s, u"the plugin is loaded; put this behind \"unload\""_s);
    row("show-argument", u"show pairedHostName"_s, u"\"pairedHostName\" is not a value"_s);
    row("device-id", u"device none"_s, u"\"none\" is not a device id"_s);
    row("device-nowhere", u"device 2"_s, u"\"\" is not a physical device"_s);
    row("device-where", u"device 2 receiver"_s, u"\"receiver\" is not a physical device"_s);
    row("device-twice", u"device 1 none"_s, u"there is a device 1 already"_s);
    row("log-nothing", u"log"_s, u"\"\" is not a log switch: debug, warning, critical"_s);
    row("log-unknown", u"log debug off info off"_s, u"\"info\" is not a log switch"_s);
    row("log-half", u"log debug off warning"_s, u"\"\" is not on or off, for the log switch warning"_s);
    row("log-state", u"log debug 0"_s, u"\"0\" is not on or off"_s);
    row("settle", u"settle down"_s, u"\"down\" is not wanted here"_s);
    row("other-thread-nothing", u"other-thread"_s,
        u"\"\" is not a command that can come so; there are start"_s);
    row("other-thread-mouse", u"other-thread mouse 2"_s, u"\"mouse\" is not a command that can come so"_s);
    row("other-thread-twice", u"other-thread other-thread stop"_s,
        u"\"other-thread\" is not a command that can come so"_s);
    row("other-thread-word", u"other-thread setReportRate fast"_s,
        u"\"fast\" is not what setReportRate takes: a number"_s);
    row("other-thread-event", u"other-thread report mouseEventCallBack 1"_s,
        u"mouseEventCallBack must come on the device's thread"_s);
    row("at-once", u"at-once start"_s, u"\"start\" is not a command that can come so; there are report"_s);
    row("inside-request", u"inside-request stop"_s, u"\"stop\" is not a command that can come so"_s);
    row("inside-request-event", u"inside-request report mouseEventCallBack 1"_s,
        u"mouseEventCallBack must come on the device's thread"_s);
    row("inside-request-report", u"inside-request report weather 1"_s, u"\"weather\" is not a report"_s);
}

void tst_KvxRun::badLines()
{
    QFETCH(const QString, line);
    QFETCH(const QString, word);
    const KvxRun run = playLines({u"mouse 1"_s, u"start"_s, u""_s, u"# comment"_s, line});
    QCOMPARE(run.exitCode, 2);
    QCOMPARE(run.errors.size(), qsizetype(1));
    QVERIFY2(run.errors.first().startsWith(errorAt(5, word)), qPrintable(run.errors.first()));
    QCOMPARE(run.output.last(), u"> "_s + line);
}

void tst_KvxRun::nothingRunsBehindABadLine()
{
    const KvxRun run = playLines({u"mouse 1"_s, u"nonsense"_s, u"start"_s});
    QCOMPARE(run.exitCode, 2);
    QVERIFY(!run.output.contains(u"> start"_s));
    const KvxRun without = playLines({u"start"_s});
    QCOMPARE(without.exitCode, 2);
    QCOMPARE(without.errors, QStringList{errorAt(1, u"there is no mouse yet; add one with \"mouse 1\""_s)});
    // What came can be expected without one, values cannot.
    const KvxRun removed =
        playLines({u"mouse 1"_s, u"remove"_s, u"expect timeline call destroyDevice()"_s,
                   u"wait debug RV418.LogicalDevice: ~LogicalDevice exit"_s, u"expect dpiMin 0"_s});
    QCOMPARE(removed.exitCode, 2);
    QCOMPARE(removed.errors, QStringList{errorAt(5, u"there is no mouse yet; add one with \"mouse 1\""_s)});
}

void tst_KvxRun::unusableFiles_data()
{
    QTest::addColumn<QString>("file");
    QTest::newRow("missing") << u"/nowhere/at/all.kvx"_s;
    QTest::newRow("folder") << QStringLiteral(KVX_EXAMPLES);
    QTest::newRow("binary") << PluginFixture::builtPluginFile();
}

void tst_KvxRun::unusableFiles()
{
    QFETCH(const QString, file);
    const KvxRun run = runFile(file);
    QCOMPARE(run.exitCode, 2);
    QCOMPARE(run.output, QStringList());
    QCOMPARE(run.errors.size(), qsizetype(1));
    QVERIFY(run.errors.first().startsWith(u"kvx: \""_s + file));
}

void tst_KvxRun::expectationsThatHold()
{
    const KvxRun run = playLines(
        {u"mouse 1"_s, u"start"_s, u"expect signal instanceNumberChanged(0)"_s,
         u"expect signal dpiMinChanged(100)"_s, u"expect signal dpiMaxChanged(8000)"_s,
         u"setReportRate 125 nowait"_s, u"wait signal isReportRateChangePendingChanged(false) 60000"_s,
         u"expect reportRate 125"_s,
         u"expect timeline report reportRateConfirmed(125) | signal isReportRateChangePendingChanged(false)"_s,
         u"timeline 2"_s, u"quit"_s, u"nonsense"_s});
    QCOMPARE(run.errors, QStringList());
    QCOMPARE(run.exitCode, 0);
}

void tst_KvxRun::allLinesOfACommandAreCompared_data()
{
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<QString>("error");
    const QString call = u"= call setReportRate(500)"_s;
    const QString signal = u"= signal stopped(\"this\")"_s;
    const QStringList stop{u"stop"_s, u"= call stop()"_s, u"= debug RV418.LogicalDevice: stop enter"_s};
    const QString stopExit = u"= debug RV418.LogicalDevice: stop exit"_s;
    const QString confirmed = u"report dpiSlotValuesConfirmed 1 2 3 4 5"_s;
    QTest::newRow("all") << stop + QStringList{signal, stopExit, u"stop"_s} << QString();
    QTest::newRow("behind-a-check") << QStringList{u"setReportRate 500"_s, u"expect dpiMin 100"_s, call}
                                    << QString();
    QTest::newRow("any-address") << QStringList{confirmed,
                                                u"= report dpiSlotValuesConfirmed([1, 2, 3, 4, 5])"_s,
                                                u"= debug RV418.LogicalDevice: dpiSlotValuesConfirmed enter, "
                                                "values : 0x..."_s,
                                                u"= debug RV418.LogicalDevice: dpiSlotValuesConfirmed exit"_s}
                                 << QString();
    QTest::newRow("another") << QStringList{u"setReportRate 500"_s, u"= call stop()"_s}
                             << u"4: line 1 of what the command caused: expected call stop(), seen call "
                                "setReportRate(500)"_s;
    QTest::newRow("too-many")
        << QStringList{u"setReportRate 500"_s, call, call}
        << u"5: line 2 of what the command caused: expected call setReportRate(500), seen none"_s;
    QTest::newRow("too-few")
        << stop + QStringList{u"expect dpiMin 100"_s}
        << u"6: line 3 of what the command caused: expected none, seen signal stopped(\"this\")"_s;
    QTest::newRow("too-few-at-the-end") << stop + QStringList{signal}
                                        << u"6: line 4 of what the command caused: expected none, seen debug "
                                           "RV418.LogicalDevice: stop exit"_s;
}

void tst_KvxRun::allLinesOfACommandAreCompared()
{
    QFETCH(const QStringList, lines);
    QFETCH(const QString, error);
    const KvxRun run = playLines(QStringList{u"mouse 1"_s, u"start"_s} + lines);
    QCOMPARE(run.errors, error.isEmpty() ? QStringList()
                                         : QStringList{errorAt(error.section(u':', 0, 0).toInt(),
                                                               error.section(u": "_s, 1))});
    QCOMPARE(run.exitCode, error.isEmpty() ? 0 : 1);
}

void tst_KvxRun::unloadEndsThePlugin()
{
    const KvxRun run = playLines({u"mouse 1"_s, u"start"_s, u"unload"_s,
                                  u"= debug RV418.LogicalDevicePlugin: ~LogicalDevicePlugin"_s,
                                  u"= debug RV418.LogicalDevice: ~LogicalDevice enter"_s,
                                  u"= debug RV418.LogicalDevice: ~LogicalDevice exit"_s, u"mouse 2"_s});
    QCOMPARE(run.errors, QStringList{errorAt(
                             7, u"the plugin is unloaded; put this before \"unload\" or behind \"load\""_s)});
    QCOMPARE(run.exitCode, 2);
}

void tst_KvxRun::wordsMayBeQuoted()
{
    const KvxRun run = playLines({u"mouse 1"_s, u"set ppid \"A # \\\"B\\\" Ω\""_s, u"start"_s,
                                  u"expect ppid \"A # \\\"B\\\" Ω\""_s, u"show ppid"_s});
    QCOMPARE(run.errors, QStringList());
    QCOMPARE(run.output.last(), u"A # \"B\" Ω"_s);
}

void tst_KvxRun::everyRequestHasACommand()
{
    const KvxRun run = playLines(
        {u"mouse 1"_s, u"start"_s, u"setReportRate 125"_s, u"setDpiSlotValues 100 200 300 400 500"_s,
         u"setActiveDpiSlotIndex 1"_s, u"setDpiButtonId 3"_s, u"disbaleButtonsOrKeys 1 5"_s,
         u"setButtonsOrKeysToDefault"_s, u"applySettings speed=3 name=fast"_s, u"resetSettings"_s,
         u"setDpiValue 700"_s, u"forwardToPhysicalDevice 1 2 3"_s, u"query26 4 5 6"_s, u"stop"_s,
         u"expect dpiValue 100"_s, u"expect dpiButtonId 3"_s});
    QCOMPARE(run.errors, QStringList());
    for (const QString &line :
         {u"call setReportRate(125)"_s,
          u"call setDpiSlotValues([\"100\", \"200\", \"300\", \"400\", \"500\"])"_s,
          u"call setActiveDpiSlotIndex(1)"_s, u"call setDpiButtonId(3)"_s,
          u"call disbaleButtonsOrKeys([1, 5])"_s, u"call setButtonsOrKeysToDefault()"_s,
          u"call applySettings({\"name\": \"fast\", \"speed\": 3})"_s, u"call resetSettings()"_s,
          u"call setDpiValue(700)"_s, u"call forwardToPhysicalDevice(1, 2, 3) -> 1"_s,
          u"receiver forwardedOperation(5, 6) -> 0"_s, u"call query26(4, 5, 6) -> 0"_s, u"call stop()"_s})
        QVERIFY2(run.output.contains(line), qPrintable(line));
}

void tst_KvxRun::everyFaultHasItsEffect()
{
    const KvxRun run = playLines({u"mouse 1"_s,
                                  u"answer-delay 0"_s,
                                  u"fault getFirmwareVersion alter 7"_s,
                                  u"fault hasBatteryLevel alter false"_s,
                                  u"start"_s,
                                  u"expect firmwareVersion 7"_s,
                                  u"expect batteryLevel -1"_s,
                                  u"fault reportRateConfirmed repeat 2"_s,
                                  u"setReportRate 125"_s,
                                  u"fault setReportRate delay 1"_s,
                                  u"setReportRate 250"_s,
                                  u"fault reportRateConfirmed alter 500 times 2"_s,
                                  u"faults"_s,
                                  u"setReportRate 1000"_s,
                                  u"expect reportRate 1000"_s,
                                  u"fault setReportRate drop always"_s,
                                  u"setReportRate 125 => pending"_s,
                                  u"clear-faults"_s,
                                  u"faults"_s,
                                  u"report reportRateConfirmed 125"_s,
                                  u"expect isReportRateChangePending false"_s});
    QCOMPARE(run.errors, QStringList());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.output.filter(u"report reportRateConfirmed(125)"_s).size(), qsizetype(4));
    QVERIFY(run.output.contains(u"reportRateConfirmed alter times 2"_s));
}

void tst_KvxRun::mouseFieldsAreSet()
{
    const KvxRun run = playLines({u"mouse 18446744073709551615 dpiSlotValues=1,2,3,4,5 activeDpiSlotIndex=4 "
                                  "hasBatteryLevel=false reportRates=250 reportRate=0xfa"_s,
                                  u"start"_s, u"expect dpiSlotValues 1 2 3 4 5"_s,
                                  u"expect activeDpiSlotIndex 4"_s, u"expect hasBatteryLevel false"_s,
                                  u"expect reportRateValues 250"_s, u"expect reportRate 250"_s});
    QCOMPARE(run.errors, QStringList());
    QCOMPARE(run.exitCode, 0);
}

void tst_KvxRun::shellHasAMouseStarted()
{
    const KvxRun run = runShell("show reportRate\nquit\n");
    QCOMPARE(run.errors, QStringList());
    QCOMPARE(run.exitCode, 0);
    QVERIFY(run.output.contains(u"call start() -> true"_s));
    QCOMPARE(run.output.last(), u"500"_s);
}

void tst_KvxRun::shellGoesOnAfterAMistake()
{
    const KvxRun run = runShell("nonsense\nfault setReportRate refuse\nsetReportRate 250\nshow reportRate\n");
    QCOMPARE(run.errors,
             QStringList({u"kvx: \"nonsense\" is no command; see help"_s, u"kvx: the request is refused"_s}));
    QCOMPARE(run.output.last(), u"250"_s);
    QCOMPARE(run.exitCode, 0);
}

void tst_KvxRun::shellEndsWithItsInput()
{
    QCOMPARE(runShell("").exitCode, 0);
    QCOMPARE(runShell("show ppid").output.last(), u"RV418-0001"_s);
}

void tst_KvxRun::shellShowsEverything()
{
    const KvxRun run = runShell("show\nhelp\n");
    for (const QString &line :
         {u"  modelCode                           RV418"_s, u"  isReportRateChangePending           false"_s,
          u"  dpiSlotValues                       800 1600 2400 3200 4000"_s, u"  setReportRate HZ"_s})
        QVERIFY2(run.output.contains(line), qPrintable(line));
}

QTEST_GUILESS_MAIN(tst_KvxRun)
#include "tst_KvxRun.moc"
