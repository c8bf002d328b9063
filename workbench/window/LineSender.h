#pragma once

#include "Engine.h"

#include <QtCore/QObject>
#include <QtCore/QSet>

class QLabel;
class QPushButton;

/// Sends the lines of one dock and answers which of the child's answers belong to them.
class LineSender : public QObject
{
    Q_OBJECT

public:
    /// message shows what was wrong with a line, until the next one is sent; it is hidden while nothing was. Both must
    /// outlive the object.
    LineSender(Engine *engine, QLabel *message, QObject *parent);

    /// Returns the line's number; 0 when there is no child to send it to.
    int send(const QString &line);
    /// A button that sends the line.
    QPushButton *makeButton(const QString &text, const QString &objectName, const QString &line);

Q_SIGNALS:
    /// To one of these lines.
    void answered(const Answer &answer);

private:
    void takeAnswer(const Answer &answer);
    void clear();

    Engine *m_engine;
    QLabel *m_message;
    QSet<int> m_numbers;  // without an answer
};
