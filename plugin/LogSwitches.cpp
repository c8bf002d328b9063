#include "LogSwitches.h"

LogSwitches logSwitches;

void setLogSwitches(bool debugEnabled, bool warningEnabled, bool criticalEnabled)
{
    logSwitches = {debugEnabled, warningEnabled, criticalEnabled};
}
