#include "MainWindow.h"
#include "WindowArguments.h"

#include <QtCore/QDebug>
#include <QtWidgets/QApplication>

#include <cstdio>
#include <cstdlib>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr int unusable = 2;

void print(std::FILE *stream, const QString &text)
{
    std::fputs(text.toUtf8().constData(), stream);
    std::fflush(stream);
}

void printError(const QString &problem)
{
    print(stderr, u"kvx-workbench: "_s + problem + u'\n');
}

// Why no window can be shown; empty when one may be.
QString displayProblem()
{
#ifdef Q_OS_LINUX
    for (const char *variable : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"}) {
        if (!qEnvironmentVariableIsEmpty(variable))
            return {};
    }
    return QCoreApplication::translate("main", "there is no display: neither DISPLAY nor WAYLAND_DISPLAY is "
                                               "set; start the program in a desktop session");
#else
    return {};
#endif
}

QStringList warnings;

// Qt ends the program with a core dump when it reaches no display. What it warned of before is the reason.
void endAtFatalMessage(QtMsgType type, const QMessageLogContext & /*context*/, const QString &message)
{
    if (type != QtFatalMsg) {
        warnings.append(message.simplified());
        return;
    }
    const QStringList reasons = warnings.mid(0, 1) + QStringList{message.simplified()};
    printError(QCoreApplication::translate("main", "no window can be shown: %1").arg(reasons.join(u". "_s)));
    std::_Exit(unusable);
}

// Another application object than the window's, which needs a display.
std::optional<WindowAnswer> answerWithoutWindow(int argc, char **argv, WindowArguments &arguments)
{
    const QCoreApplication application(argc, argv);
    const QStringList words = QCoreApplication::arguments().mid(1);
    return readArguments(words, QCoreApplication::applicationDirPath(), arguments);
}

}  // namespace

int main(int argc, char **argv)
{
    WindowArguments arguments;
    if (const auto answer = answerWithoutWindow(argc, argv, arguments)) {
        answer->exitCode == 0 ? print(stdout, answer->text) : printError(answer->text);
        return answer->exitCode;
    }
    if (const QString problem = displayProblem(); !problem.isEmpty()) {
        printError(problem);
        return unusable;
    }

    const QtMessageHandler handler = qInstallMessageHandler(endAtFatalMessage);
    const QApplication application(argc, argv);
    qInstallMessageHandler(handler);
    for (const QString &warning : std::as_const(warnings))
        qWarning().noquote() << warning;
    QApplication::setApplicationDisplayName(u"kvx workbench"_s);
    QGuiApplication::setDesktopFileName(u"kvx-workbench"_s);
    MainWindow window(arguments.setup);
    window.show();
    window.newSession();
    if (!arguments.scenario.isEmpty())
        window.openFile(arguments.scenario);
    return QApplication::exec();
}
