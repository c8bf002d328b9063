#include "QtCore.h"

#include "Timeline.h"
#include "Value.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <windows.h>

// What Qt's library exports, as Microsoft's compiler spells it.
static struct
{
    void *(*makeApplication)(void *self, int *argumentCount, char **arguments, int qtVersion);
    void *(*makeObject)(void *self, void *parent);
    void *(*makeVariant)(void *self, int value);
    void *(*installMessageHandler)(void (*handler)(int, const void *, const Array *));
    int (*indexOfSignal)(const void *metaObject, const char *signature);
    void *(*connect)(void *connection, const void *sender, int signal, const void *receiver, int method,
                     int type, int *types);
    void (*dropConnection)(void *connection);
    void (*activate)(void *sender, const void *metaObject, int signal, void **arguments);
    bool (*registerResource)(const Array *file, const Array *root);
    void (*deallocate)(ArrayHeader *header, int64_t objectSize, int64_t alignment);
    const void *objectMetaObject;
} qt;

static const struct
{
    void *function;
    const char *name;
} exported[] = {
    {&qt.makeApplication, "??0QCoreApplication@@QEAA@AEAHPEAPEADH@Z"},
    {&qt.makeObject, "??0QObject@@QEAA@PEAV0@@Z"},
    {&qt.makeVariant, "??0QVariant@@QEAA@H@Z"},
    {&qt.installMessageHandler,
     "?qInstallMessageHandler@@YAP6AXW4QtMsgType@@AEBVQMessageLogContext@@AEBVQString@@@ZP6AX012@Z@Z"},
    {&qt.indexOfSignal, "?indexOfSignal@QMetaObject@@QEBAHPEBD@Z"},
    {&qt.connect, "?connect@QMetaObject@@SA?AVConnection@1@PEBVQObject@@H0HHPEAH@Z"},
    {&qt.dropConnection, "??1Connection@QMetaObject@@QEAA@XZ"},
    {&qt.activate, "?activate@QMetaObject@@SAXPEAVQObject@@PEBU1@HPEAPEAX@Z"},
    {&qt.registerResource, "?registerResource@QResource@@SA_NAEBVQString@@0@Z"},
    {&qt.deallocate, "?deallocate@QArrayData@@SAXPEAU1@_J1@Z"},
    {&qt.objectMetaObject, "?staticMetaObject@QObject@@2UQMetaObject@@B"},
};

enum { directConnection = 1, objectWords = 2, applicationVersion = 0x060800 };

// --- the log ---

static void takeMessage(int severity, const void *context, const Array *text)
{
    static const char *const severities[] = {"debug", "warning", "critical", "fatal", "info"};
    (void)context;
    char shown[1024];
    formatValue(shown, sizeof(shown), "QString", text);
    happened("%s %s", severities[severity], shown);
}

bool startQt(char *problem, size_t size)
{
    static void *application[objectWords];
    static int argumentCount = 1;
    static char *arguments[] = {"raw_host", NULL};
    const HMODULE library = LoadLibraryA("Qt6Core.dll");
    if (!library) {
        snprintf(problem, size, "Qt6Core.dll cannot be loaded (%lu)", GetLastError());
        return false;
    }
    for (size_t index = 0; index < sizeof(exported) / sizeof(*exported); ++index) {
        void *address = (void *)GetProcAddress(library, exported[index].name);
        if (!address) {
            snprintf(problem, size, "Qt6Core.dll has no %s", exported[index].name);
            return false;
        }
        memcpy(exported[index].function, &address, sizeof(address));
    }
    qt.makeApplication(application, &argumentCount, arguments, applicationVersion);
    qt.installMessageHandler(takeMessage);
    return true;
}

// --- objects and signals ---

void makeQObject(void *object, void **table)
{
    qt.makeObject(object, NULL);
    void **own = *(void ***)object;
    for (int slot = 0; slot < QObject_slotCount; ++slot) {
        if (!table[slot])
            table[slot] = own[slot];
    }
    *(void ***)object = table;
}

// A connection has a method number that comes back with the signal. A listener without a meta-object of its
// own may use any number: here it is made of the slot's and the interface's.
enum { firstMethod = 1000, methodsEach = 1000 };
static Interface *listened[2];

static int takeSignal(void *self, int call, int method, void **arguments)
{
    (void)self, (void)call;
    const Slot *slot = &listened[method / methodsEach - 1]->slots[method % methodsEach];
    char text[1024];
    size_t used = (size_t)snprintf(text, sizeof(text), "%s(", slot->name);
    for (int index = 0; *parameterType(slot, index); ++index) {
        used += (size_t)snprintf(text + used, sizeof(text) - used, index ? ", " : "");
        formatValue(text + used, sizeof(text) - used, parameterType(slot, index), arguments[index + 1]);
        used += strlen(text + used);
    }
    happened("signal %s)", text);
    return -1;
}

static void *listener(void)
{
    static void *table[QObject_slotCount];
    static void *object[objectWords];
    if (!object[0]) {
        table[QObject_qt_metacall] = (void *)takeSignal;
        makeQObject(object, table);
    }
    return object;
}

int connectSignals(void *device, Interface *interface)
{
    int number = 0;
    while (listened[number] && listened[number] != interface)
        ++number;
    listened[number] = interface;
    void **table = *(void ***)device;
    const void *metaObject = ((const void *(*)(void *))table[QObject_metaObject])(device);
    int count = 0;
    for (int slot = 0; slot < interface->slotCount; ++slot) {
        const int signal = qt.indexOfSignal(metaObject, interface->slots[slot].signature);
        if (signal < 0)
            continue;
        void *connection = NULL;
        qt.connect(&connection, device, signal, listener(), firstMethod + number * methodsEach + slot,
                   directConnection, NULL);
        qt.dropConnection(&connection);
        ++count;
    }
    return count;
}

// --- the receiver's signals, as Qt's meta-object compiler would write them ---

static const struct
{
    uint32_t places[2 * 5];
    char texts[48];
} receiverTexts = {{40, 8, 49, 13, 63, 0, 64, 8, 73, 13},
                   "Receiver\0dpiMinChanged\0\0newValue\0dpiMaxChanged"};

enum { revision = 12, publicSignal = 0x06, typeVoid = 43, typeInt = 2 };
static const uint32_t receiverMethods[] = {
    // The class: its name; where its two methods are; nothing else; two of the methods are signals.
    revision, 0, 0, 0, 2, 14, 0, 0, 0, 0, 0, 0, 0, 2,
    // Each signal: its name, one parameter, where it is described, no tag, and its first type.
    1, 1, 26, 2, publicSignal, 1, 4, 1, 29, 2, publicSignal, 3,
    // Each signal's result and parameter, with the parameter's name.
    typeVoid, typeInt, 3, typeVoid, typeInt, 3, 0};

static struct
{
    const void *base, *findBase;
    const void *texts;
    const uint32_t *methods;
    const void *call, *related;
    const void *const *types;
    const void *extra;
} receiverDescription;

void *receiverMetaObject(void)
{
    static const void *const unknownTypes[5];
    receiverDescription.base = qt.objectMetaObject;
    receiverDescription.texts = &receiverTexts;
    receiverDescription.methods = receiverMethods;
    receiverDescription.types = unknownTypes;
    return &receiverDescription;
}

void emitReceiverSignal(void *receiver, int index, int value)
{
    void *arguments[] = {NULL, &value};
    qt.activate(receiver, receiverMetaObject(), index, arguments);
}

// --- values ---

Array textOf(const char *text)
{
    const size_t length = strlen(text);
    uint16_t *units = calloc(length + 1, sizeof(*units));
    for (size_t index = 0; index < length; ++index)
        units[index] = (uint8_t)text[index];
    return (Array){NULL, units, (int64_t)length};
}

static Array sharedArray(int count, size_t unitSize)
{
    ArrayHeader *header = calloc(1, sizeof(*header) + (size_t)count * unitSize);
    header->references = 1;
    header->capacity = count;
    return (Array){header, header + 1, count};
}

Array textsOf(int count, const char *const *texts)
{
    const Array list = sharedArray(count, sizeof(Array));
    for (int index = 0; index < count; ++index)
        ((Array *)list.data)[index] = textOf(texts[index]);
    return list;
}

Array numbersOf(int count, const int32_t *numbers)
{
    const Array list = sharedArray(count, sizeof(*numbers));
    memcpy(list.data, numbers, (size_t)count * sizeof(*numbers));
    return list;
}

bool registerResources(const char *file)
{
    const Array path = textOf(file);
    const Array root = textOf("");
    return qt.registerResource(&path, &root);
}

// A node of Microsoft's std::map, a tree. Where a branch ends it points to the head.
typedef struct Node
{
    struct Node *left, *parent, *right;
    bool isBlack, isHead;
    Array key;
    void *value[4];
} Node;

void *mapOf(const char *key, int value)
{
    static Node head, entry;
    static struct
    {
        int32_t references;
        Node *head;
        size_t size;
    } map = {1, &head, 1};
    head = (Node){&entry, &entry, &entry, true, true, {NULL, NULL, 0}, {NULL}};
    entry = (Node){&head, &head, &head, true, false, textOf(key), {NULL}};
    qt.makeVariant(entry.value, value);
    return &map;
}

void release(const char *type, void *value)
{
    Array *array = value;
    if (strcmp(type, "QUuid") == 0 || !array->header || --array->header->references > 0)
        return;
    if (strcmp(type, "QStringList") == 0) {
        for (int64_t index = 0; index < array->size; ++index)
            release("QString", (Array *)array->data + index);
    }
    qt.deallocate(array->header, 1, sizeof(ArrayHeader));
}
