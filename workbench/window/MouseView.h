#pragma once

#include "MousePicture.h"

#include <QtCore/QHash>
#include <QtWidgets/QWidget>

class MouseKey;

/// The drawn mouse. Its buttons are pressed and released with the pointer, with the keys 1 to 5, D and S, or with the
/// space key while a button has the focus.
class MouseView : public QWidget
{
    Q_OBJECT

public:
    explicit MouseView(QWidget *parent = nullptr);

    void setMouse(const MouseStatus &mouse);
    void setCtrlPressed(bool isPressed);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// button: 1 to 5, dpi or smart.
    void buttonPressed(const QString &button);
    void buttonReleased(const QString &button);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void keyReleaseEvent(QKeyEvent *event) override;
    void changeEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void addButton(const QString &button, const QString &name);
    void press(const QString &button);
    void release(const QString &button);
    void releaseKeys();
    void draw();

    MousePicture m_picture;
    MousePicture::Content m_content;
    QHash<QString, MouseKey *> m_buttons;
    QSet<QString> m_pressedByKey;
};
