#pragma once

#include "Interface.h"

// Qt's values as they are in memory, and the few functions of its library that a host needs beside the
// interfaces.

typedef struct
{
    int32_t references;
    uint32_t options;
    int64_t capacity;
} ArrayHeader;

/// A QString, QByteArray or QList. Constant data has no header.
typedef struct
{
    ArrayHeader *header;
    void *data;
    int64_t size;
} Array;

/// The record with the report rates of a mouse.
typedef struct
{
    uint16_t unused, currentRate, supportedRates[4];
} ReportRates;

/// Finds the functions, makes Qt's application object and turns log lines into events. On failure answers false and
/// writes the reason to problem.
bool startQt(char *problem, size_t size);

/// Makes a QObject with this table. Entries that are null become Qt's own.
void makeQObject(void *object, void **table);

/// Delivers each signal of the device to the timeline, under the slot that the signal has in the interface. Answers
/// how many there are.
int connectSignals(void *device, Interface *interface);

/// The two signals of a receiver, whose table begins with receiverMetaObject().
void *receiverMetaObject(void);
void emitReceiverSignal(void *receiver, int index, int value);

/// Lets Qt find the files of a resource collection.
bool registerResources(const char *file);

/// A QString with constant data; a QStringList and a QList<int> with a reference count.
Array textOf(const char *text);
Array textsOf(int count, const char *const *texts);
Array numbersOf(int count, const int32_t *numbers);

/// A QVariantMap with one int.
void *mapOf(const char *key, int value);

/// Gives back what an operation answered.
void release(const char *type, void *value);
