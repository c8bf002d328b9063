#include "LogSwitches.h"

namespace {

struct LogSwitches
{
    bool debugEnabled = false;
    bool warningEnabled = false;
    bool criticalEnabled = false;
};

LogSwitches logSwitches;

}  // namespace

bool debugLogEnabled()
{
    return logSwitches.debugEnabled;
}

bool warningLogEnabled()
{
    return logSwitches.warningEnabled;
}

bool criticalLogEnabled()
{
    return logSwitches.criticalEnabled;
}

void setLogSwitches(bool debugEnabled, bool warningEnabled, bool criticalEnabled)
{
    logSwitches = {debugEnabled, warningEnabled, criticalEnabled};
}
