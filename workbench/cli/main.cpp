#include "InspectCommand.h"
#include "RunCommand.h"
#include "SessionCommand.h"
#include "ShellCommand.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>

#include <CLI/CLI.hpp>

#include <iostream>

using namespace Qt::StringLiterals;

namespace {

QString pathOf(const std::string &argument)
{
    return QFile::decodeName(QByteArray::fromStdString(argument));
}

int parseAndRun(int argc, char **argv)
{
    CLI::App app{
        "Hosts the RV418 device plugin on a simulated receiver, without a host application or a mouse.",
        "kvx"};
    app.set_version_flag("--version", "kvx " KVX_VERSION);
    app.require_subcommand(0, 1);
    app.footer("Exit codes: 0 all went as it should, 1 something differed, 2 bad usage or an unusable file, "
               "3 a request was refused, 4 a request was never confirmed.");

    std::string pluginFile;
    SessionOptions sessionOptions;
    CLI::App *session = app.add_subcommand(
        "session", "Play a session on one simulated mouse that checks itself at every step");
    session->add_option("--plugin", pluginFile, "The plugin library (default: the one beside this program)")
        ->option_text("FILE");
    session->add_flag("--json", sessionOptions.isJson,
                      "Print the timeline as one JSON object a line, only that");

    std::string scenarioFile;
    RunOptions runOptions;
    CLI::App *run = app.add_subcommand("run", "Play a scenario: commands from a file, one a line");
    run->add_option("FILE", scenarioFile, "The scenario; - for standard input")->required()->option_text(" ");
    run->add_option("--plugin", pluginFile, "The plugin library (default: the one beside this program)")
        ->option_text("FILE");
    run->add_flag("--json", runOptions.isJson, "Print the timeline as one JSON object a line, only that");
    CLI::App *shell =
        app.add_subcommand("shell", "Host the plugin by hand: the commands of scenarios at a prompt");
    shell->add_option("--plugin", pluginFile, "The plugin library (default: the one beside this program)")
        ->option_text("FILE");

    std::string inspectedFile;
    CLI::App *inspect =
        app.add_subcommand("inspect", "Show what a plugin library says of itself and whether it loads here");
    inspect->add_option("FILE", inspectedFile, "The library")->required()->option_text(" ");

    try {
        app.parse(argc, argv);
    } catch (const CLI::Success &answer) {  // --help and --version
        return app.exit(answer);
    } catch (const CLI::ParseError &error) {
        printError(QString::fromLocal8Bit(error.what()) + u"; see kvx --help"_s);
        return static_cast<int>(ExitCode::Unusable);
    }

    if (session->parsed()) {
        sessionOptions.pluginFile = pathOf(pluginFile);
        return static_cast<int>(runSession(sessionOptions));
    }
    if (run->parsed()) {
        runOptions.file = pathOf(scenarioFile);
        runOptions.pluginFile = pathOf(pluginFile);
        return static_cast<int>(runScenario(runOptions));
    }
    if (shell->parsed())
        return static_cast<int>(runShell(pathOf(pluginFile)));
    if (inspect->parsed())
        return static_cast<int>(runInspect(pathOf(inspectedFile)));
    std::cerr << app.help();
    return static_cast<int>(ExitCode::Unusable);
}

}  // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    return parseAndRun(argc, argv);
}
