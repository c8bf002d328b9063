#pragma once

#include "SessionWatch.h"

#include <QtWidgets/QToolBar>

class QLabel;
class QPlainTextEdit;
class QToolButton;

/// Appears when the child has ended or is silent: what happened, what the child wrote, and what the user can do.
class NoticeBar : public QToolBar
{
    Q_OBJECT

public:
    NoticeBar(Engine *engine, SessionWatch *watch, QWidget *parent = nullptr);

Q_SIGNALS:
    /// The button "Start Again".
    void startWanted();

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void fitHeight();
    void showEnd(const EngineEnd &end);
    void showSilence();
    void say(const QString &text, const QString &details);

    Engine *m_engine;
    SessionWatch *m_watch;
    QWidget *m_content;
    QLabel *m_text;
    QToolButton *m_stop;
    QToolButton *m_detailsButton;
    QPlainTextEdit *m_details;
    bool m_saysSilence = false;
};
