#pragma once

// Three process-wide switches, asked before every log line of their severity and before Qt's own category
// filter. Plain bytes, all off until IDevicePlugin::initialize(); the host sets them before it creates
// devices.

bool debugLogEnabled();
bool warningLogEnabled();
bool criticalLogEnabled();

void setLogSwitches(bool debugEnabled, bool warningEnabled, bool criticalEnabled);
