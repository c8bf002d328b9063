#pragma once

#include <QtCore/QDateTime>
#include <QtCore/QFileSystemWatcher>
#include <QtCore/QTimer>

/// Notices that a library was built again. A linker replaces the file, so its folder is watched, too.
class LibraryWatch : public QObject
{
    Q_OBJECT

public:
    explicit LibraryWatch(QObject *parent = nullptr);

    /// Instead of the last one, from its present contents on; empty for none.
    void watch(const QString &file);
    /// What is there now is known.
    void acceptChange() { m_known = stamp(); }
    /// Emits changed() again after a moment: the file was not whole, and what completes it may come unnoticed.
    void lookAgain() { m_nextLook.start(); }

Q_SIGNALS:
    /// The file has changed or is gone.
    void changed();

private:
    struct Stamp
    {
        QDateTime time;
        qint64 size = 0;
    };

    Stamp stamp() const;
    void look();

    QFileSystemWatcher m_watcher;
    QString m_file;
    Stamp m_known;
    QTimer m_settled;  // a linker writes in many pieces
    QTimer m_nextLook;
};
