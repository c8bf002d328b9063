#pragma once

#include "Model.h"

#include <array>
#include <iosfwd>
#include <vector>

/// One step of a sequence before it is known what it meets: numbers drawn at random, each the saner the smaller.
struct Draw
{
    static constexpr int largest = 255;

    // Each 0 to largest.
    int kind = 0;
    int target = 0;  // which of the devices that are there
    int route = 0;
    std::array<int, 3> choices{};
};

/// The draws that a sequence can be made simpler with, the simplest first.
std::vector<Draw> simplerDraws(const Draw &draw);

/// What the step is in this state, or nothing where it makes no sense or its outcome is not determined.
StepPointer resolve(const Model::World &world, const Draw &draw);

std::ostream &operator<<(std::ostream &stream, const Draw &draw);
