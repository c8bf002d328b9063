#include "TimelineModel.h"

#include "VisibleText.h"

#include <QtGui/QColor>
#include <QtGui/QGuiApplication>
#include <QtGui/QPalette>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

// Of a text, as many characters as a cell or a tool tip shows; laying out more takes longer than painting the
// rest.
constexpr qsizetype longestShown = 1000;

QString oneLine(const QString &text)
{
    return visibleText(text).replace(u'\n', u'\u21b5').replace(u'\t', u' ');
}

QString shownText(const QString &text)
{
    if (text.size() <= longestShown)
        return oneLine(text);
    const bool cutsPair = text.at(longestShown).isLowSurrogate();
    return oneLine(text.first(cutsPair ? longestShown - 1 : longestShown)) + u'\u2026';
}

QString milliseconds(qint64 microseconds)
{
    constexpr qint64 inMillisecond = 1000;
    return QString::number(microseconds / inMillisecond) + u'.' +
           QString::number(microseconds % inMillisecond).rightJustified(3, u'0');
}

QString cell(const Entry &entry, int column)
{
    switch (column) {
    case TimelineModel::Sequence:
        return QString::number(entry.sequence);
    case TimelineModel::Time:
        return milliseconds(entry.time);
    case TimelineModel::Thread:
        return QString::number(entry.thread);
    case TimelineModel::Device:
        return entry.device ? QString::number(*entry.device) : QString();
    case TimelineModel::Kind:
        return entry.kind;
    default:
        return shownText(entry.text);
    }
}

int alignment(int column)
{
    return int((column <= TimelineModel::Thread ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
}

// Helps the eye only: the kind is there as a word. Bright on a dark palette, dark on a bright one.
QVariant kindColor(const QString &kind)
{
    static const QHash<QString, int> hues{{u"call"_s, 215},   {u"receiver"_s, 30}, {u"report"_s, 130},
                                          {u"signal"_s, 275}, {u"host"_s, 180},    {u"verdict"_s, 0}};
    const auto hue = hues.constFind(kind);
    if (hue == hues.constEnd())
        return {};
    constexpr int saturation = 170;
    constexpr int lightnessOnDark = 185;
    constexpr int lightnessOnBright = 60;
    const bool isDark = QGuiApplication::palette().base().color().lightness() < 128;
    return QColor::fromHsl(*hue, saturation, isDark ? lightnessOnDark : lightnessOnBright);
}

}  // namespace

TimelineModel::TimelineModel(QObject *parent, qsizetype limit) : OwnModel(parent), m_limit(limit) {}

int TimelineModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

int TimelineModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant TimelineModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role == Qt::TextAlignmentRole)
        return alignment(section);
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    switch (section) {
    case Sequence:
        return tr("No.");
    case Time:
        return tr("Time (ms)");
    case Thread:
        return tr("Thread");
    case Device:
        return tr("Device");
    case Kind:
        return tr("Kind");
    default:
        return tr("Text");
    }
}

QVariant TimelineModel::data(const QModelIndex &index, int role) const
{
    const Entry &shown = entry(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return cell(shown, index.column());
    case Qt::ToolTipRole:
        // As rich text, so that it wraps; the entry's own text must not be taken for such.
        return index.column() == Text ? u"<p>%1</p>"_s.arg(shownText(shown.text).toHtmlEscaped())
                                      : QVariant();
    case Qt::ForegroundRole:
        return index.column() == Kind ? kindColor(shown.kind) : QVariant();
    case Qt::TextAlignmentRole:
        return alignment(index.column());
    default:
        return {};
    }
}

void TimelineModel::append(const QList<Entry> &entries)
{
    QList<qsizetype> rows;
    for (const Entry &entry : entries) {
        if (m_filter.accepts(entry))
            rows.append(m_entries.size());
        m_entries.append(entry);
    }
    if (!rows.isEmpty()) {
        const int first = rowCount();
        beginInsertRows({}, first, first + int(rows.size()) - 1);
        m_rows += rows;
        endInsertRows();
    }
    if (m_entries.size() > m_limit)
        dropOldest();
}

void TimelineModel::dropOldest()
{
    // More than the surplus, so that not each line that comes costs a removal.
    const qsizetype dropped = m_entries.size() - m_limit + m_limit / 10;
    const qsizetype rows = std::lower_bound(m_rows.cbegin(), m_rows.cend(), dropped) - m_rows.cbegin();
    if (rows > 0)
        beginRemoveRows({}, 0, int(rows) - 1);
    m_rows.remove(0, rows);
    for (qsizetype &row : m_rows)
        row -= dropped;
    m_entries.remove(0, dropped);
    m_dropped += dropped;
    if (rows > 0)
        endRemoveRows();
}

void TimelineModel::clear()
{
    beginResetModel();
    m_entries.clear();
    m_rows.clear();
    m_dropped = 0;
    endResetModel();
}

void TimelineModel::setFilter(const TimelineFilter &filter)
{
    beginResetModel();
    m_filter = filter;
    m_rows.clear();
    for (qsizetype index = 0; index < m_entries.size(); ++index)
        if (m_filter.accepts(m_entries.at(index)))
            m_rows.append(index);
    endResetModel();
}

int TimelineModel::rowOf(qsizetype position) const
{
    const qsizetype index = position - m_dropped;
    const auto found = std::lower_bound(m_rows.cbegin(), m_rows.cend(), index);
    return found != m_rows.cend() && *found == index ? int(found - m_rows.cbegin()) : -1;
}

QString TimelineModel::line(const Entry &entry)
{
    constexpr int sequenceWidth = 5;
    constexpr int timeWidth = 10;
    const QString device = entry.device ? u"[%1]  "_s.arg(*entry.device) : QString();
    return QString::number(entry.sequence).rightJustified(sequenceWidth) +
           milliseconds(entry.time).rightJustified(timeWidth) + u" ms  "_s + device + oneLine(entry.text);
}
