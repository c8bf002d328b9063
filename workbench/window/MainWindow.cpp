#include "MainWindow.h"

#include "CommandField.h"
#include "RecentFiles.h"
#include "ScenarioDock.h"
#include "TextWindow.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QMimeData>
#include <QtGui/QCloseEvent>
#include <QtGui/QIcon>
#include <QtWidgets/QLabel>

using namespace Qt::StringLiterals;

namespace {

constexpr auto wrapperKey = "wrapper"_L1;

// Of "help": each command begins a line of its own, less indented than what is said about it.
QStringList commandsOf(const QString &help)
{
    QStringList names;
    const QStringList lines = help.split(u'\n');
    for (const QString &line : lines) {
        if (line.startsWith("  "_L1) && !line.startsWith("   "_L1))
            names.append(line.trimmed().section(u' ', 0, 0));
    }
    return names;
}

QString fileOf(const QMimeData *data)
{
    const QString path = data->urls().value(0).toLocalFile();
    return MainWindow::isLibrary(path) || MainWindow::isScenario(path) ? path : QString();
}

}  // namespace

MainWindow::MainWindow(KvxSetup setup, QWidget *parent)
    : QMainWindow(parent),
      m_settings(QSettings::IniFormat, QSettings::UserScope, u"kvx"_s, u"kvx-workbench"_s),
      m_transcript(&m_engine),
      m_watch(&m_engine)
{
    if (setup.wrapper.isEmpty())
        setup.wrapper = m_settings.value(wrapperKey).toStringList();
    m_engine.setSetup(setup);
    Q_INIT_RESOURCE(window);  // the linker leaves it out of a static library otherwise
    setWindowIcon(QIcon(u":/window/kvx-workbench.svg"_s));
    setAcceptDrops(true);
    connect(&m_engine, &Engine::started, this, [this] { m_isFirstState = true; });
    connect(&m_engine, &Engine::stateChanged, this, &MainWindow::takeState);
    connect(&m_engine, &Engine::answered, this, &MainWindow::takeAnswer);
    makeDocks();
    connectDocks();
    makeBars();
    makeMenus();
    if (!setup.pluginFile.isEmpty())
        m_recent->add(setup.pluginFile);
    restoreLayout();
    showTitle();
}

MainWindow::~MainWindow()
{
    // What the docks do at the engine's end needs them.
    m_engine.disconnect();
}

void MainWindow::newSession()
{
    m_startsMouse = true;
    m_engine.restart();
}

void MainWindow::newEmptySession()
{
    m_startsMouse = false;
    m_engine.restart();
}

void MainWindow::takeState()
{
    if (!std::exchange(m_isFirstState, false))
        return;
    if (m_help.isEmpty()) {
        m_helpNumber = m_engine.sentCount() + 1;
        m_engine.send(u"help"_s);
    }
    if (std::exchange(m_startsMouse, false)) {
        m_engine.send(u"mouse 1"_s);
        m_engine.send(u"start"_s);
    }
}

void MainWindow::takeAnswer(const Answer &answer)
{
    if (answer.number != 0 && answer.number == m_helpNumber) {
        m_helpNumber = 0;
        m_help = answer.printed.join(u'\n');
        m_command->setCommands(commandsOf(m_help));
        return;
    }
    const bool isTyped = m_command->takeSent(answer.number);
    // Of an empty line or a comment, or of what a dock sends behind a request.
    const bool isSilent = answer.command.isEmpty() || (answer.command == "settle"_L1 && !isTyped);
    if (isSilent && answer.result == "done"_L1)
        return;
    showAnswer(answer);
    if (isTyped && answer.printed.size() > 1)
        showPrinted(answer);
}

void MainWindow::showAnswer(const Answer &answer)
{
    // The result of a long command must not be out of sight.
    constexpr qsizetype most = 60;  // characters
    const QString command =
        answer.command.size() <= most ? answer.command : answer.command.left(most - 1) + u'\u2026';
    QStringList parts{answer.result};
    if (!answer.message.isEmpty())
        parts.append(answer.message);
    if (answer.printed.size() == 1)
        parts.append(answer.printed);
    const bool isProblem = !QStringList{u"done"_s, u"end"_s, u"skipped"_s}.contains(answer.result);
    say((command + u": "_s + parts.join(u", "_s)).simplified(), isProblem);
}

void MainWindow::showPrinted(const Answer &answer)
{
    delete m_printed;
    m_printed = new TextWindow(answer.command, answer.printed.join(u'\n'), this);
    // The next command is typed at once.
    m_printed->setAttribute(Qt::WA_ShowWithoutActivating);
    m_printed->show();
}

void MainWindow::say(const QString &text, bool isProblem)
{
    m_answer->setText(text);
    m_answer->setToolTip(text);
    QFont font = m_answer->font();
    font.setBold(isProblem);
    m_answer->setFont(font);
}

bool MainWindow::isLibrary(const QString &path)
{
    return path.endsWith(".so"_L1) || path.endsWith(".dll"_L1, Qt::CaseInsensitive);
}

bool MainWindow::isScenario(const QString &path)
{
    return path.endsWith(".kvx"_L1, Qt::CaseInsensitive);
}

bool MainWindow::openFile(const QString &path)
{
    if (isLibrary(path)) {
        openLibrary(path);
        return true;
    }
    showDock("scenario");
    return m_scenario->openFile(path);
}

void MainWindow::openLibrary(const QString &file)
{
    KvxSetup setup = m_engine.setup();
    setup.pluginFile = file;
    m_engine.setSetup(setup);
    if (!file.isEmpty())
        m_recent->add(file);
    showTitle();
    newSession();
}

void MainWindow::setWrapper(const QString &words)
{
    KvxSetup setup = m_engine.setup();
    setup.wrapper = QProcess::splitCommand(words);
    m_engine.setSetup(setup);
    m_settings.setValue(wrapperKey, setup.wrapper);
    showTitle();
    newSession();
}

void MainWindow::showTitle()
{
    const QString file = m_engine.setup().pluginFile;
    const QStringList wrapper = m_engine.setup().wrapper;
    QStringList parts;
    // All builds of the library have the same file name.
    if (!file.isEmpty())
        parts.append(QFileInfo(file).absoluteDir().dirName() + u'/' + QFileInfo(file).fileName());
    if (!wrapper.isEmpty())
        parts.append(tr("under %1").arg(QFileInfo(wrapper.first()).fileName()));
    // Qt appends the program's name.
    setWindowTitle(parts.join(u' '));
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    if (m_scenario->isModified()) {
        event->ignore();
        m_scenario->whenSaved([this] {
            m_scenario->forgetChanges();
            close();
        });
        return;
    }
    saveLayout();
    m_engine.stop();
    event->accept();
}

void MainWindow::dragEnterEvent(QDragEnterEvent *event)
{
    if (!fileOf(event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent *event)
{
    event->acceptProposedAction();
    openFile(fileOf(event->mimeData()));
}
