#include "MainWindow.h"

#include <QtCore/QCommandLineParser>
#include <QtWidgets/QApplication>

using namespace Qt::StringLiterals;

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    QApplication::setApplicationName(u"kvx-workbench"_s);
    QApplication::setApplicationVersion(QStringLiteral(KVX_VERSION));
    QApplication::setDesktopFileName(u"kvx-workbench"_s);

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QApplication::translate("main", "Shows what the RV418 device plugin does with a simulated mouse."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.process(application);

    MainWindow window;
    window.show();
    return QApplication::exec();
}
