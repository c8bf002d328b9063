#pragma once

#include "StartedEngine.h"

/// Waits until the condition holds; false when it never does.
template <typename Condition>
bool comes(Condition condition)
{
    return QTest::qWaitFor(condition, StartedEngine::limit);
}
