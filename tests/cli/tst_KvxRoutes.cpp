#include "Kvx.h"

#include <QtCore/QFile>
#include <QtTest/QTest>

#include <algorithm>

using namespace Qt::StringLiterals;

/// The commands of kvx run for what is out of the ordinary: other threads, devices without a receiver, the log.
class tst_KvxRoutes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void otherThreadIsNoticed();
    void queuedSignalsComeWhenItSettles();
    void reportsComeInsideARequest();
    void devicesNeedNoReceiver();
    void secondStartIsSurvived();
    void logIsSwitchedOffAndOn();
    void categoriesAreFiltered();
    void otherOperationsAreCalled();
    void everyOperationOfTheTablesIsReached();
    void slotsAreInvokedByName();
    void deviceIsDeletedThroughEitherTable();
    void severalReceivers();
    void libraryIsLoadedAgain();
    void exportsAreCompared();
};

void tst_KvxRoutes::otherThreadIsNoticed()
{
    const KvxRun run = playLines(
        {u"mouse 1"_s, u"other-thread start"_s, u"other-thread setReportRate 125"_s,
         u"other-thread setDpiSlotValues 100 200 300 400 500"_s, u"other-thread setActiveDpiSlotIndex 1"_s,
         u"other-thread setDpiButtonId 3"_s, u"other-thread disbaleButtonsOrKeys 1"_s,
         u"other-thread setButtonsOrKeysToDefault"_s, u"other-thread applySettings speed=3"_s,
         u"other-thread resetSettings"_s, u"other-thread report setBatteryLevel 5"_s, u"other-thread stop"_s,
         u"expect reportRate 125"_s, u"expect dpiButtonId 3"_s, u"expect batteryLevel 5"_s});
    QCOMPARE(run.errors, QStringList());
    for (const QString &line :
         {u"call start() -> true on thread 2"_s, u"call setReportRate(125) on thread 2"_s,
          u"call setDpiSlotValues([\"100\", \"200\", \"300\", \"400\", \"500\"]) on thread 2"_s,
          u"call setActiveDpiSlotIndex(1) on thread 2"_s, u"call setDpiButtonId(3) on thread 2"_s,
          u"call disbaleButtonsOrKeys([1]) on thread 2"_s, u"call setButtonsOrKeysToDefault() on thread 2"_s,
          u"call applySettings({\"speed\": 3}) on thread 2"_s, u"call resetSettings() on thread 2"_s,
          u"report setBatteryLevel(5) on thread 2"_s, u"call stop() on thread 2"_s})
        QVERIFY2(run.output.contains(line), qPrintable(line));
    // The outcome is that of the request.
    QCOMPARE(playLines({u"mouse 1"_s, u"start"_s, u"fault setReportRate refuse"_s,
                        u"other-thread setReportRate 125 => refused"_s})
                 .exitCode,
             0);
}

void tst_KvxRoutes::queuedSignalsComeWhenItSettles()
{
    const QString request = u"call setReportRate(1000) on thread 2 | receiver setReportRate(1000) -> true on "
                            "thread 2 | verdict fault on setReportRate: drop on thread 2"_s;
    const KvxRun run = playLines(
        {u"mouse 1"_s, u"start"_s, u"fault setReportRate drop"_s, u"other-thread setReportRate 1000 nowait"_s,
         u"expect timeline "_s + request,
         // It does not wait behind the signals.
         u"at-once report dpiValueChangedCallBack 700 nowait"_s,
         u"expect timeline report dpiValueChangedCallBack(700) | signal dpiValueChanged(700)"_s, u"settle"_s,
         u"expect timeline signal dpiValueChanged(700) | signal isReportRateChangePendingChanged(true) | "
         "signal reportRateChanged(1000)"_s,
         // Nothing is left.
         u"settle"_s, u"expect timeline"_s, u"expect log"_s});
    QCOMPARE(run.errors, QStringList());
    QCOMPARE(run.exitCode, 0);
}

void tst_KvxRoutes::reportsComeInsideARequest()
{
    const KvxRun run = playLines(
        {u"mouse 1"_s, u"start"_s, u"inside-request report setBatteryLevel 5"_s, u"expect batteryLevel 80"_s,
         u"fault setReportRate drop"_s, u"setReportRate 1000 nowait"_s,
         u"expect timeline receiver setReportRate(1000) -> true | verdict fault on setReportRate: drop | "
         "report setBatteryLevel(5) | signal batteryLevelChanged(5) | signal reportRateChanged(1000)"_s,
         // Once only, and not for a device that is gone.
         u"inside-request report setBatteryLevel 6"_s, u"remove"_s, u"mouse 1"_s, u"start"_s,
         u"expect batteryLevel 80"_s});
    QCOMPARE(run.errors, QStringList());
    QCOMPARE(run.exitCode, 0);
}

void tst_KvxRoutes::devicesNeedNoReceiver()
{
    const KvxRun run = playLines({u"device 1 none"_s, u"start"_s,
                                  u"expect timeline call start() -> true | "
                                  "signal instanceNumberChanged(0)"_s,
                                  u"report setBatteryLevel 5"_s, u"expect batteryLevel 5"_s,
                                  u"device 2 other"_s, u"start"_s, u"setDpiButtonId 3"_s,
                                  u"expect log debug RV418.LogicalDevice: Setting new dpi button id :  3 | "
                                  "warning RV418.LogicalDevice: Unknown IPhysicalDevice interface"_s,
                                  u"remove"_s, u"use 1"_s, u"remove"_s});
    QCOMPARE(run.errors, QStringList());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(playLines({u"device 1 none"_s, u"forwardToPhysicalDevice 1 2 3"_s}).errors,
             QStringList{errorAt(2, u"device 1 has no physical device; see mouse and use"_s)});
    for (const QString &line :
         {u"set dpiMin 5"_s, u"press 1"_s, u"release 1"_s, u"drain 1"_s, u"sleep"_s, u"wake"_s}) {
        const KvxRun refused = playLines({u"device 1 none"_s, line});
        QCOMPARE(refused.errors, QStringList{errorAt(2, u"device 1 has no mouse; see mouse and use"_s)});
        QCOMPARE(refused.exitCode, 2);
    }
}

void tst_KvxRoutes::secondStartIsSurvived()
{
    const KvxRun run =
        playLines({u"mouse 1"_s, u"start"_s, u"start"_s, u"mouse 2"_s, u"start"_s, u"use 1"_s});
    QCOMPARE(run.errors, QStringList());
    QCOMPARE(run.exitCode, 0);
}

void tst_KvxRoutes::logIsSwitchedOffAndOn()
{
    const KvxRun run = playLines({u"mouse 1"_s, u"log debug off"_s, u"start"_s, u"expect log"_s,
                                  u"log warning off debug on"_s, u"stop"_s,
                                  u"expect log debug RV418.LogicalDevice: stop enter | "
                                  "debug RV418.LogicalDevice: stop exit"_s});
    QCOMPARE(run.errors, QStringList());
    QCOMPARE(run.exitCode, 0);
    QVERIFY(run.output.contains(u"call initialize(false, true, true)"_s));
    QVERIFY(run.output.contains(u"call initialize(true, false, true)"_s));
}

void tst_KvxRoutes::categoriesAreFiltered()
{
    const QString exit = u" | debug RV418.LogicalDevice: stop exit"_s;
    const KvxRun run = playLines({u"mouse 1"_s, u"categories com.orvane.*.debug=false other=true"_s,
                                  u"stop"_s, u"expect log"_s, u"categories com.orvane.*.critical=false"_s,
                                  u"stop"_s, u"expect log debug RV418.LogicalDevice: stop enter"_s + exit,
                                  u"categories *=false"_s, u"stop"_s, u"expect log"_s, u"categories"_s,
                                  u"stop"_s, u"expect log debug RV418.LogicalDevice: stop enter"_s + exit});
    QCOMPARE(run.errors, QStringList());
    QCOMPARE(run.exitCode, 0);
}

void tst_KvxRoutes::otherOperationsAreCalled()
{
    const KvxRun run = playLines(
        {u"mouse 1"_s,
         u"call isDPIValueSupported"_s,
         u"= call isDPIValueSupported() -> true"_s,
         u"call pairedHostName 3"_s,
         u"= call pairedHostName(3) -> \"\""_s,
         u"call instanceId"_s,
         u"= call instanceId() -> \"random\""_s,
         u"call physicalDevice"_s,
         u"= call physicalDevice() -> \"physical device\""_s,
         u"call defaultProfile"_s,
         uR"(= call defaultProfile() -> "{\\r\\n  \"version\": 1,\\r\\n  \"defaultActions\": [\\r\\n  ]\\r\\n}\\r\\n")"_s,
         u"call setScrollInversionEnabled true"_s,
         u"= call setScrollInversionEnabled(true)"_s,
         u"call dpiSlotValuesChanged a \"b c\""_s,
         u"= call dpiSlotValuesChanged([\"a\", \"b c\"])"_s,
         u"= signal dpiSlotValuesChanged([\"a\", \"b c\"])"_s,
         u"call stopped"_s,
         u"= call stopped()"_s,
         u"= signal stopped(\"this\")"_s,
         u"other-thread call query70"_s,
         u"= call query70() -> 1 on thread 2"_s,
         u"device 2 none"_s,
         u"call physicalDevice"_s,
         u"= call [2] physicalDevice() -> \"none\""_s,
         u"expect deviceType 2"_s,
         u"expect query30"_s,
         u"expect isScrollInversionEnabled false"_s});
    QCOMPARE(run.errors, QStringList());
    QCOMPARE(run.exitCode, 0);
}

// The list of what "call" knows, and what has a command or a report.
void tst_KvxRoutes::everyOperationOfTheTablesIsReached()
{
    const auto known = [](const QString &line) {
        const KvxRun run = playLines({u"mouse 1"_s, line});
        return run.errors.join(u' ').section(u"there are "_s, 1).split(u", "_s);
    };
    const QStringList reached = known(u"call"_s) + known(u"report"_s) + known(u"other-thread"_s);
    for (const QString &table : {u"ILogicalDeviceGen3Mouse"_s, u"ILogicalDeviceGen3"_s}) {
        QFile file(QStringLiteral(KVX_EXAMPLES "/../tests/abi/tables/") + table + u".txt"_s);
        QVERIFY(file.open(QFile::ReadOnly));
        const QStringList slotLines = QString::fromUtf8(file.readAll()).trimmed().split(u'\n');
        QVERIFY(slotLines.size() >= 4);
        for (const QString &line : slotLines) {
            const QString name = line.section(u"::"_s, 1, 1).section(u'(', 0, 0);
            QVERIFY2(reached.contains(name), qPrintable(line));
        }
    }
}

void tst_KvxRoutes::slotsAreInvokedByName()
{
    const KvxRun run =
        playLines({u"mouse 1"_s, u"slot onDpiMinChanged 300"_s, u"= call onDpiMinChanged(300)"_s,
                   u"= debug RV418.LogicalDevice: Updating dpiMin :  300"_s, u"= signal dpiMinChanged(300)"_s,
                   u"slot onPPIDChanged \"x y\""_s, u"expect ppid x y"_s,
                   u"slot onSmartPointerCtrReleaseTimerTimeout"_s,
                   u"wait debug RV418.LogicalDevice: onSmartPointerCtrReleaseTimerTimeout"_s,
                   u"other-thread slot onDpiMaxChanged 7"_s, u"wait signal dpiMaxChanged(7) on thread 2"_s});
    QCOMPARE(run.errors, QStringList());
    QCOMPARE(run.exitCode, 0);
}

void tst_KvxRoutes::deviceIsDeletedThroughEitherTable()
{
    for (const QString &destructor : {u"~ILogicalDeviceGen3Mouse"_s, u"~ILogicalDeviceGen3"_s}) {
        const KvxRun run = playLines({u"mouse 1"_s, u"call "_s + destructor, u"= call %1()"_s.arg(destructor),
                                      u"= debug RV418.LogicalDevice: ~LogicalDevice enter"_s,
                                      u"= debug RV418.LogicalDevice: ~LogicalDevice exit"_s, u"mouse 1"_s,
                                      u"expect dpiMin 0"_s});
        QCOMPARE(run.errors, QStringList());
        QCOMPARE(run.exitCode, 0);
    }
}

void tst_KvxRoutes::severalReceivers()
{
    const KvxRun run =
        playLines({u"mouse 1"_s, u"start"_s, u"receiver 2"_s, u"mouse 2 dpiMin=400"_s, u"start"_s, u"use 1"_s,
                   u"expect dpiMin 100"_s, u"use 2"_s, u"expect dpiMin 400"_s,
                   // Each mouse asks, and is heard through, its own receiver.
                   u"setReportRate 125 => confirmed"_s, u"report dpiMaxChanged 7000"_s,
                   u"expect timeline report 2 [2] dpiMaxChanged(7000) | signal [2] dpiMaxChanged(7000)"_s,
                   u"use 1"_s, u"expect dpiMax 8000"_s, u"report dpiMaxChanged 6000"_s,
                   u"expect timeline report [1] dpiMaxChanged(6000) | signal [1] dpiMaxChanged(6000)"_s,
                   u"use 2"_s, u"expect dpiMax 7000"_s, u"fault setReportRate refuse"_s, u"use 1"_s,
                   u"setReportRate 125 => confirmed"_s, u"use 2"_s, u"setReportRate 250 => refused"_s,
                   u"receiver 1"_s, u"mouse 3"_s, u"start"_s, u"use 1"_s, u"expect dpiMax 8000"_s});
    QCOMPARE(run.errors, QStringList());
    QCOMPARE(run.exitCode, 0);
    QVERIFY(run.output.contains(u"receiver 2 [2] setReportRate(125) -> true"_s));
    QVERIFY(run.output.contains(u"receiver [3] getFirmwareVersion() -> 258"_s));
}

void tst_KvxRoutes::libraryIsLoadedAgain()
{
    const KvxRun run = playLines({u"log debug off"_s, u"mouse 1"_s, u"start"_s, u"unload"_s, u"load"_s,
                                  u"= call initialize(true, true, true)"_s, u"mouse 1"_s, u"start"_s,
                                  u"expect dpiMin 100"_s});
    QCOMPARE(run.errors, QStringList());
    QCOMPARE(run.exitCode, 0);
}

void tst_KvxRoutes::exportsAreCompared()
{
    const QStringList wanted{u"qt_plugin_query_metadata_v2"_s, u"qt_plugin_instance"_s};
    const KvxRun wrong = playLines({u"expect exports nothing"_s});
    QCOMPARE(wrong.exitCode, 1);
    const QString seen = wrong.errors.join(u' ').section(u"seen "_s, 1);
    for (const QString &name : wanted)
        QVERIFY2(seen.contains(name), qPrintable(seen));
    // In whatever order.
    QStringList names = seen.split(u' ');
    std::reverse(names.begin(), names.end());
    const KvxRun right = playLines({u"expect exports "_s + names.join(u' ')});
    QCOMPARE(right.errors, QStringList());
    QCOMPARE(right.exitCode, 0);
}

QTEST_GUILESS_MAIN(tst_KvxRoutes)
#include "tst_KvxRoutes.moc"
