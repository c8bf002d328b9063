#include "MainWindow.h"
#include "RecentFiles.h"
#include "ScenarioDock.h"
#include "TimelineDock.h"

#include <QtWidgets/QDockWidget>

using namespace Qt::StringLiterals;

QDockWidget *MainWindow::addDock(QWidget *content, const QString &name, const QString &title)
{
    auto *widget = new QDockWidget(title, this);
    widget->setObjectName(name + "Dock"_L1);
    widget->setWidget(content);
    addDockWidget(Qt::RightDockWidgetArea, widget);
    m_docks.append(widget);
    return widget;
}

QDockWidget *MainWindow::dock(const char *name) const
{
    return findChild<QDockWidget *>(QLatin1StringView(name) + "Dock"_L1);
}

void MainWindow::makeDocks()
{
    setDockNestingEnabled(true);
    m_scenario = new ScenarioDock(&m_engine, &m_transcript);
    addDock(new TimelineDock(&m_engine), u"timeline"_s, tr("Timeline"));
    addDock(m_scenario, u"scenario"_s, tr("Scenario"));
}

void MainWindow::connectDocks()
{
    connect(m_scenario, &ScenarioDock::fileUsed, this, [this](const QString &path) { m_recent->add(path); });
}

// On the left who there is, on the right what they do; the timeline below.
void MainWindow::placeDocks() {}

void MainWindow::resetLayout()
{
    for (QDockWidget *widget : std::as_const(m_docks)) {
        widget->setFloating(false);
        widget->show();
    }
    placeDocks();
}

void MainWindow::restoreLayout()
{
    constexpr QSize usualSize(1400, 900);
    if (!restoreGeometry(m_settings.value("geometry"_L1).toByteArray()))
        resize(usualSize);
    placeDocks();
    restoreState(m_settings.value("layout"_L1).toByteArray(), layoutVersion);
}
