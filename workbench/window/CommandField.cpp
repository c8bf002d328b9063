#include "CommandField.h"

#include <QtGui/QKeyEvent>
#include <QtWidgets/QAbstractItemView>
#include <QtWidgets/QCompleter>

using namespace Qt::StringLiterals;

CommandField::CommandField(Engine *engine, QWidget *parent) : QLineEdit(parent), m_engine(engine)
{
    setObjectName("commandField"_L1);
    setAccessibleName(tr("Command"));
    setPlaceholderText(tr("A command, for example: setReportRate 250"));
    // A file is for the window, not for the text.
    setAcceptDrops(false);
    auto *completer = new QCompleter(&m_commands, this);
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    setCompleter(completer);
    connect(this, &QLineEdit::returnPressed, this, &CommandField::sendLine);
    connect(engine, &Engine::started, this, [this] { m_sent.clear(); });
}

void CommandField::sendLine()
{
    // The key chooses a completion.
    if (completer()->popup()->isVisible() && completer()->popup()->currentIndex().isValid())
        return;
    const QString line = text().trimmed();
    if (line.isEmpty())
        return;
    if (!m_engine->isRunning()) {
        Q_EMIT notSent();
        return;
    }
    if (m_former.isEmpty() || m_former.last() != line)
        m_former.append(line);
    m_recalled = m_former.size();
    m_engine->send(line);
    m_sent.insert(m_engine->sentCount());
    clear();
}

void CommandField::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Up && m_recalled > 0)
        recall(m_recalled - 1);
    else if (event->key() == Qt::Key_Down && m_recalled < m_former.size())
        recall(m_recalled + 1);
    else
        QLineEdit::keyPressEvent(event);
}

void CommandField::recall(qsizetype index)
{
    if (m_recalled == m_former.size())
        m_unsent = text();
    m_recalled = index;
    setText(m_former.value(index, m_unsent));
}
