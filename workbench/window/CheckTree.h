#pragma once

#include <QtCore/QJsonObject>
#include <QtWidgets/QTreeWidget>

/// The scenarios of a check under their features, with their verdicts.
class CheckTree : public QTreeWidget
{
    Q_OBJECT

public:
    explicit CheckTree(QWidget *parent = nullptr);

    void removeAll();
    void addVerdict(const QString &scenario, const QString &verdict);
    /// Completes what addVerdict() knows.
    void setReport(const QJsonObject &report);
    /// Scenarios with these verdicts are not shown.
    void hideVerdicts(const QStringList &verdicts);
    /// Selects the first scenario that went wrong, if there is one.
    void selectFirstFailure();

    int count(const QString &verdict) const { return m_counts.value(verdict); }
    int scenarioCount() const { return static_cast<int>(m_scenarios.size()); }
    /// How many there are of each verdict: "1 fail, 44 pass".
    QString countText() const;
    /// As the report has it; with no more than name and verdict before there is one, and empty when none is current.
    QJsonObject currentScenario() const;

Q_SIGNALS:
    void currentScenarioChanged();
    void scenarioActivated();

protected:
    void changeEvent(QEvent *event) override;

private:
    QTreeWidgetItem *featureItem(const QString &name);
    void show(QTreeWidgetItem *item);
    void noteCounts(QTreeWidgetItem *feature);
    void setColor(QTreeWidgetItem *item) const;

    QHash<QString, QTreeWidgetItem *> m_features;
    QHash<QString, QTreeWidgetItem *> m_scenarios;
    QHash<QString, int> m_counts;  // by verdict
    QStringList m_hiddenVerdicts;
};
