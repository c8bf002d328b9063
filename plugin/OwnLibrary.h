#pragma once

#include <QtCore/QtGlobal>

#include <optional>

/// Why the plugin's own library file was not found.
struct OwnLibraryFailure
{
    /// Begins the log line about it.
    const char *logText;
    /// The Windows error code, or its equivalent on other systems.
    quint32 errorCode;
};

/// Looks for the plugin's own library file among the loaded ones by its fixed name; nothing when it is there.
std::optional<OwnLibraryFailure> locateOwnLibrary();
