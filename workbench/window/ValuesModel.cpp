#include "ValuesModel.h"

#include "DeviceState.h"

#include <QtCore/QSet>
#include <QtGui/QGuiApplication>
#include <QtGui/QPalette>
#include <QtWidgets/QApplication>
#include <QtWidgets/QStyle>

#include <algorithm>
#include <chrono>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr std::chrono::milliseconds flashTime{700};
constexpr std::chrono::milliseconds refreshDelay{50};
const QLatin1StringView signalEnding = "Changed"_L1;

// As the state has it: lists with blanks between their items.
QString plainText(const QJsonValue &value)
{
    return value.isArray() ? value.toVariant().toStringList().join(u' ') : value.toVariant().toString();
}

QColor flashColor()
{
    constexpr int alpha = 110;  // the text keeps its colour
    QColor color = QGuiApplication::palette().color(QPalette::Highlight);
    color.setAlpha(alpha);
    return color;
}

}  // namespace

ValuesModel::ValuesModel(QObject *parent) : OwnModel(parent)
{
    m_flashEnd.setSingleShot(true);
    m_flashEnd.setInterval(flashTime);
    connect(&m_flashEnd, &QTimer::timeout, this, &ValuesModel::endFlashes);
    m_refresh.setSingleShot(true);
    m_refresh.setInterval(refreshDelay);
    connect(&m_refresh, &QTimer::timeout, this, &ValuesModel::refresh);
}

void ValuesModel::noteEntries(const QList<Entry> &entries)
{
    for (const Entry &entry : entries) {
        if (!entry.device)
            continue;
        const QString device = QString::number(*entry.device);
        // What a device does before its start and during an earlier one says nothing of its values now.
        if (entry.kind == "call"_L1 && entry.name == "start"_L1)
            m_devices.remove(device);
        else if (entry.kind == "signal"_L1)
            noteSignal(m_devices[device], device, entry);
    }
}

void ValuesModel::noteSignal(Knowledge &known, const QString &device, const Entry &entry)
{
    if (!entry.name.endsWith(signalEnding) || entry.arguments.isEmpty())
        return;
    const QString name = entry.name.chopped(signalEnding.size());
    known.signalled.insert(name, plainText(entry.arguments.first()));
    if (device != m_device)
        return;
    flash(LastSignal, name);
    if (!m_refresh.isActive())
        m_refresh.start();
}

void ValuesModel::setState(const QJsonObject &state)
{
    const QString before = std::exchange(m_device, DeviceState::currentId(state));
    if (m_device != before)
        m_flashing = {};
    QSet<QString> present;
    const QJsonArray devices = state.value("devices"_L1).toArray();
    for (const auto item : devices) {
        const QJsonObject device = item.toObject();
        const QString id = DeviceState::idOf(device);
        present.insert(id);
        setValues(id, device["values"_L1].toObject());
    }
    m_devices.removeIf([&](const auto &device) { return !present.contains(device.key()); });

    QStringList names = m_devices.value(m_device).now.keys();
    names.sort(Qt::CaseInsensitive);
    if (names != m_names) {
        beginResetModel();
        m_names = names;
        endResetModel();
    }
    refresh();
}

void ValuesModel::setValues(const QString &device, const QJsonObject &values)
{
    Knowledge &known = m_devices[device];
    QHash<QString, QString> now;
    for (auto value = values.begin(); value != values.end(); ++value) {
        now.insert(value.key(), plainText(*value));
        const auto before = known.now.constFind(value.key());
        if (device == m_device && before != known.now.cend() && *before != now.value(value.key()))
            flash(Value, value.key());
    }
    known.now = now;
    if (known.first.isEmpty())
        known.first = std::move(now);
}

void ValuesModel::clear()
{
    m_devices.clear();
    m_flashing = {};
    setState({});
}

void ValuesModel::flash(Column column, const QString &name)
{
    m_flashing.at(column).insert(name, QDeadlineTimer(flashTime));
    if (!m_flashEnd.isActive())
        m_flashEnd.start();
}

bool ValuesModel::isFlashing(Column column, const QString &name) const
{
    return !m_flashing.at(column).value(name).hasExpired();
}

void ValuesModel::endFlashes()
{
    for (QHash<QString, QDeadlineTimer> &names : m_flashing) {
        names.removeIf([](const auto &name) { return name.value().hasExpired(); });
        if (!names.isEmpty())
            m_flashEnd.start();
    }
    refresh();
}

void ValuesModel::refresh()
{
    m_refresh.stop();
    if (!m_names.isEmpty())
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, ColumnCount - 1));
    Q_EMIT refreshed();
}

int ValuesModel::markCount() const
{
    return static_cast<int>(std::count_if(m_names.cbegin(), m_names.cend(),
                                          [this](const QString &name) { return !note(name).isEmpty(); }));
}

int ValuesModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_names.size());
}

int ValuesModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant ValuesModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    const QString name = m_names.value(index.row());
    const auto column = static_cast<Column>(index.column());
    switch (role) {
    case Qt::DisplayRole:
        return text(column, name);
    case Qt::ToolTipRole:
        return column == Note ? noteInFull(name) : text(column, name);
    case Qt::DecorationRole:
        if (column == Note && !note(name).isEmpty())
            return QApplication::style()->standardIcon(QStyle::SP_MessageBoxWarning);
        return {};
    case Qt::BackgroundRole:
        return isFlashing(column, name) ? QVariant(flashColor()) : QVariant();
    case isMarkedRole:
        return !note(name).isEmpty();
    default:
        return {};
    }
}

QVariant ValuesModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    switch (section) {
    case Name:
        return tr("Getter");
    case Value:
        return tr("Value");
    case LastSignal:
        return tr("Last signal");
    default:
        return tr("Difference");
    }
}

QString ValuesModel::text(Column column, const QString &name) const
{
    const Knowledge known = m_devices.value(m_device);
    switch (column) {
    case Name:
        return name;
    case Value:
        return known.now.value(name);
    case LastSignal:
        return known.signalled.value(name);
    default:
        return note(name);
    }
}

QString ValuesModel::note(const QString &name) const
{
    const auto device = m_devices.constFind(m_device);
    if (device == m_devices.cend())
        return {};
    const QString now = device->now.value(name);
    if (const auto signalled = device->signalled.constFind(name); signalled != device->signalled.cend())
        return *signalled == now ? QString() : tr("differs");
    return device->first.value(name, now) == now ? QString() : tr("not signalled");
}

QString ValuesModel::noteInFull(const QString &name) const
{
    if (note(name).isEmpty())
        return {};
    return m_devices.value(m_device).signalled.contains(name)
               ? tr("The getter answers something else than the last signal carried.")
               : tr("The value has changed since the start, and no signal said so.");
}

void ValuesFilter::setText(const QString &text)
{
    m_text = text;
    invalidateRowsFilter();
}

void ValuesFilter::setOnlyMarked(bool isOnlyMarked)
{
    m_isOnlyMarked = isOnlyMarked;
    invalidateRowsFilter();
}

bool ValuesFilter::filterAcceptsRow(int row, const QModelIndex &parent) const
{
    const auto index = [&](int column) { return sourceModel()->index(row, column, parent); };
    if (m_isOnlyMarked && !index(0).data(ValuesModel::isMarkedRole).toBool())
        return false;
    for (int column = 0; column < sourceModel()->columnCount(parent); ++column) {
        if (index(column).data().toString().contains(m_text, Qt::CaseInsensitive))
            return true;
    }
    return false;
}
