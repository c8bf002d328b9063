#include "CheckDock.h"
#include "FaultsDock.h"
#include "LibraryDock.h"
#include "MainWindow.h"
#include "MiceDock.h"
#include "MouseDock.h"
#include "NoticeBar.h"
#include "RecentFiles.h"
#include "RequestsDock.h"
#include "ScenarioDock.h"
#include "SequenceDock.h"
#include "TimelineDock.h"
#include "ValuesDock.h"

#include <QtGui/QMouseEvent>
#include <QtWidgets/QDockWidget>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QStyle>

#include <algorithm>
#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr std::array seldomUsed{"faults", "scenario", "sequence", "check", "library"};

bool isNarrow(const QWidget &window)
{
    constexpr int narrow = 1250;
    return window.width() < narrow;
}

const QWidget *contentOf(const QDockWidget &dock)
{
    return qobject_cast<const QScrollArea *>(dock.widget())->widget();
}

}  // namespace

QDockWidget *MainWindow::addDock(QWidget *content, const QString &name, const QString &title)
{
    auto *widget = new QDockWidget(title, this);
    widget->setObjectName(name + "Dock"_L1);
    // So that the window may be small.
    auto *area = new QScrollArea;
    area->setFrameShape(QFrame::NoFrame);
    area->setFocusPolicy(Qt::NoFocus);
    area->setWidgetResizable(true);
    area->setWidget(content);
    widget->setWidget(area);
    addDockWidget(Qt::RightDockWidgetArea, widget);
    connect(widget, &QDockWidget::dockLocationChanged, this, [this] { m_isUsualLayout = false; });
    connect(widget, &QDockWidget::topLevelChanged, this, [this] { m_isUsualLayout = false; });
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
    m_timeline = new TimelineDock(&m_engine);
    m_sequence = new SequenceDock;
    m_check = new CheckDock(&m_engine);
    m_library = new LibraryDock(&m_engine);
    addDock(new MiceDock(&m_engine), u"mice"_s, tr("Mice"));
    addDock(new MouseDock(&m_engine), u"mouse"_s, tr("Mouse"));
    addDock(new RequestsDock(&m_engine), u"requests"_s, tr("Requests"));
    addDock(new FaultsDock(&m_engine), u"faults"_s, tr("Faults"));
    addDock(new ValuesDock(&m_engine), u"values"_s, tr("Values"));
    addDock(m_scenario, u"scenario"_s, tr("Scenario"));
    addDock(m_sequence, u"sequence"_s, tr("Sequence"));
    addDock(m_check, u"check"_s, tr("Check"));
    addDock(m_library, u"library"_s, tr("Library"));
    addDock(m_timeline, u"timeline"_s, tr("Timeline"));
}

void MainWindow::connectDocks()
{
    connect(m_timeline, &TimelineDock::selectionChanged, m_sequence, &SequenceDock::showEntries);
    connect(m_check, &CheckDock::scenarioWanted, m_scenario, &ScenarioDock::openText);
    connect(m_scenario, &ScenarioDock::textReplaced, this, [this] { showDock("scenario"); });
    connect(m_library, &LibraryDock::libraryWanted, this, &MainWindow::openLibrary);
    connect(m_scenario, &ScenarioDock::fileUsed, this, [this](const QString &path) { m_recent->add(path); });
}

void MainWindow::showDock(const char *name)
{
    QDockWidget *widget = dock(name);
    widget->show();
    widget->raise();
}

// On the left the mice, on the right what is asked of them and what comes of it, below it the timeline. What
// is seldom used at the same time shares a place; in a narrow window more of it.
void MainWindow::placeDocks()
{
    for (QDockWidget *widget : std::as_const(m_docks)) {
        widget->setFloating(false);
        removeDockWidget(widget);
    }
    m_isNarrow = isNarrow(*this);
    addDockWidget(Qt::LeftDockWidgetArea, dock("mouse"));
    if (m_isNarrow)
        tabifyDockWidget(dock("mouse"), dock("mice"));
    else
        splitDockWidget(dock("mouse"), dock("mice"), Qt::Vertical);
    addDockWidget(Qt::RightDockWidgetArea, dock("requests"));
    splitDockWidget(dock("requests"), dock("timeline"), Qt::Vertical);
    if (m_isNarrow)
        tabifyDockWidget(dock("requests"), dock("values"));
    else
        splitDockWidget(dock("requests"), dock("values"), Qt::Horizontal);
    for (const char *name : seldomUsed)
        tabifyDockWidget(dock(m_isNarrow ? "requests" : "values"), dock(name));
    for (QDockWidget *widget : std::as_const(m_docks))
        widget->show();
    for (const char *name : {"mouse", "values", "requests"})
        dock(name)->raise();
    m_isUsualLayout = true;
    // Before they are shown the docks take no sizes.
    if (isVisible())
        shareRoom();
}

void MainWindow::shareRoom()
{
    constexpr int mouseWidth = 470;
    constexpr int miceHeight = 350;
    constexpr int timelineHeight = 320;
    const int restWidth = std::max(width() - mouseWidth, 1);
    resizeDocks({dock("mouse"), dock("requests")}, {mouseWidth, restWidth}, Qt::Horizontal);
    resizeDocks({dock("requests"), dock("timeline")}, {height() - timelineHeight, timelineHeight},
                Qt::Vertical);
    if (m_isNarrow)
        return;
    const QWidget *requests = contentOf(*dock("requests"));
    const int requestsWidth =
        requests->minimumSizeHint().width() + style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    resizeDocks({dock("requests"), dock("values")}, {requestsWidth, restWidth - requestsWidth},
                Qt::Horizontal);
    resizeDocks({dock("mouse"), dock("mice")}, {height() - miceHeight, miceHeight}, Qt::Vertical);
}

bool MainWindow::isUsualLayout() const
{
    return m_isUsualLayout && std::none_of(m_docks.cbegin(), m_docks.cend(),
                                           [](const QDockWidget *widget) { return widget->isHidden(); });
}

// What the user has moved stays where it is.
void MainWindow::followSize()
{
    if (!isVisible() || !isUsualLayout())
        return;
    if (m_isNarrow == isNarrow(*this)) {
        shareRoom();
        return;
    }
    QList<QDockWidget *> inFront;
    for (const char *name : seldomUsed) {
        if (!dock(name)->visibleRegion().isEmpty())
            inFront.append(dock(name));
    }
    placeDocks();
    for (QDockWidget *widget : std::as_const(inFront))
        widget->raise();
}

void MainWindow::saveLayout()
{
    m_settings.setValue("geometry"_L1, saveGeometry());
    m_settings.setValue("layout"_L1, saveState(layoutVersion));
    m_settings.setValue("usualLayout"_L1, isUsualLayout());
}

void MainWindow::restoreLayout()
{
    constexpr QSize usualSize(1400, 900);
    if (!restoreGeometry(m_settings.value("geometry"_L1).toByteArray()))
        resize(usualSize);
    placeDocks();
    m_isUsualLayout = !restoreState(m_settings.value("layout"_L1).toByteArray(), layoutVersion) ||
                      m_settings.value("usualLayout"_L1).toBool();
    // A notice is of the moment.
    m_notice->hide();
}

void MainWindow::showEvent(QShowEvent *event)
{
    QMainWindow::showEvent(event);
    followSize();
    QMetaObject::invokeMethod(this, &MainWindow::showFloatingDocks, Qt::QueuedConnection);
}

// Only a dock that is shown after the window stays above it.
void MainWindow::showFloatingDocks()
{
    for (QDockWidget *widget : std::as_const(m_docks)) {
        if (!widget->isFloating() || widget->isHidden())
            continue;
        widget->hide();
        widget->show();
    }
}

void MainWindow::resizeEvent(QResizeEvent *event)
{
    QMainWindow::resizeEvent(event);
    followSize();
}

bool MainWindow::event(QEvent *event)
{
    if (event->type() == QEvent::MouseButtonPress &&
        isSeparator(static_cast<QMouseEvent *>(event)->position().toPoint()))
        m_isUsualLayout = false;
    return QMainWindow::event(event);
}
