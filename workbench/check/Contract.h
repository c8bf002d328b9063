#pragma once

#include "ScenarioHead.h"

#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

/// A scenario that a check can run.
struct ContractScenario
{
    /// Path in the contract without suffix, such as "report-rate/refused"; of a file of its own its path.
    QString name;
    /// What kvx run is given.
    QString file;
    ScenarioHead head;
    /// Why it cannot be used, in one sentence that names the file; empty when it can.
    QString defect;

    /// The folder in the contract: "report-rate".
    QString folder() const { return name.section(u'/', 0, -2); }
};

/// The scenarios that are compiled in, by name.
QList<ContractScenario> contractScenarios();

/// What a user asks for.
struct Selection
{
    /// Names, folders, or files that end in ".kvx"; none for all of the contract.
    QStringList wanted;
    /// Names or folders.
    QStringList excluded;
    /// Folders and the whole contract give scenarios of this level and those before it. A name is taken as it is.
    Level level = Level::Contract;
};

struct Selected
{
    QList<ContractScenario> scenarios;
    /// Why there is nothing to run, in one sentence; empty when there is.
    QString problem;
};

Selected select(const Selection &selection);
