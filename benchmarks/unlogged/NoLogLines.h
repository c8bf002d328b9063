#pragma once

// Put before each source of the product by the compiler's command line: the library without its log lines,
// which shows what they cost while they are off.
#include "GatedLog.h"

#undef GATED_LOG
#define GATED_LOG(enabled, line)                                                                             \
    while (false)                                                                                            \
    line
