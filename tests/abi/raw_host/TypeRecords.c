#include "TypeRecords.h"

#include <string.h>

#include <windows.h>

enum { multipleInheritance = 1, hasHierarchy = 0x40, imageRelative = 1 };

extern IMAGE_DOS_HEADER __ImageBase;

static int32_t address(const void *record)
{
    return (int32_t)((const char *)record - (const char *)&__ImageBase);
}

static void describeBase(ClassRecords *of, ClassRecords *base, int offset)
{
    const uint32_t index = of->hierarchy.baseCount++;
    of->bases[index] = (BaseClassDescriptor){address(&base->type),     0, offset, -1, 0, hasHierarchy,
                                             address(&base->hierarchy)};
    of->baseAddresses[index] = address(&of->bases[index]);
}

void describeClass(ClassRecords *records, const char *name, const Base *bases)
{
    strcpy(records->type.name, name);
    records->hierarchy =
        (ClassHierarchyDescriptor){0, multipleInheritance, 0, address(records->baseAddresses)};
    // A class is the first of its own bases.
    describeBase(records, records, 0);
    for (; bases && bases->records; ++bases)
        describeBase(records, bases->records, bases->offset);
    records->bases[0].containedBases = records->hierarchy.baseCount - 1;
}

void describeTable(CompleteObjectLocator *locator, ClassRecords *records, int offset)
{
    *locator = (CompleteObjectLocator){
        imageRelative,   (uint32_t)offset, 0, address(&records->type), address(&records->hierarchy),
        address(locator)};
}
