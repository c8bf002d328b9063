#pragma once

#include "CheckCommand.h"
#include "Checker.h"
#include "Contract.h"
#include "PluginInspection.h"
#include "Waivers.h"

/// What a check does, from its options and the files that they name.
struct CheckPlan
{
    CheckSettings settings;
    Level level = Level::Contract;
    PluginInspection inspection;
    QList<ContractScenario> scenarios;
    QList<Waiver> waivers;
};

/// What is wrong with the options or the files, in one sentence; empty when nothing is.
QString makePlan(const CheckOptions &options, CheckPlan &plan);
