#pragma once

#include "Sequence.h"

#include <QtCore/QString>

#include <cstdint>
#include <optional>

/// One run of RapidCheck: a hundred sequences, some 13,000 operations.
struct Round
{
    qint64 operations = 0;
    qint64 sequences = 0;
    /// The sequence that shows a difference, as short and as sane as RapidCheck can make it; none when all agree.
    std::optional<SequenceResult> shortest;
    /// Set when RapidCheck itself failed.
    QString problem;
};

/// The seed of RC_PARAMS, RapidCheck's own variable, or a random one.
uint64_t configuredSeed();

/// The same seed gives the same sequences. Where counts are given, the operations are counted there.
Round runRound(uint64_t seed, const SpoilExpectation &spoilExpectation = {}, DrawnCounts *counts = nullptr);
