#pragma once

#include "RequestOutcomes.h"

#include <QtWidgets/QWidget>

#include <functional>

class QLabel;
class QLineEdit;

/// One request: its fields, a button that sends it, its outcome and the device's value.
class RequestRow : public QWidget
{
    Q_OBJECT

public:
    struct Request
    {
        QString title;
        /// The operation's name, as a scenario has it.
        QString command;
        /// Of the value that it changes; empty when no getter answers it.
        QString getter;
        QString buttonText;
    };
    /// input: what is beside the button; may be null. words: the arguments, as a scenario writes them.
    RequestRow(const Request &request, QWidget *input, std::function<QString()> words);

    QString command() const { return m_request.command; }
    void setOutcome(RequestOutcomes::Outcome outcome);
    /// values: of all getters, by name.
    void showValue(const QJsonObject &values);

protected:
    /// Empty when it is not known.
    QString valueIn(const QJsonObject &values) const;

Q_SIGNALS:
    void wanted(const QString &command, const QString &words);

private:
    const Request m_request;
    QLabel *m_value;
    QLabel *m_outcome;
};

/// A row with fields that take any text, as words of their own. They show the device's values until they are edited.
class TextRequestRow : public RequestRow
{
    Q_OBJECT

public:
    /// fields: in the order of the words; they are the input's or the input itself.
    TextRequestRow(const Request &request, QWidget *input, const QList<QLineEdit *> &fields);

    /// The fields show the value, those that were edited only if they must. values: as in showValue().
    void follow(const QJsonObject &values, bool mustFollow);

private:
    const QList<QLineEdit *> m_fields;
};
