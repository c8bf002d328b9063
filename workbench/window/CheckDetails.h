#pragma once

#include <QtCore/QJsonObject>
#include <QtWidgets/QTextBrowser>

/// What a check found out about one scenario, to read.
class CheckDetails : public QTextBrowser
{
    Q_OBJECT

public:
    explicit CheckDetails(QWidget *parent = nullptr);

    /// scenario: as the report has it; empty for nothing. wrapper: what the repeating command has in front.
    void showScenario(const QJsonObject &scenario, const QString &command);

protected:
    void changeEvent(QEvent *event) override;

private:
    void render();

    QJsonObject m_scenario;
    QString m_command;
};
