#include "MiceDock.h"

#include "DeviceState.h"
#include "ScenarioText.h"

#include <QtCore/QJsonArray>
#include <QtCore/QSignalBlocker>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSpinBox>
#include <QtWidgets/QTreeWidget>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr int mostReceivers = 9;

// In the order of the entries of the choice.
enum Kind { Mouse, NoPhysicalDevice, NoReceiver };

QTreeWidgetItem *itemOf(const QTreeWidget &list, const QString &id)
{
    for (int row = 0; row < list.topLevelItemCount(); ++row) {
        if (list.topLevelItem(row)->text(0) == id)
            return list.topLevelItem(row);
    }
    return nullptr;
}

}  // namespace

MiceDock::MiceDock(Engine *engine, QWidget *parent) : QWidget(parent), m_engine(engine)
{
    auto *message = new QLabel;
    message->setObjectName(u"miceMessage"_s);
    m_sender = new LineSender(engine, message, this);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(makeList(), 1);
    layout->addWidget(makeForm());
    layout->addWidget(message);
    connect(engine, &Engine::stateChanged, this, &MiceDock::showState);
    connect(engine, &Engine::ended, this, [this] { showState({}); });
    connect(engine, &Engine::started, this, [this] { m_receiverInForce = u"1"_s; });
    // Other docks and scenarios choose a receiver, too.
    connect(engine, &Engine::sent, this, [this](int /*number*/, const QString &line) {
        const QString words = line.simplified();
        if (words.startsWith("receiver "_L1))
            m_receiverInForce = words.section(u' ', 1, 1);
    });
    showState(engine->state());
}

QWidget *MiceDock::makeList()
{
    m_list = new QTreeWidget;
    m_list->setObjectName(u"miceList"_s);
    m_list->setAccessibleName(tr("Devices"));
    m_list->setHeaderLabels({tr("Device"), tr("Started"), tr("Mouse"), tr("Receiver")});
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    // The form below it is in sight, too.
    m_list->setSizeAdjustPolicy(QAbstractScrollArea::AdjustToContents);
    m_list->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    connect(m_list, &QTreeWidget::currentItemChanged, this, &MiceDock::useSelected);

    m_actions = new QWidget;
    auto *buttons = new QHBoxLayout(m_actions);
    buttons->setContentsMargins({});
    buttons->addWidget(m_sender->makeButton(tr("Start"), u"miceStart"_s, u"start"_s));
    buttons->addWidget(m_sender->makeButton(tr("Stop"), u"miceStop"_s, u"stop"_s));
    buttons->addWidget(m_sender->makeButton(tr("Remove"), u"miceRemove"_s, u"remove"_s));
    buttons->addStretch();

    auto *widget = new QWidget;
    auto *layout = new QVBoxLayout(widget);
    layout->setContentsMargins({});
    layout->addWidget(m_list);
    layout->addWidget(m_actions);
    return widget;
}

QWidget *MiceDock::makeForm()
{
    m_kind = new QComboBox;
    m_kind->setObjectName(u"miceKind"_s);
    m_kind->setAccessibleName(tr("Kind of the new device"));
    m_kind->addItems({tr("A mouse"), tr("No mouse: no physical device"), tr("No mouse: no receiver")});
    m_id = new QLineEdit;
    m_id->setObjectName(u"miceId"_s);
    m_id->setAccessibleName(tr("Id of the new device"));
    m_fields = new QLineEdit;
    m_fields->setObjectName(u"miceFields"_s);
    m_fields->setAccessibleName(tr("Fields of the new mouse"));
    m_fields->setPlaceholderText(u"batteryLevel=20 losesSettingsAsleep=true"_s);
    m_receiver = new QSpinBox;
    m_receiver->setObjectName(u"miceReceiver"_s);
    m_receiver->setAccessibleName(tr("Receiver of the new device"));
    m_receiver->setRange(1, mostReceivers);
    m_add = new QPushButton(tr("Add"));
    m_add->setObjectName(u"miceAdd"_s);

    auto *group = new QGroupBox(tr("New device"));
    auto *layout = new QFormLayout(group);
    layout->setRowWrapPolicy(QFormLayout::WrapLongRows);
    layout->addRow(tr("Kind"), m_kind);
    layout->addRow(tr("Id"), m_id);
    layout->addRow(tr("Fields"), m_fields);
    layout->addRow(tr("Receiver"), m_receiver);
    layout->addRow(m_add);
    connect(m_add, &QPushButton::clicked, this, &MiceDock::add);
    connect(m_id, &QLineEdit::returnPressed, m_add, &QPushButton::click);
    connect(m_id, &QLineEdit::textChanged, this, &MiceDock::adjustForm);
    connect(m_fields, &QLineEdit::returnPressed, m_add, &QPushButton::click);
    connect(m_kind, &QComboBox::currentIndexChanged, this, &MiceDock::adjustForm);
    return group;
}

void MiceDock::add()
{
    const QString id = scenarioWords({m_id->text()});
    const QString receiver = m_receiver->text();
    m_id->setModified(false);
    if (m_kind->currentIndex() != Mouse) {
        m_sender->send(
            u"device %1 %2"_s.arg(id, m_kind->currentIndex() == NoPhysicalDevice ? u"none"_s : u"other"_s));
        return;
    }
    if (receiver != m_receiverInForce)
        m_sender->send(u"receiver "_s + receiver);
    // The fields are words of a scenario already.
    m_sender->send((u"mouse "_s + id + u' ' + m_fields->text()).trimmed());
}

void MiceDock::useSelected(const QTreeWidgetItem *item)
{
    if (item && item->text(0) != DeviceState::currentId(m_engine->state()))
        m_sender->send(u"use "_s + item->text(0));
}

// Only the first state has them.
void MiceDock::showFields(const QJsonObject &fields)
{
    QStringList lines{
        tr("FIELD=VALUE,... with blanks between the fields; quotes around what has a blank. Without them:")};
    for (auto field = fields.begin(); field != fields.end(); ++field) {
        const QVariant value = field->toVariant();
        lines.append(field.key() + u'=' +
                     (field->isArray() ? value.toStringList().join(u',') : value.toString()));
    }
    m_fields->setToolTip(lines.join(u'\n'));
}

void MiceDock::showState(const QJsonObject &state)
{
    if (const QJsonValue fields = state.value("mouseFields"_L1); fields.isObject())
        showFields(fields.toObject());
    m_isLoaded = state.value("isLoaded"_L1).toBool();
    showDevices(state);
    if (!m_id->isModified())
        m_id->setText(freeId());
    m_actions->setEnabled(!DeviceState::currentId(state).isEmpty());
    adjustForm();
}

// Items stay as long as their devices do, so that a selection and the reading of a screen reader do.
void MiceDock::showDevices(const QJsonObject &state)
{
    const QSignalBlocker blocker(m_list);
    for (int row = m_list->topLevelItemCount() - 1; row >= 0; --row) {
        if (DeviceState::device(state, m_list->topLevelItem(row)->text(0)).isEmpty())
            delete m_list->takeTopLevelItem(row);
    }
    const QJsonArray devices = state.value("devices"_L1).toArray();
    for (const auto value : devices) {
        const QJsonObject device = value.toObject();
        const QString id = DeviceState::idOf(device);
        QTreeWidgetItem *item = itemOf(*m_list, id);
        if (!item)
            item = new QTreeWidgetItem(m_list, {id});
        const auto yesOrNo = [&](QLatin1StringView key) {
            return device.value(key).toBool() ? tr("yes") : tr("no");
        };
        item->setText(1, device.value("isStopped"_L1).toBool() ? tr("stopped") : yesOrNo("isStarted"_L1));
        item->setText(2, yesOrNo("hasMouse"_L1));
        item->setText(3, device.value("hasMouse"_L1).toBool()
                             ? QString::number(device.value("receiver"_L1).toInt(1))
                             : QString());
    }
    showCurrent(DeviceState::currentId(state));
}

// In bold, too: some styles hardly show the selection of a list without the focus.
void MiceDock::showCurrent(const QString &id)
{
    for (int row = 0; row < m_list->topLevelItemCount(); ++row) {
        QTreeWidgetItem *item = m_list->topLevelItem(row);
        QFont font = m_list->font();
        font.setBold(item->text(0) == id);
        for (int column = 0; column < m_list->columnCount(); ++column)
            item->setFont(column, font);
    }
    m_list->setCurrentItem(itemOf(*m_list, id));
}

void MiceDock::adjustForm()
{
    const bool isMouse = m_kind->currentIndex() == Mouse;
    m_fields->setEnabled(isMouse);
    m_receiver->setEnabled(isMouse);
    m_add->setEnabled(m_isLoaded && !m_id->text().isEmpty());
}

QString MiceDock::freeId() const
{
    quint64 id = 1;
    while (itemOf(*m_list, QString::number(id)))
        ++id;
    return QString::number(id);
}
