#include "JsonShell.h"
#include "ScenarioFiles.h"

#include <QtCore/QJsonArray>
#include <QtTest/QTest>

using namespace Qt::StringLiterals;

/// kvx shell --json with libraries that have a fault.
class tst_KvxShellJsonFaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lastCallBeforeACrashIsKnown();
    void lastCallBeforeAHangIsKnown();
    void otherObjectThanADeviceHasNoValues();
};

void tst_KvxShellJsonFaults::lastCallBeforeACrashIsKnown()
{
    const ShellRun run = runShell({u"device 1 none"_s, u"start"_s, u"query26 1 2 3"_s, u"show"_s},
                                  brokenLibrary(u"crash-without-receiver"_s));
    QVERIFY(run.exitCode != 0);
    QCOMPARE(textsOf("answer"_L1, run.lines), QStringList({u"1"_s, u"2"_s}));
    QCOMPARE(run.lines.last(), QJsonObject({{u"began"_s, u"call query26(1, 2, 3)"_s}}));
}

void tst_KvxShellJsonFaults::lastCallBeforeAHangIsKnown()
{
    constexpr int patience = 2000;  // ms
    const QJsonObject last{{u"began"_s, u"receiver getLevelValue() -> 3"_s}};
    JsonShell shell(brokenLibrary(u"lock-taken-twice"_s));
    shell.send(u"mouse 1"_s);
    shell.send(u"start"_s);
    const ShellLines lines = shell.readTo([&](const QJsonObject &line) { return line == last; });
    QCOMPARE(lines.last(), last);
    QCOMPARE(textsOf("answer"_L1, lines), QStringList({u"1"_s}));
    QVERIFY(shell.isSilent(patience));
    QCOMPARE(shell.kill(), ShellLines());
}

void tst_KvxShellJsonFaults::otherObjectThanADeviceHasNoValues()
{
    const ShellRun run = runShell({u"mouse 1"_s, u"press 2"_s}, brokenLibrary(u"interface-of-another-iid"_s));
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(answerTo(1, run.lines).value("result"_L1).toString(), u"difference"_s);
    QCOMPARE(answerTo(2, run.lines).value("result"_L1).toString(), u"done"_s);
    const QJsonObject device = lastState(run.lines).value("devices"_L1)[0].toObject();
    QCOMPARE(device["mouse"_L1]["heldButtons"_L1].toArray(), QJsonArray({2}));
    QVERIFY(!device.contains("values"_L1));
    QVERIFY(!device.contains("pending"_L1));
}

QTEST_GUILESS_MAIN(tst_KvxShellJsonFaults)
#include "tst_KvxShellJsonFaults.moc"
