#pragma once

#include "CheckReport.h"

class ChildProcess;
class StepReader;
struct ContractScenario;

/// A verdict with what is known before a scenario runs.
ScenarioVerdict newVerdict(const ContractScenario &scenario, quint32 seed);

/// Whether the scenario need not be run, because it is for another system. Then the verdict is complete.
bool judgeUnrun(const ContractScenario &scenario, ScenarioVerdict &verdict);

/// Completes the verdict after a run in a process of its own, or in this one.
void judge(const ChildProcess &child, ScenarioVerdict &verdict);
void judge(const StepReader &steps, ScenarioVerdict &verdict);
