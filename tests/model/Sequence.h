#pragma once

#include "Draw.h"

#include <functional>
#include <optional>
#include <vector>

class DrawnCounts;
class OtherThread;

/// Where library and model differ.
struct Difference
{
    QStringList expectedLines;
    QStringList seenLines;
    QStringList getters;  // "[1] dpiMin: expected 100, seen 0"
};

/// What a sequence did. It ends at its first difference.
struct SequenceResult
{
    std::vector<StepPointer> steps;
    bool isUnloaded = false;  // behind the steps
    std::optional<Difference> difference;

    /// The steps, one per line, and what was expected and seen at the last one.
    QString text() const;
};

/// May change what the model expects of a step, to see that it is noticed.
using SpoilExpectation = std::function<void(const Step &step, QStringList &lines)>;

/// Loads the library and makes the steps on it and on the model, one after the other, and compares all
/// lines of the timeline and all getters of all devices after each. The two getters that read files are called on
/// the device of the step only. A sequence begins with all log switches on and one device; at its end the
/// library is unloaded. Where counts are given, each step is counted.
SequenceResult runSequence(const std::vector<Draw> &draws, OtherThread &otherThread,
                           const SpoilExpectation &spoilExpectation = {}, DrawnCounts *counts = nullptr);
