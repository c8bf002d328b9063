#pragma once

#include "Interface.h"
#include "QtCore.h"

// What the host gives to the library: the receiver and the service object. Each entry of their tables adds an
// event with its own slot and its arguments.

/// Makes both. Call startQt() first.
void makeHostSide(void);

/// The receiver as IPhysicalDevice, which is how the library gets it, and as QObject.
void *physicalDevice(void);
void *receiverObject(void);

void *hostServices(void);

/// What the receiver answers. A bool is answered with other bits above it, which mean nothing.
extern uint64_t receiverAnswers[IPhysicalDeviceDongle_slotCount];
extern uint64_t physicalDeviceAnswers[IPhysicalDevice_slotCount];
extern ReportRates receiverRates;
uint64_t answeredBool(bool value);

/// The QObject of a device, found as a dynamic_cast finds it.
void *objectOfDevice(void *device);
