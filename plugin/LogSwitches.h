#pragma once

// Three process-wide switches. Each log line asks the one of its severity before it asks Qt's category
// filter. All are off until IDevicePlugin::initialize() sets them. They have no lock: the host sets them
// before it creates devices.

bool debugLogEnabled();
bool warningLogEnabled();
bool criticalLogEnabled();

void setLogSwitches(bool debugEnabled, bool warningEnabled, bool criticalEnabled);
