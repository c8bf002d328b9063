#include "MouseDock.h"

#include "DeviceState.h"
#include "MouseView.h"

#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QProgressBar>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSpinBox>

using namespace Qt::StringLiterals;

namespace {

constexpr int fullBattery = 100;  // percent

}  // namespace

QString MouseDock::statusText(const QJsonObject &device, const MouseStatus &mouse)
{
    if (device.isEmpty())
        return tr("There is no device.");
    const QString id = DeviceState::idOf(device);
    if (!mouse.hasMouse)
        return tr("Device %1 has no mouse.").arg(id);
    const QString settings = tr("Mouse %1: slot %2, %3 DPI, %4 Hz, %5")
                                 .arg(id)
                                 .arg(mouse.activeSlot)
                                 .arg(mouse.dpi)
                                 .arg(mouse.reportRate)
                                 .arg(mouse.isAsleep ? tr("asleep") : tr("awake"));
    const QString buttons = tr("held: %1; diverted to the host: %2")
                                .arg(listOf(mouse.heldButtons), listOf(mouse.divertedButtons));
    return settings + u'\n' + buttons;
}

MouseDock::MouseDock(Engine *engine, QWidget *parent)
    : QWidget(parent), m_view(new MouseView), m_status(new QLabel), m_ctrl(new QLabel)
{
    auto *message = new QLabel;
    message->setObjectName(u"mouseMessage"_s);
    m_sender = new LineSender(engine, message, this);
    m_status->setObjectName(u"mouseStatus"_s);
    m_status->setWordWrap(true);
    // Two lines from the start, so that the mouse keeps its size.
    m_status->setMinimumHeight(2 * fontMetrics().lineSpacing());
    m_ctrl->setObjectName(u"mouseCtrl"_s);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_view, 1);
    layout->addWidget(m_status);
    layout->addWidget(m_ctrl);
    layout->addWidget(makeActions());
    layout->addWidget(message);
    connect(m_view, &MouseView::buttonPressed, this,
            [this](const QString &button) { m_sender->send(u"press "_s + button); });
    connect(m_view, &MouseView::buttonReleased, this,
            [this](const QString &button) { m_sender->send(u"release "_s + button); });
    connect(engine, &Engine::stateChanged, this, &MouseDock::showState);
    connect(engine, &Engine::entriesCame, this, qOverload<const QList<Entry> &>(&MouseDock::showCtrl));
    connect(engine, &Engine::started, this, &MouseDock::forget);
    connect(engine, &Engine::ended, this, &MouseDock::forget);
    showState(engine->state());
    showCtrl();
}

QWidget *MouseDock::makeActions()
{
    m_battery = new QProgressBar;
    m_battery->setObjectName(u"mouseBattery"_s);
    m_battery->setAccessibleName(tr("Battery"));
    m_battery->setRange(0, fullBattery);
    auto *percent = new QSpinBox;
    percent->setObjectName(u"mousePercent"_s);
    percent->setAccessibleName(tr("Percent to take from the battery; negative charges it"));
    percent->setToolTip(percent->accessibleName());
    percent->setRange(-fullBattery, fullBattery);
    percent->setValue(10);
    percent->setSuffix(tr(" %"));
    auto *drain = new QPushButton(tr("Drain"));
    drain->setObjectName(u"mouseDrain"_s);
    connect(drain, &QPushButton::clicked, this,
            [this, percent] { m_sender->send(u"drain "_s + QString::number(percent->value())); });

    m_actions = new QWidget;
    auto *layout = new QHBoxLayout(m_actions);
    layout->setContentsMargins({});
    layout->addWidget(m_sender->makeButton(tr("Sleep"), u"mouseSleep"_s, u"sleep"_s));
    layout->addWidget(m_sender->makeButton(tr("Wake"), u"mouseWake"_s, u"wake"_s));
    layout->addWidget(m_battery, 1);
    layout->addWidget(percent);
    layout->addWidget(drain);
    return m_actions;
}

void MouseDock::showState(const QJsonObject &state)
{
    const QJsonObject device = DeviceState::currentDevice(state);
    const MouseStatus mouse = MouseStatus::of(device);
    m_view->setMouse(mouse);
    m_actions->setEnabled(mouse.hasMouse);
    m_battery->setEnabled(mouse.hasBatteryLevel);
    m_battery->setValue(mouse.batteryLevel);
    m_status->setText(statusText(device, mouse));
    m_view->setAccessibleDescription(m_status->text());
}

void MouseDock::showCtrl(const QList<Entry> &entries)
{
    for (const Entry &entry : entries) {
        if (entry.kind != "host"_L1 || entry.name != "setCtrlKeyPressed"_L1)
            continue;
        m_isCtrlPressed = entry.arguments.first().toBool();
        m_ctrlPresses += m_isCtrlPressed ? 1 : 0;
    }
    showCtrl();
}

void MouseDock::showCtrl()
{
    m_view->setCtrlPressed(m_isCtrlPressed);
    const QString text = m_isCtrlPressed ? tr("The host sees Ctrl down; presses so far: %1")
                                         : tr("The host sees Ctrl up; presses so far: %1");
    m_ctrl->setText(text.arg(m_ctrlPresses));
}

void MouseDock::forget()
{
    m_isCtrlPressed = false;
    m_ctrlPresses = 0;
    showState({});
    showCtrl();
}
