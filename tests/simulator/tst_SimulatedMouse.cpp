#include "Operations.h"
#include "SimulatedMouse.h"

#include <QtTest/QTest>

using namespace Qt::StringLiterals;

namespace {

// The reports as text, one behind the other.
QString text(const QList<MouseMessage> &reports)
{
    QStringList texts;
    for (const MouseMessage &report : reports) {
        QStringList arguments;
        for (const auto argument : report.arguments)
            arguments.append(readableValue(argument));
        texts.append(report.operation->text() + u'(' + arguments.join(u", "_s) + u')');
    }
    return texts.join(u' ');
}

MouseMessage slotRequest(const QJsonArray &values)
{
    return {&requests::setDpiSlotValues, {QJsonValue(values), 6, 2}};
}

}  // namespace

// What a hand does with the simulated mouse, and what time does to it.
class tst_SimulatedMouse : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void dpiButtonGoesRound();
    void dpiOfEqualSlotsIsNotReported();
    void onlyDivertedButtonsAreReported();
    void buttonThatIsTheDpiButtonChangesTheSlot();
    void divertedDpiButtonIsReportedInstead();
    void smartPointerKeyNeedsNoDiversion();
    void mouseWithoutSmartPointerReportsNothing();
    void batteryStaysBetweenEmptyAndFull();
    void mouseWithoutBatteryReportsNothing();
    void slotValuesAreRounded_data();
    void slotValuesAreRounded();
    void sleepingMouseReportsNothing();
    void requestsOfTheNightAreHeardInTheMorning();
    void forgetfulMouseTellsEverythingAnew();
    void wakingTwiceIsWakingOnce();
};

void tst_SimulatedMouse::dpiButtonGoesRound()
{
    SimulatedMouse mouse;
    QCOMPARE(text(mouse.pressDpiButton()),
             u"activeDpiSlotIndexChangedCallBack(3) dpiValueChangedCallBack(2400)"_s);
    mouse.pressDpiButton();
    mouse.pressDpiButton();
    QCOMPARE(mouse.activeDpiSlotIndex, 5);
    QCOMPARE(text(mouse.pressDpiButton()),
             u"activeDpiSlotIndexChangedCallBack(1) dpiValueChangedCallBack(800)"_s);
    QCOMPARE(mouse.dpiValue, 800);
}

void tst_SimulatedMouse::dpiOfEqualSlotsIsNotReported()
{
    SimulatedMouse mouse;
    mouse.dpiSlotValues = {800, 1600, 1600, 3200, 4000};
    QCOMPARE(text(mouse.pressDpiButton()), u"activeDpiSlotIndexChangedCallBack(3)"_s);
}

void tst_SimulatedMouse::onlyDivertedButtonsAreReported()
{
    SimulatedMouse mouse;
    mouse.disabledButtonsOrKeysMask = 0x05;
    QCOMPARE(text(mouse.pressButton(1)), u"mouseEventCallBack(1)"_s);
    QCOMPARE(text(mouse.pressButton(2)), QString());
    // A held button that is not diverted does not show in the reports of the others.
    QCOMPARE(text(mouse.pressButton(3)), u"mouseEventCallBack(5)"_s);
    QCOMPARE(text(mouse.releaseButton(1)), u"mouseEventCallBack(4)"_s);
    QCOMPARE(text(mouse.releaseButton(2)), QString());
    QCOMPARE(text(mouse.releaseButton(3)), u"mouseEventCallBack(0)"_s);
}

void tst_SimulatedMouse::buttonThatIsTheDpiButtonChangesTheSlot()
{
    SimulatedMouse mouse;
    mouse.dpiButtonId = 4;
    QCOMPARE(text(mouse.pressButton(4)),
             u"activeDpiSlotIndexChangedCallBack(3) dpiValueChangedCallBack(2400)"_s);
    QCOMPARE(text(mouse.releaseButton(4)), QString());
    QCOMPARE(text(mouse.pressButton(5)), QString());
}

void tst_SimulatedMouse::divertedDpiButtonIsReportedInstead()
{
    SimulatedMouse mouse;
    mouse.dpiButtonId = 4;
    mouse.disabledButtonsOrKeysMask = 0x08;
    QCOMPARE(text(mouse.pressButton(4)), u"mouseEventCallBack(8)"_s);
    QCOMPARE(mouse.activeDpiSlotIndex, 2);
}

void tst_SimulatedMouse::smartPointerKeyNeedsNoDiversion()
{
    SimulatedMouse mouse;
    QCOMPARE(text(mouse.pressSmartPointerKey()), u"mouseEventCallBack(128)"_s);
    mouse.disabledButtonsOrKeysMask = 0x01;
    QCOMPARE(text(mouse.pressButton(1)), u"mouseEventCallBack(129)"_s);
    QCOMPARE(text(mouse.releaseSmartPointerKey()), u"mouseEventCallBack(1)"_s);
}

void tst_SimulatedMouse::mouseWithoutSmartPointerReportsNothing()
{
    SimulatedMouse mouse;
    mouse.isSmartPointerSupported = false;
    QCOMPARE(text(mouse.pressSmartPointerKey()), QString());
    QCOMPARE(text(mouse.releaseSmartPointerKey()), QString());
}

void tst_SimulatedMouse::batteryStaysBetweenEmptyAndFull()
{
    SimulatedMouse mouse;
    QCOMPARE(text(mouse.drainBattery(30)), u"setBatteryLevel(50)"_s);
    QCOMPARE(text(mouse.drainBattery(80)), u"setBatteryLevel(0)"_s);
    QCOMPARE(text(mouse.drainBattery(1)), QString());
    QCOMPARE(text(mouse.drainBattery(-100)), u"setBatteryLevel(100)"_s);
    QCOMPARE(text(mouse.drainBattery(-1)), QString());
}

void tst_SimulatedMouse::mouseWithoutBatteryReportsNothing()
{
    SimulatedMouse mouse;
    mouse.hasBatteryLevel = false;
    QCOMPARE(text(mouse.drainBattery(30)), QString());
}

void tst_SimulatedMouse::slotValuesAreRounded_data()
{
    QTest::addColumn<int>("step");
    QTest::addColumn<QString>("confirmed");
    QTest::newRow("as-they-are") << 0 << u"[849, 850, 851, 3200, 4000]"_s;
    QTest::newRow("to-hundreds") << 100 << u"[800, 900, 900, 3200, 4000]"_s;
    QTest::newRow("to-fifties") << 50 << u"[850, 850, 850, 3200, 4000]"_s;
}

void tst_SimulatedMouse::slotValuesAreRounded()
{
    QFETCH(const int, step);
    QFETCH(const QString, confirmed);
    SimulatedMouse mouse;
    mouse.dpiStep = step;
    // A requested 0 leaves a slot alone.
    const auto reports = mouse.take(slotRequest({849, 850, 851, 0, 4000}));
    QVERIFY2(text(reports).startsWith(u"dpiSlotValuesConfirmed(%1)"_s.arg(confirmed)),
             qPrintable(text(reports)));
}

void tst_SimulatedMouse::sleepingMouseReportsNothing()
{
    SimulatedMouse mouse;
    mouse.disabledButtonsOrKeysMask = 0x01;
    QCOMPARE(text(mouse.sleep()), QString());
    QCOMPARE(text(mouse.pressButton(1)), QString());
    QCOMPARE(text(mouse.pressDpiButton()), QString());
    QCOMPARE(text(mouse.pressSmartPointerKey()), QString());
    QCOMPARE(text(mouse.drainBattery(5)), QString());
    QCOMPARE(mouse.batteryLevel, 75);
    QCOMPARE(mouse.activeDpiSlotIndex, 2);
}

void tst_SimulatedMouse::requestsOfTheNightAreHeardInTheMorning()
{
    SimulatedMouse mouse;
    mouse.sleep();
    const auto asleep = mouse.take({&requests::setReportRate, {125}});
    QCOMPARE(text(asleep), QString());
    mouse.take({&requests::setReportRate, {1000}});
    QCOMPARE(mouse.reportRate, 500);
    QCOMPARE(text(mouse.wake()), u"reportRateConfirmed(125) reportRateConfirmed(1000)"_s);
    QCOMPARE(mouse.reportRate, 1000);
}

void tst_SimulatedMouse::forgetfulMouseTellsEverythingAnew()
{
    SimulatedMouse mouse;
    mouse.losesSettingsAsleep = true;
    mouse.dpiButtonId = 3;
    mouse.disabledButtonsOrKeysMask = 0x1f;
    mouse.take({&requests::setReportRate, {1000}});
    mouse.pressDpiButton();
    mouse.sleep();
    mouse.take({&requests::setDpiButtonAndActiveSlot, {2, 0}});
    QCOMPARE(
        text(mouse.wake()),
        u"dpiMinChanged(100) dpiMaxChanged(8000) dpiSlotValuesChangedCallBack([800, 1600, 2400, 3200, 4000]) "
        "activeDpiSlotIndexChangedCallBack(2) dpiButtonIdChangedCallBack(6) dpiValueChangedCallBack(1600) "
        "ppidChangedCallBack(\"RV418-0001\") reportRateChangedCallBack({\"currentRate\": 500, "
        "\"supportedRates\": [125, 250, 500, 1000], \"unused\": 0}) dpiButtonIdConfirmed(2)"_s);
    QCOMPARE(int(mouse.disabledButtonsOrKeysMask), 0);
    QCOMPARE(mouse.dpiButtonId, 2);
}

void tst_SimulatedMouse::wakingTwiceIsWakingOnce()
{
    SimulatedMouse mouse;
    mouse.losesSettingsAsleep = true;
    QCOMPARE(text(mouse.wake()), QString());
    mouse.sleep();
    QVERIFY(!mouse.wake().isEmpty());
    QCOMPARE(text(mouse.wake()), QString());
}

QTEST_GUILESS_MAIN(tst_SimulatedMouse)
#include "tst_SimulatedMouse.moc"
