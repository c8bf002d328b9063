#include <QtCore/QObject>
#include <QtCore/QtPlugin>

// Tells a test in the same process that this library was loaded, which runs its code.
static const bool isMarked = qputenv("KVX_FOREIGN_PLUGIN_RAN", "yes");

/// A sound Qt plugin, made for another host.
class ForeignPlugin : public QObject
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.example.Foreign")
};

#include "ForeignPlugin.moc"
