#include "GatedLog.h"

#include "PluginIid.h"

Q_LOGGING_CATEGORY(deviceLog, RV418_PLUGIN_IID ".LogicalDevice", QtDebugMsg)
Q_LOGGING_CATEGORY(pluginLog, RV418_PLUGIN_IID ".LogicalDevicePlugin", QtDebugMsg)
