#include "StandardStreams.h"

// They do so by themselves.
void unifyStandardStreams() {}
