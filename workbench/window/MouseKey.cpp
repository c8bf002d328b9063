#include "MouseKey.h"

#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>

// Where the pointer is released does not matter: the finger leaves the button anyway.
bool MouseKey::hitButton(const QPoint &point) const
{
    return isDown() || QAbstractButton::hitButton(point);
}

void MouseKey::mouseMoveEvent(QMouseEvent *event)
{
    event->accept();
}

void MouseKey::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    paintFocus(painter, *this);
}

void MouseKey::paintFocus(QPainter &painter, const QWidget &widget)
{
    if (!widget.hasFocus())
        return;
    constexpr double width = 3;
    constexpr double radius = 5;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(widget.palette().color(QPalette::Highlight), width));
    painter.drawRoundedRect(QRectF(widget.rect()).adjusted(width / 2, width / 2, -width / 2, -width / 2),
                            radius, radius);
}
