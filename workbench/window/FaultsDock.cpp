#include "FaultsDock.h"

#include "DeviceState.h"

#include <QtWidgets/QScrollArea>
#include <QtWidgets/QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

struct Kind
{
    const char *word;
    const char *title;
};

// In the order in which they are shown.
constexpr Kind kinds[] = {
    {"request", QT_TRANSLATE_NOOP("FaultsDock", "Requests to the mouse")},
    {"report", QT_TRANSLATE_NOOP("FaultsDock", "Reports of the mouse")},
    {"read", QT_TRANSLATE_NOOP("FaultsDock", "Values that the library reads")},
};

}  // namespace

FaultsDock::FaultsDock(Engine *engine, QWidget *parent) : QWidget(parent), m_engine(engine)
{
    m_clear->setObjectName(u"faultsClear"_s);
    m_summary->setObjectName(u"faultsSummary"_s);
    connect(m_clear, &QPushButton::clicked, this, [this] { m_engine->send(u"clear-faults"_s); });

    auto *const layout = new QVBoxLayout(this);
    layout->addWidget(makeRows());
    auto *const bottom = new QHBoxLayout;
    bottom->addWidget(m_summary, 1);
    bottom->addWidget(m_clear);
    layout->addLayout(bottom);

    connect(engine, &Engine::started, this, [this] {
        m_asked.clear();
        for (FaultRow *row : std::as_const(m_rows))
            row->showProblem({});
    });
    connect(engine, &Engine::stateChanged, this, &FaultsDock::showState);
    connect(engine, &Engine::answered, this, &FaultsDock::showAnswer);
    connect(engine, &Engine::ended, this, [this] { showState({}); });
    showState(engine->state());
}

QWidget *FaultsDock::makeRows()
{
    m_grid->setColumnStretch(FaultRow::Value, 1);
    auto *const area = new QScrollArea(this);
    area->setObjectName(u"faultsRows"_s);
    area->setAccessibleName(tr("Faults, one row an operation"));
    area->setWidgetResizable(true);
    area->setWidget(m_rowsWidget);
    return area;
}

void FaultsDock::showState(const QJsonObject &state)
{
    addRows(state.value("operations"_L1).toArray());
    const QString current = DeviceState::currentId(state);
    QMap<QString, QStringList> inForce;
    const QJsonArray faults = state.value("faults"_L1).toArray();
    for (const auto item : faults) {
        const QJsonObject fault = item.toObject();
        const QString operation = fault["operation"_L1].toString();
        const QString text = fault["text"_L1].toString().mid(operation.size()).trimmed();
        const QString device = fault["device"_L1].toString();
        inForce[operation].append(
            device.isEmpty() || device == current ? text : tr("%1 for device %2").arg(text, device));
    }
    for (auto row = m_rows.cbegin(); row != m_rows.cend(); ++row)
        (*row)->showInForce(inForce.value(row.key()).join(u", "_s));
    m_summary->setText(faults.isEmpty() ? tr("No fault is in force.")
                                        : tr("Faults in force: %1").arg(faults.size()));
    m_clear->setEnabled(!faults.isEmpty());
    // A fault is one of the current device.
    m_rowsWidget->setEnabled(!current.isEmpty());
}

void FaultsDock::addRows(const QJsonArray &operations)
{
    if (operations.isEmpty() || !m_rows.isEmpty())
        return;
    for (const Kind &kind : kinds) {
        addHeading(tr(kind.title));
        for (const auto item : operations) {
            const QJsonObject operation = item.toObject();
            if (operation["kind"_L1].toString() == QLatin1StringView(kind.word))
                addRow(operation["name"_L1].toString());
        }
    }
    m_grid->setRowStretch(m_grid->rowCount(), 1);
}

void FaultsDock::addHeading(const QString &text)
{
    auto *const label = new QLabel(text, m_rowsWidget);
    QFont font = label->font();
    font.setBold(true);
    label->setFont(font);
    m_grid->addWidget(label, m_grid->rowCount(), 0, 1, FaultRow::ColumnCount);
}

void FaultsDock::addRow(const QString &operation)
{
    auto *const row = new FaultRow(operation, m_grid, this);
    m_rows.insert(operation, row);
    connect(row, &FaultRow::lineEntered, this, [this, row](const QString &line) {
        row->showProblem({});
        m_engine->send(line);
        m_asked.insert(m_engine->sentCount(), row);
    });
}

void FaultsDock::showAnswer(const Answer &answer)
{
    FaultRow *const row = m_asked.take(answer.number);
    if (row && answer.result != "done"_L1)
        row->showProblem(answer.message);
}
