#pragma once

#include <QtCore/QJsonObject>
#include <QtWidgets/QTreeWidget>

/// The scenarios of a check under their features, with their verdicts.
class CheckTree : public QTreeWidget
{
    Q_OBJECT

public:
    /// Which scenarios are shown.
    enum class Filter { All, NotPassed, OneVerdict };

    explicit CheckTree(QWidget *parent = nullptr);

    void removeAll();
    void addVerdict(const QString &scenario, const QString &verdict);
    /// Completes what addVerdict() knows.
    void setReport(const QJsonObject &report);
    /// verdict: with OneVerdict.
    void setFilter(Filter filter, const QString &verdict = {});
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
    bool isShown(const QString &verdict) const;
    void setColor(QTreeWidgetItem *item) const;

    QHash<QString, QTreeWidgetItem *> m_features;
    QHash<QString, QTreeWidgetItem *> m_scenarios;
    QHash<QString, int> m_counts;  // by verdict
    Filter m_filter = Filter::All;
    QString m_wantedVerdict;
};
