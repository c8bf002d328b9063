#pragma once

#include <QtCore/QString>

#include <optional>

/// Whether a library of this file name is in the process.
bool isLibraryInProcess(const QString &fileName);

/// How many files, or on Windows handles of any kind, the process has open.
int openHandleCount();

/// Bytes of the C heap that are in use, in the whole process. Exact to a few kilobytes while no other thread is running:
/// the heap counts some small blocks that were freed. No value when something has taken the heap's place, such as a
/// sanitizer or valgrind.
std::optional<qint64> heapInUse();
