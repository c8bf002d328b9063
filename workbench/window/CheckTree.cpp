#include "CheckTree.h"

#include "CheckReport.h"
#include "MixedColor.h"

#include <QtCore/QEvent>
#include <QtCore/QJsonArray>
#include <QtWidgets/QHeaderView>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

enum Column { NameColumn, VerdictColumn };
constexpr int scenarioRole = Qt::UserRole;
constexpr int featureRole = Qt::UserRole + 1;  // its name

QString verdictOf(const QTreeWidgetItem *item)
{
    return item->data(NameColumn, scenarioRole).toJsonObject().value("verdict"_L1).toString();
}

QString countsAsText(const QHash<QString, int> &counts)
{
    QStringList parts;
    const QList<Verdict> verdicts = allVerdicts();
    for (const Verdict verdict : verdicts) {
        if (const int number = counts.value(wordOf(verdict)))
            parts.append(u"%1 %2"_s.arg(number).arg(wordOf(verdict)));
    }
    return parts.join(u", "_s);
}

bool wentWrong(const QString &verdict)
{
    return verdict != wordOf(Verdict::Pass) && verdict != wordOf(Verdict::Skipped) &&
           verdict != wordOf(Verdict::Waived);
}

}  // namespace

CheckTree::CheckTree(QWidget *parent) : QTreeWidget(parent)
{
    setHeaderLabels({tr("Scenario"), tr("Verdict")});
    setUniformRowHeights(true);
    // A dock is narrow, and the names are long: "/home/.../mine.kvx".
    setIndentation(indentation() / 2);
    setTextElideMode(Qt::ElideMiddle);
    sortByColumn(NameColumn, Qt::AscendingOrder);
    setSortingEnabled(true);
    // A narrow tree shortens the names rather than hide the verdicts.
    header()->setStretchLastSection(false);
    header()->setSectionResizeMode(NameColumn, QHeaderView::Stretch);
    header()->setSectionResizeMode(VerdictColumn, QHeaderView::ResizeToContents);
    connect(this, &QTreeWidget::currentItemChanged, this, &CheckTree::currentScenarioChanged);
    connect(this, &QTreeWidget::itemActivated, this, [this](const QTreeWidgetItem *item) {
        if (item->parent())
            Q_EMIT scenarioActivated();
    });
}

void CheckTree::removeAll()
{
    m_features.clear();
    m_scenarios.clear();
    m_counts.clear();
    clear();
}

void CheckTree::addVerdict(const QString &scenario, const QString &verdict)
{
    auto *const item = new QTreeWidgetItem(featureItem(featureOf(scenario)));
    m_scenarios.insert(scenario, item);
    item->setData(NameColumn, scenarioRole, QJsonObject{{u"name"_s, scenario}, {u"verdict"_s, verdict}});
    ++m_counts[verdict];
    show(item);
}

void CheckTree::setReport(const QJsonObject &report)
{
    const QJsonArray scenarios = report.value("scenarios"_L1).toArray();
    for (const auto &value : scenarios) {
        const QJsonObject scenario = value.toObject();
        const QString name = scenario.value("name"_L1).toString();
        if (!m_scenarios.contains(name))
            addVerdict(name, scenario.value("verdict"_L1).toString());
        m_scenarios.value(name)->setData(NameColumn, scenarioRole, scenario);
        m_scenarios.value(name)->setToolTip(NameColumn,
                                            name + u": "_s + scenario.value("title"_L1).toString());
    }
    Q_EMIT currentScenarioChanged();
}

QTreeWidgetItem *CheckTree::featureItem(const QString &name)
{
    QTreeWidgetItem *&item = m_features[name];
    if (!item) {
        item = new QTreeWidgetItem(this);
        item->setData(NameColumn, featureRole, name);
        // Its counts must not widen the column of the verdicts.
        item->setFirstColumnSpanned(true);
    }
    return item;
}

void CheckTree::show(QTreeWidgetItem *item)
{
    const QString name = item->data(NameColumn, scenarioRole).toJsonObject().value("name"_L1).toString();
    QTreeWidgetItem *const feature = item->parent();
    const bool isInFolder = name.startsWith(featureOf(name) + u'/');
    item->setText(NameColumn, isInFolder ? name.section(u'/', 1) : name);
    item->setToolTip(NameColumn, name);
    item->setText(VerdictColumn, verdictOf(item));
    setColor(item);
    item->setHidden(m_hiddenVerdicts.contains(verdictOf(item)));
    noteCounts(feature);
    if (wentWrong(verdictOf(item)))
        feature->setExpanded(true);
}

void CheckTree::noteCounts(QTreeWidgetItem *feature)
{
    QHash<QString, int> counts;
    bool isAnyShown = false;
    for (int index = 0; index < feature->childCount(); ++index) {
        ++counts[verdictOf(feature->child(index))];
        isAnyShown = isAnyShown || !feature->child(index)->isHidden();
    }
    const QString name = feature->data(NameColumn, featureRole).toString();
    feature->setText(NameColumn, name + u": "_s + countsAsText(counts));
    feature->setHidden(!isAnyShown);
}

void CheckTree::hideVerdicts(const QStringList &verdicts)
{
    m_hiddenVerdicts = verdicts;
    for (QTreeWidgetItem *const item : std::as_const(m_scenarios))
        item->setHidden(m_hiddenVerdicts.contains(verdictOf(item)));
    for (QTreeWidgetItem *const feature : std::as_const(m_features))
        noteCounts(feature);
}

void CheckTree::selectFirstFailure()
{
    for (QTreeWidgetItemIterator item(this, QTreeWidgetItemIterator::NoChildren); *item; ++item) {
        if (wentWrong(verdictOf(*item))) {
            setCurrentItem(*item);
            return;
        }
    }
}

QString CheckTree::countText() const
{
    return countsAsText(m_counts);
}

QJsonObject CheckTree::currentScenario() const
{
    const QTreeWidgetItem *const item = currentItem();
    return item ? item->data(NameColumn, scenarioRole).toJsonObject() : QJsonObject();
}

void CheckTree::changeEvent(QEvent *event)
{
    QTreeWidget::changeEvent(event);
    if (event->type() != QEvent::PaletteChange)
        return;
    for (QTreeWidgetItem *const item : std::as_const(m_scenarios))
        setColor(item);
}

void CheckTree::setColor(QTreeWidgetItem *item) const
{
    constexpr double share = 0.5;
    const QColor text = palette().text().color();
    const QString verdict = verdictOf(item);
    if (wentWrong(verdict))
        item->setForeground(VerdictColumn, mixed(text, Qt::red, share));
    else if (verdict == wordOf(Verdict::Pass))
        item->setForeground(VerdictColumn, mixed(text, Qt::green, share));
    else
        item->setForeground(VerdictColumn, text);
}
