#pragma once

#include "Interface.h"

#define PLUGIN_IID "com.orvane.KVX.Plugin.LogicalDevice.RV418"

/// Calls each operation of a new device except the destructors and checks its effects: calls of the receiver and the
/// host, signals, and the answers of all getters. The device's id is named "mouse 1". pictures is a resource collection
/// with a picture of the device.
void callDevice(Object mouse, Object gen3, const char *pictures);
