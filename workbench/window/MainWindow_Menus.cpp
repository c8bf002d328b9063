#include "CommandField.h"
#include "LibraryDock.h"
#include "MainWindow.h"
#include "NoticeBar.h"
#include "RecentFiles.h"
#include "ScenarioDock.h"
#include "TextWindow.h"

#include <QtWidgets/QDockWidget>
#include <QtWidgets/QInputDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QStatusBar>

using namespace Qt::StringLiterals;

void MainWindow::makeBars()
{
    m_notice = new NoticeBar(&m_engine, &m_watch, this);
    addToolBar(Qt::TopToolBarArea, m_notice);
    connect(m_notice, &NoticeBar::startWanted, this, &MainWindow::newSession);

    auto *commandBar = addToolBar(tr("Command"));
    commandBar->setObjectName("commandBar"_L1);
    commandBar->setMovable(false);
    addToolBar(Qt::BottomToolBarArea, commandBar);
    m_command = new CommandField(&m_engine, commandBar);
    auto *label = new QLabel(tr("Co&mmand:"), commandBar);
    label->setBuddy(m_command);
    commandBar->addWidget(label);
    commandBar->addWidget(m_command);

    m_status = new QLabel(this);
    m_status->setObjectName("sessionStatus"_L1);
    m_status->setAccessibleDescription(tr("Session"));
    m_answer = new QLabel(this);
    m_answer->setObjectName("lastAnswer"_L1);
    m_answer->setAccessibleDescription(tr("Last answer"));
    statusBar()->addWidget(m_status, 1);
    statusBar()->addWidget(m_answer, 2);
    for (QLabel *text : {m_status, m_answer}) {
        text->setTextFormat(Qt::PlainText);
        // A long text must not widen the window.
        text->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    }
    connect(&m_watch, &SessionWatch::changed, this, [this] {
        m_status->setText(m_watch.text());
        m_status->setToolTip(m_watch.text());
    });
    connect(m_command, &CommandField::notSent, this,
            [this] { say(tr("There is no session; choose New Session in the menu Session."), true); });
}

void MainWindow::makeMenus()
{
    makeFileMenu();
    makeSessionMenu();
    QMenu *scenario = menuBar()->addMenu(tr("S&cenario"));
    m_scenario->addPlayActions(scenario);
    makeViewMenu();
    makeHelpMenu();
}

void MainWindow::makeFileMenu()
{
    QMenu *menu = menuBar()->addMenu(tr("&File"));
    m_scenario->addFileActions(menu);
    menu->addSeparator();
    QAction *library = menu->addAction(tr("Open &Library..."), m_library, &LibraryDock::chooseFile);
    library->setObjectName("openLibrary"_L1);
    library->setShortcut(Qt::CTRL | Qt::Key_L);
    m_recent = new RecentFiles(&m_settings, menu);
    connect(m_recent, &RecentFiles::fileWanted, this, &MainWindow::openFile);
    menu->addMenu(m_recent);
    menu->addSeparator();
    QAction *quit = menu->addAction(tr("&Quit"), this, &QWidget::close);
    quit->setObjectName("quit"_L1);
    quit->setShortcut(Qt::CTRL | Qt::Key_Q);
    quit->setMenuRole(QAction::QuitRole);
}

void MainWindow::makeSessionMenu()
{
    QMenu *menu = menuBar()->addMenu(tr("&Session"));
    const auto add = [this, menu](const QString &text, const QKeySequence &key, const char *name, auto slot) {
        QAction *action = menu->addAction(text, this, slot);
        action->setShortcut(key);
        action->setObjectName(QLatin1StringView(name));
        return action;
    };
    add(tr("&New Session"), QKeySequence::New, "newSession", &MainWindow::newSession)
        ->setToolTip(tr("A fresh library with one started mouse"));
    add(tr("New &Empty Session"), Qt::CTRL | Qt::SHIFT | Qt::Key_N, "newEmptySession",
        &MainWindow::newEmptySession)
        ->setToolTip(tr("A fresh library without a mouse"));
    add(tr("&Stop"), Qt::CTRL | Qt::Key_Period, "stopSession", [this] {
        m_engine.stop();
    })->setToolTip(tr("Ends the library's process at once"));
    menu->addSeparator();
    add(tr("&Command"), Qt::CTRL | Qt::Key_K, "focusCommand", [this] {
        m_command->setFocus(Qt::ShortcutFocusReason);
        m_command->selectAll();
    });
    add(tr("Run &Under..."), {}, "runUnder", &MainWindow::askForWrapper)
        ->setToolTip(tr("Runs the library's process under another program: valgrind, gdb, wine"));
    menu->setToolTipsVisible(true);
}

void MainWindow::makeViewMenu()
{
    QMenu *menu = menuBar()->addMenu(tr("&View"));
    for (const QDockWidget *widget : std::as_const(m_docks))
        menu->addAction(widget->toggleViewAction());
    menu->addSeparator();
    menu->addAction(tr("&Reset the Layout"), this, &MainWindow::placeDocks)->setObjectName("resetLayout"_L1);
}

void MainWindow::makeHelpMenu()
{
    QMenu *menu = menuBar()->addMenu(tr("&Help"));
    QAction *commands = menu->addAction(tr("&Commands"), this, &MainWindow::showCommands);
    commands->setObjectName("showCommands"_L1);
    commands->setShortcut(QKeySequence::HelpContents);
    QAction *about = menu->addAction(tr("&About"), this, &MainWindow::showAbout);
    about->setObjectName("showAbout"_L1);
    about->setMenuRole(QAction::AboutRole);
}

void MainWindow::askForWrapper()
{
    auto *dialog = new QInputDialog(this);
    dialog->setObjectName("wrapperQuestion"_L1);
    dialog->setWindowTitle(tr("Run Under"));
    dialog->setLabelText(tr("A program and its arguments that run kvx, for example: valgrind -q\n"
                            "Empty for none. A new session begins."));
    dialog->setTextValue(m_engine.setup().wrapper.join(u' '));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QInputDialog::textValueSelected, this, &MainWindow::setWrapper);
    dialog->open();
}

void MainWindow::showCommands()
{
    const QString text = m_help.isEmpty() ? tr("The commands are known when a session runs.") : m_help;
    (new TextWindow(tr("Commands"), text, this))->show();
}

void MainWindow::showAbout()
{
    const QString versions =
        tr("Program %1\nQt %2\n%3").arg(QStringLiteral(KVX_VERSION), QLatin1StringView(qVersion()));
    auto *box =
        new QMessageBox(QMessageBox::NoIcon, tr("About"), tr("kvx workbench"), QMessageBox::Close, this);
    box->setObjectName("aboutBox"_L1);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setInformativeText(versions.arg(tr("kvx is asked...")));
    box->open();
    askKvx(m_engine.setup(), {u"--version"_s}, box, [box, versions](const KvxAnswer &answer) {
        box->setInformativeText(
            versions.arg(answer.problem.isEmpty() ? answer.output.trimmed() : answer.problem));
    });
}
