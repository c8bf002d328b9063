#include "MouseView.h"

#include "MouseKey.h"

#include <QtGui/QKeyEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QApplication>

using namespace Qt::StringLiterals;

namespace {

// Empty for a key that is no button's.
QString buttonOf(const QKeyEvent &event)
{
    const int key = event.key();
    if (event.modifiers() & ~Qt::KeypadModifier)
        return {};
    if (key >= Qt::Key_1 && key <= Qt::Key_5)
        return QString::number(key - Qt::Key_0);
    return key == Qt::Key_D ? u"dpi"_s : key == Qt::Key_S ? u"smart"_s : QString();
}

}  // namespace

MouseView::MouseView(QWidget *parent) : QWidget(parent)
{
    setObjectName(u"mouseView"_s);
    setAccessibleName(tr("The mouse"));
    setFocusPolicy(Qt::StrongFocus);
    // The small ones are later, and so above the large ones.
    addButton(u"1"_s, tr("Button 1"));
    addButton(u"2"_s, tr("Button 2"));
    addButton(u"3"_s, tr("Button 3, the wheel"));
    addButton(u"4"_s, tr("Button 4"));
    addButton(u"5"_s, tr("Button 5"));
    addButton(u"dpi"_s, tr("DPI button"));
    addButton(u"smart"_s, tr("Smart-pointer key"));
    connect(qApp, &QApplication::focusChanged, this, [this](const QWidget * /*old*/, const QWidget *now) {
        if (!now || (now != this && !isAncestorOf(now)))
            releaseKeys();
    });
    draw();
}

void MouseView::addButton(const QString &button, const QString &name)
{
    auto *key = new MouseKey(this);
    key->setObjectName(u"mouseButton-"_s + button);
    key->setAccessibleName(name);
    key->setToolTip(name);
    // A click gives the focus to the whole mouse, for its keys.
    key->setFocusPolicy(Qt::TabFocus);
    connect(key, &QAbstractButton::pressed, this, [this, button] { press(button); });
    connect(key, &QAbstractButton::released, this, [this, button] { release(button); });
    m_buttons.insert(button, key);
}

void MouseView::setMouse(const MouseStatus &mouse)
{
    m_content.mouse = mouse;
    setEnabled(mouse.hasMouse);
    draw();
}

void MouseView::setCtrlPressed(bool isPressed)
{
    m_content.isCtrlPressed = isPressed;
    draw();
}

QSize MouseView::sizeHint() const
{
    return m_picture.size().toSize();
}

QSize MouseView::minimumSizeHint() const
{
    return sizeHint() * 3 / 4;
}

void MouseView::keyPressEvent(QKeyEvent *event)
{
    const QString button = buttonOf(*event);
    if (button.isEmpty()) {
        QWidget::keyPressEvent(event);
        return;
    }
    if (event->isAutoRepeat() || m_content.pressed.contains(button))
        return;
    m_pressedByKey.insert(button);
    press(button);
}

void MouseView::keyReleaseEvent(QKeyEvent *event)
{
    const QString button = buttonOf(*event);
    if (button.isEmpty())
        QWidget::keyReleaseEvent(event);
    else if (!event->isAutoRepeat() && m_pressedByKey.remove(button))
        release(button);
}

void MouseView::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::EnabledChange)
        draw();
    if (event->type() == QEvent::EnabledChange && !isEnabled())
        releaseKeys();
    QWidget::changeEvent(event);
}

void MouseView::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    m_picture.paint(painter, rect());
    MouseKey::paintFocus(painter, *this);
}

void MouseView::resizeEvent(QResizeEvent * /*event*/)
{
    for (auto button = m_buttons.cbegin(); button != m_buttons.cend(); ++button)
        button.value()->setGeometry(m_picture.buttonArea(button.key(), rect()).toAlignedRect());
}

void MouseView::press(const QString &button)
{
    if (m_content.pressed.contains(button))
        return;
    m_content.pressed.insert(button);
    draw();
    Q_EMIT buttonPressed(button);
}

void MouseView::release(const QString &button)
{
    if (!m_content.pressed.remove(button))
        return;
    m_pressedByKey.remove(button);
    draw();
    Q_EMIT buttonReleased(button);
}

// Whoever has the focus now also has the keys' releases.
void MouseView::releaseKeys()
{
    const QSet<QString> pressed = m_pressedByKey;
    for (const QString &button : pressed)
        release(button);
}

void MouseView::draw()
{
    m_picture.setContent(m_content, palette());
    update();
}
