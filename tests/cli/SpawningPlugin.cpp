#include <QtCore/QFile>
#include <QtCore/QObject>
#include <QtCore/QProcess>
#include <QtCore/QThread>

/// When it is loaded it starts a process that ends never, says so in a file, and does not come back.
class SpawningPlugin : public QObject
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.orvane.KVX.Plugin.LogicalDevice.RV418")

public:
    SpawningPlugin()
    {
        auto *const process = new QProcess(this);
        process->start(QStringLiteral("sleep"), {qEnvironmentVariable("KVX_SPAWNED_SECONDS")});
        if (process->waitForStarted(-1))
            QFile(qEnvironmentVariable("KVX_SPAWNED_FILE")).open(QFile::WriteOnly);
        for (;;)
            QThread::sleep(1);
    }
};

#include "SpawningPlugin.moc"
