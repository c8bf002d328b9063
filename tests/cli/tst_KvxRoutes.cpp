#include "Kvx.h"

#include <QtTest/QTest>

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

QTEST_GUILESS_MAIN(tst_KvxRoutes)
#include "tst_KvxRoutes.moc"
