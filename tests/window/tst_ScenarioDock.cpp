#include "Eventually.h"
#include "ScenarioDock.h"
#include "ScenarioEditor.h"
#include "Transcript.h"

#include <QtCore/QDir>
#include <QtCore/QMimeData>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtGui/QDragEnterEvent>
#include <QtGui/QTextBlock>
#include <QtTest/QSignalSpy>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QTabWidget>
#include <QtWidgets/QToolButton>

using namespace Qt::StringLiterals;

namespace {

/// A dock with its child, shown, and its widgets.
struct ShownDock
{
    explicit ShownDock(const QString &library = QStringLiteral(KVX_LIBRARY))
        : started(library), transcript(&started.engine), dock(&started.engine, &transcript)
    {
        constexpr QSize size(900, 500);
        dock.resize(size);
        dock.show();
    }

    template <typename Widget>
    Widget *child(const char *name) const
    {
        return dock.findChild<Widget *>(QLatin1StringView(name));
    }

    void click(const char *name) const
    {
        auto *button = child<QToolButton>(name);
        QVERIFY(button);
        QVERIFY(button->isEnabled());
        QTest::mouseClick(button, Qt::LeftButton);
    }

    /// False when it does not end.
    bool play(const QString &text)
    {
        dock.openText(u"own"_s, text);
        click("runScenarioButton");
        return QTest::qWaitFor([this] { return isIdle(); }, StartedEngine::limit);
    }

    bool isIdle() const { return child<QToolButton>("runScenarioButton")->isEnabled(); }

    ScenarioEditor *editor() const { return child<ScenarioEditor>("scenarioEditor"); }

    /// What becomes of the changes; false when it is not asked.
    bool answer(QMessageBox::StandardButton button) const
    {
        auto *question = child<QMessageBox>("unsavedQuestion");
        if (!question)
            return false;
        QTest::mouseClick(question->button(button), Qt::LeftButton);
        return QTest::qWaitFor([this] { return !child<QMessageBox>("unsavedQuestion"); },
                               StartedEngine::limit);
    }

    StartedEngine started;
    Transcript transcript;
    ScenarioDock dock;
};

}  // namespace

class tst_ScenarioDock : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theTranscriptGrows();
    void theTranscriptIsTakenAndUndone();
    void aScenarioIsPlayedFromAFreshLibrary();
    void eachExampleGoesAsItWants_data();
    void eachExampleGoesAsItWants();
    void aDifferenceIsMarkedAtItsLine();
    void aRunKeepsTheCursorAndShowsItsLine();
    void aScenarioWithoutCommandsIsSaidToBeSo();
    void aLineThatCannotBeUsedEndsThePlay();
    void linesThatWereNotComparedAreADifference();
    void stepsGoFromCommandToCommand();
    void aPauseEndsBehindTheLine();
    void quitEndsThePlay();
    void stopEndsAHang();
    void aCrashIsMarkedAtItsLine();
    void aFileIsOpenedChangedAndSaved();
    void aNewTextHasNoFile();
    void theOutcomeStaysBesideASavedText();
    void undoStaysInItsFile();
    void aNewTextIsSavedUnderAName();
    void aFileThatCannotBeRead();
    void changesAreAskedFor();
    void theHeadMakesItACheck();
    void examplesAreInTheMenu();
    void anExampleIsNotOverwritten();
    void theContractIsInTheMenu();
    void aFileIsNotDroppedIntoTheText();
};

void tst_ScenarioDock::theTranscriptGrows()
{
    ShownDock shown;
    auto *view = shown.child<ScenarioEditor>("transcriptView");
    QVERIFY(shown.started.play({u"mouse 1"_s, u"start"_s, u"foo"_s, u"press 1"_s}));
    QCOMPARE(view->toPlainText(), shown.transcript.lines().join(u'\n'));
    QVERIFY(view->toPlainText().contains(u"# unusable: foo"_s));
    QVERIFY(view->isReadOnly());
}

void tst_ScenarioDock::theTranscriptIsTakenAndUndone()
{
    ShownDock shown;
    QVERIFY(shown.started.play({u"mouse 1"_s, u"start"_s}));
    QTest::keyClicks(shown.editor(), u"old"_s);
    shown.click("takeTranscriptButton");
    QVERIFY(shown.answer(QMessageBox::Cancel));
    QCOMPARE(shown.editor()->toPlainText(), u"old"_s);
    shown.click("takeTranscriptButton");
    QVERIFY(shown.answer(QMessageBox::Discard));
    QCOMPARE(shown.editor()->toPlainText(), u"mouse 1\nstart\n"_s);
    QTest::keyClick(shown.editor(), Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(shown.editor()->toPlainText(), u"old"_s);
}

void tst_ScenarioDock::aScenarioIsPlayedFromAFreshLibrary()
{
    ShownDock shown;
    QVERIFY(shown.started.play({u"mouse 7"_s}));
    shown.started.lines.clear();
    shown.dock.openText(u"own"_s, u"# one\nmouse 1\nstart\n\nexpect reportRate 500\n"_s);
    shown.click("runScenarioButton");
    QVERIFY(!shown.isIdle());
    QVERIFY(shown.editor()->isReadOnly());
    KVX_EVENTUALLY(shown.isIdle());
    const QStringList lines{u"# one"_s, u"mouse 1"_s, u"start"_s, u""_s, u"expect reportRate 500"_s};
    QCOMPARE(shown.started.lines, lines);
    QCOMPARE(shown.editor()->problemLine(), -1);
    QCOMPARE(shown.editor()->currentLine(), -1);
    QCOMPARE(shown.dock.message(), u"All lines went as the scenario wants."_s);
    QVERIFY(!shown.editor()->isReadOnly());
    QCOMPARE(shown.started.engine.state().value("devices"_L1).toArray().size(), 1);
}

void tst_ScenarioDock::eachExampleGoesAsItWants_data()
{
    QTest::addColumn<QString>("file");
    const QDir folder(QStringLiteral(KVX_EXAMPLES));
    const QStringList files = folder.entryList({u"*.kvx"_s});
    QVERIFY(!files.isEmpty());
    for (const QString &file : files)
        QTest::newRow(qPrintable(file)) << folder.filePath(file);
}

void tst_ScenarioDock::eachExampleGoesAsItWants()
{
    QFETCH(QString, file);
    ShownDock shown;
    QVERIFY(shown.started.settle());
    QVERIFY(shown.dock.openFile(file));
    shown.click("runScenarioButton");
    KVX_EVENTUALLY(shown.isIdle());
    QVERIFY2(shown.editor()->problemLine() == -1, qPrintable(shown.dock.message()));
    QCOMPARE(shown.started.lines.size(), shown.editor()->lines().size());
}

void tst_ScenarioDock::aDifferenceIsMarkedAtItsLine()
{
    ShownDock shown;
    QVERIFY(shown.play(u"mouse 1\nstart\n\nexpect reportRate 125\nstop\n"_s));
    QCOMPARE(shown.editor()->problemLine(), 3);
    const QString message = shown.dock.message();
    QVERIFY2(message.startsWith(u"Line 4: difference"_s), qPrintable(message));
    QVERIFY2(message.contains(u"\nexpected  "_s) && message.contains(u"125"_s), qPrintable(message));
    QVERIFY2(message.contains(u"\nactual    "_s) && message.contains(u"500"_s), qPrintable(message));
    QVERIFY(shown.child<QLabel>("scenarioMessage")->isVisible());
    QVERIFY(!shown.started.lines.contains(u"stop"_s));
}

void tst_ScenarioDock::aRunKeepsTheCursorAndShowsItsLine()
{
    ShownDock shown;
    constexpr int comments = 60;
    shown.dock.openText(u"own"_s, QString(u"# comment\n"_s).repeated(comments) + u"foo\n"_s);
    QTest::keyClick(shown.editor(), Qt::Key_Down);
    shown.click("runScenarioButton");
    KVX_EVENTUALLY(shown.isIdle());
    QCOMPARE(shown.editor()->problemLine(), comments);
    QCOMPARE(shown.editor()->textCursor().blockNumber(), 1);
    const QTextCursor problem(shown.editor()->document()->findBlockByNumber(comments));
    QVERIFY(shown.editor()->viewport()->rect().contains(shown.editor()->cursorRect(problem)));
    // A problem above the view is shown, too.
    shown.dock.openText(u"own"_s, u"foo\n"_s + QString(u"# comment\n"_s).repeated(comments));
    shown.editor()->verticalScrollBar()->setValue(comments);
    shown.click("runScenarioButton");
    KVX_EVENTUALLY(shown.isIdle());
    QCOMPARE(shown.editor()->verticalScrollBar()->value(), 0);
}

void tst_ScenarioDock::aScenarioWithoutCommandsIsSaidToBeSo()
{
    ShownDock shown;
    QVERIFY(shown.play(u"# comment\n\n"_s));
    QCOMPARE(shown.dock.message(), u"The scenario has no commands."_s);
}

void tst_ScenarioDock::aLineThatCannotBeUsedEndsThePlay()
{
    ShownDock shown;
    QVERIFY(shown.play(u"mouse 1\nstrat\nstop"_s));
    QCOMPARE(shown.editor()->problemLine(), 1);
    QVERIFY2(shown.dock.message().startsWith(u"Line 2: unusable: "_s), qPrintable(shown.dock.message()));
}

void tst_ScenarioDock::linesThatWereNotComparedAreADifference()
{
    ShownDock shown;
    QVERIFY(shown.play(u"mouse 1\n= call initialize(true, true, true)\n"_s));
    QCOMPARE(shown.editor()->problemLine(), 1);
    QVERIFY2(shown.dock.message().startsWith(u"Line 2: difference"_s), qPrintable(shown.dock.message()));
}

void tst_ScenarioDock::stepsGoFromCommandToCommand()
{
    ShownDock shown;
    shown.dock.openText(u"own"_s, u"# head\nmouse 1\n\n# next\nstart\nstop\n"_s);
    const auto step = [&shown](int line) {
        shown.click("stepScenarioButton");
        return QTest::qWaitFor([&] { return shown.isIdle() && shown.editor()->currentLine() == line; },
                               StartedEngine::limit);
    };
    QVERIFY(step(2));
    QCOMPARE(shown.started.lines.last(), u"mouse 1"_s);
    QVERIFY(step(5));
    QCOMPARE(shown.started.lines.last(), u"start"_s);
    QVERIFY(shown.editor()->isReadOnly());
    shown.click("runScenarioButton");
    KVX_EVENTUALLY(shown.editor()->currentLine() == -1);
    QCOMPARE(shown.started.lines.last(), u"stop"_s);
    QVERIFY(!shown.editor()->isReadOnly());
}

void tst_ScenarioDock::aPauseEndsBehindTheLine()
{
    ShownDock shown;
    shown.dock.openText(u"own"_s, u"mouse 1\nstart\nstop\n"_s);
    connect(&shown.started.engine, &Engine::sent, this, [&shown](int, const QString &line) {
        if (line == "start"_L1)
            shown.click("pauseScenarioButton");
    });
    shown.click("runScenarioButton");
    KVX_EVENTUALLY(shown.isIdle() && shown.editor()->currentLine() == 2);
    QCOMPARE(shown.started.lines.last(), u"start"_s);
    QVERIFY(shown.started.engine.isRunning());
    shown.click("stopScenarioButton");
    KVX_EVENTUALLY(!shown.started.engine.isRunning());
    QCOMPARE(shown.editor()->currentLine(), -1);
    QCOMPARE(shown.editor()->problemLine(), -1);
}

void tst_ScenarioDock::quitEndsThePlay()
{
    ShownDock shown;
    QVERIFY(shown.play(u"mouse 1\nquit\nstart\n"_s));
    QCOMPARE(shown.editor()->problemLine(), -1);
    QCOMPARE(shown.started.lines.last(), u"quit"_s);
}

void tst_ScenarioDock::stopEndsAHang()
{
    ShownDock shown(brokenLibrary(u"lock-taken-twice"_s));
    shown.dock.openText(u"own"_s, u"device 1 none\nstart\nstop\n"_s);
    shown.click("runScenarioButton");
    KVX_EVENTUALLY(shown.started.engine.lastCall() == u"call start()"_s);
    QCOMPARE(shown.editor()->currentLine(), 1);
    shown.click("stopScenarioButton");
    KVX_EVENTUALLY(!shown.started.engine.isRunning());
    QVERIFY(shown.isIdle());
}

void tst_ScenarioDock::aCrashIsMarkedAtItsLine()
{
    ShownDock shown(brokenLibrary(u"crash-without-receiver"_s));
    QVERIFY(shown.play(u"device 1 none\nquery26 1 2 3\nstart\n"_s));
    QCOMPARE(shown.editor()->problemLine(), 1);
    const QString message = shown.dock.message();
    QVERIFY2(message.startsWith(u"Line 2: "_s) && message.contains(u"call query26(1, 2, 3)"_s),
             qPrintable(message));
}

void tst_ScenarioDock::aFileIsOpenedChangedAndSaved()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"a scenario.kvx"_s);
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("mouse 1\r\nset ppid \xC3\xA4\n");
    file.close();

    ShownDock shown;
    ScenarioDock &dock = shown.dock;
    QSignalSpy used(&dock, &ScenarioDock::fileUsed);
    QVERIFY(dock.openFile(path));
    QCOMPARE(shown.editor()->toPlainText(), u"mouse 1\nset ppid \u00e4\n"_s);
    QVERIFY(!dock.isModified());
    shown.editor()->moveCursor(QTextCursor::End);
    QTest::keyClicks(shown.editor(), u"start"_s);
    QVERIFY(dock.isModified());
    const auto *tabs = shown.child<QTabWidget>("scenarioTabs");
    QCOMPARE(tabs->tabText(tabs->currentIndex()), u"a scenario.kvx*"_s);
    shown.click("saveScenarioButton");
    QVERIFY(!dock.isModified());
    QCOMPARE(contentOf(path), QByteArray("mouse 1\nset ppid \xC3\xA4\nstart\n"));
    QCOMPARE(used.size(), 2);
}

void tst_ScenarioDock::aNewTextHasNoFile()
{
    ShownDock shown;
    QVERIFY(shown.dock.openFile(QStringLiteral(KVX_EXAMPLES) + u"/01-dpi-slots.kvx"_s));
    shown.child<QAction>("newScenario")->trigger();
    QCOMPARE(shown.editor()->toPlainText(), QString());
    QCOMPARE(shown.dock.path(), QString());
    const auto *tabs = shown.child<QTabWidget>("scenarioTabs");
    QCOMPARE(tabs->tabText(tabs->currentIndex()), u"Scenario"_s);
}

void tst_ScenarioDock::theOutcomeStaysBesideASavedText()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"own.kvx"_s);
    QVERIFY(QFile::copy(QStringLiteral(KVX_EXAMPLES) + u"/01-dpi-slots.kvx"_s, path));
    ShownDock shown;
    QVERIFY(shown.dock.openFile(path));
    shown.click("runScenarioButton");
    KVX_EVENTUALLY(shown.isIdle());
    const QString outcome = shown.dock.message();
    QVERIFY(!outcome.isEmpty());
    QVERIFY(!shown.dock.openFile(folder.filePath(u"missing.kvx"_s)));
    QVERIFY(shown.dock.message() != outcome);
    shown.click("saveScenarioButton");
    QCOMPARE(shown.dock.message(), outcome);
    shown.dock.openText(u"other"_s, {});
    QCOMPARE(shown.dock.message(), QString());
}

void tst_ScenarioDock::undoStaysInItsFile()
{
    ShownDock shown;
    shown.dock.openText(u"one"_s, u"mouse 1\n"_s);
    shown.dock.openText(u"other"_s, u"mouse 2\n"_s);
    QTest::keyClick(shown.editor(), Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(shown.editor()->toPlainText(), u"mouse 2\n"_s);
    QVERIFY(!shown.dock.isModified());
    QTest::keyClicks(shown.editor(), u"# "_s);
    QTest::keyClick(shown.editor(), Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(shown.editor()->toPlainText(), u"mouse 2\n"_s);
    QVERIFY(!shown.dock.isModified());
}

void tst_ScenarioDock::aNewTextIsSavedUnderAName()
{
    const QTemporaryDir folder;
    const ShownDock shown;
    QTest::keyClicks(shown.editor(), u"mouse 1"_s);
    shown.click("saveScenarioButton");
    auto *dialog = shown.dock.findChild<QFileDialog *>();
    QVERIFY(dialog);
    const QString path = folder.filePath(u"new.kvx"_s);
    dialog->selectFile(path);
    static_cast<QDialog *>(dialog)->accept();
    KVX_EVENTUALLY(shown.dock.path() == path);
    QCOMPARE(contentOf(path), QByteArray("mouse 1\n"));

    // The next one begins in the same folder, wherever a library was opened.
    QFileDialog(nullptr, {}, QDir::rootPath()).setDirectory(QDir::rootPath());
    KVX_EVENTUALLY(!shown.dock.findChild<QFileDialog *>());
    shown.child<QAction>("newScenario")->trigger();
    shown.click("saveScenarioButton");
    dialog = shown.dock.findChild<QFileDialog *>();
    QVERIFY(dialog);
    QCOMPARE(dialog->directory().path(), folder.path());
}

void tst_ScenarioDock::aFileThatCannotBeRead()
{
    const QTemporaryDir folder;
    ShownDock shown;
    QTest::keyClicks(shown.editor(), u"kept"_s);
    QVERIFY(!shown.dock.openFile(folder.filePath(u"missing.kvx"_s)));
    QVERIFY(shown.dock.message().contains(u"missing.kvx"_s));
    QVERIFY(!shown.dock.openFile(QStringLiteral(KVX_LIBRARY)));
    QVERIFY2(shown.dock.message().contains(u"no text"_s), qPrintable(shown.dock.message()));
    QCOMPARE(shown.editor()->toPlainText(), u"kept"_s);
    QVERIFY(shown.dock.isModified());
}

void tst_ScenarioDock::changesAreAskedFor()
{
    ShownDock shown;
    QTest::keyClicks(shown.editor(), u"mine"_s);
    shown.dock.openText(u"other"_s, u"other"_s);
    QVERIFY(shown.answer(QMessageBox::Cancel));
    QCOMPARE(shown.editor()->toPlainText(), u"mine"_s);
    shown.dock.openText(u"other"_s, u"other"_s);
    QVERIFY(shown.answer(QMessageBox::Discard));
    QCOMPARE(shown.editor()->toPlainText(), u"other"_s);
}

void tst_ScenarioDock::theHeadMakesItACheck()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"own.kvx"_s);
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("mouse 1\nstart\nexpect reportRate 500\n");
    file.close();
    ShownDock shown;
    QVERIFY(shown.dock.openFile(path));
    shown.click("insertHeadButton");
    shown.click("insertHeadButton");
    QCOMPARE(shown.editor()->toPlainText().count(u"# title:"_s), 1);
    shown.click("saveScenarioButton");
    QProcess kvx;
    kvx.start(QStringLiteral(KVX_COMMAND), {u"check"_s, QStringLiteral(KVX_LIBRARY), path});
    QVERIFY(kvx.waitForFinished(StartedEngine::limit));
    QVERIFY2(kvx.exitCode() == 0, kvx.readAllStandardOutput().constData());
}

void tst_ScenarioDock::examplesAreInTheMenu()
{
    const ShownDock shown;
    auto *menu = shown.child<QMenu>("examplesMenu");
    QVERIFY(!menu);
    const auto *button = shown.child<QToolButton>("scenarioMenuButton");
    menu = qobject_cast<QMenu *>(button->menu()->actions().at(0)->menu());
    QVERIFY(menu);
    Q_EMIT menu->aboutToShow();
    const QStringList files = QDir(QStringLiteral(KVX_EXAMPLES)).entryList({u"*.kvx"_s});
    QCOMPARE(menu->actions().size(), files.size());
    menu->actions().constFirst()->trigger();
    QCOMPARE(shown.editor()->toPlainText().toUtf8(),
             contentOf(QStringLiteral(KVX_EXAMPLES) + u'/' + files.first()));
}

void tst_ScenarioDock::anExampleIsNotOverwritten()
{
    const ShownDock shown;
    QSignalSpy used(&shown.dock, &ScenarioDock::fileUsed);
    const auto *button = shown.child<QToolButton>("scenarioMenuButton");
    QMenu *menu = button->menu()->actions().at(0)->menu();
    Q_EMIT menu->aboutToShow();
    menu->actions().constFirst()->trigger();
    QVERIFY(!shown.editor()->toPlainText().isEmpty());
    const auto *tabs = shown.child<QTabWidget>("scenarioTabs");
    QCOMPARE(tabs->tabText(tabs->currentIndex()),
             QDir(QStringLiteral(KVX_EXAMPLES)).entryList({u"*.kvx"_s}).constFirst());
    QCOMPARE(shown.dock.path(), QString());
    QVERIFY(used.isEmpty());
    shown.click("saveScenarioButton");
    QVERIFY(shown.dock.findChild<QFileDialog *>());
}

void tst_ScenarioDock::theContractIsInTheMenu()
{
    const ShownDock shown;
    const auto *button = shown.child<QToolButton>("scenarioMenuButton");
    auto *menu = qobject_cast<QMenu *>(button->menu()->actions().at(1)->menu());
    QVERIFY(menu);
    Q_EMIT menu->aboutToShow();
    const auto folder = [menu](const QString &name) {
        const QList<QAction *> actions = menu->actions();
        const auto found = std::find_if(actions.cbegin(), actions.cend(),
                                        [&name](const QAction *action) { return action->text() == name; });
        return found == actions.cend() ? nullptr : (*found)->menu();
    };
    KVX_EVENTUALLY(folder(u"report-rate"_s) != nullptr);
    const QMenu *scenarios = folder(u"report-rate"_s);
    const QList<QAction *> actions = scenarios->actions();
    const auto refused = std::find_if(actions.cbegin(), actions.cend(),
                                      [](const QAction *action) { return action->text() == u"refused"_s; });
    QVERIFY(refused != actions.cend());
    QVERIFY(!(*refused)->toolTip().isEmpty());
    (*refused)->trigger();
    KVX_EVENTUALLY(!shown.editor()->toPlainText().isEmpty());
    QCOMPARE(shown.editor()->toPlainText().toUtf8().trimmed(),
             contentOf(QStringLiteral(KVX_CONTRACT) + u"/report-rate/refused.kvx"_s).trimmed());
}

void tst_ScenarioDock::aFileIsNotDroppedIntoTheText()
{
    const ShownDock shown;
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(u"/a.kvx"_s)});
    constexpr QPoint place(50, 50);
    QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(shown.editor()->viewport(), &enter);
    QVERIFY(!enter.isAccepted());
}

QTEST_MAIN(tst_ScenarioDock)
#include "tst_ScenarioDock.moc"
