#pragma once

#include <stdint.h>

// What Microsoft's compiler writes about the classes of a program and its runtime reads for a dynamic_cast.
// Addresses are 32 bits counted from the beginning of the program in memory.

typedef struct
{
    const void *table;
    void *spare;
    char name[64];
} TypeDescriptor;

typedef struct
{
    int32_t type;
    uint32_t containedBases;
    int32_t offset, noVirtualBase, offsetInVirtualBase;
    uint32_t attributes;
    int32_t hierarchy;
} BaseClassDescriptor;

typedef struct
{
    uint32_t signature, attributes, baseCount;
    int32_t bases;
} ClassHierarchyDescriptor;

typedef struct
{
    uint32_t signature, offset, constructionOffset;
    int32_t type, hierarchy, self;
} CompleteObjectLocator;

enum { mostBases = 4 };

typedef struct
{
    TypeDescriptor type;
    ClassHierarchyDescriptor hierarchy;
    BaseClassDescriptor bases[mostBases];
    int32_t baseAddresses[mostBases];
} ClassRecords;

/// A base of a class, and where it begins in an object of that class.
typedef struct
{
    ClassRecords *records;
    int offset;
} Base;

/// Fills the records of a class. name is decorated, for example ".?AVQObject@@"; bases ends with one without records.
void describeClass(ClassRecords *records, const char *name, const Base *bases);

/// Fills the record whose address is in front of a table. offset is where the table's address is in an object.
void describeTable(CompleteObjectLocator *locator, ClassRecords *records, int offset);
