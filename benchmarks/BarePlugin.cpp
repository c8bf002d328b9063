#include <QtCore/QObject>
#include <QtCore/QtPlugin>

// The floor of loading: the least that the Qt plugin loader takes for a plugin, and the product's resources.
class BarePlugin final : public QObject
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.orvane.KVX.Benchmarks.BarePlugin")
};

#include "BarePlugin.moc"
