#include <QtCore/QObject>
#include <QtCore/QtPlugin>

/// A plugin that calls itself a device plugin and has no factory for devices.
class FactorylessPlugin : public QObject
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.orvane.KVX.Plugin.LogicalDevice.Factoryless")
};

#include "FactorylessPlugin.moc"
