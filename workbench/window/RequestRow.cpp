#include "RequestRow.h"

#include "ScenarioText.h"

#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>

#include <utility>

using namespace Qt::StringLiterals;

using Outcome = RequestOutcomes::Outcome;

namespace {

QString wordsOf(const QList<QLineEdit *> &fields)
{
    QStringList texts;
    for (const QLineEdit *field : fields)
        texts.append(field->text());
    return scenarioWords(texts);
}

QString outcomeText(Outcome outcome)
{
    switch (outcome) {
    case Outcome::None:
        break;
    case Outcome::Sent:
        return RequestRow::tr("sent");
    case Outcome::Pending:
        return RequestRow::tr("pending");
    case Outcome::Confirmed:
        return RequestRow::tr("confirmed");
    case Outcome::Refused:
        return RequestRow::tr("refused");
    case Outcome::Done:
        return RequestRow::tr("done");
    case Outcome::Wrong:
        return RequestRow::tr("unusable");
    }
    return {};
}

}  // namespace

RequestRow::RequestRow(const Request &request, QWidget *input, std::function<QString()> words)
    : m_request(request), m_value(new QLabel), m_outcome(new QLabel)
{
    const QString name = request.command;
    m_value->setObjectName(u"value-"_s + name);
    m_value->setTextFormat(Qt::PlainText);
    m_outcome->setObjectName(u"outcome-"_s + name);
    auto *button = new QPushButton(request.buttonText);
    button->setObjectName(u"send-"_s + name);
    button->setAccessibleName(request.title + u": "_s + request.buttonText);
    button->setToolTip(name);

    auto *head = new QHBoxLayout;
    head->addWidget(new QLabel(request.title));
    // An outcome must not widen the row.
    m_value->setWordWrap(true);
    head->addWidget(m_value, 1);
    head->addWidget(m_outcome);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addLayout(head);
    QHBoxLayout *last = head;
    if (input) {
        last = new QHBoxLayout;
        last->addWidget(input, 1);
        layout->addLayout(last);
    }
    last->addWidget(button);

    const auto send = [this, words = std::move(words)] { Q_EMIT wanted(m_request.command, words()); };
    connect(button, &QPushButton::clicked, this, send);
    const QList<QLineEdit *> fields = findChildren<QLineEdit *>();
    for (const QLineEdit *field : fields)
        connect(field, &QLineEdit::returnPressed, button, &QPushButton::click);
}

void RequestRow::setOutcome(Outcome outcome)
{
    m_outcome->setText(outcomeText(outcome));
    // What is not as it was wanted differs by more than its text.
    QFont font = m_outcome->font();
    font.setBold(outcome == Outcome::Pending || outcome == Outcome::Refused || outcome == Outcome::Wrong);
    m_outcome->setFont(font);
    m_outcome->setAccessibleName(tr("%1: %2").arg(m_request.title, m_outcome->text()));
}

void RequestRow::showValue(const QJsonObject &values)
{
    const QString value = valueIn(values);
    m_value->setText(value.isEmpty() ? QString() : tr("now %1").arg(value));
}

QString RequestRow::valueIn(const QJsonObject &values) const
{
    return values.value(m_request.getter).toString();
}

TextRequestRow::TextRequestRow(const Request &request, QWidget *input, const QList<QLineEdit *> &fields)
    : RequestRow(request, input, [fields] { return wordsOf(fields); }), m_fields(fields)
{}

void TextRequestRow::follow(const QJsonObject &values, bool mustFollow)
{
    const QString value = valueIn(values);
    const QStringList words = m_fields.size() == 1 ? QStringList{value} : value.split(u' ');
    for (qsizetype i = 0; i < m_fields.size(); ++i) {
        if (mustFollow || !m_fields.at(i)->isModified())
            m_fields.at(i)->setText(words.value(i));
    }
}
