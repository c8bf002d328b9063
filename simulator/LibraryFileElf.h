#pragma once

#include "LibraryFile.h"

/// Reads a file in the format of Linux libraries.
LibraryFile readElfFile(QByteArrayView bytes);
