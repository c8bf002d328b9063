#pragma once

// The plugin's own IID. The library file, the log categories and the resource directory are named after it.
#define RV418_PLUGIN_IID "com.orvane.KVX.Plugin.LogicalDevice.RV418"
