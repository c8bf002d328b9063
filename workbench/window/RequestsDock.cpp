#include "RequestsDock.h"

#include "DeviceState.h"
#include "LineSender.h"

#include <QtCore/QJsonArray>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr int slotCount = 5;
constexpr int buttonCount = 5;

template <typename Widget>
QWidget *besideEachOther(const QList<Widget *> &widgets)
{
    auto *whole = new QWidget;
    auto *layout = new QHBoxLayout(whole);
    layout->setContentsMargins({});
    for (Widget *widget : widgets)
        layout->addWidget(widget);
    return whole;
}

QStringList numbers(int first, int last)
{
    QStringList texts;
    for (int number = first; number <= last; ++number)
        texts.append(QString::number(number));
    return texts;
}

QStringList ratesOf(const QJsonObject &device)
{
    QStringList rates;
    const QJsonArray values = device["mouse"_L1]["reportRates"_L1].toArray();
    for (const auto value : values) {
        // A 0 ends the list.
        if (value.toInt() != 0)
            rates.append(QString::number(value.toInt()));
    }
    return rates;
}

void setItems(QComboBox &choice, const QStringList &items)
{
    QStringList shown;
    for (int index = 0; index < choice.count(); ++index)
        shown.append(choice.itemText(index));
    if (shown == items)
        return;
    const QString text = choice.currentText();
    const bool isModified = choice.lineEdit()->isModified();
    choice.clear();
    choice.addItems(items);
    choice.setEditText(text);
    choice.lineEdit()->setModified(isModified);
}

}  // namespace

RequestsDock::RequestsDock(Engine *engine, QWidget *parent) : QWidget(parent), m_layout(new QVBoxLayout(this))
{
    auto *message = new QLabel;
    message->setObjectName(u"requestsMessage"_s);
    m_outcomes = new RequestOutcomes(engine, new LineSender(engine, message, this), this);
    auto *settles = new QCheckBox(tr("Wait for the mouse's answer (settle)"));
    settles->setObjectName(u"requestsSettle"_s);
    settles->setToolTip(tr("Otherwise the next line comes while the request is under way."));
    settles->setChecked(true);

    m_rates = addChoice({tr("Report rate"), u"setReportRate"_s, u"reportRate"_s, tr("Set")},
                        u"requestReportRate"_s);
    addSlots();
    addChoice({tr("Active slot"), u"setActiveDpiSlotIndex"_s, u"activeDpiSlotIndex"_s, tr("Set")},
              u"requestActiveSlot"_s)
        ->addItems(numbers(1, slotCount));
    // 0 is the default, 6 the DPI button itself.
    addChoice({tr("DPI button"), u"setDpiButtonId"_s, u"dpiButtonId"_s, tr("Set")}, u"requestDpiButton"_s)
        ->addItems(numbers(0, buttonCount + 1));
    auto *dpi = new QLineEdit;
    dpi->setObjectName(u"requestDpiValue"_s);
    dpi->setAccessibleName(tr("DPI"));
    addTextRow({tr("DPI"), u"setDpiValue"_s, u"dpiValue"_s, tr("Set")}, dpi, {dpi});
    addDiversion();
    addSettings();
    m_layout->addWidget(settles);
    m_layout->addWidget(message);
    m_layout->addStretch();

    connect(settles, &QCheckBox::toggled, m_outcomes, &RequestOutcomes::setSettles);
    connect(m_outcomes, &RequestOutcomes::changed, this, &RequestsDock::showOutcomes);
    connect(engine, &Engine::stateChanged, this, &RequestsDock::showState);
    connect(engine, &Engine::ended, this, [this] { showState({}); });
    showState(engine->state());
}

QComboBox *RequestsDock::addChoice(const RequestRow::Request &request, const QString &name)
{
    auto *choice = new QComboBox;
    choice->setObjectName(name);
    choice->setAccessibleName(request.title);
    choice->setEditable(true);
    choice->setInsertPolicy(QComboBox::NoInsert);
    // What is chosen counts as typed, so that it stays.
    connect(choice, &QComboBox::activated, choice, [choice] { choice->lineEdit()->setModified(true); });
    addTextRow(request, choice, {choice->lineEdit()});
    return choice;
}

void RequestsDock::addSlots()
{
    QList<QLineEdit *> fields;
    for (int slot = 1; slot <= slotCount; ++slot) {
        auto *field = new QLineEdit;
        field->setObjectName(u"requestSlot%1"_s.arg(slot));
        field->setAccessibleName(tr("DPI of slot %1").arg(slot));
        field->setMinimumWidth(fontMetrics().averageCharWidth() * 6);
        fields.append(field);
    }
    addTextRow({tr("DPI slots"), u"setDpiSlotValues"_s, u"dpiSlotValues"_s, tr("Set")},
               besideEachOther(fields), fields);
}

void RequestsDock::addTextRow(const RequestRow::Request &request, QWidget *input,
                              const QList<QLineEdit *> &fields)
{
    auto *row = new TextRequestRow(request, input, fields);
    m_textRows.append(row);
    addRow(row);
}

void RequestsDock::addDiversion()
{
    for (int button = 1; button <= buttonCount; ++button) {
        auto *box = new QCheckBox(QString::number(button));
        box->setObjectName(u"requestDivert%1"_s.arg(button));
        box->setAccessibleName(tr("Divert button %1").arg(button));
        m_diverted.append(box);
    }
    addRow(new RequestRow({tr("Buttons to the host"), u"disbaleButtonsOrKeys"_s, {}, tr("Divert")},
                          besideEachOther(m_diverted), [this] { return divertedWords(); }));
    addRow(new RequestRow({tr("All buttons"), u"setButtonsOrKeysToDefault"_s, {}, tr("To default")}, nullptr,
                          [] { return QString(); }));
}

void RequestsDock::addSettings()
{
    auto *settings = new QLineEdit;
    settings->setObjectName(u"requestSettings"_s);
    settings->setAccessibleName(tr("Settings"));
    settings->setPlaceholderText(u"pointerSpeed=7 \"name=A mouse\""_s);
    settings->setToolTip(tr("NAME=VALUE with blanks between; quotes around what has a blank"));
    addRow(new RequestRow({tr("Settings"), u"applySettings"_s, {}, tr("Apply")}, settings,
                          [settings] { return settings->text().trimmed(); }));
    addRow(new RequestRow({tr("All settings"), u"resetSettings"_s, {}, tr("Reset")}, nullptr,
                          [] { return QString(); }));
}

void RequestsDock::addRow(RequestRow *row)
{
    m_rows.append(row);
    m_layout->addWidget(row);
    connect(row, &RequestRow::wanted, m_outcomes, &RequestOutcomes::send);
}

QString RequestsDock::divertedWords() const
{
    QStringList words;
    for (const QCheckBox *box : m_diverted) {
        if (box->isChecked())
            words.append(box->text());
    }
    return words.join(u' ');
}

void RequestsDock::showState(const QJsonObject &state)
{
    const QJsonObject device = DeviceState::currentDevice(state);
    const QJsonObject values = device.value("values"_L1).toObject();
    const QString id = DeviceState::idOf(device);
    const bool isOther = std::exchange(m_device, id) != id;
    setItems(*m_rates, ratesOf(device));
    for (RequestRow *row : std::as_const(m_rows)) {
        row->setEnabled(!device.isEmpty());
        row->showValue(values);
    }
    for (TextRequestRow *row : std::as_const(m_textRows))
        row->follow(values, isOther);
    showDiversion(device, isOther);
    showOutcomes();
}

// The boxes show the mouse's diversion whenever that changes.
void RequestsDock::showDiversion(const QJsonObject &device, bool isOther)
{
    const QJsonValue diversion = device["mouse"_L1]["disabledButtonsOrKeys"_L1];
    if (!isOther && diversion == m_shownDiversion)
        return;
    m_shownDiversion = diversion;
    for (int button = 1; button <= buttonCount; ++button)
        m_diverted.at(button - 1)->setChecked(diversion.toArray().contains(button));
}

void RequestsDock::showOutcomes()
{
    for (RequestRow *row : std::as_const(m_rows))
        row->setOutcome(m_outcomes->outcome(row->command()));
}
