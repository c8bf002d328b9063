#pragma once

#include <chrono>
#include <functional>

class Timeline;

/// Runs the calling thread's event loop until the condition holds; it is asked at once, again after each new
/// entry of the timeline, and every few milliseconds for what leaves no entry. False when the deadline came first.
/// Uses the timeline's observer meanwhile and leaves it unset.
bool waitForTimeline(Timeline &timeline, const std::function<bool()> &condition,
                     std::chrono::milliseconds deadline);
