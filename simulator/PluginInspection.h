#pragma once

#include "LibraryFile.h"

#include <QtCore/QJsonObject>
#include <QtCore/QString>

/// Whether a file can be loaded as a device plugin, and if not, why.
struct PluginJudgement
{
    enum class Outcome {
        Loadable,        ///< nothing speaks against loading it
        MissingFile,     ///< no such file, not a file, empty, not readable
        NotALibrary,     ///< no library of this platform, or a damaged one
        NotAPlugin,      ///< a library without the metadata of a Qt plugin
        ForeignIid,      ///< a plugin for something else
        OtherQtVersion,  ///< built with a Qt that the Qt here does not accept
        OtherBuildType,  ///< debug and release do not mix on this platform
    };

    Outcome outcome = Outcome::Loadable;
    /// One sentence that names the file, the cause and what to do; empty when loadable.
    QString reason;

    bool isLoadable() const { return outcome == Outcome::Loadable; }
};

/// What is known of a library file without running anything of it.
struct PluginInspection
{
    /// The absolute path.
    QString file;
    LibraryFile contents;
    /// As Qt's plugin loader reads it: "IID", "className", "version", "debug"; empty when it cannot.
    QJsonObject metaData;
    PluginJudgement judgement;
};

/// What a host demands of a plugin's metadata.
struct PluginDemands
{
    /// What the IID of each device plugin begins with.
    QString iidPrefix;
    /// Of the Qt that the host runs with, as QT_VERSION writes it.
    int qtVersion = 0;
    bool isDebugBuild = false;
    /// Whether the platform keeps debug and release builds of Qt apart.
    bool mustMatchBuildType = false;

    /// Of this program.
    static PluginDemands own();
};

/// Looks at the file and judges whether it can be loaded here. Never throws, whatever the file holds.
PluginInspection inspectPlugin(const QString &file);

/// Judges metadata that was read. file: how the reason names the library.
PluginJudgement judgeMetadata(const QString &file, const QJsonObject &metaData, const PluginDemands &demands);

/// "6.8.2" for 0x060802.
QString qtVersionText(int version);
