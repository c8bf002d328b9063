#pragma once

#include "Engine.h"

#include <QtCore/QSet>
#include <QtCore/QStringListModel>
#include <QtWidgets/QLineEdit>

/// A line of a scenario by hand. Completes the names of commands and recalls former lines with Up and Down.
class CommandField : public QLineEdit
{
    Q_OBJECT

public:
    explicit CommandField(Engine *engine, QWidget *parent = nullptr);

    /// Whether the line with this number came from the field; once for each.
    bool takeSent(int number) { return m_sent.remove(number); }
    void setCommands(const QStringList &names) { m_commands.setStringList(names); }

Q_SIGNALS:
    /// There is no session to send it to.
    void notSent();

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    void sendLine();
    void recall(qsizetype index);

    Engine *m_engine;
    QStringListModel m_commands;
    QSet<int> m_sent;  // without an answer
    QStringList m_former;
    qsizetype m_recalled = 0;  // index of the line that is shown; size() for the one that is being written
    QString m_unsent;
};
