#include "CheckArguments.h"

#include "ScenarioHead.h"

using namespace Qt::StringLiterals;

namespace {

QString text(const std::string &word)
{
    return QString::fromUtf8(word);
}

QStringList texts(const std::vector<std::string> &words)
{
    QStringList list;
    for (const std::string &word : words)
        list.append(text(word));
    return list;
}

ExitCode refuse(const QString &message)
{
    printError(message + u"; see kvx check --help"_s);
    return ExitCode::Unusable;
}

}  // namespace

CheckArguments::CheckArguments(CLI::App &program)
    : m_command(program.add_subcommand(
          "check",
          "Run the contract's scenarios against a plugin library and say whether it keeps the contract"))
{
    constexpr int mostJobs = 256;
    m_command
        ->add_option("FILE", m_words, "The library, then names, folders or files of scenarios (default: all)")
        ->option_text("[NAME]...");
    m_command
        ->add_option("--level", m_level, "load, contract (default) or stress; each includes those before it")
        ->option_text("LEVEL")
        ->check(CLI::IsMember({"load", "contract", "stress"}));
    m_command->add_option("--exclude", m_excluded, "A scenario or a folder to leave out; may be repeated")
        ->option_text("NAME")
        ->allow_extra_args(false);
    m_command->add_option("--jobs", m_jobs, "How many run at a time (default: one for each processor)")
        ->option_text("NUMBER")
        ->check(CLI::Range(1, mostJobs));
    m_command
        ->add_option("--seed", m_seed, "What random scenarios begin with (default: another one each time)")
        ->option_text("NUMBER");
    m_command->add_option("--timeout", m_timeout, "How long a scenario may be silent (default: 20), or off")
        ->option_text("SECONDS");
    m_command
        ->add_option("--waivers", m_waiverFile,
                     "Failures that are known and accepted (TOML: [[waiver]] name, reason, until)")
        ->option_text("FILE");
    m_command->add_option("--junit", m_junitFile, "Write a report for build servers")->option_text("FILE");
    m_command
        ->add_option("--json", m_jsonFile,
                     "Write a report for programs; behind --list or --explain print as JSON")
        ->option_text("FILE")
        ->expected(0, 1);
    m_command->add_option("--html", m_htmlFile, "Write a report for readers")->option_text("FILE");
    m_command->add_flag("--in-process", m_isInProcess,
                        "Run in this process, for a debugger; a crash ends the check");
    m_command->add_flag("--list", m_isList, "List the scenarios; needs no library");
    m_command->add_option("--explain", m_explained, "Show what a scenario promises, and its lines")
        ->option_text("NAME");
    m_command->footer(
        "Exit codes: 0 the library keeps the contract, 1 it does not, or a waiver is not right, "
        "2 bad usage or an unusable file, 3 no answer: interrupted, or a scenario could not run.");
}

ExitCode CheckArguments::run()
{
    CheckOptions options;
    options.names = texts(m_words);
    options.excluded = texts(m_excluded);
    options.level = text(m_level);
    options.timeout = text(m_timeout);
    options.junitFile = text(m_junitFile);
    options.jsonFile = text(m_jsonFile);
    options.htmlFile = text(m_htmlFile);
    options.waiverFile = text(m_waiverFile);
    options.isInProcess = m_isInProcess;
    if (m_command->count("--jobs") > 0)
        options.jobs = m_jobs;
    if (m_command->count("--seed") > 0)
        options.seed = m_seed;
    const bool isJson = m_command->count("--json") > 0;
    const bool isExplained = m_command->count("--explain") > 0;
    if ((isExplained || m_isList) && !options.jsonFile.isEmpty())
        return refuse(u"--json behind --list or --explain NAME prints and takes no file"_s);
    if (isExplained)
        return explainScenario(text(m_explained), isJson);
    if (m_isList)
        return listScenarios(options, isJson);
    if (isJson && options.jsonFile.isEmpty())
        return refuse(u"--json needs the file to write"_s);
    if (options.names.isEmpty())
        return refuse(u"the library is missing; give its file"_s);
    options.pluginFile = options.names.takeFirst();
    return runCheck(options);
}
