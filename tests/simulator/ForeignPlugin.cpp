#include <QtCore/QObject>
#include <QtCore/QtPlugin>

/// A sound Qt plugin, made for another host.
class ForeignPlugin : public QObject
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.example.Foreign")
};

#include "ForeignPlugin.moc"
