#pragma once

#include "LibraryFile.h"
#include "PluginMetadata.h"

/// What is known of a library file without running anything of it.
struct PluginInspection
{
    /// The absolute path.
    QString file;
    LibraryFile contents;
    /// Nothing when the file is no plugin.
    std::optional<PluginMetadata> metadata;
    /// Why the file cannot be loaded here as a device plugin: one sentence that names the file, the cause and what to
    /// do. Empty when nothing speaks against it.
    QString refusal;
};

/// What is wrong with the file's name, by which the RV418 library finds itself among the loaded ones; empty when it is
/// right.
QString noteOnName(const PluginInspection &inspection);

/// Never throws, whatever the file holds.
PluginInspection inspectPlugin(const QString &file);

/// The same for the bytes of a file. file: how the refusal names it.
PluginInspection inspectPlugin(const QString &file, QByteArrayView bytes);
