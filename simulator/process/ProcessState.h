#pragma once

#include <QtCore/QString>

#include <optional>

/// Whether a library of this file name is in the process.
bool isLibraryInProcess(const QString &fileName);

/// How many files, or on Windows handles of any kind, the process has open.
int openHandleCount();

/// Bytes of the C heap that are in use, in the whole process. No value on Windows, nor when something has taken the heap's
/// place, such as a sanitizer or valgrind.
std::optional<qint64> heapInUse();

/// The heap counts the freed blocks that a thread keeps for its next allocations as in use. Afterwards the calling thread
/// keeps as many of each size as it can, so that they do not differ from one measurement to the next.
void fillCacheOfFreedBlocks();
