#include "DeviceState.h"
#include "DockFixture.h"
#include "Eventually.h"
#include "MiceDock.h"

#include <QtWidgets/QComboBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QSpinBox>
#include <QtWidgets/QTreeWidget>

using namespace Qt::StringLiterals;

namespace {

struct Fixture : DockFixture<MiceDock>
{
    // A line for each device, the current one with a star.
    QStringList shown() const
    {
        const auto *list = widget<QTreeWidget>("miceList");
        QStringList rows;
        for (int row = 0; row < list->topLevelItemCount(); ++row) {
            const QTreeWidgetItem *item = list->topLevelItem(row);
            QStringList texts;
            for (int column = 0; column < list->columnCount(); ++column)
                texts.append(item->text(column));
            const bool isCurrent = list->currentItem() == item;
            if (item->font(0).bold() != isCurrent)
                texts.append(u"in the wrong font"_s);
            rows.append(texts.join(u' ').trimmed() + (isCurrent ? u" *"_s : QString()));
        }
        return rows;
    }

    void clickRow(int row)
    {
        auto *list = widget<QTreeWidget>("miceList");
        const QRect place = list->visualItemRect(list->topLevelItem(row));
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, place.center());
    }
};

}  // namespace

class tst_MiceDock : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aMouseIsAddedStartedStoppedAndRemoved();
    void fieldsAndReceiverBelongToTheNewMouse();
    void theFieldsOfAMouseAreNamed();
    void theReceiverIsTheOneInForce();
    void devicesWithoutAMouse();
    void theSelectedDeviceIsTheCurrentOne();
    void theListFollowsTheChild();
    void anIdHas64Bits();
    void aWrongFieldIsShown();
    void withoutAChildNothingCanBeAdded();
    void aFreshChildHasTheFirstReceiver();
};

void tst_MiceDock::aMouseIsAddedStartedStoppedAndRemoved()
{
    Fixture mice;
    QVERIFY(!mice.widget("miceStart")->isEnabled());
    mice.click("miceAdd");
    QCOMPARE(mice.takeLines(), QStringList{u"mouse 1"_s});
    KVX_EVENTUALLY_EQUAL(mice.shown(), QStringList{u"1 no yes 1 *"_s});
    QCOMPARE(mice.widget<QLineEdit>("miceId")->text(), u"2"_s);
    mice.click("miceStart");
    QCOMPARE(mice.takeLines(), QStringList{u"start"_s});
    KVX_EVENTUALLY_EQUAL(mice.shown(), QStringList{u"1 yes yes 1 *"_s});
    mice.click("miceStop");
    QCOMPARE(mice.takeLines(), QStringList{u"stop"_s});
    KVX_EVENTUALLY_EQUAL(mice.shown(), QStringList{u"1 stopped yes 1 *"_s});
    mice.click("miceRemove");
    QCOMPARE(mice.takeLines(), QStringList{u"remove"_s});
    KVX_EVENTUALLY(mice.shown().isEmpty());
    QVERIFY(!mice.widget("miceStart")->isEnabled());
    QCOMPARE(mice.widget<QLineEdit>("miceId")->text(), u"1"_s);
}

void tst_MiceDock::fieldsAndReceiverBelongToTheNewMouse()
{
    Fixture mice;
    mice.type("miceId", u"7"_s);
    mice.type("miceFields", u"batteryLevel=20 \"ppid=A 1\" dpiSlotValues=100,200,300,400,500"_s);
    mice.type("miceReceiver", u"3"_s);
    QTest::keyClick(mice.widget("miceFields"), Qt::Key_Return);
    QCOMPARE(mice.takeLines(),
             (QStringList{u"receiver 3"_s,
                          u"mouse 7 batteryLevel=20 \"ppid=A 1\" dpiSlotValues=100,200,300,400,500"_s}));
    KVX_EVENTUALLY_EQUAL(mice.shown(), QStringList{u"7 no yes 3 *"_s});
    const QJsonObject mouse = DeviceState::currentDevice(mice.engine.state()).value("mouse"_L1).toObject();
    QCOMPARE(mouse.value("batteryLevel"_L1).toInt(), 20);
    QCOMPARE(mouse.value("ppid"_L1).toString(), u"A 1"_s);
}

void tst_MiceDock::theFieldsOfAMouseAreNamed()
{
    Fixture mice;
    QVERIFY(mice.play({u"mouse 1"_s, u"set nothing 1"_s}));
    const QStringList names = mice.answers.last().message.section(u"it has "_s, 1).split(u", "_s);
    QVERIFY(names.contains(u"losesSettingsAsleep"_s));
    const QStringList lines = mice.widget("miceFields")->toolTip().split(u'\n');
    QCOMPARE(lines.size(), names.size() + 1);
    for (const QString &name : names)
        QVERIFY2(lines.join(u'\n').contains(u'\n' + name + u'='), qPrintable(name));
    QVERIFY(lines.contains(u"dpiSlotValues=800,1600,2400,3200,4000"_s));
}

void tst_MiceDock::theReceiverIsTheOneInForce()
{
    Fixture mice;
    QVERIFY(mice.play({u"receiver 2"_s}));
    mice.takeLines();
    mice.click("miceAdd");
    QCOMPARE(mice.takeLines(), (QStringList{u"receiver 1"_s, u"mouse 1"_s}));
    mice.click("miceAdd");
    QCOMPARE(mice.takeLines(), QStringList{u"mouse 2"_s});
}

void tst_MiceDock::devicesWithoutAMouse()
{
    Fixture mice;
    QTest::keyClick(mice.widget("miceKind"), Qt::Key_Down);
    QVERIFY(!mice.widget("miceFields")->isEnabled());
    QVERIFY(!mice.widget("miceReceiver")->isEnabled());
    mice.click("miceAdd");
    QCOMPARE(mice.takeLines(), QStringList{u"device 1 none"_s});
    QTest::keyClick(mice.widget("miceKind"), Qt::Key_Down);
    mice.click("miceAdd");
    QCOMPARE(mice.takeLines(), QStringList{u"device 2 other"_s});
    KVX_EVENTUALLY_EQUAL(mice.shown(), (QStringList{u"1 no no"_s, u"2 no no *"_s}));
}

void tst_MiceDock::theSelectedDeviceIsTheCurrentOne()
{
    Fixture mice;
    QVERIFY(mice.play({u"mouse 1"_s, u"mouse 2"_s, u"mouse 3"_s}));
    KVX_EVENTUALLY_EQUAL(mice.shown().value(2), u"3 no yes 1 *"_s);
    mice.takeLines();
    mice.clickRow(0);
    QCOMPARE(mice.takeLines(), QStringList{u"use 1"_s});
    KVX_EVENTUALLY_EQUAL(DeviceState::currentId(mice.engine.state()), u"1"_s);
    QTest::keyClick(mice.widget("miceList"), Qt::Key_Down);
    QCOMPARE(mice.takeLines(), QStringList{u"use 2"_s});
    KVX_EVENTUALLY_EQUAL(mice.shown(), (QStringList{u"1 no yes 1"_s, u"2 no yes 1 *"_s, u"3 no yes 1"_s}));
}

void tst_MiceDock::theListFollowsTheChild()
{
    Fixture mice;
    const QStringList scenario{u"mouse 1"_s, u"start"_s, u"mouse 2"_s, u"use 1"_s};
    QVERIFY(mice.play(scenario));
    KVX_EVENTUALLY_EQUAL(mice.shown(), (QStringList{u"1 yes yes 1 *"_s, u"2 no yes 1"_s}));
    // The list itself asks for nothing.
    QCOMPARE(mice.takeLines(), scenario);
}

void tst_MiceDock::anIdHas64Bits()
{
    Fixture mice;
    mice.type("miceId", u"18446744073709551615"_s);
    mice.click("miceAdd");
    QCOMPARE(mice.takeLines(), QStringList{u"mouse 18446744073709551615"_s});
    KVX_EVENTUALLY_EQUAL(mice.shown(), QStringList{u"18446744073709551615 no yes 1 *"_s});
    QVERIFY(mice.play({u"mouse 18446744073709551614"_s}));
    mice.takeLines();
    KVX_EVENTUALLY_EQUAL(mice.shown().size(), 2);
    mice.clickRow(0);
    QCOMPARE(mice.takeLines(), QStringList{u"use 18446744073709551615"_s});
}

void tst_MiceDock::aWrongFieldIsShown()
{
    Fixture mice;
    auto *message = mice.widget<QLabel>("miceMessage");
    QVERIFY(!message->isVisible());
    mice.type("miceFields", u"battery=20"_s);
    mice.click("miceAdd");
    KVX_EVENTUALLY(message->isVisible());
    QVERIFY2(message->text().startsWith(u"mouse 1 battery=20: a mouse has no \"battery\""_s),
             qPrintable(message->text()));
    mice.type("miceFields", {});
    mice.click("miceAdd");
    KVX_EVENTUALLY(!message->isVisible());
    KVX_EVENTUALLY_EQUAL(mice.shown().size(), 1);
}

void tst_MiceDock::withoutAChildNothingCanBeAdded()
{
    Fixture mice;
    QVERIFY(mice.play({u"mouse 1"_s}));
    KVX_EVENTUALLY_EQUAL(mice.shown().size(), 1);
    mice.engine.stop();
    KVX_EVENTUALLY_EQUAL(mice.ends.size(), 1);
    QVERIFY(mice.shown().isEmpty());
    QVERIFY(!mice.widget("miceAdd")->isEnabled());
    QVERIFY(!mice.widget("miceRemove")->isEnabled());
}

void tst_MiceDock::aFreshChildHasTheFirstReceiver()
{
    Fixture mice;
    QVERIFY(mice.play({u"receiver 2"_s}));
    mice.takeLines();
    mice.engine.restart();
    KVX_EVENTUALLY_EQUAL(mice.ends.size(), 1);
    mice.ends.clear();
    QVERIFY(mice.settle());
    KVX_EVENTUALLY(mice.widget("miceAdd")->isEnabled());
    mice.click("miceAdd");
    QCOMPARE(mice.takeLines(), QStringList{u"mouse 1"_s});
}

QTEST_MAIN(tst_MiceDock)
#include "tst_MiceDock.moc"
