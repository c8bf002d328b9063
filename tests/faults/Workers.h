#pragma once

#include <functional>
#include <vector>

/// Runs each function on a thread of its own, all at once. This thread delivers what is queued for its objects all the
/// while, and the rest of it when the threads have been joined.
void runAtOnce(const std::vector<std::function<void()>> &functions);
