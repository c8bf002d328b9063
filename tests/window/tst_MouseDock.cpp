#include "DockFixture.h"
#include "Eventually.h"
#include "MouseDock.h"
#include "MousePicture.h"
#include "MouseView.h"

#include <QtGui/QKeyEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>
#include <QtWidgets/QProgressBar>

#include <cstdlib>

using namespace Qt::StringLiterals;

namespace {

struct Fixture : DockFixture<MouseDock>
{
    explicit Fixture(const QStringList &scenario = {u"mouse 1"_s, u"start"_s}) : DockFixture(scenario) {}

    QWidget *button(const QString &button) const { return widget(u"mouseButton-"_s + button); }
    QString status() const { return widget<QLabel>("mouseStatus")->text(); }
    QString ctrl() const { return widget<QLabel>("mouseCtrl")->text(); }
    QImage picture() const { return widget("mouseView")->grab().toImage(); }
    /// Its average: a text that changes may move the drawing by a part of a pixel.
    QColor look(const QString &name) const
    {
        const QImage picture = widget("mouseView")->grab(button(name)->geometry()).toImage();
        return picture.scaled(1, 1, Qt::IgnoreAspectRatio, Qt::SmoothTransformation).pixelColor(0, 0);
    }
};

bool isAlike(const QColor &one, const QColor &other)
{
    constexpr int most = 6;
    return std::abs(one.red() - other.red()) <= most && std::abs(one.green() - other.green()) <= most &&
           std::abs(one.blue() - other.blue()) <= most;
}

struct Button
{
    QString name;
    Qt::Key key;
};

QList<Button> buttons()
{
    return {{u"1"_s, Qt::Key_1}, {u"2"_s, Qt::Key_2},   {u"3"_s, Qt::Key_3},    {u"4"_s, Qt::Key_4},
            {u"5"_s, Qt::Key_5}, {u"dpi"_s, Qt::Key_D}, {u"smart"_s, Qt::Key_S}};
}

}  // namespace

class tst_MouseDock : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void clickPressesAndReleases_data() { addButtons(); }
    void clickPressesAndReleases();
    void keyPressesAndReleases_data() { addButtons(); }
    void keyPressesAndReleases();
    void repeatedKeyIsOnePress();
    void keyWithAModifierIsNoButton();
    void buttonIsReleasedWhereverThePointerIs();
    void keyIsReleasedWhenTheFocusGoes();
    void buttonsHaveNamesAndAFocusOrder();
    void spaceKeyPressesTheFocusedButton();
    void focusIsDrawn();
    void heldAndDivertedButtonsAreShown();
    void anInactiveWindowShowsTheSlotAsWell();
    void dpiButtonChangesTheSlot();
    void sleepAndWake();
    void drainAndCharge();
    void noBatteryLevel();
    void ctrlKeyOfTheHost();
    void ctrlGoesUpWhileTheKeyIsHeld();
    void deviceWithoutAMouse();
    void withoutAChild();

private:
    static void addButtons();
};

void tst_MouseDock::addButtons()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<Qt::Key>("key");
    const QList<Button> all = buttons();
    for (const Button &button : all)
        QTest::newRow(qPrintable(button.name)) << button.name << button.key;
}

void tst_MouseDock::clickPressesAndReleases()
{
    QFETCH(const QString, button);
    Fixture mouse;
    // What the pointer meets in the middle of the button is the button.
    const auto *view = mouse.widget("mouseView");
    QCOMPARE(view->childAt(mouse.button(button)->geometry().center()), mouse.button(button));
    const QColor before = mouse.look(button);
    QTest::mousePress(mouse.button(button), Qt::LeftButton);
    QCOMPARE(mouse.takeLines(), QStringList{u"press "_s + button});
    QVERIFY(!isAlike(mouse.look(button), before));
    QTest::mouseRelease(mouse.button(button), Qt::LeftButton);
    QCOMPARE(mouse.takeLines(), QStringList{u"release "_s + button});
    KVX_EVENTUALLY(isAlike(mouse.look(button), before));
}

void tst_MouseDock::keyPressesAndReleases()
{
    QFETCH(const QString, button);
    QFETCH(const Qt::Key, key);
    Fixture mouse;
    QWidget *view = mouse.widget("mouseView");
    view->setFocus();
    const QColor before = mouse.look(button);
    QTest::keyPress(view, key);
    QCOMPARE(mouse.takeLines(), QStringList{u"press "_s + button});
    QVERIFY(!isAlike(mouse.look(button), before));
    QTest::keyRelease(view, key);
    QCOMPARE(mouse.takeLines(), QStringList{u"release "_s + button});
    KVX_EVENTUALLY(isAlike(mouse.look(button), before));
}

void tst_MouseDock::repeatedKeyIsOnePress()
{
    Fixture mouse;
    QWidget *view = mouse.widget("mouseView");
    view->setFocus();
    QTest::keyPress(view, Qt::Key_2);
    for (int i = 0; i < 3; ++i) {
        QKeyEvent release(QEvent::KeyRelease, Qt::Key_2, Qt::NoModifier, u"2"_s, true);
        QApplication::sendEvent(view, &release);
        QKeyEvent press(QEvent::KeyPress, Qt::Key_2, Qt::NoModifier, u"2"_s, true);
        QApplication::sendEvent(view, &press);
    }
    QTest::keyRelease(view, Qt::Key_2);
    QCOMPARE(mouse.takeLines(), (QStringList{u"press 2"_s, u"release 2"_s}));
}

void tst_MouseDock::keyWithAModifierIsNoButton()
{
    Fixture mouse;
    QWidget *view = mouse.widget("mouseView");
    view->setFocus();
    QTest::keyClick(view, Qt::Key_S, Qt::ControlModifier);
    QTest::keyClick(view, Qt::Key_6);
    QTest::keyClick(view, Qt::Key_5, Qt::KeypadModifier);
    QCOMPARE(mouse.takeLines(), (QStringList{u"press 5"_s, u"release 5"_s}));
}

void tst_MouseDock::buttonIsReleasedWhereverThePointerIs()
{
    Fixture mouse;
    QWidget *button = mouse.button(u"4"_s);
    const QPoint away(-50, 300);
    QTest::mousePress(button, Qt::LeftButton);
    QMouseEvent move(QEvent::MouseMove, away, button->mapToGlobal(away), Qt::NoButton, Qt::LeftButton,
                     Qt::NoModifier);
    QApplication::sendEvent(button, &move);
    QCOMPARE(mouse.takeLines(), QStringList{u"press 4"_s});
    QTest::mouseRelease(button, Qt::LeftButton, {}, away);
    QCOMPARE(mouse.takeLines(), QStringList{u"release 4"_s});
}

void tst_MouseDock::keyIsReleasedWhenTheFocusGoes()
{
    Fixture mouse;
    QWidget *view = mouse.widget("mouseView");
    view->setFocus();
    QTest::keyPress(view, Qt::Key_1);
    // Inside the mouse the key can still be released.
    mouse.button(u"3"_s)->setFocus();
    QCOMPARE(mouse.takeLines(), QStringList{u"press 1"_s});
    mouse.widget("mouseSleep")->setFocus();
    QCOMPARE(mouse.takeLines(), QStringList{u"release 1"_s});
    QTest::keyRelease(mouse.widget("mouseSleep"), Qt::Key_1);
    QCOMPARE(mouse.takeLines(), QStringList());
}

void tst_MouseDock::buttonsHaveNamesAndAFocusOrder()
{
    Fixture mouse;
    mouse.widget("mouseView")->setFocus();
    QSet<QString> names;
    const QList<Button> all = buttons();
    for (const Button &button : all) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), mouse.button(button.name));
        QVERIFY(!mouse.button(button.name)->accessibleName().isEmpty());
        names.insert(mouse.button(button.name)->accessibleName());
    }
    QCOMPARE(names.size(), all.size());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    QCOMPARE(QApplication::focusWidget(), mouse.widget("mouseSleep"));
}

void tst_MouseDock::spaceKeyPressesTheFocusedButton()
{
    Fixture mouse;
    QWidget *button = mouse.button(u"smart"_s);
    button->setFocus();
    QTest::keyPress(button, Qt::Key_Space);
    QCOMPARE(mouse.takeLines(), QStringList{u"press smart"_s});
    QTest::keyRelease(button, Qt::Key_Space);
    QCOMPARE(mouse.takeLines(), QStringList{u"release smart"_s});
}

void tst_MouseDock::focusIsDrawn()
{
    Fixture mouse;
    mouse.widget("mouseSleep")->setFocus();
    const QImage without = mouse.picture();
    mouse.button(u"1"_s)->setFocus();
    const QImage onButton = mouse.picture();
    QVERIFY(onButton != without);
    mouse.widget("mouseView")->setFocus();
    QVERIFY(mouse.picture() != without);
    QVERIFY(mouse.picture() != onButton);
}

void tst_MouseDock::heldAndDivertedButtonsAreShown()
{
    Fixture mouse;
    KVX_EVENTUALLY(mouse.status().endsWith(u"held: none; diverted to the host: none"_s));
    const QColor before = mouse.look(u"2"_s);
    QVERIFY(mouse.play({u"disbaleButtonsOrKeys 5 2"_s}));
    KVX_EVENTUALLY(mouse.status().endsWith(u"held: none; diverted to the host: 2, 5"_s));
    QVERIFY(!isAlike(mouse.look(u"2"_s), before));
    // Pressed by a line of somebody else's.
    const QColor released = mouse.look(u"3"_s);
    QVERIFY(mouse.play({u"press 3"_s, u"press smart"_s}));
    KVX_EVENTUALLY(mouse.status().contains(u"held: 3, smart pointer;"_s));
    QVERIFY(!isAlike(mouse.look(u"3"_s), released));
    QCOMPARE(mouse.widget("mouseView")->accessibleDescription(), mouse.status());
}

void tst_MouseDock::anInactiveWindowShowsTheSlotAsWell()
{
    QPalette palette;
    palette.setColor(QPalette::Inactive, QPalette::Highlight, palette.color(QPalette::Window));
    const auto drawn = [&palette](QPalette::ColorGroup group) {
        palette.setCurrentColorGroup(group);
        MousePicture picture;
        MousePicture::Content content;
        content.mouse.hasMouse = true;
        content.mouse.activeSlot = 2;
        picture.setContent(content, palette);
        QImage image(picture.size().toSize(), QImage::Format_RGB32);
        image.fill(palette.color(QPalette::Window));
        QPainter painter(&image);
        picture.paint(painter, image.rect());
        return image;
    };
    QCOMPARE(drawn(QPalette::Inactive), drawn(QPalette::Active));
    QVERIFY(drawn(QPalette::Disabled) != drawn(QPalette::Active));
}

void tst_MouseDock::dpiButtonChangesTheSlot()
{
    Fixture mouse;
    KVX_EVENTUALLY(mouse.status().startsWith(u"Mouse 1: slot 2, 1600 DPI, 500 Hz, awake"_s));
    const QImage before = mouse.picture();
    QTest::mouseClick(mouse.button(u"dpi"_s), Qt::LeftButton);
    KVX_EVENTUALLY(mouse.status().startsWith(u"Mouse 1: slot 3, 2400 DPI, 500 Hz, awake"_s));
    QVERIFY(mouse.picture() != before);
}

void tst_MouseDock::sleepAndWake()
{
    Fixture mouse;
    const QImage awake = mouse.picture();
    mouse.click("mouseSleep");
    KVX_EVENTUALLY(mouse.status().contains(u"asleep"_s));
    QVERIFY(mouse.picture() != awake);
    mouse.click("mouseWake");
    KVX_EVENTUALLY(mouse.status().contains(u"awake"_s));
    QCOMPARE(mouse.takeLines(), (QStringList{u"sleep"_s, u"wake"_s}));
}

void tst_MouseDock::drainAndCharge()
{
    Fixture mouse;
    KVX_EVENTUALLY_EQUAL(mouse.widget<QProgressBar>("mouseBattery")->value(), 80);
    mouse.type("mousePercent", u"30"_s);
    mouse.click("mouseDrain");
    KVX_EVENTUALLY_EQUAL(mouse.widget<QProgressBar>("mouseBattery")->value(), 50);
    mouse.type("mousePercent", u"-20"_s);
    mouse.click("mouseDrain");
    KVX_EVENTUALLY_EQUAL(mouse.widget<QProgressBar>("mouseBattery")->value(), 70);
    QCOMPARE(mouse.takeLines(), (QStringList{u"drain 30"_s, u"drain -20"_s}));
}

void tst_MouseDock::noBatteryLevel()
{
    Fixture mouse({u"mouse 1 hasBatteryLevel=false"_s});
    KVX_EVENTUALLY(mouse.widget("mouseSleep")->isEnabled());
    QVERIFY(!mouse.widget("mouseBattery")->isEnabled());
}

void tst_MouseDock::ctrlKeyOfTheHost()
{
    Fixture mouse;
    QCOMPARE(mouse.ctrl(), u"The host sees Ctrl up; presses so far: 0"_s);
    const QImage up = mouse.picture();
    // The plugin holds Ctrl only shortly; here the host's own report comes without an end.
    QVERIFY(mouse.play({u"log debug off"_s}));
    Q_EMIT mouse.engine.entriesCame(
        {Entry{1, 0, 1, {}, 1, u"host"_s, u"setCtrlKeyPressed"_s, {true}, {}, {}}});
    QCOMPARE(mouse.ctrl(), u"The host sees Ctrl down; presses so far: 1"_s);
    QVERIFY(mouse.picture() != up);
    Q_EMIT mouse.engine.entriesCame(
        {Entry{2, 0, 1, {}, 1, u"host"_s, u"setCtrlKeyPressed"_s, {false}, {}, {}}});
    QCOMPARE(mouse.ctrl(), u"The host sees Ctrl up; presses so far: 1"_s);
}

void tst_MouseDock::ctrlGoesUpWhileTheKeyIsHeld()
{
    Fixture mouse;
    QTest::mousePress(mouse.button(u"smart"_s), Qt::LeftButton);
    KVX_EVENTUALLY_EQUAL(mouse.ctrl(), u"The host sees Ctrl up; presses so far: 1"_s);
    QTest::mouseRelease(mouse.button(u"smart"_s), Qt::LeftButton);
    QTest::mouseClick(mouse.button(u"smart"_s), Qt::LeftButton);
    KVX_EVENTUALLY_EQUAL(mouse.ctrl(), u"The host sees Ctrl up; presses so far: 2"_s);
}

void tst_MouseDock::deviceWithoutAMouse()
{
    Fixture mouse({u"device 1 none"_s});
    KVX_EVENTUALLY_EQUAL(mouse.status(), u"Device 1 has no mouse."_s);
    QVERIFY(!mouse.widget("mouseView")->isEnabled());
    QVERIFY(!mouse.widget("mouseSleep")->isEnabled());
}

void tst_MouseDock::withoutAChild()
{
    Fixture mouse;
    QTest::mouseClick(mouse.button(u"smart"_s), Qt::LeftButton);
    KVX_EVENTUALLY_EQUAL(mouse.ctrl(), u"The host sees Ctrl up; presses so far: 1"_s);
    QTest::keyPress(mouse.widget("mouseView"), Qt::Key_1);
    mouse.engine.stop();
    KVX_EVENTUALLY_EQUAL(mouse.ends.size(), 1);
    QCOMPARE(mouse.status(), u"There is no device."_s);
    QCOMPARE(mouse.ctrl(), u"The host sees Ctrl up; presses so far: 0"_s);
    QVERIFY(!mouse.widget("mouseView")->isEnabled());
}

QTEST_MAIN(tst_MouseDock)
#include "tst_MouseDock.moc"
