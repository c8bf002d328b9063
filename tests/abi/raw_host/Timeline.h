#pragma once

#include "Interface.h"

/// Adds an event: an answer, a call of the receiver or the host, a signal or a log line.
void happened(const char *format, ...);

/// Forgets the events. Those that follow are reported as the effects of this call, or of another action of the host.
void beginCall(Interface *interface, int slot);
void beginAction(const char *name);

/// Compares the events, with "; " between them, and reports a difference. Only the first of each slot is reported,
/// because a wrong value is seen by many later calls.
void expect(const char *events);

/// Prints what is wrong.
void deviation(const char *format, ...);
int deviationCount(void);

/// From now on a crash is reported in one line and ends the program with exitCrash.
void reportCrashes(void);
enum { exitGood = 0, exitDeviation = 1, exitBadUsage = 2, exitCrash = 3 };
