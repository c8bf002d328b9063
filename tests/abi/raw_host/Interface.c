#include "Interface.h"

#include <string.h>

#define SLOT_TEXT(interface, slot, name, result, signature) {#name, result, signature},
#define DEFINE_INTERFACE(interface)                                                                          \
    static const Slot interface##_texts[] = {interface##_SLOTS(SLOT_TEXT)};                                  \
    Interface interface##_interface = {#interface, interface##_texts, interface##_slotCount, {0}, {0}};

DEFINE_INTERFACE(ILogicalDeviceGen3Mouse)
DEFINE_INTERFACE(ILogicalDeviceGen3)
DEFINE_INTERFACE(ILogicalDevicePlugin)
DEFINE_INTERFACE(IPhysicalDevice)
DEFINE_INTERFACE(IPhysicalDeviceDongle)
DEFINE_INTERFACE(IHostServices)

static const Slot objectTexts[] = {
    {"metaObject", "void*", "metaObject()"},
    {"qt_metacast", "void*", "qt_metacast(const char*)"},
};
Interface QObject_interface = {"QObject", objectTexts, 2, {0}, {0}};

const char *parameterType(const Slot *slot, int index)
{
    static char type[64];
    const char *begin = strchr(slot->signature, '(') + 1;
    for (; index > 0 && begin; --index) {
        begin = strchr(begin, ',');
        if (begin)
            ++begin;
    }
    const size_t length = begin ? strcspn(begin, ",)") : 0;
    memcpy(type, begin ? begin : "", length);
    type[length] = '\0';
    return type;
}
