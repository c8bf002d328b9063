#include "ScenarioDock.h"

#include "EndText.h"
#include "ReportFile.h"
#include "ScenarioEditor.h"
#include "ScenarioLibrary.h"
#include "ScenarioText.h"
#include "Transcript.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QStringDecoder>
#include <QtGui/QTextBlock>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QStyle>
#include <QtWidgets/QTabWidget>
#include <QtWidgets/QToolBar>
#include <QtWidgets/QToolButton>
#include <QtWidgets/QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

QString filter()
{
    return ScenarioDock::tr("Scenarios (*.kvx);;All files (*)");
}

// An empty value where the file cannot be read; problem says why.
std::optional<QString> textOf(const QString &path, QString &problem)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        problem = ScenarioDock::tr("%1 cannot be opened: %2").arg(path, file.errorString());
        return {};
    }
    QStringDecoder decoder(QStringDecoder::Utf8);
    QString text = decoder.decode(file.readAll());
    if (decoder.hasError() || text.contains(QChar::Null)) {
        problem = ScenarioDock::tr("%1 is no text in UTF-8").arg(path);
        return {};
    }
    return text.remove(u'\r');
}

bool hasCommand(const QStringList &lines)
{
    return std::any_of(lines.cbegin(), lines.cend(),
                       [](const QString &line) { return !commandWord(line).isEmpty(); });
}

QString problemText(qsizetype line, const Answer &answer)
{
    QStringList text{ScenarioDock::tr("Line %1: %2").arg(line + 1).arg(answer.result)};
    if (!answer.message.isEmpty())
        text.first() += u": "_s + answer.message;
    for (const QString &expected : answer.expected)
        text.append(ScenarioDock::tr("expected  %1").arg(expected));
    for (const QString &actual : answer.actual)
        text.append(ScenarioDock::tr("actual    %1").arg(actual));
    return text.join(u'\n');
}

}  // namespace

ScenarioDock::ScenarioDock(Engine *engine, const Transcript *transcript, QWidget *parent)
    : QWidget(parent),
      m_transcript(transcript),
      m_player(engine),
      m_library(new ScenarioLibrary(engine, this)),
      m_folder(QDir::currentPath())
{
    makeWidgets();
    makeActions();
    connectPlayer();
    followTranscript();
    connect(m_library, &ScenarioLibrary::fileWanted, this, &ScenarioDock::openExample);
    connect(m_library, &ScenarioLibrary::textWanted, this, &ScenarioDock::openText);
    connect(m_library, &ScenarioLibrary::problem, this, &ScenarioDock::say);
    connect(this, &ScenarioDock::fileUsed, this,
            [this](const QString &path) { m_folder = QFileInfo(path).path(); });
    connect(m_editor, &QPlainTextEdit::modificationChanged, this, &ScenarioDock::showTitle);
    showPlay();
    showTitle();
}

void ScenarioDock::makeWidgets()
{
    m_editor = new ScenarioEditor(this);
    m_editor->setObjectName("scenarioEditor"_L1);
    m_editor->setAccessibleName(tr("Scenario"));
    m_transcriptView = new ScenarioEditor(this);
    m_transcriptView->setObjectName("transcriptView"_L1);
    m_transcriptView->setAccessibleName(tr("Transcript"));
    m_transcriptView->setReadOnly(true);
    m_transcriptView->setUndoRedoEnabled(false);
    m_tabs = new QTabWidget(this);
    m_tabs->setObjectName("scenarioTabs"_L1);
    m_tabs->setAccessibleName(tr("Transcript and scenario"));
    m_tabs->setDocumentMode(true);
    m_tabs->addTab(m_transcriptView, tr("Transcript"));
    m_tabs->addTab(m_editor, {});
    m_message = new QLabel(this);
    m_message->setObjectName("scenarioMessage"_L1);
    m_message->setAccessibleDescription(tr("What the scenario came to"));
    m_message->setTextFormat(Qt::PlainText);
    m_message->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_message->setWordWrap(true);
    m_message->hide();
}

void ScenarioDock::makeActions()
{
    auto *bar = new QToolBar(this);
    bar->setAccessibleName(tr("Scenario"));
    const auto add = [this, bar](const QString &text, QStyle::StandardPixmap icon, const QKeySequence &key,
                                 const char *name, auto slot) {
        auto *action = new QAction(style()->standardIcon(icon, nullptr, this), text, this);
        action->setShortcut(key);
        action->setObjectName(QLatin1StringView(name));
        QString tip = QString(text).remove(u'&');
        if (!key.isEmpty())
            tip += u" ("_s + key.toString(QKeySequence::NativeText) + u')';
        action->setToolTip(tip);
        connect(action, &QAction::triggered, this, slot);
        bar->addAction(action);
        if (QWidget *button = bar->widgetForAction(action)) {
            button->setObjectName(QLatin1StringView(name) + "Button"_L1);
            button->setAccessibleName(QString(text).remove(u'&'));
        }
        return action;
    };
    m_play = add(tr("&Run"), QStyle::SP_MediaPlay, Qt::Key_F5, "runScenario",
                 [this] { m_player.play(m_editor->lines()); });
    m_step = add(tr("St&ep"), QStyle::SP_MediaSkipForward, Qt::Key_F10, "stepScenario",
                 [this] { m_player.step(m_editor->lines()); });
    m_pause =
        add(tr("&Pause"), QStyle::SP_MediaPause, Qt::Key_F6, "pauseScenario", [this] { m_player.pause(); });
    m_stop = add(tr("&Stop the Run"), QStyle::SP_MediaStop, Qt::SHIFT | Qt::Key_F5, "stopScenario",
                 [this] { m_player.stop(); });
    bar->addSeparator();
    m_take = add(tr("&Take Transcript"), QStyle::SP_ArrowDown, Qt::CTRL | Qt::Key_T, "takeTranscript",
                 [this] { whenSaved([this] { takeTranscript(); }); });
    m_head = add(tr("Insert &Head"), QStyle::SP_FileDialogDetailedView, {}, "insertHead",
                 [this] { insertHead(); });
    m_new = add(tr("&New Scenario"), QStyle::SP_FileIcon, {}, "newScenario", [this] { openText({}, {}); });
    bar->removeAction(m_new);
    m_open = add(tr("&Open Scenario..."), QStyle::SP_DialogOpenButton, QKeySequence::Open, "openScenario",
                 [this] { whenSaved([this] { askForFile(); }); });
    m_save = add(tr("&Save Scenario"), QStyle::SP_DialogSaveButton, QKeySequence::Save, "saveScenario",
                 [this] { save(); });
    m_saveAs = add(tr("Save Scenario &As..."), QStyle::SP_DialogSaveButton, QKeySequence::SaveAs,
                   "saveScenarioAs", [this] { saveAs(); });
    bar->removeAction(m_saveAs);
    bar->setIconSize(QSize(16, 16));

    auto *scenarios = new QToolButton(this);
    scenarios->setObjectName("scenarioMenuButton"_L1);
    scenarios->setText(tr("Scenarios"));
    scenarios->setPopupMode(QToolButton::InstantPopup);
    auto *menu = new QMenu(scenarios);
    menu->addMenu(m_library->examples());
    menu->addMenu(m_library->contract());
    scenarios->setMenu(menu);
    bar->addWidget(scenarios);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(bar);
    layout->addWidget(m_tabs, 1);
    layout->addWidget(m_message);
}

void ScenarioDock::connectPlayer()
{
    connect(&m_player, &ScenarioPlayer::changed, this, &ScenarioDock::showPlay);
    connect(&m_player, &ScenarioPlayer::finished, this, [this] {
        conclude(hasCommand(m_editor->lines()) ? tr("All lines went as the scenario wants.")
                                               : tr("The scenario has no commands."));
    });
    connect(&m_player, &ScenarioPlayer::failed, this, [this](qsizetype line, const Answer &answer) {
        m_editor->setProblemLine(line);
        conclude(problemText(line, answer));
    });
    connect(&m_player, &ScenarioPlayer::broken, this, [this](qsizetype line, const EngineEnd &end) {
        m_editor->setProblemLine(line);
        conclude(tr("Line %1: %2").arg(line + 1).arg(endText(end)));
    });
}

void ScenarioDock::followTranscript()
{
    connect(m_transcript, &Transcript::cleared, m_transcriptView, &QPlainTextEdit::clear);
    connect(m_transcript, &Transcript::lineAdded, m_transcriptView, &QPlainTextEdit::appendPlainText);
    connect(m_transcript, &Transcript::lineChanged, this, [this](qsizetype index, const QString &line) {
        QTextCursor cursor(m_transcriptView->document()->findBlockByNumber(static_cast<int>(index)));
        cursor.select(QTextCursor::LineUnderCursor);
        cursor.insertText(line);
    });
}

bool ScenarioDock::openFile(const QString &path)
{
    QString problem;
    const std::optional<QString> text = textOf(path, problem);
    if (!text) {
        say(problem);
        return false;
    }
    whenSaved([this, path, text] {
        showText(QFileInfo(path).fileName(), QFileInfo(path).absoluteFilePath(), *text);
        Q_EMIT fileUsed(m_path);
    });
    return true;
}

void ScenarioDock::openText(const QString &title, const QString &text)
{
    whenSaved([this, title, text] { showText(title, {}, text); });
}

// As a text without a file, so that Save does not change what comes with kvx.
void ScenarioDock::openExample(const QString &path)
{
    QString problem;
    if (const std::optional<QString> text = textOf(path, problem))
        openText(QFileInfo(path).fileName(), *text);
    else
        say(problem);
}

void ScenarioDock::showText(const QString &title, const QString &path, const QString &text)
{
    m_title = title;
    m_path = path;
    m_editor->replaceText(text);
    m_editor->document()->clearUndoRedoStacks();
    forgetChanges();
    m_tabs->setCurrentWidget(m_editor);
    conclude({});
    showTitle();
    Q_EMIT textReplaced();
}

bool ScenarioDock::isModified() const
{
    return m_editor->document()->isModified();
}

void ScenarioDock::forgetChanges()
{
    m_editor->document()->setModified(false);
}

QString ScenarioDock::message() const
{
    return m_message->text();
}

void ScenarioDock::say(const QString &message)
{
    m_message->setText(message);
    m_message->setVisible(!message.isEmpty());
}

void ScenarioDock::conclude(const QString &outcome)
{
    m_outcome = outcome;
    say(outcome);
}

void ScenarioDock::showPlay()
{
    const bool isIdle = m_player.state() == ScenarioPlayer::State::Idle;
    const bool isPlaying = m_player.state() == ScenarioPlayer::State::Playing;
    m_play->setEnabled(!isPlaying);
    m_step->setEnabled(!isPlaying);
    m_pause->setEnabled(isPlaying);
    m_stop->setEnabled(!isIdle);
    m_take->setEnabled(isIdle);
    m_head->setEnabled(isIdle);
    m_editor->setReadOnly(!isIdle);
    m_editor->setCurrentLine(m_player.currentLine());
    if (!isIdle) {
        m_tabs->setCurrentWidget(m_editor);
        m_editor->setProblemLine(-1);
        conclude({});
    }
}

void ScenarioDock::showTitle()
{
    const QString title = m_title.isEmpty() ? tr("Scenario") : m_title;
    m_tabs->setTabText(m_tabs->indexOf(m_editor), isModified() ? title + u'*' : title);
    m_tabs->setTabToolTip(m_tabs->indexOf(m_editor), m_path);
}

void ScenarioDock::whenSaved(const std::function<void()> &action)
{
    if (!isModified()) {
        action();
        return;
    }
    auto *question = new QMessageBox(QMessageBox::Question, tr("Scenario"),
                                     tr("The scenario has changes that are not saved."),
                                     QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, this);
    question->setObjectName("unsavedQuestion"_L1);
    question->setAttribute(Qt::WA_DeleteOnClose);
    connect(question, &QMessageBox::finished, this, [this, action](int answer) {
        if (answer == QMessageBox::Save)
            save(action);
        else if (answer == QMessageBox::Discard)
            action();
    });
    question->open();
}

void ScenarioDock::askForFile()
{
    auto *dialog = new QFileDialog(this, tr("Open Scenario"), m_folder, filter());
    dialog->setFileMode(QFileDialog::ExistingFile);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    // The user has answered already what becomes of the changes.
    connect(dialog, &QFileDialog::fileSelected, this, [this](const QString &path) {
        forgetChanges();
        openFile(path);
    });
    dialog->open();
}

void ScenarioDock::save(const std::function<void()> &then)
{
    m_path.isEmpty() ? saveAs(then) : write(m_path, then);
}

void ScenarioDock::saveAs(const std::function<void()> &then)
{
    auto *dialog = new QFileDialog(this, tr("Save Scenario"), m_folder, filter());
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setDefaultSuffix(u"kvx"_s);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QFileDialog::fileSelected, this,
            [this, then](const QString &path) { write(path, then); });
    dialog->open();
}

void ScenarioDock::write(const QString &path, const std::function<void()> &then)
{
    const QStringList lines = m_editor->lines();
    const QByteArray text = lines.isEmpty() ? QByteArray() : lines.join(u'\n').toUtf8() + '\n';
    if (const std::optional<QString> problem = writeReportFile(path, text)) {
        say(*problem);
        return;
    }
    m_path = path;
    m_title = QFileInfo(path).fileName();
    forgetChanges();
    say(m_outcome);
    showTitle();
    Q_EMIT fileUsed(m_path);
    if (then)
        then();
}

void ScenarioDock::takeTranscript()
{
    m_editor->replaceText(m_transcript->text());
    m_path.clear();
    m_title.clear();
    m_tabs->setCurrentWidget(m_editor);
    conclude({});
    showTitle();
    Q_EMIT textReplaced();
}

void ScenarioDock::insertHead()
{
    if (m_editor->document()->firstBlock().text().startsWith("# title:"_L1)) {
        say(tr("The scenario has a head."));
        return;
    }
    QTextCursor cursor(m_editor->document());
    cursor.insertText(u"# title: %1\n# why: %2\n# level: contract\n\n"_s.arg(
        tr("What the library promises"), tr("What a host suffers from when it does not")));
    m_tabs->setCurrentWidget(m_editor);
    m_editor->moveCursor(QTextCursor::Start);
    m_editor->setFocus();
}

void ScenarioDock::addFileActions(QMenu *menu) const
{
    menu->addActions({m_new, m_open, m_save, m_saveAs});
}

void ScenarioDock::addPlayActions(QMenu *menu) const
{
    menu->addActions({m_play, m_step, m_pause, m_stop});
    menu->addSeparator();
    menu->addActions({m_take, m_head});
    menu->addSeparator();
    menu->addMenu(m_library->examples());
    menu->addMenu(m_library->contract());
}
