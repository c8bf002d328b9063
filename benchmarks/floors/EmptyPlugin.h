#pragma once

#include <QtCore/QObject>
#include <QtCore/QtPlugin>

/// The least that the Qt plugin loader takes for a plugin.
class EmptyPlugin final : public QObject
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.orvane.KVX.Benchmarks.EmptyPlugin")
};
