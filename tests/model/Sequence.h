#pragma once

#include "DeviceValues.h"
#include "Draw.h"

#include <functional>
#include <optional>
#include <vector>

class DrawnCounts;
class OtherThread;

/// Where the library did something else than the model says.
struct Deviation
{
    struct Value
    {
        DeviceId device = 0;
        ValueDifference difference;
    };

    /// Null when it was the end, the unloading.
    OperationPointer operation;
    /// The report that was kept back and was made inside the operation; null when there was none.
    OperationPointer insideReport;
    QStringList expectedLines;
    QStringList seenLines;
    QList<Value> values;
};

/// What came of a sequence. It ends at its first deviation.
struct SequenceResult
{
    std::vector<OperationPointer> operations;
    std::optional<Deviation> deviation;
};

/// May change what the model expects of an operation, to see that it is noticed.
using SpoilExpectation = std::function<void(const Operation &operation, QStringList &lines)>;

/// Loads the library and makes the operations on it and on the model, one after the other, and compares all
/// lines of the timeline and all getters of all devices after each. The two getters that read files are asked on
/// the device of the operation only. A sequence begins with all log switches on and one device; at its end the
/// library is unloaded. Where counts are given, each operation is counted.
SequenceResult runSequence(const std::vector<Draw> &draws, OtherThread &otherThread,
                           const SpoilExpectation &spoilExpectation = {}, DrawnCounts *counts = nullptr);
