#pragma once

#include <QtWidgets/QAbstractButton>

/// A place of the drawn mouse that can be pressed. It draws nothing but its focus. pressed() and released() come as often
/// as each other, also when the pointer leaves it meanwhile.
class MouseKey : public QAbstractButton
{
    Q_OBJECT

public:
    using QAbstractButton::QAbstractButton;

    /// Draws a ring around the widget if it has the focus.
    static void paintFocus(QPainter &painter, const QWidget &widget);

protected:
    bool hitButton(const QPoint &point) const override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
};
