#include "EmptyPlugin.h"

#include "moc_EmptyPlugin.cpp"  // NOLINT(bugprone-suspicious-include)
