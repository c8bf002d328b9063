#pragma once

#include <chrono>
#include <functional>

class Timeline;

/// Runs the calling thread's event loop until the condition holds. Checks it on that thread, at once, after each new entry
/// of the timeline, and every 5 ms for what leaves no entry. False when the deadline came first.
/// Replaces the timeline's observer and leaves it unset; those added by addLastingObserver() stay.
bool waitForTimeline(Timeline &timeline, const std::function<bool()> &condition,
                     std::chrono::milliseconds deadline);
