#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <array>
#include <cstddef>
#include <vector>

/// What a request is for. Each but None has a flag while the mouse has not confirmed it.
enum class RequestKind { ReportRate, SlotValues, ActiveSlot, DpiButton, None };

constexpr std::size_t flagCount = 4;

/// What is seen of one step of the story.
struct StepSeen
{
    /// What the step is about.
    RequestKind kind = RequestKind::None;
    /// Whether the mouse tells its state at the end of this step, so that a refusal before it has left no trace.
    bool settles = false;
    QStringList lines;
    /// Of each kind that has a flag, when the step is over.
    std::array<bool, flagCount> isPending{};
};

struct StorySeen
{
    std::vector<StepSeen> steps;
    /// How many calls the receiver got that it may refuse, and how many it did.
    int calls = 0;
    int refusals = 0;
    /// What the device shows at the end.
    QString values;
};

/// One long story: a start, all kinds of requests one after the other and all at once, confirmations that agree and that
/// do not, reports. The receiver refuses its n-th call, counted from 1 over all that it may refuse; 0 for none.
StorySeen playStory(int refusedCall);

/// The receiver's operations that may be refused.
QStringList refusableOperations();
