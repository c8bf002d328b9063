#include "CheckArguments.h"
#include "Commands.h"
#include "StandardStreams.h"

#include <QtCore/QCoreApplication>

#include <CLI/CLI.hpp>

#include <iostream>
#include <string>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

// Qt's reading of the command line holds any letter on every system, in contrast to main's parameters. Last
// word first, as the parser wants it, and without the program's name.
std::vector<std::string> reversedArguments()
{
    const QStringList words = QCoreApplication::arguments().mid(1);
    std::vector<std::string> reversed;
    for (auto word = words.crbegin(); word != words.crend(); ++word)
        reversed.emplace_back(word->toUtf8().constData());
    return reversed;
}

int parseAndRun()
{
    CLI::App app{
        "Hosts the RV418 device plugin on a simulated receiver, without a host application or a mouse.",
        "kvx"};
    app.set_version_flag("--version", "kvx " KVX_VERSION);
    app.require_subcommand(0, 1);
    // The same on every system: a word with a slash in front is a path.
    app.allow_windows_style_options(false);
    app.footer("Exit codes: 0 all went as it should, 1 something differed, 2 bad usage or an unusable file, "
               "3 a request was refused, 4 a request was never confirmed; check has its own, see kvx check "
               "--help.");

    CLI::App *session = app.add_subcommand(
        "session", "Play a session on one simulated mouse that checks itself at every step");
    CLI::App *run = app.add_subcommand("run", "Play a scenario: commands from a file, one a line");
    CLI::App *shell =
        app.add_subcommand("shell", "Host the plugin by hand: the commands of scenarios at a prompt");
    std::string scenarioFile;
    std::string pluginFile;
    std::string diagramFile;
    RunOptions options;
    run->add_option("FILE", scenarioFile, "The scenario; - for standard input")->required()->option_text(" ");
    run->add_flag("--steps", options.isSteps,
                  "For programs: print each step as one JSON object a line; FILE needs a head");
    run->add_option("--seed", options.seed, "What random commands begin with (default: 1)")
        ->option_text("NUMBER");
    const CLI::Option *drawn =
        run->add_option("--diagram", diagramFile, "Draw the timeline as a sequence diagram, an SVG")
            ->option_text("FILE")
            ->excludes("--steps");
    for (CLI::App *command : {session, run, shell})
        command
            ->add_option("--plugin", pluginFile, "The plugin library (default: the one beside this program)")
            ->option_text("FILE");
    for (CLI::App *command : {session, run})
        command->add_flag("--json", options.isJson,
                          "Print the timeline as one JSON object a line, only that");
    shell->add_flag("--json", options.isJson,
                    "For programs: read commands, and print what happens as one JSON object a line");

    std::string inspectedFile;
    CLI::App *inspect =
        app.add_subcommand("inspect", "Show what a plugin library says of itself and whether it loads here");
    inspect->add_option("FILE", inspectedFile, "The library")->required()->option_text(" ");
    CheckArguments check(app);

    try {
        app.parse(reversedArguments());
    } catch (const CLI::Success &answer) {  // --help and --version
        return app.exit(answer);
    } catch (const CLI::ParseError &error) {
        QString command = u"kvx "_s;
        for (const CLI::App *const given : app.get_subcommands())
            command += QString::fromUtf8(given->get_name()) + u' ';
        printError(u"%1; see %2--help"_s.arg(QString::fromUtf8(error.what()), command));
        return static_cast<int>(ExitCode::Unusable);
    }

    options.file = QString::fromUtf8(scenarioFile);
    options.pluginFile = QString::fromUtf8(pluginFile);
    if (drawn->count() > 0)
        options.diagramFile = QString::fromUtf8(diagramFile);
    if (session->parsed())
        return static_cast<int>(runSession(options));
    if (run->parsed())
        return static_cast<int>(runScenario(options));
    if (shell->parsed())
        return static_cast<int>(runShell(options));
    if (inspect->parsed())
        return static_cast<int>(runInspect(QString::fromUtf8(inspectedFile)));
    if (check.areGiven())
        return static_cast<int>(check.run());
    std::cerr << app.help();
    return static_cast<int>(ExitCode::Unusable);
}

}  // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    unifyStandardStreams();
    const int exitCode = parseAndRun();
    const QString problem = outputProblem();
    if (problem.isEmpty())
        return exitCode;
    printError(u"the output cannot be written: "_s + problem);
    return static_cast<int>(ExitCode::Unusable);
}
