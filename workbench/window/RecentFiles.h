#pragma once

#include <QtCore/QSettings>
#include <QtWidgets/QMenu>

/// A menu of the files that were used last, kept in the settings.
class RecentFiles : public QMenu
{
    Q_OBJECT

public:
    explicit RecentFiles(QSettings *settings, QWidget *parent = nullptr);

    void add(const QString &path);

Q_SIGNALS:
    void fileWanted(const QString &path);

private:
    void fill();

    QSettings *m_settings;
};
