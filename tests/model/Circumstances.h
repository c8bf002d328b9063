#pragma once

#include "Model.h"

#include <vector>

/// One step that was made on the model, not merely kept back.
struct MadeStep
{
    const Step &step;
    const Model::World &before;
    const Model::World &after;  // with the lines of the step
};

/// Something that the library has to cope with and that a step may meet.
struct Circumstance
{
    const char *name;
    bool (*holds)(const MadeStep &made);
};

const std::vector<Circumstance> &circumstances();

/// The report that was kept back before and was made inside a request of this step; null when there was none.
const Step *reportInsideRequest(const MadeStep &made);
