#include "ValuesDock.h"

#include "ScenarioText.h"

#include <QtGui/QAction>
#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>

using namespace Qt::StringLiterals;

ValuesDock::ValuesDock(Engine *engine, QWidget *parent) : QWidget(parent), m_engine(engine)
{
    fillTable();
    m_summary->setObjectName(u"valuesSummary"_s);
    m_summary->setWordWrap(true);

    auto *const layout = new QVBoxLayout(this);
    layout->addWidget(makeBar());
    layout->addWidget(m_table);
    layout->addWidget(m_summary);

    connect(engine, &Engine::started, &m_model, &ValuesModel::clear);
    connect(engine, &Engine::entriesCame, &m_model, &ValuesModel::noteEntries);
    connect(engine, &Engine::stateChanged, &m_model, &ValuesModel::setState);
    connect(&m_model, &ValuesModel::refreshed, this, &ValuesDock::showSummary);
    connect(engine, &Engine::ended, this, &ValuesDock::showSummary);
    m_model.setState(engine->state());
}

QWidget *ValuesDock::makeBar()
{
    auto *const bar = new QWidget(this);
    auto *const filter = new QLineEdit(bar);
    filter->setObjectName(u"valuesFilter"_s);
    filter->setAccessibleName(tr("Filter of the values"));
    filter->setPlaceholderText(tr("Filter"));
    filter->setClearButtonEnabled(true);
    connect(filter, &QLineEdit::textChanged, &m_filter, &ValuesFilter::setText);

    auto *const onlyMarked = new QCheckBox(tr("Differences only"), bar);
    onlyMarked->setObjectName(u"valuesOnlyDifferences"_s);
    connect(onlyMarked, &QCheckBox::toggled, &m_filter, &ValuesFilter::setOnlyMarked);

    auto *const copy = new QPushButton(tr("Copy as expect"), bar);
    copy->setObjectName(u"valuesCopy"_s);
    copy->setToolTip(tr("Copies the selected rows as lines of a scenario: expect NAME VALUE"));
    connect(copy, &QPushButton::clicked, this, &ValuesDock::copyRows);

    auto *const layout = new QHBoxLayout(bar);
    layout->setContentsMargins({});
    layout->addWidget(filter, 1);
    layout->addWidget(onlyMarked);
    layout->addWidget(copy);
    return bar;
}

void ValuesDock::fillTable()
{
    m_filter.setSourceModel(&m_model);
    m_table->setObjectName(u"valuesTable"_s);
    m_table->setAccessibleName(tr("Values of the current device"));
    m_table->setModel(&m_filter);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setTabKeyNavigation(false);
    m_table->setWordWrap(false);
    m_table->setAlternatingRowColors(true);
    constexpr int rowMargin = 6;  // pixels
    m_table->verticalHeader()->hide();
    m_table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_table->verticalHeader()->setDefaultSectionSize(m_table->fontMetrics().height() + rowMargin);
    QHeaderView &header = *m_table->horizontalHeader();
    header.setSectionResizeMode(QHeaderView::Stretch);
    header.setSectionResizeMode(ValuesModel::Name, QHeaderView::ResizeToContents);
    header.setSectionResizeMode(ValuesModel::Note, QHeaderView::ResizeToContents);

    auto *const copy = new QAction(tr("Copy as expect"), m_table);
    copy->setShortcut(QKeySequence::Copy);
    copy->setShortcutContext(Qt::WidgetShortcut);
    connect(copy, &QAction::triggered, this, &ValuesDock::copyRows);
    m_table->addAction(copy);
    m_table->setContextMenuPolicy(Qt::ActionsContextMenu);
}

void ValuesDock::copyRows()
{
    QStringList lines;
    for (int row = 0; row < m_filter.rowCount(); ++row) {
        if (!m_table->selectionModel()->isRowSelected(row))
            continue;
        const auto text = [&](int column) { return m_filter.index(row, column).data().toString(); };
        QStringList words{u"expect"_s, text(ValuesModel::Name)};
        // They are compared with one blank between them.
        if (const QString value = text(ValuesModel::Value); !value.isEmpty())
            words += value.split(u' ');
        lines.append(scenarioWords(words));
    }
    if (!lines.isEmpty())
        QGuiApplication::clipboard()->setText(lines.join(u'\n') + u'\n');
}

void ValuesDock::showSummary()
{
    if (m_model.device().isEmpty())
        m_summary->setText(tr("There is no device."));
    else if (!m_engine->isRunning())
        m_summary->setText(tr("The session has ended. Device %1 as it was last.").arg(m_model.device()));
    else if (m_model.markCount() == 0)
        m_summary->setText(tr("Device %1: every value is as its last signal.").arg(m_model.device()));
    else
        m_summary->setText(tr("Device %1: values that no signal announced: %2")
                               .arg(m_model.device(), QString::number(m_model.markCount())));
}
