// Stands in for the simulator's own wait, so that a scenario takes no time: what is under way without a delay
// comes, anything else does not. The linker takes this one, because it knows it before it looks into the
// simulator's library.

#include "TimelineWait.h"

#include <QtCore/QEventLoop>

bool waitForTimeline(Timeline & /*timeline*/, const std::function<bool()> &condition,
                     std::chrono::milliseconds /*deadline*/)
{
    // Enough for a request, its report and some that repeat it; a plugin that repeats for ever is cut short,
    // too.
    constexpr int rounds = 30;
    QEventLoop loop;
    for (int round = 0; round < rounds; ++round) {
        // Asked until it holds and then no more: it may use up what it has seen.
        if (condition())
            return true;
        loop.processEvents();
    }
    return condition();
}
