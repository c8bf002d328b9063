#include "LineSender.h"

#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>

using namespace Qt::StringLiterals;

LineSender::LineSender(Engine *engine, QLabel *message, QObject *parent)
    : QObject(parent), m_engine(engine), m_message(message)
{
    m_message->setTextFormat(Qt::PlainText);
    m_message->setWordWrap(true);
    m_message->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_message->hide();
    connect(engine, &Engine::answered, this, &LineSender::takeAnswer);
    connect(engine, &Engine::started, this, &LineSender::clear);
}

int LineSender::send(const QString &line)
{
    const int before = m_engine->sentCount();
    m_message->hide();
    m_engine->send(line);
    const int number = m_engine->sentCount();
    if (number == before)
        return 0;
    m_numbers.insert(number);
    return number;
}

QPushButton *LineSender::makeButton(const QString &text, const QString &objectName, const QString &line)
{
    auto *button = new QPushButton(text);
    button->setObjectName(objectName);
    connect(button, &QPushButton::clicked, this, [this, line] { send(line); });
    return button;
}

void LineSender::takeAnswer(const Answer &answer)
{
    if (!m_numbers.remove(answer.number))
        return;
    if (answer.result != "done"_L1) {
        m_message->setText(answer.command + u": "_s + answer.message);
        m_message->show();
    }
    Q_EMIT answered(answer);
}

void LineSender::clear()
{
    m_numbers.clear();
    m_message->hide();
}
