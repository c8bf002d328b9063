#include "WindowArguments.h"

#include "MainWindow.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

struct WindowArgumentsText
{
    Q_DECLARE_TR_FUNCTIONS(WindowArguments)
};
using Text = WindowArgumentsText;

constexpr int unusable = 2;

#ifdef Q_OS_WIN
constexpr auto kvxName = "kvx.exe"_L1;
#else
constexpr auto kvxName = "kvx"_L1;
#endif

// Why the file cannot be used; empty when it can.
QString problemOf(const QString &path)
{
    const QFileInfo file(path);
    if (!file.exists())
        return Text::tr("there is no file %1").arg(path);
    if (!file.isFile())
        return Text::tr("%1 is no file").arg(path);
    if (!file.isReadable())
        return Text::tr("%1 cannot be read").arg(path);
    return {};
}

QString takeFile(const QString &path, WindowArguments &arguments)
{
    if (const QString problem = problemOf(path); !problem.isEmpty())
        return problem;
    QString &place = MainWindow::isLibrary(path) ? arguments.setup.pluginFile : arguments.scenario;
    if (!MainWindow::isLibrary(path) && !MainWindow::isScenario(path))
        return Text::tr("%1 is neither a scenario (.kvx) nor a library (.so, .dll)").arg(path);
    if (!place.isEmpty())
        return Text::tr("the window takes one scenario and one library; leave %1 out").arg(path);
    place = QFileInfo(path).absoluteFilePath();
    return {};
}

QString takeKvx(const QString &path, const QString &folder, WindowArguments &arguments)
{
    arguments.setup.kvx =
        path.isEmpty() ? QDir(folder).filePath(kvxName) : QFileInfo(path).absoluteFilePath();
    const QString problem = problemOf(arguments.setup.kvx);
    return problem.isEmpty() ? QString() : problem + Text::tr("; give the kvx program with --kvx");
}

}  // namespace

std::optional<WindowAnswer> readArguments(const QStringList &words, const QString &folder,
                                          WindowArguments &arguments)
{
    CLI::App app{"Shows the device plugin on a simulated receiver in a window: what kvx shell does, by hand.",
                 "kvx-workbench"};
    app.set_version_flag("--version", "kvx-workbench " KVX_VERSION);
    app.allow_windows_style_options(false);
    app.footer("Exit codes: 0 the window was closed, 2 bad usage, an unusable file or no display.");
    std::vector<std::string> files;
    std::string plugin;
    std::string kvx;
    std::string wrapper;
    app.add_option("FILE", files, "A scenario (.kvx) to open, a library (.so, .dll) to load")
        ->option_text("[FILE]...");
    app.add_option("--plugin", plugin, "The plugin library (default: the one beside kvx)")
        ->option_text("FILE");
    app.add_option("--kvx", kvx, "The kvx program (default: the one beside this program)")
        ->option_text("FILE");
    app.add_option("--run-with", wrapper, R"(A program that runs kvx: "valgrind -q", "wine")")
        ->option_text("COMMAND");

    // Last word first, as the parser wants it.
    std::vector<std::string> reversed;
    for (auto word = words.crbegin(); word != words.crend(); ++word)
        reversed.emplace_back(word->toUtf8().constData());
    try {
        app.parse(reversed);
    } catch (const CLI::CallForHelp &) {
        return WindowAnswer{0, QString::fromUtf8(app.help().c_str())};
    } catch (const CLI::CallForVersion &version) {
        return WindowAnswer{0, QString::fromUtf8(version.what()) + u'\n'};
    } catch (const CLI::ParseError &error) {
        return WindowAnswer{unusable, QString::fromUtf8(error.what()) + u"; see kvx-workbench --help"_s};
    }

    QString problem;
    if (!plugin.empty()) {
        arguments.setup.pluginFile = QFileInfo(QString::fromUtf8(plugin.c_str())).absoluteFilePath();
        problem = problemOf(arguments.setup.pluginFile);
    }
    for (const std::string &file : files) {
        if (problem.isEmpty())
            problem = takeFile(QString::fromUtf8(file.c_str()), arguments);
    }
    if (problem.isEmpty())
        problem = takeKvx(QString::fromUtf8(kvx.c_str()), folder, arguments);
    // Named, so that it is inspected, watched and checked.
    const QFileInfo beside(QFileInfo(arguments.setup.kvx).dir(), QStringLiteral(KVX_LIBRARY_NAME));
    if (arguments.setup.pluginFile.isEmpty() && beside.exists())
        arguments.setup.pluginFile = beside.absoluteFilePath();
    arguments.setup.wrapper = QProcess::splitCommand(QString::fromUtf8(wrapper.c_str()));
    if (!problem.isEmpty())
        return WindowAnswer{unusable, problem};
    return std::nullopt;
}
