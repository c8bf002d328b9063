#pragma once

#include "CheckCommand.h"

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

/// kvx check on the command line.
class CheckArguments
{
public:
    explicit CheckArguments(CLI::App &program);
    Q_DISABLE_COPY_MOVE(CheckArguments)

    bool areGiven() const { return m_command->parsed(); }
    ExitCode run();

private:
    CLI::App *const m_command;
    std::vector<std::string> m_words;  // the library and the names
    std::vector<std::string> m_excluded;
    std::string m_level;
    int m_jobs = 0;
    quint32 m_seed = 0;
    std::string m_timeout;
    std::string m_junitFile;
    std::string m_jsonFile;
    std::string m_htmlFile;
    std::string m_waiverFile;
    bool m_isInProcess = false;
    bool m_isList = false;
    std::string m_explained;
};
