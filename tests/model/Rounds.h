#pragma once

#include "Sequence.h"

#include <QtCore/QString>

#include <cstdint>
#include <optional>

/// One run of RapidCheck over many sequences.
struct Round
{
    qint64 operations = 0;
    qint64 sequences = 0;
    /// The sequence that deviates, made as short and as sane as it gets; none when all agree.
    std::optional<SequenceResult> shortest;
    /// Set when RapidCheck itself could not go on.
    QString problem;
};

/// The seed of RC_PARAMS, RapidCheck's own variable, or a random one.
uint64_t configuredSeed();
/// What RC_PARAMS is to be set to for the same sequences.
QString parameters(uint64_t seed);

/// The other parameters are those of RC_PARAMS, or RapidCheck's own where the expectation is spoilt. The same seed
/// gives the same sequences. Where counts are given, the operations are counted there.
Round runRound(uint64_t seed, const SpoilExpectation &spoilExpectation = {}, DrawnCounts *counts = nullptr);
