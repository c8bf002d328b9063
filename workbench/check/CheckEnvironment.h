#pragma once

#include <QtCore/QList>
#include <QtCore/QString>

#include <utility>

struct PluginInspection;

/// What a report says about the library and the machine, by name: what both were built with, and the library's hash.
QList<std::pair<QString, QString>> checkEnvironment(const PluginInspection &library);
