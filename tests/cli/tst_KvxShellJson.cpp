#include "JsonShell.h"
#include "Kvx.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

using namespace Qt::StringLiterals;

namespace {

QStringList started()
{
    return {u"mouse 1"_s, u"start"_s};
}

QString textOfFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QFile::ReadOnly))
        qFatal("%s cannot be read", qPrintable(path));
    return QString::fromUtf8(file.readAll());
}

QString compactJson(const QJsonObject &object)
{
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

QStringList texts(const QJsonValue &array)
{
    return array.toVariant().toStringList();
}

ShellLines entriesOf(const ShellLines &lines)
{
    return linesWith("kind"_L1, lines);
}

// What does not differ from run to run.
QStringList comparedEntries(const ShellLines &lines)
{
    static const QRegularExpression address(u"0x[0-9a-f]{6,16}"_s);
    QStringList entries;
    const ShellLines found = entriesOf(lines);
    for (QJsonObject entry : found) {
        entry.remove("timeUs"_L1);
        entry.remove("text"_L1);
        entries.append(compactJson(entry).replace(address, u"0x..."_s));
    }
    return entries;
}

QJsonObject stateAfter(const QStringList &lines)
{
    return lastState(runShell(lines).lines);
}

QJsonObject deviceAfter(const QStringList &lines)
{
    return stateAfter(lines).value("devices"_L1)[0].toObject();
}

// The bytes that a sender of whole lines would not send.
QByteArray lineOf(qsizetype size, char byte)
{
    return QByteArray(size, byte) + '\n';
}

}  // namespace

/// kvx shell --json: what a front end reads and sends.
class tst_KvxShellJson : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void documentationHasARealRun();
    void everythingComesInItsOrder();
    void scenariosPlayAsWithRun_data();
    void scenariosPlayAsWithRun();
    void answers_data();
    void answers();
    void uncomparedLinesStopTheNextCommand();
    void hostileLinesChangeNothing_data();
    void hostileLinesChangeNothing();
    void inputEnds_data();
    void inputEnds();
    void libraryCannotBeLoaded_data();
    void libraryCannotBeLoaded();

    void entriesComeBetweenCommands_data();
    void entriesComeBetweenCommands();
    void stateFollowsEntriesBetweenCommands();
    void entriesComeWhileACommandWaits();
    void burstIsComplete();
    void inputIsReadNoFasterThanItIsAnswered();

    void operationsAreThoseOfFault();
    void valuesAreThoseOfShow();
    void pendingRequests_data();
    void pendingRequests();
    void mouse_data();
    void mouse();
    void faultsInForce();
    void severalDevices();
    void devicesWithoutAMouse();
    void idsHave64Bits();
    void libraryIsUnloadedAndLoaded();
    void logSwitches();
    void sameStateIsNotSentAgain();

    void repeatedLines();
    void roundThatGoesWrongEndsTheRepetition();
    void wrongLinesAreNotRepeated();
    void endThatDidNotRunIsNotRepeated();
    void lastRoundIsPrinted();
};

void tst_KvxShellJson::documentationHasARealRun()
{
    const QString page = textOfFile(QStringLiteral(KVX_DOCS "/scenarios.md"));
    const QString section = page.section(u"## For front ends"_s, 1).section(u"\n## "_s, 0, 0);
    const QStringList documented = section.section(u"```\n"_s, 1, 1).trimmed().split(u'\n');
    QStringList sent;
    QStringList expected;
    for (const QString &line : documented) {
        if (line.startsWith(u"> "))
            sent.append(line.sliced(2));
        else
            expected.append(line);
    }
    QCOMPARE(sent.size(), 5);
    const ShellRun run = runShell(sent);
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.lines.size(), expected.size());
    for (qsizetype i = 0; i < expected.size(); ++i) {
        const QString pattern = QRegularExpression::escape(expected.at(i)).replace(u"\\.\\.\\."_s, u".*"_s);
        const QString line = compactJson(run.lines.at(i));
        QVERIFY2(QRegularExpression(QRegularExpression::anchoredPattern(pattern)).match(line).hasMatch(),
                 qPrintable(line));
    }
}

void tst_KvxShellJson::everythingComesInItsOrder()
{
    const QStringList calls{u"createLogicalDevice"_s, u"start"_s, u"setReportRate"_s};
    const ShellRun run = runShell(started() + QStringList{u"setReportRate 250"_s, u"quit"_s});
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.lines.first(), QJsonObject({{u"schemaVersion"_s, 1}}));
    QStringList waitingForTheirEntry;
    int lastSequence = 0;
    int lastAnswer = 0;
    bool hasState = false;
    for (const QJsonObject &line : run.lines) {
        const QString kind = line["kind"_L1].toString();
        if (line.contains("began"_L1)) {
            waitingForTheirEntry.append(line["began"_L1].toString());
        } else if (!kind.isEmpty()) {
            QCOMPARE(line["sequence"_L1].toInt(), ++lastSequence);
            if (kind == u"call" || kind == u"receiver" || kind == u"report") {
                QVERIFY(!waitingForTheirEntry.isEmpty());
                const QString begun = waitingForTheirEntry.takeFirst();
                // A call has its result later.
                QVERIFY2(line["text"_L1].toString().startsWith(begun), qPrintable(begun));
            }
            // A command's own call is behind the answer to the one before.
            if (kind == u"call" && calls.contains(line["name"_L1].toString()))
                QCOMPARE(calls.indexOf(line["name"_L1].toString()), lastAnswer);
        } else if (line.contains("answer"_L1)) {
            QVERIFY(hasState);
            QCOMPARE(line["answer"_L1].toInt(), ++lastAnswer);
            QCOMPARE(waitingForTheirEntry, QStringList());
        } else if (line.contains("state"_L1)) {
            QVERIFY(lastAnswer < 4);
            hasState = true;
        }
    }
    QCOMPARE(lastAnswer, 4);
    // Of unloading, behind the answer to quit.
    QCOMPARE(waitingForTheirEntry, QStringList({u"call destroyDevice()"_s}));
}

void tst_KvxShellJson::scenariosPlayAsWithRun_data()
{
    QTest::addColumn<QString>("file");
    const QFileInfoList files = QDir(QStringLiteral(KVX_EXAMPLES)).entryInfoList({u"*.kvx"_s});
    QVERIFY(!files.isEmpty());
    for (const QFileInfo &file : files)
        QTest::newRow(qPrintable(file.completeBaseName())) << file.filePath();
    QTest::newRow("session") << QStringLiteral(KVX_EXAMPLES "/../contract/session.kvx");
}

// Reading the state calls getters, which must leave no trace.
void tst_KvxShellJson::scenariosPlayAsWithRun()
{
    QFETCH(const QString, file);
    const KvxRun run = runKvx({u"run"_s, u"--json"_s, u"--plugin"_s, PluginFixture::builtPluginFile(), file});
    ShellLines expected;
    for (const QString &line : run.output)
        expected.append(QJsonDocument::fromJson(line.toUtf8()).object());
    const ShellRun shell = runShell(textOfFile(file).toUtf8());
    QCOMPARE(comparedEntries(shell.lines), comparedEntries(expected));
    QStringList results = textsOf("result"_L1, linesWith("answer"_L1, shell.lines));
    results.removeDuplicates();
    QCOMPARE(results, QStringList({u"done"_s}));
}

void tst_KvxShellJson::answers_data()
{
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<QJsonObject>("answer");
    // Of the last line.
    const auto row = [](const char *name, const QStringList &lines, const QString &command,
                        const QString &result, const QString &message = {}, const QString &expected = {},
                        const QString &actual = {}, const QString &printed = {}) {
        const auto array = [](const QString &text) {
            return text.isEmpty() ? QJsonArray() : QJsonArray{text};
        };
        QTest::newRow(name) << lines << QJsonObject{{u"answer"_s, lines.size()},
                                                    {u"command"_s, command},
                                                    {u"result"_s, result},
                                                    {u"message"_s, message},
                                                    {u"expected"_s, array(expected)},
                                                    {u"actual"_s, array(actual)},
                                                    {u"printed"_s, array(printed)}};
    };
    const QString iid = u"call iid() -> \"com.orvane.KVX.Plugin.LogicalDevice.RV418\""_s;
    row("done", {u"  mouse 1   # the first"_s}, u"mouse 1"_s, u"done"_s);
    row("empty", {QString(), QString()}, QString(), u"done"_s);
    row("comment", {u"# only this"_s}, QString(), u"done"_s);
    row("difference", started() + QStringList{u"expect reportRate 125"_s}, u"expect reportRate 125"_s,
        u"difference"_s, u"reportRate: expected \"125\", seen \"500\""_s, u"\"125\""_s, u"\"500\""_s);
    row("lines-differ", started() + QStringList{u"call iid"_s, u"= call iid()"_s}, u"= call iid()"_s,
        u"difference"_s, u"line 1 of what the command caused: expected call iid(), seen "_s + iid,
        u"call iid()"_s, iid);
    row("unknown", {u"frobnicate"_s}, u"frobnicate"_s, u"unusable"_s,
        u"\"frobnicate\" is no command; see help"_s);
    row("open-quote", {u"mouse \"1"_s}, u"mouse \"1"_s, u"unusable"_s, u"a quote is left open"_s);
    row("refused", started() + QStringList{u"fault setReportRate refuse"_s, u"setReportRate 125"_s},
        u"setReportRate 125"_s, u"refused"_s, u"the request is refused"_s);
    row("pending", started() + QStringList{u"fault setReportRate drop"_s, u"setReportRate 125"_s},
        u"setReportRate 125"_s, u"pending"_s, u"the request is pending"_s);
    row("end", {u"quit"_s}, u"quit"_s, u"end"_s);
    row("printed", started() + QStringList{u"fault setDpiSlotValues delay 7 always"_s, u"faults"_s},
        u"faults"_s, u"done"_s, QString(), QString(), QString(), u"setDpiSlotValues delay always"_s);
    row("letters", {u"frobnicate \"ä€😀\u0007\""_s}, u"frobnicate \"ä€😀\u0007\""_s, u"unusable"_s,
        u"\"frobnicate\" is no command; see help"_s);
}

void tst_KvxShellJson::answers()
{
    QFETCH(const QStringList, lines);
    QFETCH(const QJsonObject, answer);
    const ShellRun run = runShell(lines.join(u'\n').toUtf8() + '\n');
    QCOMPARE(run.exitCode, 0);
    const ShellLines found = linesWith("answer"_L1, run.lines);
    QCOMPARE(found.size(), lines.size());
    QCOMPARE(found.last(), answer);
}

void tst_KvxShellJson::uncomparedLinesStopTheNextCommand()
{
    const ShellRun run = runShell(started() + QStringList{u"stop"_s, u"= call stop()"_s,
                                                          u"set batteryLevel 9"_s, u"set batteryLevel 10"_s});
    QCOMPARE(textsOf("result"_L1, linesWith("answer"_L1, run.lines)),
             QStringList({u"done"_s, u"done"_s, u"done"_s, u"done"_s, u"difference"_s, u"done"_s}));
    const ShellLines states = linesWith("state"_L1, run.lines);
    for (const QJsonObject &state : states)
        QVERIFY(state["state"_L1]["devices"_L1][0]["mouse"_L1]["batteryLevel"_L1].toInt() != 9);
    QCOMPARE(lastState(run.lines).value("devices"_L1)[0]["mouse"_L1]["batteryLevel"_L1].toInt(), 10);
}

void tst_KvxShellJson::hostileLinesChangeNothing_data()
{
    constexpr qsizetype longest = 1 << 20;
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("message");
    const QString tooLong = u"the line is longer than 1048576 bytes; write a shorter one"_s;
    const QString noText = u"the line is no UTF-8; write it in UTF-8"_s;
    const QString hasNul = u"the line has a NUL character; write text"_s;
    QTest::newRow("longest") << lineOf(longest, '#') << QString() << QString();
    QTest::newRow("too-long") << lineOf(longest + 1, '#') << QString() << tooLong;
    QTest::newRow("much-too-long") << lineOf(8 * longest, 'x') << QString() << tooLong;
    QTest::newRow("nul") << QByteArray("mouse 2\0\n", 9) << QString() << hasNul;
    QTest::newRow("nul-in-front") << QByteArray("\0\n", 2) << QString() << hasNul;
    QTest::newRow("not-utf-8") << QByteArray("mouse 2 # \xff\n") << QString() << noText;
    QTest::newRow("cut-utf-8") << QByteArray("mouse 2 # \xe2\x82\n") << QString() << noText;
    QTest::newRow("surrogate") << QByteArray("mouse 2 # \xed\xa0\x80\n") << QString() << noText;
    QTest::newRow("carriage-return") << QByteArray("use 1\r\n") << u"use 1"_s << QString();
    QTest::newRow("end-of-file-letter")
        << QByteArray("\x1a\n") << u"\u001a"_s << u"\"\u001a\" is no command; see help"_s;
    QTest::newRow("answer") << QByteArray("{\"answer\":7}\n") << u"{\"answer\":7}"_s
                            << u"\"{answer:7}\" is no command; see help"_s;
    QTest::newRow("wrong-words") << QByteArray("set reportRate fast\n") << u"set reportRate fast"_s
                                 << u"\"fast\" is no value for reportRate"_s;
    QTest::newRow("end-alone") << QByteArray("end\n") << u"end"_s
                               << u"there is nothing to end; put \"repeat N\" before it"_s;
}

void tst_KvxShellJson::hostileLinesChangeNothing()
{
    QFETCH(const QByteArray, line);
    QFETCH(const QString, command);
    QFETCH(const QString, message);
    const ShellRun run = runShell("mouse 1\n" + line + "show modelCode\n");
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(textsOf("answer"_L1, run.lines), QStringList({u"1"_s, u"2"_s, u"3"_s}));
    const QJsonObject answer = answerTo(2, run.lines);
    QCOMPARE(answer["command"_L1].toString(), command);
    QCOMPARE(answer["message"_L1].toString(), message);
    QCOMPARE(answer["result"_L1].toString(), message.isEmpty() ? u"done"_s : u"unusable"_s);
    QCOMPARE(texts(answerTo(3, run.lines).value("printed"_L1)), QStringList({u"RV418"_s}));
    // One of the loaded library and one of the mouse.
    QCOMPARE(linesWith("state"_L1, run.lines).size(), 2);
}

void tst_KvxShellJson::inputEnds_data()
{
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<QStringList>("results");
    QTest::newRow("nothing") << QByteArray() << QStringList();
    QTest::newRow("half-line") << QByteArray("mouse 1\nstar") << QStringList{u"done"_s, u"unusable"_s};
    QTest::newRow("quit") << QByteArray("mouse 1\nquit\nquit\nmouse 2\n") << QStringList{u"done"_s, u"end"_s};
    QTest::newRow("open-repeat") << QByteArray("repeat 3\nmouse 1\n") << QStringList{u"done"_s, u"done"_s};
    QTest::newRow("quit-in-a-repeat")
        << QByteArray("repeat 3\nmouse 1\nquit\nend\n") << QStringList{u"done"_s, u"done"_s, u"end"_s};
    QTest::newRow("open-request") << QByteArray("mouse 1\nstart\nsetReportRate 250 nowait\n")
                                  << QStringList{u"done"_s, u"done"_s, u"done"_s};
    QTest::newRow("uncompared-line") << QByteArray("mouse 1\nstart\nstop\n= call stop()\n")
                                     << QStringList{u"done"_s, u"done"_s, u"done"_s, u"done"_s};
}

void tst_KvxShellJson::inputEnds()
{
    QFETCH(const QByteArray, input);
    QFETCH(const QStringList, results);
    const ShellRun run = runShell(input);
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(textsOf("result"_L1, linesWith("answer"_L1, run.lines)), results);
    if (input.contains("mouse"))
        QCOMPARE(run.lines.last(), QJsonObject({{u"began"_s, u"call destroyDevice()"_s}}));
}

void tst_KvxShellJson::libraryCannotBeLoaded_data()
{
    QTest::addColumn<QString>("library");
    QTest::addColumn<QString>("says");
    QTest::newRow("no-file") << u"/nowhere/x.so"_s << u"does not exist"_s;
    QTest::newRow("no-plugin") << wrongLibrary(u"NoPlugin"_s) << u"plugin"_s;
    QTest::newRow("other-plugin") << wrongLibrary(u"FactorylessPlugin"_s)
                                  << u"has no factory of logical devices"_s;
}

void tst_KvxShellJson::libraryCannotBeLoaded()
{
    QFETCH(const QString, library);
    QFETCH(const QString, says);
    const ShellRun run = runShell(started(), library);
    QCOMPARE(run.exitCode, 2);
    QCOMPARE(run.lines.first(), QJsonObject({{u"schemaVersion"_s, 1}}));
    QCOMPARE(linesWith("state"_L1, run.lines), ShellLines());
    QCOMPARE(textsOf("answer"_L1, run.lines), QStringList({u"0"_s}));
    const QJsonObject answer = run.lines.last();
    QCOMPARE(answer["result"_L1].toString(), u"unloadable"_s);
    QVERIFY2(answer["message"_L1].toString().contains(says), qPrintable(answer["message"_L1].toString()));
}

void tst_KvxShellJson::entriesComeBetweenCommands_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("entry");
    QTest::newRow("the-mouse-answers")
        << u"setReportRate 250 nowait"_s << u"signal isReportRateChangePendingChanged(false)"_s;
    QTest::newRow("a-signal-is-queued")
        << u"other-thread report setBatteryLevel 5 nowait"_s << u"signal batteryLevelChanged(5)"_s;
    QTest::newRow("a-timer-of-the-library") << u"press smart"_s << u"host setCtrlKeyPressed(false)"_s;
}

void tst_KvxShellJson::entriesComeBetweenCommands()
{
    QFETCH(const QString, command);
    QFETCH(const QString, entry);
    JsonShell shell;
    const QStringList sent = started() + QStringList{command};
    for (const QString &line : sent)
        shell.send(line);
    const ShellLines lines =
        shell.readTo([&](const QJsonObject &line) { return line["text"_L1].toString() == entry; });
    QCOMPARE(lines.last()["text"_L1].toString(), entry);
    // The shell waits for commands.
    shell.send(u"show modelCode"_s);
    QCOMPARE(texts(shell.readToAnswer(4).constLast().value("printed"_L1)), QStringList({u"RV418"_s}));
    shell.finish();
    QCOMPARE(shell.exitCode(), 0);
}

void tst_KvxShellJson::stateFollowsEntriesBetweenCommands()
{
    JsonShell shell;
    const QStringList sent = started() + QStringList{u"setReportRate 250 nowait"_s};
    for (const QString &line : sent)
        shell.send(line);
    shell.readToAnswer(3);
    const auto isState = [](const QJsonObject &line) { return line.contains("state"_L1); };
    const auto device = [&] { return lastState(shell.readTo(isState)).value("devices"_L1)[0].toObject(); };
    QJsonObject found = device();
    QCOMPARE(texts(found["pending"_L1]), QStringList({u"reportRate"_s}));
    QCOMPARE(found["values"_L1]["reportRate"_L1].toString(), u"250"_s);
    QCOMPARE(found["mouse"_L1]["reportRate"_L1].toInt(), 500);
    found = device();
    QCOMPARE(texts(found["pending"_L1]), QStringList());
    QCOMPARE(found["mouse"_L1]["reportRate"_L1].toInt(), 250);
    QVERIFY(shell.finish().size() == 1);  // call destroyDevice()
}

void tst_KvxShellJson::entriesComeWhileACommandWaits()
{
    JsonShell shell;
    const QStringList sent =
        started() + QStringList{u"setReportRate 250 nowait"_s, u"wait verdict 100000000"_s, u"show"_s};
    for (const QString &line : sent)
        shell.send(line);
    ShellLines lines =
        shell.readTo([](const QJsonObject &line) { return line["name"_L1] == "reportRateConfirmed"_L1; });
    lines += shell.readTo([](const QJsonObject &line) {
        return line.contains("state"_L1) &&
               lastState({line}).value("devices"_L1)[0]["pending"_L1] == QJsonArray();
    });
    QCOMPARE(textsOf("answer"_L1, lines), QStringList({u"1"_s, u"2"_s, u"3"_s}));
    QCOMPARE(linesWith("answer"_L1, shell.kill()), ShellLines());
}

void tst_KvxShellJson::burstIsComplete()
{
    QStringList commands = started();
    for (int round = 1; round <= 10; ++round)
        commands += {u"fault dpiButtonIdChangedCallBack repeat 1000"_s,
                     u"report dpiButtonIdChangedCallBack %1"_s.arg(round % 5 + 1)};
    const ShellLines entries = entriesOf(runShell(commands).lines);
    QVERIFY2(entries.size() > 30000, qPrintable(QString::number(entries.size())));
    int sequence = 0;
    for (const QJsonObject &entry : entries)
        QCOMPARE(entry["sequence"_L1].toInt(), ++sequence);
}

void tst_KvxShellJson::inputIsReadNoFasterThanItIsAnswered()
{
    constexpr int lineCount = 1000;
    constexpr qsizetype size = 20000;
    const ShellRun run = runShell(lineOf(size, '#').repeated(lineCount) + "mouse 1\n");
    QCOMPARE(run.exitCode, 0);
    const ShellLines found = linesWith("answer"_L1, run.lines);
    QCOMPARE(found.size(), lineCount + 1);
    for (qsizetype i = 0; i < found.size(); ++i)
        QCOMPARE(found.at(i)["answer"_L1].toInt(), i + 1);
}

void tst_KvxShellJson::operationsAreThoseOfFault()
{
    const ShellRun run = runShell({u"mouse 1"_s, u"fault nothing refuse"_s});
    const ShellLines states = linesWith("state"_L1, run.lines);
    QStringList names;
    QHash<QString, QString> kinds;
    const QJsonArray operations = states.first()["state"_L1]["operations"_L1].toArray();
    for (const auto &operation : operations) {
        names.append(operation["name"_L1].toString());
        kinds.insert(names.last(), operation["kind"_L1].toString());
    }
    const QString message = answerTo(2, run.lines).value("message"_L1).toString();
    QCOMPARE(names.join(u", "_s), message.section(u"; there are "_s, 1));
    QCOMPARE(kinds.value(u"setReportRate"_s), u"request"_s);
    QCOMPARE(kinds.value(u"getReportRateInfo"_s), u"read"_s);
    QCOMPARE(kinds.value(u"reportRateConfirmed"_s), u"report"_s);
    QCOMPARE(kinds.value(u"dpiMaxChanged"_s), u"report"_s);
    // Only once.
    QVERIFY(states.size() > 1);
    QVERIFY(!states.last()["state"_L1].toObject().contains("operations"_L1));
}

void tst_KvxShellJson::valuesAreThoseOfShow()
{
    const ShellRun run = runShell(started() + QStringList{u"setDpiButtonId 3"_s, u"show"_s});
    const QJsonObject values = lastState(run.lines).value("devices"_L1)[0]["values"_L1].toObject();
    const QStringList printed = texts(answerTo(4, run.lines).value("printed"_L1));
    QCOMPARE(values.size(), printed.size());
    for (const QString &line : printed) {
        const QString name = line.trimmed().section(u' ', 0, 0);
        QVERIFY2(values.contains(name), qPrintable(name));
        QCOMPARE(values[name].toString(), line.trimmed().sliced(name.size()).trimmed());
    }
    QCOMPARE(values["dpiButtonId"_L1].toString(), u"3"_s);
    QCOMPARE(values["dpiSlotValues"_L1].toString(), u"800 1600 2400 3200 4000"_s);
}

void tst_KvxShellJson::pendingRequests_data()
{
    QTest::addColumn<QStringList>("requests");
    QTest::addColumn<QStringList>("pending");
    QTest::newRow("none") << QStringList() << QStringList();
    QTest::newRow("report-rate") << QStringList{u"setReportRate 250 nowait"_s}
                                 << QStringList{u"reportRate"_s};
    QTest::newRow("slot-values") << QStringList{u"setDpiSlotValues 1 2 3 4 5 nowait"_s}
                                 << QStringList{u"dpiSlotValues"_s};
    QTest::newRow("active-slot") << QStringList{u"setActiveDpiSlotIndex 1 nowait"_s}
                                 << QStringList{u"activeDpiSlotIndex"_s};
    QTest::newRow("dpi-button") << QStringList{u"setDpiButtonId 3 nowait"_s} << QStringList{u"dpiButtonId"_s};
    QTest::newRow("confirmed") << QStringList{u"setReportRate 250"_s} << QStringList();
    QTest::newRow("two") << QStringList{u"setDpiButtonId 3 nowait"_s, u"setReportRate 250 nowait"_s}
                         << QStringList{u"reportRate"_s, u"dpiButtonId"_s};
}

void tst_KvxShellJson::pendingRequests()
{
    QFETCH(const QStringList, requests);
    QFETCH(const QStringList, pending);
    QCOMPARE(texts(deviceAfter(started() + requests).value("pending"_L1)), pending);
}

void tst_KvxShellJson::mouse_data()
{
    QTest::addColumn<QStringList>("commands");
    QTest::addColumn<QString>("field");
    QTest::addColumn<QJsonValue>("value");
    const auto row = [](const QStringList &commands, const char *field, const QJsonValue &value) {
        QTest::addRow("%s-%d", field, static_cast<int>(commands.size()))
            << commands << QString::fromLatin1(field) << value;
    };
    row({}, "isAsleep", false);
    row({u"sleep"_s}, "isAsleep", true);
    row({}, "heldButtons", QJsonArray());
    row({u"press 1"_s, u"press 4"_s, u"press smart"_s, u"press 2"_s, u"release 2"_s}, "heldButtons",
        QJsonArray({1, 4, 8}));
    row({}, "disabledButtonsOrKeys", QJsonArray());
    row({u"disbaleButtonsOrKeys 2 5"_s}, "disabledButtonsOrKeys", QJsonArray({2, 5}));
    row({u"drain 30"_s}, "batteryLevel", 50);
    row({u"press dpi"_s}, "activeDpiSlotIndex", 3);
    row({u"press dpi"_s}, "dpiValue", 2400);
    row({u"setDpiSlotValues 100 200 300 400 500"_s}, "dpiSlotValues", QJsonArray({100, 200, 300, 400, 500}));
    row({u"setDpiButtonId 4"_s}, "dpiButtonId", 4);
    row({u"setReportRate 1000"_s}, "reportRate", 1000);
    row({u"set reportRates 125 1000"_s}, "reportRates", QJsonArray({125, 1000, 0, 0}));
    row({u"set ppid \"a b\""_s}, "ppid", u"a b"_s);
    row({u"set isSmartPointerSupported false"_s}, "isSmartPointerSupported", false);
    row({u"set hasBatteryLevel false"_s}, "hasBatteryLevel", false);
    row({u"set forwardedResult 7"_s}, "forwardedResult", 7);
}

void tst_KvxShellJson::mouse()
{
    QFETCH(const QStringList, commands);
    QFETCH(const QString, field);
    QFETCH(const QJsonValue, value);
    const QJsonObject found = deviceAfter(started() + commands).value("mouse"_L1).toObject();
    QCOMPARE(found[field], value);
    // All that "set" knows, and the three that it does not.
    const ShellRun run = runShell({u"mouse 1"_s, u"set nothing 1"_s});
    const QJsonObject answer = answerTo(2, run.lines);
    QStringList names = answer["message"_L1].toString().section(u"it has "_s, 1).split(u", "_s);
    names += {u"isAsleep"_s, u"heldButtons"_s, u"disabledButtonsOrKeys"_s};
    names.sort();
    QCOMPARE(found.keys(), names);

    QJsonObject fields = lastState(run.lines).value("devices"_L1)[0]["mouse"_L1].toObject();
    for (const QString &name : {u"isAsleep"_s, u"heldButtons"_s, u"disabledButtonsOrKeys"_s})
        fields.remove(name);
    const ShellLines states = linesWith("state"_L1, run.lines);
    QCOMPARE(states.first()["state"_L1]["mouseFields"_L1].toObject(), fields);
    QVERIFY(!states.last()["state"_L1].toObject().contains("mouseFields"_L1));
}

void tst_KvxShellJson::faultsInForce()
{
    const QStringList faulty = started() + QStringList{u"fault setReportRate refuse times 2"_s,
                                                       u"fault reportRateConfirmed alter 250 always"_s,
                                                       u"receiver 2"_s,
                                                       u"mouse 9"_s,
                                                       u"fault getBatteryLevel alter 5"_s,
                                                       u"use 1"_s,
                                                       u"setReportRate 125 => refused"_s};
    const auto fault = [](const QString &operation, const QString &effect, const QJsonValue &times,
                          const QString &device, const QString &text) {
        return QJsonObject{{u"operation"_s, operation},
                           {u"effect"_s, effect},
                           {u"times"_s, times},
                           {u"device"_s, device},
                           {u"text"_s, text}};
    };
    QCOMPARE(
        stateAfter(faulty).value("faults"_L1).toArray(),
        QJsonArray({fault(u"setReportRate"_s, u"refuse"_s, 1, u"1"_s, u"setReportRate refuse times 1"_s),
                    fault(u"reportRateConfirmed"_s, u"alter"_s, u"always"_s, u"1"_s,
                          u"reportRateConfirmed alter always"_s),
                    fault(u"getBatteryLevel"_s, u"alter"_s, 1, u"9"_s, u"getBatteryLevel alter times 1"_s)}));
    QCOMPARE(stateAfter(faulty + QStringList{u"clear-faults"_s}).value("faults"_L1).toArray(), QJsonArray());
}

void tst_KvxShellJson::severalDevices()
{
    const QStringList two{u"mouse 7"_s, u"receiver 3"_s, u"mouse 4"_s, u"start"_s};
    const auto summary = [](const QStringList &lines) {
        const QJsonObject state = stateAfter(lines);
        QStringList devices;
        const QJsonArray found = state["devices"_L1].toArray();
        for (const auto &device : found)
            devices.append(u"%1 at %2%3"_s.arg(device["id"_L1].toString())
                               .arg(device["receiver"_L1].toInt())
                               .arg(device["isStarted"_L1].toBool() ? u" started()"_s : QString()) +
                           (device["isStopped"_L1].toBool() ? u" stopped()"_s : QString()));
        return u"%1: %2"_s.arg(state["current"_L1].toString(), devices.join(u", "_s));
    };
    QCOMPARE(summary(two), u"4: 4 at 3 started(), 7 at 1"_s);
    QCOMPARE(summary(two + QStringList{u"use 7"_s}), u"7: 4 at 3 started(), 7 at 1"_s);
    QCOMPARE(summary(two + QStringList{u"stop"_s}), u"4: 4 at 3 started() stopped(), 7 at 1"_s);
    QCOMPARE(summary(two + QStringList{u"stop"_s, u"start"_s}), u"4: 4 at 3 started(), 7 at 1"_s);
    QCOMPARE(summary({u"mouse 4"_s, u"stop"_s}), u"4: 4 at 1"_s);
    QCOMPARE(summary(two + QStringList{u"remove"_s}), u"7: 7 at 1"_s);
    const QJsonObject none = stateAfter(two + QStringList{u"remove"_s, u"remove"_s});
    QVERIFY(none["current"_L1].isNull());
    QCOMPARE(none["devices"_L1].toArray(), QJsonArray());
    QVERIFY(none["isLoaded"_L1].toBool());
}

void tst_KvxShellJson::devicesWithoutAMouse()
{
    for (const QString &kind : {u"none"_s, u"other"_s}) {
        const QJsonObject device = deviceAfter({u"device 3 "_s + kind, u"start"_s});
        QCOMPARE(device["hasMouse"_L1], QJsonValue(false));
        QVERIFY(!device.contains("mouse"_L1));
        QCOMPARE(device["values"_L1]["modelCode"_L1].toString(), u"RV418"_s);
    }
    QCOMPARE(deviceAfter({u"mouse 3"_s}).value("hasMouse"_L1), QJsonValue(true));
}

void tst_KvxShellJson::idsHave64Bits()
{
    const QJsonObject state = stateAfter({u"mouse 18446744073709551615"_s});
    QCOMPARE(state["current"_L1], QJsonValue(u"18446744073709551615"_s));
    QCOMPARE(state["devices"_L1][0]["id"_L1], QJsonValue(u"18446744073709551615"_s));
}

void tst_KvxShellJson::libraryIsUnloadedAndLoaded()
{
    const QStringList unloaded = started() + QStringList{u"unload"_s};
    QJsonObject state = stateAfter(unloaded);
    QCOMPARE(state["isLoaded"_L1], QJsonValue(false));
    QCOMPARE(state["devices"_L1].toArray(), QJsonArray());
    QVERIFY(state["current"_L1].isNull());
    const ShellRun run = runShell(unloaded + QStringList{u"show"_s, u"load"_s, u"mouse 2"_s, u"start"_s});
    QCOMPARE(answerTo(4, run.lines).value("result"_L1).toString(), u"unusable"_s);
    QCOMPARE(answerTo(7, run.lines).value("result"_L1).toString(), u"done"_s);
    state = lastState(run.lines);
    QCOMPARE(state["isLoaded"_L1], QJsonValue(true));
    QCOMPARE(state["devices"_L1][0]["id"_L1].toString(), u"2"_s);
}

void tst_KvxShellJson::logSwitches()
{
    QCOMPARE(stateAfter({u"log debug off critical off"_s}).value("log"_L1).toObject(),
             QJsonObject({{u"debug"_s, false}, {u"warning"_s, true}, {u"critical"_s, false}}));
    QCOMPARE(stateAfter({}).value("log"_L1).toObject(),
             QJsonObject({{u"debug"_s, true}, {u"warning"_s, true}, {u"critical"_s, true}}));
}

void tst_KvxShellJson::sameStateIsNotSentAgain()
{
    const ShellRun run = runShell({u"mouse 1"_s, u"call batteryLevel"_s, u"show"_s, u"use 1"_s, QString(),
                                   u"set batteryLevel 80"_s, u"log debug on"_s});
    QCOMPARE(linesWith("state"_L1, run.lines).size(), 2);
    QCOMPARE(linesWith("answer"_L1, run.lines).size(), 7);
}

void tst_KvxShellJson::repeatedLines()
{
    const ShellRun run =
        runShell({u"mouse 1"_s, u"repeat 4"_s, u"# a comment"_s, u"call iid"_s,
                  u"= call iid() -> "
                  "\"com.orvane.KVX.Plugin.LogicalDevice.RV418\""_s,
                  u"end"_s, u"call name"_s, u"repeat 2"_s, u"call iid"_s, u"end"_s, u"expect no-growth"_s});
    QCOMPARE(textsOf("answer"_L1, run.lines).size(), 11);
    QStringList results = textsOf("result"_L1, linesWith("answer"_L1, run.lines));
    // Not everywhere can the heap be measured.
    const QString measured = results.takeLast();
    QVERIFY2(measured == u"done" || measured == u"skipped", qPrintable(measured));
    results.removeDuplicates();
    QCOMPARE(results, QStringList({u"done"_s}));
    QStringList calls =
        textsOf("name"_L1, entriesOf(run.lines)).filter(QRegularExpression(u"^(iid|name)$"_s));
    QCOMPARE(calls.join(u' '), u"iid iid iid iid name iid iid"_s);
    // The answer to "end" is behind the last round.
    const qsizetype end = run.lines.indexOf(answerTo(6, run.lines));
    QCOMPARE(textsOf("name"_L1, run.lines.first(end)).count(u"iid"_s), 4);
}

void tst_KvxShellJson::roundThatGoesWrongEndsTheRepetition()
{
    const ShellRun run = runShell({u"mouse 1"_s, u"repeat 5"_s, u"expect hasBatteryLevel false"_s,
                                   u"report setBatteryLevel 7"_s, u"expect batteryLevel -1"_s, u"end"_s,
                                   u"call name"_s, u"end"_s, u"repeat 2"_s, u"call iid"_s, u"end"_s});
    QStringList results = textsOf("result"_L1, linesWith("answer"_L1, run.lines));
    QCOMPARE(results,
             QStringList({u"done"_s, u"done"_s, u"done"_s, u"done"_s, u"difference"_s, u"difference"_s,
                          u"done"_s, u"unusable"_s, u"done"_s, u"done"_s, u"done"_s}));
    QCOMPARE(
        answerTo(6, run.lines).value("message"_L1).toString(),
        u"repeat ends in a later round at \"expect batteryLevel -1\": batteryLevel: expected \"-1\", seen "
        "\"7\""_s);
    QCOMPARE(textsOf("name"_L1, entriesOf(run.lines)).count(u"setBatteryLevel"_s), 2);
}

void tst_KvxShellJson::wrongLinesAreNotRepeated()
{
    const ShellRun run = runShell(
        {u"mouse 1"_s, u"repeat 3"_s, u"frobnicate"_s, u"repeat 2"_s, u"call iid"_s, u"end now"_s, u"end"_s});
    QCOMPARE(textsOf("result"_L1, linesWith("answer"_L1, run.lines)),
             QStringList(
                 {u"done"_s, u"done"_s, u"unusable"_s, u"unusable"_s, u"done"_s, u"unusable"_s, u"done"_s}));
    QCOMPARE(textsOf("name"_L1, entriesOf(run.lines)).count(u"iid"_s), 3);
}

void tst_KvxShellJson::endThatDidNotRunIsNotRepeated()
{
    // Only the first report of a level is followed by a signal, which no line compares.
    const ShellRun run = runShell({u"mouse 1"_s, u"repeat 3"_s, u"report setBatteryLevel 5"_s,
                                   u"= report setBatteryLevel(5)"_s, u"end"_s, u"end"_s});
    QCOMPARE(answerTo(5, run.lines).value("result"_L1).toString(), u"difference"_s);
    QCOMPARE(answerTo(6, run.lines).value("message"_L1).toString(), QString());
    QCOMPARE(textsOf("name"_L1, entriesOf(run.lines)).count(u"setBatteryLevel"_s), 3);
}

void tst_KvxShellJson::lastRoundIsPrinted()
{
    const ShellRun run =
        runShell({u"mouse 1"_s, u"repeat 3"_s, u"show modelCode"_s, u"show iid"_s, u"end"_s});
    QCOMPARE(texts(answerTo(3, run.lines).value("printed"_L1)), QStringList({u"RV418"_s}));
    QCOMPARE(texts(answerTo(5, run.lines).value("printed"_L1)),
             QStringList({u"RV418"_s, u"com.orvane.KVX.Plugin.LogicalDevice.RV418"_s}));
}

QTEST_GUILESS_MAIN(tst_KvxShellJson)
#include "tst_KvxShellJson.moc"
