#include "CheckDock.h"

#include "CheckDetails.h"
#include "CheckReport.h"
#include "CheckTree.h"
#include "JsonStrings.h"
#include "ReportFile.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QUrl>
#include <QtGui/QClipboard>
#include <QtGui/QDesktopServices>
#include <QtGui/QGuiApplication>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QProgressBar>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSpinBox>
#include <QtWidgets/QSplitter>

using namespace Qt::StringLiterals;

namespace {

// Of the rows of the filter.
constexpr int hiddenRole = Qt::UserRole;  // the verdicts that are not shown
constexpr int nameRole = Qt::UserRole + 1;

// Of the tree and of the details.
constexpr int treeShare = 2;
constexpr int detailsShare = 3;

template <typename Widget>
Widget *named(Widget *widget, const QString &objectName, const QString &accessibleName)
{
    widget->setObjectName(objectName);
    widget->setAccessibleName(accessibleName);
    return widget;
}

}  // namespace

CheckDock::CheckDock(Engine *engine, QWidget *parent)
    : QWidget(parent), m_engine(engine), m_otherLibrary(new QLabel)
{
    auto *const layout = new QVBoxLayout(this);
    layout->addWidget(makeWishes());
    m_progress = named(new QProgressBar, u"checkProgress"_s, tr("Progress of the check"));
    m_progress->setFormat(tr("%v of %m"));
    m_progress->hide();
    layout->addWidget(m_progress);
    m_outcome = new QLabel(tr("Run checks the library that the window has loaded."));
    m_outcome->setObjectName(u"checkOutcome"_s);
    m_outcome->setAccessibleDescription(tr("Outcome of the check"));
    m_outcome->setWordWrap(true);
    m_outcome->setTextFormat(Qt::PlainText);
    m_outcome->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    layout->addWidget(m_outcome);
    m_otherLibrary->setObjectName(u"checkOtherLibrary"_s);
    m_otherLibrary->setWordWrap(true);
    m_otherLibrary->setTextFormat(Qt::PlainText);
    m_otherLibrary->hide();
    layout->addWidget(m_otherLibrary);
    layout->addWidget(makeResults(), 1);
    layout->addWidget(makeActions());

    connect(&m_run, &CheckRun::planned, this, &CheckDock::notePlan);
    connect(&m_run, &CheckRun::verdictCame, this, &CheckDock::noteVerdict);
    connect(&m_run, &CheckRun::ended, this, &CheckDock::noteEnd);
    connect(m_engine, &Engine::started, this, &CheckDock::noteLibrary);
    noteRunning(false);
    noteCurrent();
}

QWidget *CheckDock::makeWishes()
{
    constexpr int mostJobs = 256;
    auto *const wishes = new QWidget;
    auto *const layout = new QGridLayout(wishes);
    layout->setContentsMargins({});
    m_level = named(new QComboBox, u"checkLevel"_s, tr("Level"));
    m_level->addItems(levelNames());
    m_level->setCurrentText(levelName(Level::Contract));
    m_level->setToolTip(tr("load takes seconds, contract runs everything promised, stress takes longest"));
    m_names = named(new QLineEdit, u"checkNames"_s, tr("Scenarios to run"));
    m_names->setPlaceholderText(tr("all scenarios, or names and folders: session report-rate"));
    m_names->setToolTip(
        tr("Names and folders of scenarios, scenario files, and other options of kvx check, such as "
           "--exclude threads, --seed 7, --timeout 60 or --waivers FILE"));
    m_names->setClearButtonEnabled(true);
    m_jobs = named(new QSpinBox, u"checkJobs"_s, tr("Processes at a time"));
    m_jobs->setRange(0, mostJobs);
    m_jobs->setSpecialValueText(tr("one per processor"));
    m_jobs->setToolTip(m_jobs->accessibleName());
    m_start = named(new QPushButton(tr("&Run")), u"checkStart"_s, tr("Run the check"));
    m_cancel = named(new QPushButton, u"checkCancel"_s, tr("Cancel the check"));
    const auto add = [&](const QString &text, QWidget *widget, int row, int column, int span) {
        auto *const label = new QLabel(text);
        label->setBuddy(widget);
        layout->addWidget(label, row, column);
        layout->addWidget(widget, row, column + 1, 1, span);
    };
    constexpr int columns = 6;
    add(tr("S&cenarios"), m_names, 0, 0, columns);
    add(tr("&Level"), m_level, 1, 0, 1);
    add(tr("&Jobs"), m_jobs, 1, 2, 1);
    layout->setColumnStretch(4, 1);
    layout->addWidget(m_start, 1, 5);
    layout->addWidget(m_cancel, 1, columns);
    connect(m_names, &QLineEdit::returnPressed, this, &CheckDock::start);
    connect(m_start, &QPushButton::clicked, this, &CheckDock::start);
    connect(m_cancel, &QPushButton::clicked, this, &CheckDock::cancel);
    return wishes;
}

QWidget *CheckDock::makeResults()
{
    auto *const left = new QWidget;
    auto *const layout = new QVBoxLayout(left);
    layout->setContentsMargins({});
    m_filter = named(new QComboBox, u"checkFilter"_s, tr("Verdicts to show"));
    m_tree = named(new CheckTree, u"checkTree"_s, tr("Scenarios and their verdicts"));
    fillFilter();
    layout->addWidget(m_filter);
    layout->addWidget(m_tree);
    m_details = named(new CheckDetails, u"checkDetails"_s, tr("What the check found"));
    m_results = new QSplitter;
    m_results->addWidget(left);
    m_results->addWidget(m_details);
    m_results->setStretchFactor(0, treeShare);
    m_results->setStretchFactor(1, detailsShare);
    m_results->setChildrenCollapsible(false);
    connect(m_tree, &CheckTree::currentScenarioChanged, this, &CheckDock::noteCurrent);
    connect(m_tree, &CheckTree::scenarioActivated, this, &CheckDock::askForScenario);
    return m_results;
}

QWidget *CheckDock::makeActions()
{
    auto *const row = new QWidget;
    auto *const layout = new QHBoxLayout(row);
    layout->setContentsMargins({});
    m_openScenario = named(new QPushButton(tr("&Open scenario")), u"checkOpenScenario"_s,
                           tr("Open the scenario to run it"));
    m_copyCommand = named(new QPushButton(tr("Copy co&mmand")), u"checkCopyCommand"_s,
                          tr("Copy the command that repeats the scenario"));
    m_saveReport =
        named(new QPushButton(tr("&Save report...")), u"checkSaveReport"_s, tr("Save the HTML report"));
    m_openReport = named(new QPushButton(tr("Show in &browser")), u"checkOpenReport"_s,
                         tr("Show the HTML report in the browser"));
    layout->addWidget(m_openScenario);
    layout->addWidget(m_copyCommand);
    layout->addStretch(1);
    layout->addWidget(m_saveReport);
    layout->addWidget(m_openReport);
    connect(m_openScenario, &QPushButton::clicked, this, &CheckDock::askForScenario);
    connect(m_copyCommand, &QPushButton::clicked, this, &CheckDock::copyCommand);
    connect(m_saveReport, &QPushButton::clicked, this, &CheckDock::askForReportFile);
    connect(m_openReport, &QPushButton::clicked, this, &CheckDock::openReport);
    return row;
}

// The lines of a difference need width; a narrow dock has them below the tree.
void CheckDock::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    constexpr int enough = 90;  // characters
    const bool isNarrow = width() < enough * fontMetrics().averageCharWidth();
    const Qt::Orientation orientation = isNarrow ? Qt::Vertical : Qt::Horizontal;
    if (m_results->orientation() == orientation)
        return;
    m_results->setOrientation(orientation);
    const int size = isNarrow ? m_results->height() : width();
    m_results->setSizes({size * treeShare, size * detailsShare});
}

void CheckDock::fillFilter()
{
    const auto add = [this](const QString &name, const QStringList &hidden) {
        m_filter->addItem(QString(), hidden);
        m_filter->setItemData(m_filter->count() - 1, name, nameRole);
    };
    QStringList words;
    const QList<Verdict> verdicts = allVerdicts();
    for (const Verdict verdict : verdicts)
        words.append(wordOf(verdict));
    add(tr("all verdicts"), {});
    add(tr("all but pass"), {wordOf(Verdict::Pass)});
    for (const QString &word : std::as_const(words)) {
        QStringList others = words;
        others.removeAll(word);
        add(word, others);
    }
    connect(m_filter, &QComboBox::currentIndexChanged, this,
            [this] { m_tree->hideVerdicts(m_filter->currentData(hiddenRole).toStringList()); });
    noteCounts();
}

void CheckDock::noteCounts()
{
    for (int row = 0; row < m_filter->count(); ++row) {
        int shown = m_tree->scenarioCount();
        const QStringList hidden = m_filter->itemData(row, hiddenRole).toStringList();
        for (const QString &verdict : hidden)
            shown -= m_tree->count(verdict);
        m_filter->setItemText(row, u"%1 (%2)"_s.arg(m_filter->itemData(row, nameRole).toString()).arg(shown));
    }
}

void CheckDock::start()
{
    if (m_run.isRunning())
        return;
    m_setup = m_engine->setup();
    if (m_setup.pluginFile.isEmpty()) {
        m_outcome->setText(tr("There is no library to check; open one first."));
        return;
    }
    m_buildTime = QFileInfo(m_setup.pluginFile).lastModified();
    noteLibrary();
    m_tree->removeAll();
    noteCounts();
    m_hasReport = false;
    m_progress->setRange(0, 0);
    m_outcome->setText(tr("Checking %1").arg(m_setup.pluginFile));
    m_run.start(m_setup, {m_level->currentText(), QProcess::splitCommand(m_names->text()), m_jobs->value()});
    noteRunning(m_run.isRunning());
}

// The verdicts stay.
void CheckDock::noteLibrary()
{
    const QString checked = m_setup.pluginFile;
    const bool isAnother = checked != m_engine->setup().pluginFile;
    const bool isRebuilt = QFileInfo(checked).lastModified() != m_buildTime;
    m_otherLibrary->setText(isAnother ? tr("Result of %1; the window now has another library.").arg(checked)
                                      : tr("Result of an earlier build of %1.").arg(checked));
    m_otherLibrary->setVisible(!checked.isEmpty() && (isAnother || isRebuilt));
}

void CheckDock::cancel()
{
    m_run.cancel();
    m_cancel->setText(tr("&End now"));
    m_outcome->setText(tr("Cancelled; the check writes its report. End now does not wait for it."));
}

void CheckDock::notePlan(int scenarios)
{
    m_progress->setRange(0, scenarios);
    m_progress->setValue(0);
}

void CheckDock::noteVerdict(const QString &scenario, const QString &verdict)
{
    m_tree->addVerdict(scenario, verdict);
    m_progress->setValue(m_tree->scenarioCount());
    noteCounts();
}

void CheckDock::noteEnd(const QJsonObject &report, const QString &problem)
{
    m_hasReport = !report.isEmpty();
    m_tree->setReport(report);
    noteCounts();
    if (m_tree->currentScenario().isEmpty())
        m_tree->selectFirstFailure();
    const int planned = m_hasReport ? report.value("planned"_L1).toInt() : m_progress->maximum();
    QStringList parts{m_hasReport ? report.value("outcome"_L1).toString() : problem};
    if (const QString counts = m_tree->countText(); !counts.isEmpty())
        parts.append(counts);
    parts += stringsOf(report.value("problems"_L1));
    if (m_tree->scenarioCount() < planned)
        parts.append(tr("incomplete: %1 of %2 scenarios ran").arg(m_tree->scenarioCount()).arg(planned));
    m_outcome->setText(u"%1: %2"_s.arg(QFileInfo(m_setup.pluginFile).fileName(), parts.join(u"; "_s)));
    noteRunning(false);
}

void CheckDock::noteRunning(bool isRunning)
{
    m_start->setEnabled(!isRunning);
    m_cancel->setEnabled(isRunning);
    m_cancel->setText(tr("C&ancel"));
    m_progress->setVisible(isRunning);
    m_saveReport->setEnabled(!isRunning && m_hasReport);
    m_openReport->setEnabled(!isRunning && m_hasReport);
}

void CheckDock::noteCurrent()
{
    const QJsonObject scenario = m_tree->currentScenario();
    m_details->showScenario(scenario, repeatCommand());
    m_openScenario->setEnabled(!scenario.isEmpty());
    m_copyCommand->setEnabled(!repeatCommand().isEmpty());
}

// kvx does not know what runs it.
QString CheckDock::repeatCommand() const
{
    const QString command = m_tree->currentScenario().value("repeatCommand"_L1).toString();
    if (command.isEmpty())
        return {};
    QStringList words;
    for (const QString &word : m_setup.wrapper)
        words.append(CheckSystem::quoted(word));
    return (words << command).join(u' ');
}

void CheckDock::copyCommand()
{
    QGuiApplication::clipboard()->setText(repeatCommand());
}

void CheckDock::askForScenario()
{
    const QString name = m_tree->currentScenario().value("name"_L1).toString();
    if (name.isEmpty())
        return;
    askKvxForScenario(m_setup, name, this, [this, name](const QString &text, const QString &problem) {
        if (problem.isEmpty())
            Q_EMIT scenarioWanted(name, text);
        else
            m_outcome->setText(tr("%1 cannot be opened: %2").arg(name, problem));
    });
}

void CheckDock::askForReportFile()
{
    auto *const dialog = new QFileDialog(this, tr("Save report"), u"report.html"_s, tr("Web pages (*.html)"));
    dialog->setObjectName(u"checkReportDialog"_s);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setDefaultSuffix(u"html"_s);
    connect(dialog, &QFileDialog::fileSelected, this, &CheckDock::saveReport);
    dialog->open();
}

void CheckDock::saveReport(const QString &file)
{
    QFile report(m_run.htmlFile());
    std::optional<QString> problem;
    if (report.open(QIODevice::ReadOnly))
        problem = writeReportFile(file, report.readAll());
    else
        problem = report.errorString();
    m_outcome->setText(problem ? *problem : tr("The report is saved as %1").arg(file));
}

void CheckDock::openReport()
{
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(m_run.htmlFile())))
        m_outcome->setText(tr("There is no browser to show %1").arg(m_run.htmlFile()));
}
