#pragma once

#include "Model.h"

#include <vector>

/// One operation that was made on the model, not merely kept back.
struct ModelStep
{
    const Operation &operation;
    const Model::World &before;
    const Model::World &after;  // with the lines of the operation
};

/// Something that the library has to cope with and that an operation may meet.
struct Circumstance
{
    const char *name;
    bool (*holds)(const ModelStep &step);
};

const std::vector<Circumstance> &circumstances();

/// The report that was kept back before and was made inside a request of this operation; null when there was none.
const Operation *reportInsideRequest(const ModelStep &step);
