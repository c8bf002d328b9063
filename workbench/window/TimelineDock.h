#pragma once

#include "TimelineModel.h"

#include <QtCore/QTimer>
#include <QtWidgets/QWidget>

#include <functional>

class Engine;
class FindBar;
class QComboBox;
class QLabel;
class QLayout;
class QLineEdit;
class QMenu;
class QTableView;
class QToolButton;

/// The timeline: filters, search, export. It follows the newest line unless somebody scrolled up. The lines stay after
/// the child's end, and go with its next start.
class TimelineDock : public QWidget
{
    Q_OBJECT

    // TimelineDock.cpp         construction, lines that come, filters, selection
    // TimelineDock_Output.cpp  search, clipboard, export

public:
    explicit TimelineDock(Engine *engine, QWidget *parent = nullptr);
    ~TimelineDock() override;
    Q_DISABLE_COPY_MOVE(TimelineDock)

public Q_SLOTS:
    /// They are shown a moment later with all that came by then, or when the pause ends.
    void addEntries(const QList<Entry> &entries);
    /// Those that wait for the end of a pause go, too.
    void clear();

Q_SIGNALS:
    /// In the order of the table.
    void selectionChanged(const QList<Entry> &entries);

protected:
    void changeEvent(QEvent *event) override;

private:
    void addFilters(QLayout *layout);
    void addButtons(QLayout *layout);
    void addTable();
    void addActions();
    void setSizes();

    void showWaiting();
    void noteKind(const QString &kind);
    void noteDevice(quint64 device);
    void applyFilter();
    void select(const QList<qsizetype> &positions, qsizetype current);
    void showCount();
    QList<int> selectedRows() const;

    void find(int step, bool mayStay);
    void copyLines(const std::function<QString(const Entry &)> &textOf) const;
    void askForFile(const QString &title, const QString &suffix, QByteArray (TimelineDock::*content)() const);
    void save(const QString &file, const QByteArray &content);
    QByteArray asText() const;
    QByteArray asJsonLines() const;

    const Engine *m_engine;
    TimelineModel *m_model;
    QTableView *m_table;
    QToolButton *m_kinds;
    QMenu *m_kindMenu;
    QComboBox *m_devices;
    QLineEdit *m_text;
    QToolButton *m_pause;
    FindBar *m_findBar;
    QLabel *m_count;

    bool m_follows = true;   // the table shows the newest line
    QTimer m_pace;           // runs while entries wait and there is no pause
    QList<Entry> m_waiting;  // not in the model yet
    QSet<QString> m_knownKinds;
    QSet<quint64> m_knownDevices;
};
