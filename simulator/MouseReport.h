#pragma once

#include "MouseMessage.h"

class ILogicalDeviceGen3Mouse;

/// Calls the operation of a logical device that the report names, with the report's arguments. Any thread that
/// the operation allows.
/// False, with nothing called, when no operation of that name takes reports.
bool deliverMouseReport(ILogicalDeviceGen3Mouse &device, const MouseMessage &report);
