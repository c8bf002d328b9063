#pragma once

#include "RequestRow.h"

class QCheckBox;
class QComboBox;
class QVBoxLayout;

/// What a host asks the current device for. The fields take any text; each request shows its outcome and the device's
/// value.
class RequestsDock : public QWidget
{
    Q_OBJECT

public:
    explicit RequestsDock(Engine *engine, QWidget *parent = nullptr);

private:
    void addSlots();
    QComboBox *addChoice(const RequestRow::Request &request, const QString &name);
    void addDiversion();
    void addSettings();
    void addTextRow(const RequestRow::Request &request, QWidget *input, const QList<QLineEdit *> &fields);
    void addRow(RequestRow *row);
    QString divertedWords() const;

    void showState(const QJsonObject &state);
    void showDiversion(const QJsonObject &device, bool isOther);
    void showOutcomes();

    RequestOutcomes *m_outcomes;
    QVBoxLayout *m_layout;
    QList<RequestRow *> m_rows;
    QList<TextRequestRow *> m_textRows;
    QComboBox *m_rates = nullptr;
    QList<QCheckBox *> m_diverted;  // button 1 first
    QJsonValue m_shownDiversion;
    QString m_device;  // whose values are shown
};
