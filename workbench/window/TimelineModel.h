#pragma once

#include "OwnModel.h"
#include "TimelineFilter.h"

#include <QtCore/QAbstractTableModel>

/// The timeline as a table: a row for each entry that the filter lets through. It filters itself, because a proxy model
/// removes the rows that a filter hides range by range: with 100,000 lines that takes seconds.
class TimelineModel : public OwnModel<QAbstractTableModel>
{
    Q_OBJECT

public:
    enum Column { Sequence, Time, Thread, Device, Kind, Text, ColumnCount };

    /// The longest timeline that is kept; more than that, and the oldest entries go.
    static constexpr qsizetype defaultLimit = 500'000;  // entries, each about a kilobyte

    explicit TimelineModel(QObject *parent = nullptr, qsizetype limit = defaultLimit);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    QVariant data(const QModelIndex &index, int role) const override;

    void append(const QList<Entry> &entries);
    void clear();
    const TimelineFilter &filter() const { return m_filter; }
    void setFilter(const TimelineFilter &filter);

    /// With those that the filter hides.
    qsizetype entryCount() const { return m_entries.size(); }
    /// How many of the oldest are gone because there were too many.
    qsizetype droppedCount() const { return m_dropped; }
    const Entry &entry(int row) const { return m_entries.at(m_rows.at(row)); }

    /// Of the entry in a row, counted from the first since the last clear(); the filter does not change it.
    qsizetype position(int row) const { return m_rows.at(row) + m_dropped; }
    /// -1 when the entry is hidden or gone.
    int rowOf(qsizetype position) const;

    /// The entry as one line of text, its whole length.
    static QString line(const Entry &entry);

private:
    void dropOldest();

    const qsizetype m_limit;
    QList<Entry> m_entries;
    QList<qsizetype> m_rows;  // for each row the index of its entry
    qsizetype m_dropped = 0;
    TimelineFilter m_filter;
};
