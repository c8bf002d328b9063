#include "MainWindow.h"

#include <QtGui/QPixmap>
#include <QtTest/QTest>
#include <QtWidgets/QLabel>

class tst_MainWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void opens();
};

void tst_MainWindow::opens()
{
    MainWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    const auto *picture = window.findChild<QLabel *>("picture");
    QVERIFY(picture != nullptr);
    const QImage image = picture->pixmap().toImage();
    QCOMPARE(image.pixelColor(0, 0).alpha(), 0);
    QCOMPARE(image.pixelColor(image.rect().center()).alpha(), 255);
}

QTEST_MAIN(tst_MainWindow)

#include "tst_MainWindow.moc"
