#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <optional>

/// What a plugin says of itself to Qt's plugin loader.
struct PluginMetadata
{
    QString iid;
    QString className;
    /// As QT_VERSION writes it, without a patch level.
    int qtVersion = 0;
    bool isDebug = false;

    /// From LibraryFile::pluginMetadata; nothing when the bytes are damaged.
    static std::optional<PluginMetadata> decode(const QByteArray &bytes);
};

/// What matters of a host's Qt to a plugin.
struct HostQt
{
    /// As QT_VERSION writes it.
    int version = 0;
    bool isDebug = false;
    /// Whether the platform keeps debug and release builds of Qt apart.
    bool mustMatchBuildType = false;

    /// Of this program.
    static HostQt own();
};

/// Why a host with this Qt does not load the plugin, and what to do, as the end of a sentence that begins with the
/// file's name. Empty when nothing speaks against it.
QString refusalOf(const PluginMetadata &metadata, const HostQt &qt);

/// "6.8" for 0x060802.
QString qtVersionText(int version);
