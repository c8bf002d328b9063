#include "DockFixture.h"
#include "Eventually.h"
#include "RequestsDock.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QTemporaryFile>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>

using namespace Qt::StringLiterals;

namespace {

struct Fixture : DockFixture<RequestsDock>
{
    explicit Fixture(const QStringList &scenario = {u"mouse 1"_s, u"start"_s}) : DockFixture(scenario) {}

    QString outcome(QAnyStringView command) const
    {
        return widget<QLabel>(u"outcome-"_s + command.toString())->text();
    }
    QString value(QAnyStringView command) const
    {
        return widget<QLabel>(u"value-"_s + command.toString())->text();
    }
    QString text(const char *name) const { return widget<QLineEdit>(name)->text(); }
    QStringList slotTexts() const
    {
        return {text("requestSlot1"), text("requestSlot2"), text("requestSlot3"), text("requestSlot4"),
                text("requestSlot5")};
    }
    void typeRate(const QString &rate)
    {
        type("requestReportRate", rate);
        click("send-setReportRate");
    }
};

}  // namespace

class tst_RequestsDock : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void slotsTakeAnyText();
    void fieldsFollowTheDeviceUntilTheyAreEdited();
    void rateFromTheListOrTyped();
    void otherRequests_data();
    void otherRequests();
    void lostConfirmationIsPendingUntilItComes();
    void aConfirmationEndsWhenTheMouseChangesTheValue();
    void refusedRequest();
    void refusedRepetition();
    void withoutSettleTheNextLineComesWhilePending();
    void wrongTextIsNotTaken();
    void diversion();
    void settings();
    void eachDeviceHasItsOutcomes();
    void withoutADevice();
    void linesPlayInKvxRun();
};

void tst_RequestsDock::slotsTakeAnyText()
{
    Fixture requests;
    QCOMPARE(requests.slotTexts(), (QStringList{u"800"_s, u"1600"_s, u"2400"_s, u"3200"_s, u"4000"_s}));
    const int widthBefore = requests.dock.minimumSizeHint().width();
    requests.type("requestSlot1", u"65536"_s);
    requests.type("requestSlot2", u"+800"_s);
    requests.type("requestSlot3", u"4 \"\\ 2"_s);
    requests.type("requestSlot4", u"#1"_s);
    requests.type("requestSlot5", {});
    QTest::keyClick(requests.widget("requestSlot5"), Qt::Key_Return);
    QCOMPARE(
        requests.takeLines(),
        (QStringList{u"setDpiSlotValues 65536 +800 \"4 \\\"\\\\ 2\" \"#1\" \"\" nowait"_s, u"settle"_s}));
    const auto call =
        std::find_if(requests.entries.cbegin(), requests.entries.cend(), [](const Entry &entry) {
            return entry.kind == "call"_L1 && entry.name == "setDpiSlotValues"_L1;
        });
    QVERIFY(call != requests.entries.cend());
    const QStringList texts{u"65536"_s, u"+800"_s, u"4 \"\\ 2"_s, u"#1"_s, {}};
    QCOMPARE(call->arguments.first().toArray(), QJsonArray::fromStringList(texts));
    KVX_EVENTUALLY_EQUAL(requests.outcome("setDpiSlotValues"), u"confirmed"_s);
    QCOMPARE(requests.slotTexts(), texts);
    QCOMPARE(requests.value("setDpiSlotValues"), u"now 800 800 2400 3200 4000"_s);
    QCOMPARE(requests.dock.minimumSizeHint().width(), widthBefore);
}

void tst_RequestsDock::fieldsFollowTheDeviceUntilTheyAreEdited()
{
    Fixture requests;
    requests.type("requestSlot2", u"x"_s);
    QVERIFY(requests.play({u"setDpiSlotValues 100 200 300 400 500"_s}));
    KVX_EVENTUALLY_EQUAL(requests.slotTexts(), (QStringList{u"100"_s, u"x"_s, u"300"_s, u"400"_s, u"500"_s}));
}

void tst_RequestsDock::rateFromTheListOrTyped()
{
    Fixture requests({u"mouse 1 reportRates=125,1000"_s, u"start"_s});
    auto *rates = requests.widget<QComboBox>("requestReportRate");
    KVX_EVENTUALLY_EQUAL(rates->count(), 2);
    QTest::keyClick(rates, Qt::Key_Down);
    QTest::keyClick(rates, Qt::Key_Down);
    QCOMPARE(rates->currentText(), u"1000"_s);
    requests.click("send-setReportRate");
    QCOMPARE(requests.takeLines(), (QStringList{u"setReportRate 1000 nowait"_s, u"settle"_s}));
    KVX_EVENTUALLY_EQUAL(requests.outcome("setReportRate"), u"confirmed"_s);
    QCOMPARE(requests.value("setReportRate"), u"now 1000"_s);
    // The mouse does not offer it, and stays as it is.
    requests.typeRate(u"333"_s);
    QCOMPARE(requests.takeLines(), (QStringList{u"setReportRate 333 nowait"_s, u"settle"_s}));
    KVX_EVENTUALLY_EQUAL(requests.outcome("setReportRate"), u"pending"_s);
}

void tst_RequestsDock::otherRequests_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("command");
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<QString>("outcome");
    QTest::addColumn<QString>("value");
    QTest::newRow("active-slot") << u"requestActiveSlot"_s << u"4"_s << u"setActiveDpiSlotIndex"_s
                                 << QStringList{u"setActiveDpiSlotIndex 4 nowait"_s, u"settle"_s}
                                 << u"confirmed"_s << u"now 4"_s;
    QTest::newRow("dpi-button") << u"requestDpiButton"_s << u"3"_s << u"setDpiButtonId"_s
                                << QStringList{u"setDpiButtonId 3 nowait"_s, u"settle"_s} << u"confirmed"_s
                                << u"now 3"_s;
    QTest::newRow("dpi-value") << u"requestDpiValue"_s << u"900"_s << u"setDpiValue"_s
                               << QStringList{u"setDpiValue 900"_s} << u"done"_s << u"now 1600"_s;
}

void tst_RequestsDock::otherRequests()
{
    QFETCH(const QString, field);
    QFETCH(const QString, text);
    QFETCH(const QString, command);
    QFETCH(const QStringList, lines);
    QFETCH(const QString, outcome);
    QFETCH(const QString, value);
    Fixture requests;
    requests.type(field, text);
    requests.click(u"send-"_s + command);
    QCOMPARE(requests.takeLines(), lines);
    KVX_EVENTUALLY_EQUAL(requests.outcome(command), outcome);
    KVX_EVENTUALLY_EQUAL(requests.value(command), value);
}

void tst_RequestsDock::lostConfirmationIsPendingUntilItComes()
{
    Fixture requests({u"mouse 1"_s, u"start"_s, u"fault reportRateConfirmed drop"_s});
    requests.typeRate(u"1000"_s);
    requests.takeLines();
    KVX_EVENTUALLY_EQUAL(requests.outcome("setReportRate"), u"pending"_s);
    QVERIFY(requests.widget("outcome-setReportRate")->font().bold());
    QVERIFY(requests.play({u"report reportRateConfirmed 1000"_s}));
    KVX_EVENTUALLY_EQUAL(requests.outcome("setReportRate"), u"confirmed"_s);
    QVERIFY(!requests.widget("outcome-setReportRate")->font().bold());
}

void tst_RequestsDock::aConfirmationEndsWhenTheMouseChangesTheValue()
{
    Fixture requests;
    requests.typeRate(u"1000"_s);
    KVX_EVENTUALLY_EQUAL(requests.outcome("setReportRate"), u"confirmed"_s);
    requests.takeLines();
    QVERIFY(requests.play({u"report reportRateConfirmed 250"_s}));
    KVX_EVENTUALLY_EQUAL(requests.value("setReportRate"), u"now 250"_s);
    QCOMPARE(requests.outcome("setReportRate"), QString());
}

void tst_RequestsDock::refusedRequest()
{
    Fixture requests({u"mouse 1"_s, u"start"_s, u"fault setDpiButtonAndActiveSlot refuse"_s,
                      u"fault setDisabledButtonsOrKeysMask refuse"_s});
    requests.type("requestActiveSlot", u"5"_s);
    requests.click("send-setActiveDpiSlotIndex");
    requests.click("send-disbaleButtonsOrKeys");
    requests.takeLines();
    KVX_EVENTUALLY_EQUAL(requests.outcome("setActiveDpiSlotIndex"), u"refused"_s);
    KVX_EVENTUALLY_EQUAL(requests.outcome("disbaleButtonsOrKeys"), u"refused"_s);
    QCOMPARE(requests.outcome("setDpiButtonId"), QString());
    requests.click("send-setActiveDpiSlotIndex");
    KVX_EVENTUALLY_EQUAL(requests.outcome("setActiveDpiSlotIndex"), u"confirmed"_s);
}

void tst_RequestsDock::refusedRepetition()
{
    Fixture requests({u"mouse 1"_s, u"start"_s, u"sleep"_s});
    requests.typeRate(u"1000"_s);
    KVX_EVENTUALLY_EQUAL(requests.outcome("setReportRate"), u"pending"_s);
    QVERIFY(requests.play({u"fault setReportRate refuse"_s, u"report reportRateConfirmed 250"_s}));
    KVX_EVENTUALLY_EQUAL(requests.outcome("setReportRate"), u"refused"_s);
}

void tst_RequestsDock::withoutSettleTheNextLineComesWhilePending()
{
    // The answer takes longer than the test.
    Fixture requests({u"mouse 1"_s, u"start"_s, u"answer-delay 3600000"_s});
    QTest::keyClick(requests.widget("requestsSettle"), Qt::Key_Space);
    requests.typeRate(u"1000"_s);
    QCOMPARE(requests.takeLines(), QStringList{u"setReportRate 1000 nowait"_s});
    KVX_EVENTUALLY_EQUAL(requests.outcome("setReportRate"), u"pending"_s);
    QTest::keyClick(requests.widget("requestsSettle"), Qt::Key_Space);
    requests.type("requestActiveSlot", u"5"_s);
    requests.click("send-setActiveDpiSlotIndex");
    KVX_EVENTUALLY_EQUAL(requests.outcome("setActiveDpiSlotIndex"), u"pending"_s);
    // The child still waits for both.
    QVERIFY(requests.engine.isBusy());
    QCOMPARE(requests.lines.last(), u"settle"_s);
}

void tst_RequestsDock::wrongTextIsNotTaken()
{
    Fixture requests;
    auto *message = requests.widget<QLabel>("requestsMessage");
    requests.typeRate(u"very fast"_s);
    KVX_EVENTUALLY_EQUAL(requests.outcome("setReportRate"), u"unusable"_s);
    QCOMPARE(requests.takeLines(), (QStringList{u"setReportRate \"very fast\" nowait"_s, u"settle"_s}));
    QVERIFY(message->isVisible());
    QVERIFY2(message->text().contains(u"\"very fast\" is not what setReportRate takes: a number"_s),
             qPrintable(message->text()));
    requests.typeRate(u"125"_s);
    KVX_EVENTUALLY_EQUAL(requests.outcome("setReportRate"), u"confirmed"_s);
    KVX_EVENTUALLY(!message->isVisible());
}

void tst_RequestsDock::diversion()
{
    Fixture requests;
    requests.widget<QCheckBox>("requestDivert1")->click();
    QTest::keyClick(requests.widget("requestDivert3"), Qt::Key_Space);
    requests.click("send-disbaleButtonsOrKeys");
    QCOMPARE(requests.takeLines(), (QStringList{u"disbaleButtonsOrKeys 1 3 nowait"_s, u"settle"_s}));
    KVX_EVENTUALLY_EQUAL(requests.outcome("disbaleButtonsOrKeys"), u"confirmed"_s);
    requests.click("send-setButtonsOrKeysToDefault");
    QCOMPARE(requests.takeLines(), (QStringList{u"setButtonsOrKeysToDefault nowait"_s, u"settle"_s}));
    KVX_EVENTUALLY(!requests.widget<QCheckBox>("requestDivert1")->isChecked());
    QVERIFY(!requests.widget<QCheckBox>("requestDivert3")->isChecked());
    // The boxes also show what others divert.
    QVERIFY(requests.play({u"disbaleButtonsOrKeys 5"_s}));
    KVX_EVENTUALLY(requests.widget<QCheckBox>("requestDivert5")->isChecked());
}

void tst_RequestsDock::settings()
{
    Fixture requests;
    requests.type("requestSettings", u"pointerSpeed=7 \"name=A mouse\""_s);
    QTest::keyClick(requests.widget("requestSettings"), Qt::Key_Return);
    QCOMPARE(requests.takeLines(), QStringList{u"applySettings pointerSpeed=7 \"name=A mouse\""_s});
    KVX_EVENTUALLY_EQUAL(requests.outcome("applySettings"), u"done"_s);
    requests.click("send-resetSettings");
    QCOMPARE(requests.takeLines(), (QStringList{u"resetSettings nowait"_s, u"settle"_s}));
    KVX_EVENTUALLY_EQUAL(requests.outcome("resetSettings"), u"confirmed"_s);
}

void tst_RequestsDock::eachDeviceHasItsOutcomes()
{
    Fixture requests;
    requests.typeRate(u"250"_s);
    KVX_EVENTUALLY_EQUAL(requests.outcome("setReportRate"), u"confirmed"_s);
    requests.type("requestSlot1", u"x"_s);
    QVERIFY(requests.play({u"mouse 2 reportRate=125 dpiSlotValues=100,200,300,400,500"_s, u"start"_s}));
    KVX_EVENTUALLY_EQUAL(requests.value("setReportRate"), u"now 125"_s);
    QCOMPARE(requests.outcome("setReportRate"), QString());
    KVX_EVENTUALLY_EQUAL(requests.text("requestSlot1"), u"100"_s);
    QVERIFY(requests.play({u"use 1"_s}));
    KVX_EVENTUALLY_EQUAL(requests.outcome("setReportRate"), u"confirmed"_s);
}

void tst_RequestsDock::withoutADevice()
{
    Fixture requests;
    QVERIFY(requests.play({u"remove"_s}));
    KVX_EVENTUALLY(!requests.widget("requestSlot1")->isEnabled());
    QCOMPARE(requests.text("requestSlot1"), QString());
    QVERIFY(requests.play({u"mouse 1"_s, u"start"_s}));
    KVX_EVENTUALLY(requests.widget("requestSlot1")->isEnabled());
    requests.typeRate(u"250"_s);
    KVX_EVENTUALLY_EQUAL(requests.outcome("setReportRate"), u"confirmed"_s);
    requests.engine.stop();
    KVX_EVENTUALLY_EQUAL(requests.ends.size(), 1);
    QVERIFY(!requests.widget("requestSlot1")->isEnabled());
    QCOMPARE(requests.outcome("setReportRate"), QString());
}

// With a refused and a lost request among them.
void tst_RequestsDock::linesPlayInKvxRun()
{
    const QStringList begin{u"mouse 1"_s, u"start"_s, u"fault setReportRate refuse"_s,
                            u"fault activeDpiSlotIndexConfirmed drop"_s};
    Fixture requests(begin);
    requests.typeRate(u"250"_s);
    requests.type("requestActiveSlot", u"5"_s);
    requests.click("send-setActiveDpiSlotIndex");
    requests.type("requestSlot1", u"+700"_s);
    requests.click("send-setDpiSlotValues");
    QVERIFY(requests.settle());
    KVX_EVENTUALLY_EQUAL(requests.outcome("setReportRate"), u"refused"_s);
    KVX_EVENTUALLY_EQUAL(requests.outcome("setActiveDpiSlotIndex"), u"pending"_s);
    KVX_EVENTUALLY_EQUAL(requests.outcome("setDpiSlotValues"), u"confirmed"_s);
    // Of what the window has seen, without the getters that its state was read with.
    QStringList expected;
    for (const Entry &entry : std::as_const(requests.entries)) {
        if (entry.kind == "signal"_L1)
            expected.append(entry.name);
    }
    QTemporaryFile file;
    QVERIFY(file.open());
    file.write((begin + requests.lines).join(u'\n').toUtf8());
    file.close();
    QProcess run;
    run.start(QStringLiteral(KVX_COMMAND),
              {u"run"_s, u"--json"_s, u"--plugin"_s, QStringLiteral(KVX_LIBRARY), file.fileName()});
    QVERIFY(run.waitForFinished(StartedEngine::limit));
    QVERIFY2(run.exitCode() == 0, run.readAllStandardError().constData());
    QStringList seen;
    const QList<QByteArray> lines = run.readAllStandardOutput().split('\n');
    for (const QByteArray &line : lines) {
        const QJsonObject entry = QJsonDocument::fromJson(line).object();
        if (entry.value("kind"_L1) == "signal"_L1)
            seen.append(entry.value("name"_L1).toString());
    }
    QCOMPARE(seen, expected);
}

QTEST_MAIN(tst_RequestsDock)
#include "tst_RequestsDock.moc"
