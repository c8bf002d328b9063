#pragma once

#include "Entry.h"
#include "OwnModel.h"

#include <QtCore/QAbstractTableModel>
#include <QtCore/QDeadlineTimer>
#include <QtCore/QHash>
#include <QtCore/QJsonObject>
#include <QtCore/QSortFilterProxyModel>
#include <QtCore/QTimer>

#include <array>

/// The getters of the current device, one a row, each beside the value that its signal carried last. A getter that a host
/// would have to read again to know its value has a mark: its last signal carried another one, or it changed without one.
class ValuesModel : public OwnModel<QAbstractTableModel>
{
    Q_OBJECT

public:
    enum Column { Name, Value, LastSignal, Note, ColumnCount };
    /// Whether the row has a mark; of each column.
    static constexpr int isMarkedRole = Qt::UserRole;

    explicit ValuesModel(QObject *parent = nullptr);

    void noteEntries(const QList<Entry> &entries);
    void setState(const QJsonObject &state);
    /// For a new child.
    void clear();
    /// As the state has it; empty when there is none.
    const QString &device() const { return m_device; }
    int markCount() const;

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

Q_SIGNALS:
    void refreshed();

private:
    /// What a host knows of a device, by the names of the getters.
    struct Knowledge
    {
        QHash<QString, QString> signalled;
        /// As they were after the start.
        QHash<QString, QString> first;
        QHash<QString, QString> now;
    };

    void noteSignal(Knowledge &known, const QString &device, const Entry &entry);
    void setValues(const QString &device, const QJsonObject &values);
    void refresh();
    void flash(Column column, const QString &name);
    bool isFlashing(Column column, const QString &name) const;
    void endFlashes();
    QString text(Column column, const QString &name) const;
    /// Empty for a row without a mark.
    QString note(const QString &name) const;
    QString noteInFull(const QString &name) const;

    QHash<QString, Knowledge> m_devices;  // by id
    QString m_device;
    QStringList m_names;
    std::array<QHash<QString, QDeadlineTimer>, ColumnCount> m_flashing;  // until when
    QTimer m_flashEnd;
    QTimer m_refresh;  // several signals make one
};

/// Rows that contain a text, and of those all or only the marked ones.
class ValuesFilter : public OwnModel<QSortFilterProxyModel>
{
    Q_OBJECT

public:
    using OwnModel::OwnModel;

    void setText(const QString &text);
    void setOnlyMarked(bool isOnlyMarked);

protected:
    bool filterAcceptsRow(int row, const QModelIndex &parent) const override;

private:
    QString m_text;
    bool m_isOnlyMarked = false;
};
