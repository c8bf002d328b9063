#pragma once

#include "LibraryFile.h"

/// Reads a file in the format of Windows libraries.
LibraryFile readPeFile(QByteArrayView bytes);
