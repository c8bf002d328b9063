#pragma once

#include "Slots.h"

#include <stdbool.h>
#include <stdint.h>

/// One entry of an interface's table of virtual operations, as text.
typedef struct
{
    const char *name;
    const char *result;
    const char *signature;
} Slot;

enum { mostSlots = 128 };

/// An interface, and which of its slots were called and reported.
typedef struct
{
    const char *name;
    const Slot *slots;
    int slotCount;
    bool wasCalled[mostSlots];
    bool wasReported[mostSlots];
} Interface;

/// An object of the library, seen through one interface. It begins with the address of its table.
typedef struct
{
    Interface *interface;
    void *self;
} Object;

// Each slot has a number, for example ILogicalDeviceGen3_ppidChanged, and each interface their count.
#define SLOT_NUMBER(interface, slot, name, result, signature) interface##_##name = slot,
#define DECLARE_INTERFACE(interface)                                                                         \
    enum { interface##_SLOTS(SLOT_NUMBER) interface##_slotCount };                                           \
    extern Interface interface##_interface;

DECLARE_INTERFACE(ILogicalDeviceGen3Mouse)
DECLARE_INTERFACE(ILogicalDeviceGen3)
DECLARE_INTERFACE(ILogicalDevicePlugin)
DECLARE_INTERFACE(IPhysicalDevice)
DECLARE_INTERFACE(IPhysicalDeviceDongle)
DECLARE_INTERFACE(IHostServices)

/// The first slots of Qt's own table.
enum { QObject_metaObject, QObject_qt_metacast, QObject_qt_metacall, QObject_slotCount = 11 };
extern Interface QObject_interface;

/// The type of parameter number index, from 0; empty when there are fewer. Good until the next call.
const char *parameterType(const Slot *slot, int index);
