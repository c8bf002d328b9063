#pragma once

#include <QtCore/QtGlobal>

/// Makes the standard streams carry the same bytes on every system until the program ends: UTF-8, lines ended by a
/// line feed alone. Once, at the start of main.
#ifdef Q_OS_WIN
void unifyStandardStreams();
#else
inline void unifyStandardStreams() {}
#endif
