// raw_host LIBRARY PICTURES
//
// A host that was compiled elsewhere. It includes no header of the library and calls each operation of its
// tables by the number of the slot. PICTURES is a resource collection with a picture of the device.
//
// Exit code: 0 all as it should be, 1 something is not, 2 bad usage, 3 the library crashed.

#include "Call.h"
#include "Device.h"
#include "HostSide.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <windows.h>

#define INTERFACE_IID(name) "com.orvane.KVX.Plugin." name
#define MOUSE(name) ILogicalDeviceGen3Mouse_##name
#define GEN3(name) ILogicalDeviceGen3_##name
#define FACTORY(name) ILogicalDevicePlugin_##name

enum { signalCount = 29 };
static const uint64_t firstId = 0x8877665544332211;
static const uint64_t secondId = 0xffffffff00000002;

static Object factory = {&ILogicalDevicePlugin_interface, NULL};

typedef struct
{
    Object mouse, gen3, object;
} Device;

static void *entryPoint(HMODULE library, const char *name)
{
    void *address = (void *)GetProcAddress(library, name);
    if (!address)
        deviation("the library does not export %s", name);
    return address;
}

static void expectMetaData(HMODULE library)
{
    struct
    {
        const uint8_t *data;
        size_t size;
    } answer;
    void (*query)(void *) = (void (*)(void *))entryPoint(library, "qt_plugin_query_metadata_v2");
    if (!query)
        return;
    query(&answer);
    // Four bytes about the library, and a map in CBOR.
    static const char expected[] =
        "\x01\x06\x08\0\xbf\x02\x78\x29" PLUGIN_IID "\x03\x73LogicalDevicePlugin\xff";
    const size_t size = sizeof(expected) - 1;
    if (answer.size != size || memcmp(answer.data, expected, size) != 0)
        deviation("qt_plugin_query_metadata_v2 answers other metadata");
}

static void *cast(Object object, const char *iid)
{
    return (void *)(uintptr_t)CALL(object, QObject_qt_metacast, AT(iid));
}

static bool loadFactory(HMODULE library)
{
    void *(*instance)(void) = (void *(*)(void))entryPoint(library, "qt_plugin_instance");
    if (!instance)
        return false;
    const Object object = {&QObject_interface, instance()};
    if (instance() != object.self)
        deviation("qt_plugin_instance answers another object the second time");
    factory.self = cast(object, INTERFACE_IID("ILogicalDevicePlugin"));
    if (!factory.self) {
        deviation("the factory is no ILogicalDevicePlugin");
        return false;
    }
    nameWord(AT(factory.self), "factory");
    EXPECT("answers factory", object, QObject_qt_metacast, AT(INTERFACE_IID("IDevicePlugin")));
    return true;
}

static void initialize(bool debug, bool warning, bool critical)
{
    EXPECT("answers true", factory, FACTORY(initialize), AT(hostServices()), debug, warning, critical);
}

static Device createDevice(uint64_t id)
{
    Device device = {{&ILogicalDeviceGen3Mouse_interface, NULL},
                     {&ILogicalDeviceGen3_interface, NULL},
                     {&QObject_interface, NULL}};
    device.mouse.self =
        (void *)(uintptr_t)CALL(factory, FACTORY(createLogicalDevice), AT(physicalDevice()), id);
    nameWord(AT(device.mouse.self), "device");
    device.object.self = objectOfDevice(device.mouse.self);
    device.gen3.self = device.object.self ? cast(device.object, INTERFACE_IID("ILogicalDeviceGen3")) : NULL;
    if (!device.gen3.self) {
        deviation("the device is %s", device.object.self ? "no ILogicalDeviceGen3" : "no QObject");
        exit(exitDeviation);
    }
    nameWord(AT(device.gen3.self), "gen3 of device");
    EXPECT("answers gen3 of device", device.object, QObject_qt_metacast,
           AT(INTERFACE_IID("ILogicalDeviceGen3")));
    EXPECT("answers device", device.object, QObject_qt_metacast,
           AT(INTERFACE_IID("ILogicalDeviceGen3Mouse")));
    EXPECT("answers device", device.object, QObject_qt_metacast, AT(INTERFACE_IID("ILogicalDevice")));
    EXPECT("answers device", device.object, QObject_qt_metacast, AT(INTERFACE_IID("IDevice")));
    EXPECT("answers null", device.object, QObject_qt_metacast, AT("IDevice"));
    return device;
}

// With a receiver that has no battery, no report rates and no smart-pointer key.
#define START_CALLS                                                                                          \
    "receiver getFirmwareVersion(mouse 2); receiver hasBatteryLevel(mouse 2); "                              \
    "receiver getStatusValue(mouse 2); receiver getDeviceValue(mouse 2); "                                   \
    "receiver requestInitialState1(mouse 2); receiver requestInitialState2(mouse 2); "                       \
    "receiver requestInitialState3(mouse 2); receiver isSmartPointerSupported(mouse 2); "                    \
    "receiver getReportRateInfo(mouse 2, record); receiver getLevelValue(mouse 2); "

// The only critical line is that the library does not find its own file. For that it must not be loaded under
// its own name.
static bool runUnderAnotherName(const char *file)
{
    char copy[MAX_PATH];
    GetTempPathA(sizeof(copy), copy);
    snprintf(copy + strlen(copy), sizeof(copy) - strlen(copy), "raw_host-%lu.dll", GetCurrentProcessId());
    CopyFileA(file, copy, FALSE);
    const HMODULE library = LoadLibraryA(copy);
    if (!library) {
        fprintf(stderr, "raw_host: %s cannot be loaded (%lu)\n", file, GetLastError());
        exit(exitBadUsage);
    }
    const bool isLoaded = loadFactory(library);
    if (isLoaded) {
        initialize(false, false, true);
        const Device device = createDevice(secondId);
        EXPECT(START_CALLS "critical \"GetModuleHandleA failed, gle : \"0x7e\"\"; answers false",
               device.mouse, MOUSE(start));
        EXPECT("", factory, FACTORY(destructor), true);
    }
    FreeLibrary(library);
    DeleteFileA(copy);
    return isLoaded;
}

// Each switch enables the lines of its severity only.
static void switchLogLines(Device device)
{
    Array noValues = textsOf(0, NULL);
    initialize(false, true, false);
    EXPECT("warning \"Invalid SET command, dpiSlotValues parameter must have size 5\"", device.mouse,
           MOUSE(setDpiSlotValues), AT(&noValues));
    EXPECT("", device.mouse, MOUSE(resetSettings));
    noValues = textsOf(0, NULL);
    initialize(true, false, false);
    EXPECT("debug \"setDpiSlotValues exit\"", device.mouse, MOUSE(setDpiSlotValues), AT(&noValues));
    EXPECT("debug \"resetSettings\"", device.mouse, MOUSE(resetSettings));
    void *settings = NULL;
    EXPECT("debug \"applySettings : QMap()\"", device.mouse, MOUSE(applySettings), AT(&settings));
    settings = mapOf("key", 7);
    EXPECT("debug \"applySettings : QMap((\"key\", QVariant(int, 7)))\"", device.mouse, MOUSE(applySettings),
           AT(&settings));
    initialize(false, false, false);
    EXPECT("", device.mouse, MOUSE(applySettings), AT(&settings));
}

// Start and end of a second device change the number of the first, whose signals are connected.
static Device startSecond(Device first)
{
    const Device second = createDevice(secondId);
    EXPECT(START_CALLS "signal instanceNumberChanged(1); answers true", second.mouse, MOUSE(start));
    EXPECT("answers 1", first.mouse, MOUSE(instanceNumber));
    EXPECT("answers 2", second.mouse, MOUSE(instanceNumber));
    return second;
}

// A destructor's argument of 1 frees the memory of the object, too.
static void endDevices(Device first)
{
    Device second = startSecond(first);
    EXPECT("signal instanceNumberChanged(0)", second.gen3, GEN3(destructor), true);
    second = startSecond(first);
    EXPECT("signal instanceNumberChanged(0)", factory, FACTORY(destroyDevice), AT(second.mouse.self));
    EXPECT("", factory, FACTORY(destroyDevice), 0);
    initialize(true, false, false);
    EXPECT("debug \"~LogicalDevice enter\"; debug \"~LogicalDevice exit\"", first.mouse, MOUSE(destructor),
           true);
    createDevice(secondId);
    EXPECT("debug \"~LogicalDevicePlugin\"; debug \"~LogicalDevice enter\"; debug \"~LogicalDevice exit\"",
           factory, FACTORY(destructor), true);
}

static bool run(const char *file, const char *pictures)
{
    const HMODULE library = LoadLibraryA(file);
    expectMetaData(library);
    if (!loadFactory(library))
        return false;
    initialize(false, false, false);
    const Device device = createDevice(firstId);
    const int signals = connectSignals(device.object.self, device.mouse.interface) +
                        connectSignals(device.object.self, device.gen3.interface);
    if (signals != signalCount)
        deviation("the device has %d signals of its interfaces, not %d", signals, signalCount);
    callDevice(device.mouse, device.gen3, pictures);
    // As START_CALLS has it.
    memset(receiverAnswers, 0, sizeof(receiverAnswers));
    switchLogLines(device);
    endDevices(device);
    FreeLibrary(library);
    return true;
}

static int countCalled(const Interface *interface)
{
    int count = 0;
    for (int slot = 0; slot < interface->slotCount; ++slot) {
        if (interface->wasCalled[slot])
            ++count;
        else
            deviation("slot %d of %s (%s) was not called", slot, interface->name,
                      interface->slots[slot].name);
    }
    return count;
}

static int badUsage(const char *problem, const char *file)
{
    fprintf(stderr, "raw_host: %s%s\n", problem, file);
    return exitBadUsage;
}

int main(int count, char **arguments)
{
    char file[MAX_PATH], problem[128];
    if (count != 3)
        return badUsage("name the library, and a resource collection with a picture of the device", "");
    for (int index = 1; index < count; ++index) {
        if (GetFileAttributesA(arguments[index]) == INVALID_FILE_ATTRIBUTES)
            return badUsage("there is no file ", arguments[index]);
    }
    const unsigned long length = GetFullPathNameA(arguments[1], sizeof(file), file, NULL);
    if (length == 0 || length >= sizeof(file))
        return badUsage("too long a path: ", arguments[1]);
    if (!startQt(problem, sizeof(problem)))
        return badUsage(problem, "");

    beginAction("the start");
    reportCrashes();
    makeHostSide();
    nameWord(firstId, "mouse 1");
    nameWord(secondId, "mouse 2");
    nameWord(AT(physicalDevice()), "physical device");
    if (!runUnderAnotherName(file) || !run(file, arguments[2]))
        return exitDeviation;

    const int mouseCalls = countCalled(&ILogicalDeviceGen3Mouse_interface);
    const int gen3Calls = countCalled(&ILogicalDeviceGen3_interface);
    const int factoryCalls = countCalled(&ILogicalDevicePlugin_interface);
    printf("%d operations were called: %d of ILogicalDeviceGen3Mouse, %d of ILogicalDeviceGen3, "
           "%d of ILogicalDevicePlugin; deviations: %d\n",
           mouseCalls + gen3Calls + factoryCalls, mouseCalls, gen3Calls, factoryCalls, deviationCount());
    return deviationCount() ? exitDeviation : exitGood;
}
