#include "HostSide.h"

#include "Timeline.h"
#include "TypeRecords.h"
#include "Value.h"

// From Microsoft's runtime.
void *__RTDynamicCast(void *object, long tableOffset, const void *from, const void *to, int isReference);

typedef struct
{
    void **objectTable;
    void *objectData;
    void **physicalTable;
    void **dongleTable;
} Receiver;
static Receiver receiver;

static struct
{
    void **table;
} services;

uint64_t receiverAnswers[IPhysicalDeviceDongle_slotCount];
uint64_t physicalDeviceAnswers[IPhysicalDevice_slotCount];
static uint64_t serviceAnswers[IHostServices_slotCount];
ReportRates receiverRates;

uint64_t answeredBool(bool value)
{
    return 0xa5a5a5a5a5a5a500 | value;
}

static uint64_t take(const Interface *interface, const char *who, int slot, const void *self,
                     const void *expectedSelf, const uint64_t *words, const uint64_t *answers)
{
    char call[1024];
    formatCall(call, sizeof(call), &interface->slots[slot], words);
    happened("%s %s%s", who, call, self == expectedSelf ? "" : " of another object");
    return answers[slot];
}

static uint64_t takePhysicalDevice(int slot, void *self, const uint64_t *words)
{
    return take(&IPhysicalDevice_interface, "physical device", slot, self, &receiver.physicalTable, words,
                physicalDeviceAnswers);
}

static uint64_t takeReceiver(int slot, void *self, const uint64_t *words)
{
    if (slot == IPhysicalDeviceDongle_getReportRateInfo && isMemory((void *)words[1], sizeof(receiverRates)))
        *(ReportRates *)words[1] = receiverRates;
    return take(&IPhysicalDeviceDongle_interface, "receiver", slot, self, &receiver.dongleTable, words,
                receiverAnswers);
}

static uint64_t takeHost(int slot, void *self, const uint64_t *words)
{
    return take(&IHostServices_interface, "host", slot, self, &services, words, serviceAnswers);
}

// A function for each slot. It reads four parameters; those that the operation does not have are not used.
#define ENTRY(interface, slot, name, result, signature)                                                      \
    static uint64_t interface##_entry##slot(void *self, uint64_t a, uint64_t b, uint64_t c, uint64_t d)      \
    {                                                                                                        \
        const uint64_t words[] = {a, b, c, d};                                                               \
        return interface##_TAKE(slot, self, words);                                                          \
    }
#define ENTRY_ADDRESS(interface, slot, name, result, signature) (void *)interface##_entry##slot,
#define IPhysicalDevice_TAKE takePhysicalDevice
#define IPhysicalDeviceDongle_TAKE takeReceiver
#define IHostServices_TAKE takeHost

// A table, and the address in front of it.
#define TABLE(name, slotCount)                                                                               \
    static struct                                                                                            \
    {                                                                                                        \
        CompleteObjectLocator *locator;                                                                      \
        void *entries[slotCount];                                                                            \
    } name
#define DEFINE_TABLE(name, interface)                                                                        \
    interface##_SLOTS(ENTRY) TABLE(name, interface##_slotCount) = {NULL, {interface##_SLOTS(ENTRY_ADDRESS)}}

TABLE(objectTable, QObject_slotCount);
DEFINE_TABLE(physicalTable, IPhysicalDevice);
DEFINE_TABLE(dongleTable, IPhysicalDeviceDongle);
DEFINE_TABLE(servicesTable, IHostServices);

static ClassRecords objectClass, logicalDeviceClass, physicalDeviceClass, dongleClass, servicesClass;
static ClassRecords receiverClass, hostClass;

static void describeClasses(void)
{
    static CompleteObjectLocator locators[4];
    describeClass(&objectClass, ".?AVQObject@@", NULL);
    describeClass(&logicalDeviceClass, ".?AVILogicalDevice@@", NULL);
    describeClass(&physicalDeviceClass, ".?AVIPhysicalDevice@@", NULL);
    describeClass(&dongleClass, ".?AVIPhysicalDeviceDongle@@", NULL);
    describeClass(&servicesClass, ".?AVIHostServices@@", NULL);
    const int physicalOffset = (int)offsetof(Receiver, physicalTable);
    const int dongleOffset = (int)offsetof(Receiver, dongleTable);
    describeClass(&receiverClass, ".?AVReceiver@@",
                  (const Base[]){{&objectClass, 0},
                                 {&physicalDeviceClass, physicalOffset},
                                 {&dongleClass, dongleOffset},
                                 {NULL, 0}});
    describeClass(&hostClass, ".?AVHostServices@@", (const Base[]){{&servicesClass, 0}, {NULL, 0}});
    describeTable(objectTable.locator = &locators[0], &receiverClass, 0);
    describeTable(physicalTable.locator = &locators[1], &receiverClass, physicalOffset);
    describeTable(dongleTable.locator = &locators[2], &receiverClass, dongleOffset);
    describeTable(servicesTable.locator = &locators[3], &hostClass, 0);
}

void makeHostSide(void)
{
    describeClasses();
    objectTable.entries[QObject_metaObject] = (void *)receiverMetaObject;
    makeQObject(&receiver, objectTable.entries);
    receiver.physicalTable = physicalTable.entries;
    receiver.dongleTable = dongleTable.entries;
    services.table = servicesTable.entries;
}

void *physicalDevice(void)
{
    return &receiver.physicalTable;
}

void *receiverObject(void)
{
    return &receiver;
}

void *hostServices(void)
{
    return &services;
}

void *objectOfDevice(void *device)
{
    return __RTDynamicCast(device, 0, &logicalDeviceClass.type, &objectClass.type, 0);
}
