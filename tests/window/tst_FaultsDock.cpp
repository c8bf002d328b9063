#include "DockFixture.h"
#include "Eventually.h"
#include "FaultsDock.h"

using namespace Qt::StringLiterals;

namespace {

/// The dock and its parts by name.
struct ShownDock : DockFixture<FaultsDock>
{
    auto *effect(const QString &operation) const { return widget<QComboBox>(u"faultEffect_"_s + operation); }
    auto *value(const QString &operation) const { return widget<QLineEdit>(u"faultValue_"_s + operation); }
    auto *times(const QString &operation) const { return widget<QSpinBox>(u"faultTimes_"_s + operation); }
    auto *set(const QString &operation) const { return widget(u"faultSet_"_s + operation); }
    /// Empty when none is in force.
    QString inForce(const QString &operation) const
    {
        const auto *const label = widget<QLabel>(u"faultInForce_"_s + operation);
        return label->isHidden() ? QString() : label->text().section(u"In force: "_s, 1);
    }
    QString summary() const { return widget<QLabel>("faultsSummary")->text(); }
    auto *problem(const QString &operation) const { return widget<QLabel>(u"faultProblem_"_s + operation); }
    QWidget *clear() const { return widget("faultsClear"); }
};

const QString rate = u"setReportRate"_s;

}  // namespace

class tst_FaultsDock : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void thereIsARowForEachOperation();
    void aFaultIsSetByClicks();
    void eachEffectIsWrittenAsALine_data();
    void eachEffectIsWrittenAsALine();
    void severalAreInForceUntilTheyAreCleared();
    void anUnusableLineIsExplainedInItsRow();
    void withoutADeviceNothingCanBeSet();
};

void tst_FaultsDock::thereIsARowForEachOperation()
{
    ShownDock shown;
    QJsonArray operations;
    connect(&shown.engine, &Engine::stateChanged, &shown.dock, [&](const QJsonObject &state) {
        if (state.contains(u"operations"_s))
            operations = state.value(u"operations"_s).toArray();
    });
    // A fresh child has the same ones.
    shown.engine.restart();
    KVX_EVENTUALLY(!operations.isEmpty());
    QVERIFY(operations.size() > 10);
    for (const auto operation : std::as_const(operations)) {
        const QString name = operation.toObject().value(u"name"_s).toString();
        QVERIFY2(!shown.effect(name)->accessibleName().isEmpty(), qUtf8Printable(name));
    }
    QCOMPARE(shown.dock.findChildren<QComboBox *>().size(), operations.size());
}

void tst_FaultsDock::aFaultIsSetByClicks()
{
    ShownDock shown;
    QVERIFY(shown.play({u"mouse 1"_s, u"start"_s}));
    KVX_EVENTUALLY(shown.set(rate)->isEnabled());
    QVERIFY(!shown.clear()->isEnabled());
    QTest::mouseClick(shown.set(rate), Qt::LeftButton);
    QCOMPARE(shown.lines.last(), u"fault setReportRate refuse"_s);
    KVX_EVENTUALLY_EQUAL(shown.inForce(rate), u"refuse times 1"_s);
    QCOMPARE(shown.inForce(u"setDpiSlotValues"_s), QString());

    QVERIFY(shown.play({u"setReportRate 250 => refused"_s}));
    QCOMPARE(shown.answers.last().result, u"done"_s);
    KVX_EVENTUALLY_EQUAL(shown.inForce(rate), QString());
    KVX_EVENTUALLY(!shown.clear()->isEnabled());
}

void tst_FaultsDock::eachEffectIsWrittenAsALine_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("effect");
    QTest::addColumn<QString>("value");
    QTest::addColumn<int>("times");
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("inForce");
    QTest::newRow("refuse") << rate << u"refuse"_s << QString() << 3
                            << u"fault setReportRate refuse times 3"_s << u"refuse times 3"_s;
    QTest::newRow("drop") << u"reportRateConfirmed"_s << u"drop"_s << QString() << 1
                          << u"fault reportRateConfirmed drop"_s << u"drop times 1"_s;
    QTest::newRow("delay") << rate << u"delay"_s << u"5"_s << 0 << u"fault setReportRate delay 5 always"_s
                           << u"delay always"_s;
    QTest::newRow("repeat") << u"reportRateConfirmed"_s << u"repeat"_s << u"2"_s << 1
                            << u"fault reportRateConfirmed repeat 2"_s << u"repeat times 1"_s;
    QTest::newRow("alter") << u"setDpiSlotValues"_s << u"alter"_s << u"1 2 3 4 5 1 6"_s << 2
                           << u"fault setDpiSlotValues alter 1 2 3 4 5 1 6 times 2"_s << u"alter times 2"_s;
}

void tst_FaultsDock::eachEffectIsWrittenAsALine()
{
    QFETCH(const QString, operation);
    QFETCH(const QString, effect);
    QFETCH(const QString, value);
    QFETCH(const int, times);
    QFETCH(const QString, line);
    QFETCH(const QString, inForce);
    ShownDock shown;
    QVERIFY(shown.play({u"mouse 1"_s, u"start"_s}));
    KVX_EVENTUALLY(shown.set(operation)->isEnabled());

    QTest::keyClicks(shown.effect(operation), effect);
    QCOMPARE(shown.effect(operation)->currentText(), effect);
    QCOMPARE(shown.value(operation)->isEnabled(), !value.isEmpty());
    QTest::keyClicks(shown.value(operation), value);
    for (int i = 1; i < times; ++i)
        QTest::keyClick(shown.times(operation), Qt::Key_Up);
    for (int i = 1; i > times; --i)
        QTest::keyClick(shown.times(operation), Qt::Key_Down);
    if (value.isEmpty())
        QTest::keyClick(shown.set(operation), Qt::Key_Space);
    else
        QTest::keyClick(shown.value(operation), Qt::Key_Return);

    QCOMPARE(shown.lines.last(), line);
    KVX_EVENTUALLY(shown.inForce(operation).startsWith(inForce.section(u' ', 0, 0)));
    QVERIFY(shown.inForce(operation).endsWith(inForce.section(u' ', 1)));
    QVERIFY(shown.problem(operation)->isHidden());
}

void tst_FaultsDock::severalAreInForceUntilTheyAreCleared()
{
    ShownDock shown;
    QVERIFY(shown.play({u"mouse 1"_s, u"fault setReportRate refuse"_s, u"fault setReportRate drop always"_s,
                        u"fault dpiSlotValuesConfirmed drop"_s}));
    KVX_EVENTUALLY_EQUAL(shown.inForce(rate), u"refuse times 1, drop always"_s);
    KVX_EVENTUALLY_EQUAL(shown.inForce(u"dpiSlotValuesConfirmed"_s), u"drop times 1"_s);
    QCOMPARE(shown.summary(), u"Faults in force: 3"_s);
    QVERIFY(shown.play({u"mouse 2"_s, u"fault setReportRate refuse"_s}));
    KVX_EVENTUALLY_EQUAL(shown.inForce(rate),
                         u"refuse times 1 for device 1, drop always for device 1, refuse times 1"_s);
    QTest::mouseClick(shown.clear(), Qt::LeftButton);
    QCOMPARE(shown.lines.last(), u"clear-faults"_s);
    KVX_EVENTUALLY_EQUAL(shown.summary(), u"No fault is in force."_s);
    KVX_EVENTUALLY_EQUAL(shown.inForce(rate), QString());
    QCOMPARE(shown.inForce(u"dpiSlotValuesConfirmed"_s), QString());
}

void tst_FaultsDock::anUnusableLineIsExplainedInItsRow()
{
    ShownDock shown;
    QVERIFY(shown.play({u"mouse 1"_s}));
    KVX_EVENTUALLY(shown.set(rate)->isEnabled());
    QTest::keyClicks(shown.effect(rate), u"delay"_s);
    QTest::keyClicks(shown.value(rate), u"soon"_s);
    QTest::mouseClick(shown.set(rate), Qt::LeftButton);
    KVX_EVENTUALLY(shown.problem(rate)->isVisible());
    QCOMPARE(shown.answers.last().result, u"unusable"_s);
    QVERIFY(shown.problem(rate)->text().endsWith(shown.answers.last().message));
    QVERIFY(shown.problem(rate)->text().contains(u"soon"_s));
    QVERIFY(shown.problem(u"setDpiSlotValues"_s)->isHidden());
    QCOMPARE(shown.inForce(rate), QString());

    shown.value(rate)->selectAll();
    QTest::keyClicks(shown.value(rate), u"5\r"_s);
    KVX_EVENTUALLY(shown.inForce(rate).startsWith(u"delay"_s));
    QVERIFY(shown.problem(rate)->isHidden());
}

void tst_FaultsDock::withoutADeviceNothingCanBeSet()
{
    ShownDock shown;
    QVERIFY(!shown.set(rate)->isEnabled());
    QVERIFY(shown.play({u"mouse 1"_s, u"fault setReportRate refuse"_s}));
    KVX_EVENTUALLY(shown.set(rate)->isEnabled());
    KVX_EVENTUALLY(shown.clear()->isEnabled());
    shown.engine.stop();
    KVX_EVENTUALLY_EQUAL(shown.ends.size(), 1);
    QVERIFY(!shown.set(rate)->isEnabled());
    QVERIFY(!shown.clear()->isEnabled());
    QCOMPARE(shown.inForce(rate), QString());
}

QTEST_MAIN(tst_FaultsDock)
#include "tst_FaultsDock.moc"
