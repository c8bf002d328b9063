#pragma once

#include <QtCore/QString>

/// Whether a library of this file name is in the process.
bool isLibraryInProcess(const QString &fileName);

/// How many files, or on Windows handles of any kind, the process has open.
int openHandleCount();
