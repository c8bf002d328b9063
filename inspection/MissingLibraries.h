#pragma once

#include "LibraryFile.h"

/// The libraries that a file needs and that are not found, and in brackets where they were looked for.
///
/// A file for this Linux is given to ldd, which asks the dynamic loader itself, also for what the libraries need in
/// turn. Windows has no such tool; the folders that its loader searches, and the file's own, are searched for the file
/// names. Of a file for another system only its own folder can be searched, where that system's own libraries are not.
QString librariesNotFound(const QString &file, const LibraryFile &library);
