#include "LogSwitches.h"

namespace {

bool isDebugEnabled = false;
bool isWarningEnabled = false;
bool isCriticalEnabled = false;

}  // namespace

bool debugLogEnabled()
{
    return isDebugEnabled;
}

bool warningLogEnabled()
{
    return isWarningEnabled;
}

bool criticalLogEnabled()
{
    return isCriticalEnabled;
}

void setLogSwitches(bool debugEnabled, bool warningEnabled, bool criticalEnabled)
{
    isDebugEnabled = debugEnabled;
    isWarningEnabled = warningEnabled;
    isCriticalEnabled = criticalEnabled;
}
