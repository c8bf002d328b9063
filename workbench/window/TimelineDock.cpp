#include "TimelineDock.h"

#include "Engine.h"
#include "FindBar.h"

#include <QtCore/QEvent>
#include <QtCore/QLocale>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMenu>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QTableView>
#include <QtWidgets/QToolButton>

#include <algorithm>
#include <array>
#include <chrono>

using namespace Qt::StringLiterals;

namespace {

// How long entries are collected, so that a burst costs some insertions and not one for each entry.
constexpr std::chrono::milliseconds pace{30};

// Of the devices' list; a device's row has its id as data.
constexpr int anyDeviceRow = 0;
constexpr int noDeviceRow = 1;
constexpr int longestUsualDevice = 16;  // characters, "Without a device"

template <typename Control>
void setNames(Control *control, const QString &objectName, const QString &accessibleName)
{
    control->setObjectName(objectName);
    control->setAccessibleName(accessibleName);
}

}  // namespace

TimelineDock::TimelineDock(Engine *engine, QWidget *parent)
    : QWidget(parent),
      m_engine(engine),
      m_model(new TimelineModel(this)),
      m_table(new QTableView(this)),
      m_kinds(new QToolButton(this)),
      m_kindMenu(new QMenu(m_kinds)),
      m_devices(new QComboBox(this)),
      m_text(new QLineEdit(this)),
      m_pause(new QToolButton(this)),
      m_findBar(new FindBar(this)),
      m_count(new QLabel(this))
{
    auto *top = new QHBoxLayout;
    addFilters(top);
    addButtons(top);
    auto *bottom = new QHBoxLayout;
    bottom->addWidget(m_findBar, 1);
    bottom->addStretch();
    bottom->addWidget(m_count);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(m_table, 1);
    layout->addLayout(bottom);
    m_count->setObjectName(u"timelineCount"_s);
    m_count->setAccessibleDescription(tr("Number of lines"));
    addTable();
    addActions();
    setSizes();
    showCount();

    m_pace.setSingleShot(true);
    m_pace.setInterval(pace);
    connect(&m_pace, &QTimer::timeout, this, &TimelineDock::showWaiting);
    connect(engine, &Engine::started, this, &TimelineDock::clear);
    connect(engine, &Engine::entriesCame, this, &TimelineDock::addEntries);
}

TimelineDock::~TimelineDock()
{
    // The base class hides the table, which then moves its scroll bar.
    m_table->verticalScrollBar()->disconnect(this);
    m_table->selectionModel()->disconnect(this);
}

void TimelineDock::addFilters(QLayout *layout)
{
    setNames(m_kinds, u"timelineKinds"_s, tr("Kinds of lines"));
    m_kinds->setText(tr("Kinds"));
    m_kinds->setToolTip(tr("Which kinds of lines are shown"));
    m_kinds->setPopupMode(QToolButton::InstantPopup);
    m_kinds->setMenu(m_kindMenu);
    m_kindMenu->setObjectName(u"timelineKindMenu"_s);
    const auto checkAll = [this](bool isChecked) {
        const QList<QAction *> actions = m_kindMenu->actions();
        for (QAction *action : actions)
            if (action->isCheckable())
                action->setChecked(isChecked);
        applyFilter();
    };
    m_kindMenu->addAction(tr("All"), this, [checkAll] { checkAll(true); })->setObjectName(u"all"_s);
    m_kindMenu->addAction(tr("None"), this, [checkAll] { checkAll(false); })->setObjectName(u"none"_s);
    m_kindMenu->addSeparator();

    setNames(m_devices, u"timelineDevices"_s, tr("Device of the lines"));
    m_devices->setToolTip(tr("Of which device lines are shown"));
    m_devices->setMinimumContentsLength(longestUsualDevice);
    m_devices->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_devices->addItem(tr("All devices"));
    m_devices->addItem(tr("Without a device"));
    connect(m_devices, &QComboBox::currentIndexChanged, this, &TimelineDock::applyFilter);

    setNames(m_text, u"timelineText"_s, tr("Text of the lines"));
    m_text->setPlaceholderText(tr("Filter by text"));
    m_text->setClearButtonEnabled(true);
    connect(m_text, &QLineEdit::textChanged, this, &TimelineDock::applyFilter);

    layout->addWidget(m_kinds);
    layout->addWidget(m_devices);
    layout->addWidget(m_text);
}

void TimelineDock::addButtons(QLayout *layout)
{
    setNames(m_pause, u"timelinePause"_s, tr("Pause the timeline"));
    m_pause->setText(tr("Pause"));
    m_pause->setToolTip(tr("Lines that come during a pause are shown when it ends"));
    m_pause->setCheckable(true);
    connect(m_pause, &QToolButton::toggled, this, [this](bool isPaused) {
        if (isPaused)
            m_pace.stop();
        else
            showWaiting();
        showCount();
    });

    auto *clearButton = new QToolButton(this);
    setNames(clearButton, u"timelineClear"_s, tr("Clear the timeline"));
    clearButton->setText(tr("Clear"));
    connect(clearButton, &QToolButton::clicked, this, &TimelineDock::clear);

    auto *exportButton = new QToolButton(this);
    setNames(exportButton, u"timelineExport"_s, tr("Export the timeline"));
    exportButton->setText(tr("Export"));
    exportButton->setToolTip(tr("Saves the lines that are shown"));
    exportButton->setPopupMode(QToolButton::InstantPopup);
    auto *menu = new QMenu(exportButton);
    menu->addAction(
            tr("As text…"), this,
            [this] { askForFile(tr("Export the timeline as text"), u"txt"_s, &TimelineDock::asText); })
        ->setObjectName(u"timelineExportText"_s);
    menu->addAction(tr("As JSON lines…"), this,
                    [this] {
                        askForFile(tr("Export the timeline as JSON lines"), u"jsonl"_s,
                                   &TimelineDock::asJsonLines);
                    })
        ->setObjectName(u"timelineExportJson"_s);
    exportButton->setMenu(menu);

    layout->addWidget(m_pause);
    layout->addWidget(clearButton);
    layout->addWidget(exportButton);
}

void TimelineDock::addTable()
{
    setNames(m_table, u"timelineTable"_s, tr("Timeline"));
    m_table->setModel(m_model);
    m_table->setSelectionBehavior(QTableView::SelectRows);
    m_table->setWordWrap(false);
    m_table->setShowGrid(false);
    m_table->setAlternatingRowColors(true);
    m_table->setTabKeyNavigation(false);
    m_table->setCornerButtonEnabled(false);
    m_table->verticalHeader()->hide();
    m_table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_table->horizontalHeader()->setStretchLastSection(true);
    m_table->horizontalHeader()->setHighlightSections(false);
    QScrollBar *bar = m_table->verticalScrollBar();
    connect(bar, &QScrollBar::valueChanged, this,
            [this, bar](int value) { m_follows = value == bar->maximum(); });
    // Another height of the table does not end it.
    connect(bar, &QScrollBar::rangeChanged, this, [this, bar](int /*minimum*/, int maximum) {
        if (m_follows)
            bar->setValue(maximum);
    });
    connect(m_table->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
        QList<Entry> entries;
        const QList<int> rows = selectedRows();
        for (const int row : rows)
            entries.append(m_model->entry(row));
        Q_EMIT selectionChanged(entries);
    });
}

void TimelineDock::setSizes()
{
    constexpr int margin = 12;  // pixels, of both sides
    const QFontMetrics metrics = fontMetrics();
    m_table->verticalHeader()->setMinimumSectionSize(0);
    m_table->verticalHeader()->setDefaultSectionSize(metrics.height() + 4);
    const std::array widest{u"9999999"_s, u"9999999.999"_s, u"Thread"_s, u"Device"_s, u"receiver"_s};
    for (int column = 0; column < TimelineModel::Text; ++column)
        m_table->setColumnWidth(column, metrics.horizontalAdvance(widest.at(std::size_t(column))) + margin);
}

void TimelineDock::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        setSizes();
}

void TimelineDock::addEntries(const QList<Entry> &entries)
{
    m_waiting += entries;
    // Memory ends, so a pause does, too.
    if (m_waiting.size() > TimelineModel::defaultLimit)
        m_pause->setChecked(false);
    if (!m_pause->isChecked() && !m_pace.isActive())
        m_pace.start();
    else if (m_pause->isChecked())
        showCount();
}

void TimelineDock::showWaiting()
{
    for (const Entry &entry : std::as_const(m_waiting)) {
        noteKind(entry.kind);
        if (entry.device)
            noteDevice(*entry.device);
    }
    m_model->append(std::exchange(m_waiting, {}));
    if (m_follows)
        m_table->scrollToBottom();
    showCount();
}

void TimelineDock::noteKind(const QString &kind)
{
    if (m_knownKinds.contains(kind))
        return;
    m_knownKinds.insert(kind);
    QAction *action = m_kindMenu->addAction(kind);
    action->setObjectName(kind);
    action->setCheckable(true);
    action->setChecked(true);
    connect(action, &QAction::triggered, this, &TimelineDock::applyFilter);
}

void TimelineDock::noteDevice(quint64 device)
{
    if (m_knownDevices.contains(device))
        return;
    m_knownDevices.insert(device);
    const QString id = QString::number(device);
    m_devices->addItem(tr("Device %1").arg(id), device);
    constexpr int margin = 12;  // pixels, of both sides
    const int width = fontMetrics().horizontalAdvance(id) + margin;
    if (width > m_table->columnWidth(TimelineModel::Device))
        m_table->setColumnWidth(TimelineModel::Device, width);
}

void TimelineDock::clear()
{
    m_pace.stop();
    m_waiting.clear();
    m_model->clear();
    for (int row = m_devices->count() - 1; row > noDeviceRow; --row) {
        if (row == m_devices->currentIndex())
            continue;
        m_knownDevices.remove(m_devices->itemData(row).toULongLong());
        m_devices->removeItem(row);
    }
    showCount();
    Q_EMIT selectionChanged({});
}

void TimelineDock::applyFilter()
{
    TimelineFilter filter;
    const QList<QAction *> actions = m_kindMenu->actions();
    for (const QAction *action : actions)
        if (action->isCheckable() && !action->isChecked())
            filter.hiddenKinds.insert(action->text());
    if (m_devices->currentIndex() == noDeviceRow)
        filter.device.emplace();
    else if (m_devices->currentIndex() != anyDeviceRow)
        filter.device = m_devices->currentData().toULongLong();
    filter.text = m_text->text();
    m_kinds->setText(filter.hiddenKinds.isEmpty() ? tr("Kinds")
                                                  : tr("Kinds (hidden: %1)").arg(filter.hiddenKinds.size()));

    QList<qsizetype> selected;
    const QList<int> rows = selectedRows();
    for (const int row : rows)
        selected.append(m_model->position(row));
    const QModelIndex current = m_table->currentIndex();
    const qsizetype currentPosition = current.isValid() ? m_model->position(current.row()) : -1;
    m_model->setFilter(filter);
    select(selected, currentPosition);
    showCount();
}

void TimelineDock::select(const QList<qsizetype> &positions, qsizetype current)
{
    QItemSelection selection;
    for (const qsizetype position : positions) {
        const int row = m_model->rowOf(position);
        if (row < 0)
            continue;
        // Neighbours become one range: 100,000 ranges would be slow.
        const int first =
            !selection.isEmpty() && selection.last().bottom() == row - 1 ? selection.takeLast().top() : row;
        selection.append({m_model->index(first, 0), m_model->index(row, TimelineModel::Text)});
    }
    if (selection.isEmpty() && !positions.isEmpty())
        Q_EMIT selectionChanged({});
    const int row = current < 0 ? -1 : m_model->rowOf(current);
    if (row < 0) {
        m_table->scrollToBottom();
    } else {
        m_table->selectionModel()->setCurrentIndex(m_model->index(row, TimelineModel::Text),
                                                   QItemSelectionModel::NoUpdate);
        m_table->scrollTo(m_model->index(row, 0), QTableView::PositionAtCenter);
    }
    m_table->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
}

QList<int> TimelineDock::selectedRows() const
{
    QList<int> rows;
    const QItemSelection selection = m_table->selectionModel()->selection();
    for (const QItemSelectionRange &range : selection)
        for (int row = range.top(); row <= range.bottom(); ++row)
            rows.append(row);
    std::sort(rows.begin(), rows.end());
    return rows;
}

void TimelineDock::showCount()
{
    const auto number = [this](qsizetype count) { return locale().toString(count); };
    QStringList parts{tr("Lines: %1 of %2").arg(number(m_model->rowCount()), number(m_model->entryCount()))};
    if (m_model->droppedCount() > 0)
        parts.append(tr("oldest dropped: %1").arg(number(m_model->droppedCount())));
    if (m_pause->isChecked())
        parts.append(tr("waiting: %1").arg(number(m_waiting.size())));
    m_count->setText(parts.join(u", "_s));
}
