#include "Rounds.h"

#include "OtherThread.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <rapidcheck.h>
#include <sstream>
#include <utility>
#include <vector>

namespace {

/// Some draws of a sequence left out, or one replaced by a simpler one, which may have to come after the next.
struct Simplification
{
    std::size_t first = 0;
    std::size_t count = 0;
    std::optional<Draw> replacement;
    bool isLater = false;
};

// Long pieces first. RapidCheck's own way with containers tries every piece, which takes minutes when a
// sequence has hundreds of draws.
std::vector<Simplification> simplifications(const std::vector<Draw> &draws)
{
    std::vector<Simplification> all;
    for (std::size_t count = draws.size(); count > 0; count /= 2) {
        for (std::size_t first = 0; first < draws.size(); first += count)
            all.push_back({first, std::min(count, draws.size() - first), std::nullopt, false});
    }
    for (std::size_t index = 0; index < draws.size(); ++index) {
        for (const Draw &simpler : simplerDraws(draws.at(index))) {
            all.push_back({index, 1, simpler, false});
            // On another route it may need what follows, a start above all.
            if (simpler.route != draws.at(index).route && index + 1 < draws.size())
                all.push_back({index, 1, simpler, true});
        }
    }
    return all;
}

std::vector<Draw> simplified(std::vector<Draw> draws, const Simplification &simplification)
{
    if (simplification.replacement) {
        draws.at(simplification.first) = *simplification.replacement;
        if (simplification.isLater)
            std::swap(draws.at(simplification.first), draws.at(simplification.first + 1));
        return draws;
    }
    const auto first = draws.begin() + static_cast<std::ptrdiff_t>(simplification.first);
    draws.erase(first, first + static_cast<std::ptrdiff_t>(simplification.count));
    return draws;
}

rc::Seq<std::vector<Draw>> simplerSequences(const std::vector<Draw> &draws)
{
    return rc::seq::map(
        rc::seq::fromContainer(simplifications(draws)),
        [draws](const Simplification &simplification) { return simplified(draws, simplification); });
}

// RapidCheck's size goes from 0 to its largest, 100, in the course of a round.
rc::Gen<std::vector<Draw>> anySequence()
{
    return [](const rc::Random &random, int size) {
        constexpr uint64_t drawsPerSize = 6;
        rc::Random numbers(random);
        const auto next = [&] { return static_cast<int>(numbers.next() % (Draw::largest + 1)); };
        std::vector<Draw> draws(numbers.next() % (static_cast<uint64_t>(size) * drawsPerSize + 1));
        for (Draw &draw : draws)
            draw = {next(), next(), next(), {next(), next(), next()}};
        return rc::shrinkable::shrinkRecur(draws, &simplerSequences);
    };
}

}  // namespace

uint64_t configuredSeed()
{
    return rc::detail::configuration().testParams.seed;
}

Round runRound(uint64_t seed, const SpoilExpectation &spoilExpectation, DrawnCounts *counts)
{
    Round round;
    OtherThread otherThread;
    // Each failure after the first is one that is shorter or saner, so the last one is what is left.
    const auto property = [&] {
        const std::vector<Draw> draws = *anySequence();
        SequenceResult result = runSequence(draws, otherThread, spoilExpectation, counts);
        if (!round.shortest) {
            ++round.sequences;
            round.operations += static_cast<qint64>(result.steps.size());
        }
        if (!result.difference)
            return;
        round.shortest = std::move(result);
        RC_FAIL("library and model differ");
    };
    rc::detail::TestParams parameters;
    parameters.seed = seed;
    const rc::detail::TestResult result =
        rc::detail::checkTestable(property, rc::detail::TestMetadata(), parameters);
    if (!result.is<rc::detail::SuccessResult>() && !round.shortest) {
        std::ostringstream text;
        rc::detail::printResultMessage(result, text);
        round.problem = QString::fromUtf8(text.str());
    }
    return round;
}
