#pragma once

#include "LineSender.h"
#include "MouseStatus.h"

#include <QtWidgets/QWidget>

class MouseView;
class QLabel;
class QProgressBar;

/// The current device's mouse: drawn, pressed, sent to sleep and drained, and the Ctrl key that the host sees.
class MouseDock : public QWidget
{
    Q_OBJECT

public:
    explicit MouseDock(Engine *engine, QWidget *parent = nullptr);

private:
    QWidget *makeActions();
    static QString statusText(const QJsonObject &device, const MouseStatus &mouse);
    void showState(const QJsonObject &state);
    void showCtrl(const QList<Entry> &entries);
    void showCtrl();
    void forget();

    MouseView *m_view;
    QLabel *m_status;
    QLabel *m_ctrl;
    QProgressBar *m_battery;
    QWidget *m_actions;
    LineSender *m_sender;
    bool m_isCtrlPressed = false;
    int m_ctrlPresses = 0;  // since the child's start
};
