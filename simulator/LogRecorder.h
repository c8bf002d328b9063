#pragma once

#include <QtCore/QtGlobal>
#include <QtCore/QtMessageHandler>

class Timeline;

/// Writes every line of Qt's message logger, of whatever category and thread, to the timeline instead of to
/// stderr, as long as it lives. A fatal line goes to the handler that was in force before, too.
/// A library's log lines come only while its log switches are on (PluginHost::initialize()).
/// Recorders may be nested; the one made last gets the lines. Made and deleted on one thread.
class LogRecorder
{
public:
    explicit LogRecorder(Timeline &timeline);
    ~LogRecorder();
    Q_DISABLE_COPY_MOVE(LogRecorder)

private:
    static void handle(QtMsgType severity, const QMessageLogContext &context, const QString &text);

    Timeline &m_timeline;
    QtMessageHandler m_previous = nullptr;
};
