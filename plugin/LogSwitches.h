#pragma once

#include <QtCore/QtGlobal>

// Three process-wide switches, asked before every log line of their severity and before Qt's own category
// filter. Plain bytes, all off until IDevicePlugin::initialize(); the host sets them before it creates
// devices.

struct LogSwitches
{
    bool debugEnabled = false;
    bool warningEnabled = false;
    bool criticalEnabled = false;
};

// Hidden, so that a reader knows its address without looking it up.
extern Q_DECL_HIDDEN LogSwitches logSwitches;

// Inline, because every operation asks: a call would cost more than a mouse report that changes nothing.
inline bool debugLogEnabled()
{
    return logSwitches.debugEnabled;
}

inline bool warningLogEnabled()
{
    return logSwitches.warningEnabled;
}

inline bool criticalLogEnabled()
{
    return logSwitches.criticalEnabled;
}

void setLogSwitches(bool debugEnabled, bool warningEnabled, bool criticalEnabled);
