#pragma once

#include "Output.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <chrono>
#include <optional>

/// The options of kvx check.
struct CheckOptions
{
    /// The library's file.
    QString pluginFile;
    /// Names, folders and files of scenarios; none for the whole contract.
    QStringList names;
    QStringList excluded;
    QString level;
    /// None: as many as the machine has processors.
    std::optional<int> jobs;
    /// None: another one each time.
    std::optional<quint32> seed;
    /// Seconds, or "off".
    QString timeout;
    /// Files to write; empty for none.
    QString junitFile;
    QString jsonFile;
    QString htmlFile;
    QString waiverFile;
    bool isInProcess = false;
};

/// kvx check: runs scenarios against a library and answers whether it keeps the contract.
ExitCode runCheck(const CheckOptions &options);

/// kvx check --list: the scenarios, those of the names and the level if there are any.
ExitCode listScenarios(const CheckOptions &options, bool isJson);

/// kvx check --explain: what one scenario promises, and its lines.
ExitCode explainScenario(const QString &name, bool isJson);
