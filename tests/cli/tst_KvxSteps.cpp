#include "Kvx.h"
#include "PluginFixture.h"
#include "ThisSystem.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

QStringList head()
{
    return {u"# title: A promise"_s, u"# why: A host needs it."_s, u"# level: contract"_s};
}

struct Steps
{
    int exitCode = -1;
    QList<QJsonObject> lines;

    // The only one; after a difference the library is unloaded behind it.
    QJsonObject result() const
    {
        QList<QJsonObject> results;
        for (const QJsonObject &line : lines) {
            if (line.contains("checks"_L1))
                results.append(line);
        }
        return results.size() == 1 ? results.first() : QJsonObject();
    }
    QStringList of(QLatin1StringView key) const
    {
        QStringList values;
        for (const QJsonObject &line : lines) {
            if (line.contains(key))
                values.append(line[key].toVariant().toString());
        }
        return values;
    }
};

// Nothing unless each line is an object and standard error has none.
Steps playSteps(const QStringList &scenario, const QString &library = PluginFixture::builtPluginFile())
{
    const KvxRun run =
        runKvx({u"run"_s, u"--steps"_s, u"--plugin"_s, library, u"-"_s}, scenario.join(u'\n').toUtf8());
    Steps steps;
    for (const QString &line : run.output) {
        const QJsonDocument document = QJsonDocument::fromJson(line.toUtf8());
        if (!document.isObject())
            return {};
        steps.lines.append(document.object());
    }
    steps.exitCode = run.errors.isEmpty() ? run.exitCode : -1;
    return steps;
}

QJsonObject resultOf(const QString &word, int line, const QString &message, const QStringList &expected,
                     const QStringList &actual, int checks)
{
    return {{u"result"_s, word},
            {u"line"_s, line},
            {u"message"_s, message},
            {u"expected"_s, QJsonArray::fromStringList(expected)},
            {u"actual"_s, QJsonArray::fromStringList(actual)},
            {u"checks"_s, checks}};
}

}  // namespace

/// kvx run --steps: what a program that runs scenarios reads.
class tst_KvxSteps : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyStepIsPrinted();
    void results_data();
    void results();
    void headIsRead_data();
    void headIsRead();
    void otherSystemIsSkipped();
    void libraryCannotBeLoaded();
    void receiversPartIsBegun();
    void gettersAreInTheTimelineFile();
};

void tst_KvxSteps::everyStepIsPrinted()
{
    const Steps steps = playSteps(head() + QStringList{u"mouse 7"_s, u"# a comment"_s, u"other-thread stop"_s,
                                                       u"at-once report setBatteryLevel 5"_s,
                                                       u"expect batteryLevel 5"_s, u"query26 1 2 3"_s});
    QCOMPARE(steps.exitCode, 0);
    QCOMPARE(steps.lines.first(), QJsonObject({{u"schemaVersion"_s, 1}}));
    QCOMPARE(steps.of("command"_L1),
             QStringList({u"mouse 7"_s, u"other-thread stop"_s, u"at-once report setBatteryLevel 5"_s,
                          u"expect batteryLevel 5"_s, u"query26 1 2 3"_s}));
    QCOMPARE(steps.of("began"_L1),
             QStringList({u"call initialize(true, true, true)"_s, u"call createLogicalDevice()"_s,
                          u"call stop() on thread 2"_s, u"report setBatteryLevel(5)"_s,
                          u"call query26(1, 2, 3)"_s, u"call destroyDevice()"_s}));
    QCOMPARE(steps.result(), resultOf(u"pass"_s, 9, {}, {}, {}, 1));
    // Begun within the command, and its entries before the next command.
    const auto indexOf = [&](QLatin1StringView key, const QString &value) {
        for (qsizetype index = 0; index < steps.lines.size(); ++index) {
            if (steps.lines.at(index)[key].toString() == value)
                return index;
        }
        return qsizetype(-1);
    };
    const QList<qsizetype> order{
        indexOf("command"_L1, u"other-thread stop"_s), indexOf("began"_L1, u"call stop() on thread 2"_s),
        indexOf("name"_L1, u"stopped"_s), indexOf("command"_L1, u"at-once report setBatteryLevel 5"_s)};
    QVERIFY(order.first() > 0 && std::is_sorted(order.cbegin(), order.cend()));
    QCOMPARE(steps.lines.at(order.first())["line"_L1].toInt(), 6);
}

void tst_KvxSteps::results_data()
{
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<QJsonObject>("result");
    QTest::addColumn<int>("exitCode");
    const auto row = [](const char *tag, const QStringList &lines, const QJsonObject &result, int exitCode) {
        QTest::newRow(tag) << QStringList{u"mouse 1"_s, u"start"_s} + lines << result << exitCode;
    };
    const QStringList stopLines{u"call stop()"_s, u"debug RV418.LogicalDevice: stop enter"_s,
                                u"signal stopped(\"this\")"_s, u"debug RV418.LogicalDevice: stop exit"_s};
    const QStringList wrongLines{stopLines.first(), u"more"_s, stopLines.last()};
    row("value", {u"expect dpiMin 5"_s},
        resultOf(u"difference"_s, 6, u"dpiMin: expected \"5\", seen \"100\""_s, {u"\"5\""_s}, {u"\"100\""_s},
                 1),
        1);
    row("block",
        {u"stop"_s,
         u"= "_s + wrongLines.at(0),
         u"= more"_s,
         u"# a comment"_s,
         {},
         u"= "_s + wrongLines.at(2),
         u"stop"_s,
         u"= other"_s},
        resultOf(u"difference"_s, 8,
                 u"line 2 of what the command caused: expected more, seen "_s + stopLines.at(1), wrongLines,
                 stopLines, 2),
        1);
    row("block-too-short", {u"stop"_s, u"= "_s + stopLines.first(), u"stop"_s},
        resultOf(u"difference"_s, 8,
                 u"line 2 of what the command caused: expected none, seen "_s + stopLines.at(1),
                 {stopLines.first()}, stopLines, 2),
        1);
    row("log", {u"stop"_s, u"expect log a | b"_s},
        resultOf(u"difference"_s, 7,
                 u"the log of the last command: expected a | b, seen %1 | %2"_s.arg(stopLines.at(1),
                                                                                    stopLines.at(3)),
                 {u"a"_s, u"b"_s}, {stopLines.at(1), stopLines.at(3)}, 1),
        1);
    row("wait", {u"wait signal never 10"_s},
        resultOf(u"difference"_s, 6, u"expected signal never, seen nothing of it in 10 ms"_s,
                 {u"signal never"_s}, {}, 1),
        1);
    row("outcome", {u"setReportRate 125 => refused"_s},
        resultOf(u"difference"_s, 6, u"the request: expected refused, seen confirmed"_s, {u"refused"_s},
                 {u"confirmed"_s}, 1),
        1);
    row("outcome-is-a-check", {u"setReportRate 125 => confirmed"_s}, resultOf(u"pass"_s, 6, {}, {}, {}, 1),
        0);
    row("refused", {u"fault setReportRate refuse"_s, u"setReportRate 125"_s},
        resultOf(u"refused"_s, 7, u"the request is refused"_s, {}, {}, 0), 3);
    row("pending", {u"fault setReportRate drop"_s, u"setReportRate 125"_s},
        resultOf(u"pending"_s, 7, u"the request is pending"_s, {}, {}, 0), 4);
    row("unusable", {u"expect dpiMin 100"_s, u"nonsense"_s},
        resultOf(u"unusable"_s, 7, u"\"nonsense\" is no command; see help"_s, {}, {}, 1), 2);
    row("expects-nothing", {u"setReportRate 125"_s, u"show"_s},
        resultOf(u"unusable"_s, 7, u"the scenario expects nothing; add \"expect\", \"wait\" or \"= LINE\""_s,
                 {}, {}, 0),
        2);
}

void tst_KvxSteps::results()
{
    QFETCH(const QStringList, lines);
    QFETCH(const QJsonObject, result);
    QFETCH(const int, exitCode);
    const Steps steps = playSteps(head() + lines);
    QCOMPARE(QJsonDocument(steps.result()).toJson(), QJsonDocument(result).toJson());
    QCOMPARE(steps.exitCode, exitCode);
}

void tst_KvxSteps::headIsRead_data()
{
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<int>("line");
    QTest::addColumn<QString>("problem");
    const auto row = [](const char *tag, const QStringList &lines, int line, const QString &problem) {
        QTest::newRow(tag) << lines << line << problem;
    };
    const auto with = [](const QString &line) { return head() + QStringList{line}; };
    row("whole", head(), 0, {});
    row("severity", with(u"# severity: note"_s), 0, {});
    row("other-blanks", {u"#title:T"_s, u"#  why:  W "_s, u"# level: load\r"_s}, 0, {});
    row("ends", with({}) + QStringList{u"# unknown: behind the head"_s}, 0, {});
    row("other-comment", with(u"# Level is a word here: no key"_s), 0, {});
    const QString missing = u"the head has no %1; write \"# %1: ...\" in the first lines"_s;
    row("nothing", {u"stop"_s}, 1, missing.arg(u"title"_s));
    row("no-title", head().mid(1), 3, missing.arg(u"title"_s));
    row("no-why", {head().at(0), head().at(2)}, 3, missing.arg(u"why"_s));
    row("no-level", head().mid(0, 2), 3, missing.arg(u"level"_s));
    row("behind-a-line", QStringList{QString()} + head(), 1, missing.arg(u"title"_s));
    row("unknown", with(u"# author: me"_s), 4,
        u"\"author\" is no key of a head; there are title, why, level, severity, system"_s);
    row("twice", with(head().constFirst()), 4, u"the head has \"title\" twice; delete one of the lines"_s);
    row("empty", {u"# title: "_s}, 1, u"the title is empty; write it behind the colon"_s);
    row("level", {u"# level: all"_s}, 1, u"\"all\" is no level; write load, contract, stress"_s);
    row("severity-unknown", with(u"# severity: bad"_s), 4,
        u"\"bad\" is no severity; write error, warning, note"_s);
    row("system-unknown", with(u"# system: dos"_s), 4, u"\"dos\" is no system; write linux, windows"_s);
}

void tst_KvxSteps::headIsRead()
{
    QFETCH(const QStringList, lines);
    QFETCH(const int, line);
    QFETCH(const QString, problem);
    const QStringList scenario{u"mouse 1"_s, u"expect dpiMin 0"_s};
    const Steps steps = playSteps(lines + scenario);
    const int lastLine = static_cast<int>((lines + scenario).size());
    QCOMPARE(steps.result(), problem.isEmpty() ? resultOf(u"pass"_s, lastLine, {}, {}, {}, 1)
                                               : resultOf(u"unusable"_s, line, problem, {}, {}, 0));
    QCOMPARE(steps.exitCode, problem.isEmpty() ? 0 : 2);
    QCOMPARE(steps.of("command"_L1).isEmpty(), !problem.isEmpty());
}

void tst_KvxSteps::otherSystemIsSkipped()
{
    const QStringList scenario{u"mouse 1"_s, u"expect dpiMin 0"_s};
    const QString own = ThisSystem::isWindows ? u"windows"_s : u"linux"_s;
    const QString other = ThisSystem::isWindows ? u"linux"_s : u"windows"_s;
    QCOMPARE(playSteps(head() + QStringList{u"# system: "_s + own} + scenario)
                 .result()
                 .value("result"_L1)
                 .toString(),
             u"pass"_s);
    const Steps steps = playSteps(head() + QStringList{u"# system: "_s + other} + scenario);
    QCOMPARE(steps.result(),
             resultOf(u"skipped"_s, 0, ThisSystem::isWindows ? u"for Linux only"_s : u"for Windows only"_s,
                      {}, {}, 0));
    QCOMPARE(steps.lines.size(), 2);
    QCOMPARE(steps.exitCode, 0);
}

void tst_KvxSteps::libraryCannotBeLoaded()
{
    const Steps steps = playSteps(head() + QStringList{u"mouse 1"_s}, u"/nowhere/x.so"_s);
    QCOMPARE(steps.result().value("result"_L1).toString(), u"unloadable"_s);
    QVERIFY(steps.result().value("message"_L1).toString().contains(u"does not exist"_s));
    QCOMPARE(steps.exitCode, 2);
}

void tst_KvxSteps::receiversPartIsBegun()
{
    const Steps steps = playSteps(head() + QStringList{u"mouse 1"_s, u"start"_s, u"expect dpiMax 8000"_s});
    QCOMPARE(steps.exitCode, 0);
    const QStringList begun = steps.of("began"_L1);
    QVERIFY(begun.contains(u"receiver getFirmwareVersion() -> 258"_s));
    QVERIFY(begun.contains(u"report dpiMaxChanged(8000)"_s));
}

void tst_KvxSteps::gettersAreInTheTimelineFile()
{
    const QTemporaryDir folder;
    qputenv("KVX_TIMELINE_FOLDER", folder.path().toUtf8());
    const Steps steps = playSteps(
        head() + QStringList{u"mouse 9"_s, u"expect deviceType 2"_s, u"expect timeline call x()"_s});
    qunsetenv("KVX_TIMELINE_FOLDER");
    const QStringList files = QDir(folder.path()).entryList(QDir::Files);
    QCOMPARE(files.size(), 1);
    QFile file(folder.filePath(files.first()));
    QVERIFY(file.open(QFile::ReadOnly));
    const QByteArrayList lines = file.readAll().trimmed().split('\n');
    QCOMPARE(lines.first(), QByteArray("{\"schemaVersion\":1}"));
    QStringList calls;
    for (const QByteArray &line : lines) {
        const QJsonObject entry = QJsonDocument::fromJson(line).object();
        if (entry["kind"_L1].toString() == u"call")
            calls.append(entry["device"_L1].toString() + u' ' + entry["name"_L1].toString());
    }
    QCOMPARE(calls, QStringList({u" initialize"_s, u"9 createLogicalDevice"_s, u"9 deviceType"_s,
                                 u"9 destroyDevice"_s}));
    // What is compared has no getters.
    QCOMPARE(steps.result().value("actual"_L1).toArray().last().toString(), u"call createLogicalDevice()"_s);
}

QTEST_GUILESS_MAIN(tst_KvxSteps)
#include "tst_KvxSteps.moc"
