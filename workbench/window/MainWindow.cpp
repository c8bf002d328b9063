#include "MainWindow.h"

#include <QtGui/QIcon>
#include <QtGui/QPainter>
#include <QtGui/QPixmap>
#include <QtSvg/QSvgRenderer>
#include <QtWidgets/QLabel>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize pictureSize(256, 256);

QPixmap picture()
{
    QSvgRenderer renderer(u":/window/kvx-workbench.svg"_s);
    QPixmap pixmap(pictureSize);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    renderer.render(&painter);
    return pixmap;
}

}  // namespace

MainWindow::MainWindow(QWidget *parent) : QMainWindow(parent)
{
    Q_INIT_RESOURCE(window);  // the linker leaves it out of a static library otherwise
    setObjectName("mainWindow"_L1);
    setWindowIcon(QIcon(u":/window/kvx-workbench.svg"_s));
    setWindowTitle(u"kvx-workbench"_s);
    auto *label = new QLabel(this);
    label->setObjectName("picture"_L1);
    label->setAccessibleName(tr("A mouse"));
    label->setAlignment(Qt::AlignCenter);
    label->setPixmap(picture());
    setCentralWidget(label);
}
