#include "CheckDock.h"
#include "CommandField.h"
#include "Eventually.h"
#include "LibraryDock.h"
#include "MainWindow.h"

#include <QtCore/QFileInfo>
#include <QtCore/QMimeData>
#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryDir>
#include <QtGui/QAccessible>
#include <QtGui/QDropEvent>
#include <QtGui/QWindow>
#include <QtTest/QSignalSpy>
#include <QtWidgets/QAbstractItemView>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QCompleter>
#include <QtWidgets/QDockWidget>
#include <QtWidgets/QInputDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPlainTextEdit>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QTableView>
#include <QtWidgets/QToolBar>
#include <QtWidgets/QToolButton>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize narrowSize(1000, 700);
constexpr QSize wideSize(1500, 900);

/// A window with a session, and what came of it.
struct ShownWindow
{
    explicit ShownWindow(const QString &library = QStringLiteral(KVX_LIBRARY))
        : window({QStringLiteral(KVX_COMMAND), library, {}})
    {
        QObject::connect(window.engine(), &Engine::sent, &window,
                         [this](int /*number*/, const QString &line) { lines.append(line); });
        window.show();
        window.newSession();
    }

    bool settle()
    {
        const Engine *engine = window.engine();
        return QTest::qWaitFor([engine] { return !engine->state().isEmpty() && !engine->isBusy(); },
                               StartedEngine::limit);
    }

    template <typename Widget>
    Widget *child(const char *name) const
    {
        return window.findChild<Widget *>(QLatin1StringView(name));
    }

    void trigger(const char *name) const { child<QAction>(name)->trigger(); }

    void type(const QString &line) const
    {
        auto *field = child<CommandField>("commandField");
        QTest::keyClicks(field, line);
        QTest::keyClick(field, Qt::Key_Return);
    }

    /// The mice share the mouse's place.
    bool isNarrow() const
    {
        return window.tabifiedDockWidgets(child<QDockWidget>("mouseDock"))
            .contains(child<QDockWidget>("miceDock"));
    }

    bool hasNotice() const { return child<QToolBar>("noticeBar")->isVisible(); }
    QString notice() const { return child<QLabel>("noticeText")->text(); }
    QString answer() const { return child<QLabel>("lastAnswer")->text(); }
    bool isAnswerBold() const { return child<QLabel>("lastAnswer")->font().bold(); }
    QString status() const { return child<QLabel>("sessionStatus")->text(); }

    void drop(const QString &file)
    {
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(file)});
        constexpr QPoint place(5, 5);
        QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&window, &enter);
        isDropTaken = enter.isAccepted();
        if (!isDropTaken)
            return;
        QDropEvent event(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&window, &event);
    }

    MainWindow window;
    QStringList lines;
    bool isDropTaken = false;
};

}  // namespace

class tst_MainWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void aSessionFromTheFirstLineToTheEnd();
    void anEmptySession();
    void aWrongAnswerIsBold();
    void theAnswerOfALongCommandIsInSight();
    void onlyTheAnswersOfCommandsAreShown();
    void whatACommandPrintsIsShown();
    void withoutASessionACommandSaysSo();
    void formerLinesAreRecalled();
    void namesAreCompleted();
    void aCrashKeepsTheTimeline();
    void aHangIsSaidAndStopped();
    void aHangDoesNotDelayTheEnd();
    void aLibraryThatCannotBeLoaded();
    void kvxIsMissing();
    void filesAreDropped();
    void filesAreKept();
    void theLayoutIsKeptAndReset();
    void theWindowIsUsableWhenItIsSmall();
    void theUsualLayoutFollowsTheSize();
    void anOwnLayoutStays_data();
    void anOwnLayoutStays();
    void aFloatingDockStaysAboveTheWindow();
    void theDocksAreConnected();
    void theWrapperIsKept();
    void changesDelayTheEnd();
    void helpAndVersions();
    void everyWidgetThatTakesTheKeyboardHasAName();
    void aScreenReaderReadsTheTextOfALabel();
    void aTextOfTheLibraryIsPlain();

private:
    QTemporaryDir m_settings;
};

void tst_MainWindow::initTestCase()
{
    QVERIFY(m_settings.isValid());
}

// Each test begins as a user who has never seen the program.
void tst_MainWindow::init()
{
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, m_settings.path());
    QSettings(QSettings::IniFormat, QSettings::UserScope, u"kvx"_s, u"kvx-workbench"_s).clear();
}

void tst_MainWindow::aSessionFromTheFirstLineToTheEnd()
{
    ShownWindow shown;
    QVERIFY(shown.settle());
    const QStringList begin{u"help"_s, u"mouse 1"_s, u"start"_s};
    QCOMPARE(shown.lines, begin);
    QCOMPARE(shown.status(), u"Running"_s);
    QVERIFY(!shown.hasNotice());
    shown.type(u"setReportRate 250"_s);
    QVERIFY(shown.settle());
    QCOMPARE(shown.lines.last(), u"setReportRate 250"_s);
    KVX_EVENTUALLY_EQUAL(shown.answer(), u"setReportRate 250: done"_s);
    shown.type(u"# a comment"_s);
    QVERIFY(shown.settle());
    QCOMPARE(shown.answer(), u"setReportRate 250: done"_s);
    const QStringList transcript{u"mouse 1"_s, u"start"_s, u"setReportRate 250"_s, u"# a comment"_s};
    QCOMPARE(shown.window.transcript()->lines(), transcript);

    shown.trigger("stopSession");
    KVX_EVENTUALLY(shown.hasNotice());
    QVERIFY2(shown.notice().startsWith(u"The session was stopped. The last call: "_s) &&
                 shown.notice().endsWith(u"). The timeline is kept."_s),
             qPrintable(shown.notice()));
    // One line needs little more than the button beside it.
    auto *startAgain = shown.child<QToolButton>("startAgain");
    shown.window.resize(2 * wideSize.width(), wideSize.height());
    KVX_EVENTUALLY(shown.window.width() == 2 * wideSize.width() &&
                   shown.child<QToolBar>("noticeBar")->height() < 3 * startAgain->height());
    QTest::mouseClick(startAgain, Qt::LeftButton);
    KVX_EVENTUALLY(shown.window.engine()->isRunning());
    QVERIFY(shown.settle());
    QVERIFY(!shown.hasNotice());
    const QStringList fresh{u"mouse 1"_s, u"start"_s};
    QCOMPARE(shown.window.transcript()->lines(), fresh);
    shown.trigger("quit");
    QVERIFY(!shown.window.isVisible());
}

void tst_MainWindow::anEmptySession()
{
    ShownWindow shown;
    QVERIFY(shown.settle());
    shown.trigger("newEmptySession");
    KVX_EVENTUALLY(shown.window.engine()->sentCount() == 0 && shown.window.engine()->isRunning());
    QVERIFY(shown.settle());
    QCOMPARE(shown.window.transcript()->lines(), QStringList());
    QCOMPARE(shown.window.engine()->state().value("devices"_L1).toArray().size(), 0);
}

void tst_MainWindow::aWrongAnswerIsBold()
{
    ShownWindow shown;
    QVERIFY(shown.settle());
    shown.type(u"expect reportRate 125"_s);
    KVX_EVENTUALLY_EQUAL(shown.answer(),
                         u"expect reportRate 125: difference, reportRate: expected \"125\", seen \"500\""_s);
    QVERIFY(shown.isAnswerBold());
    shown.type(u"expect reportRate 500"_s);
    KVX_EVENTUALLY_EQUAL(shown.answer(), u"expect reportRate 500: done"_s);
    QVERIFY(!shown.isAnswerBold());
}

void tst_MainWindow::theAnswerOfALongCommandIsInSight()
{
    ShownWindow shown;
    QVERIFY(shown.settle());
    shown.type(u"expect ppid "_s + QString(1500, u'x'));
    KVX_EVENTUALLY(shown.answer().startsWith(u"expect ppid xxx"_s));
    QCOMPARE(shown.answer().indexOf(u"x\u2026: difference, ppid: expected "_s), 58);
    QCOMPARE(shown.child<QLabel>("lastAnswer")->toolTip(), shown.answer());
}

// A dock waits for the mouse behind a request; a scenario has comments.
void tst_MainWindow::onlyTheAnswersOfCommandsAreShown()
{
    ShownWindow shown;
    QVERIFY(shown.settle());
    for (const QString &line : {u"setReportRate 250 nowait"_s, u"settle"_s, u"# nothing"_s})
        shown.window.engine()->send(line);
    QVERIFY(shown.settle());
    QCOMPARE(shown.answer(), u"setReportRate 250 nowait: done"_s);
    shown.type(u"settle"_s);
    KVX_EVENTUALLY_EQUAL(shown.answer(), u"settle: done"_s);
}

void tst_MainWindow::whatACommandPrintsIsShown()
{
    ShownWindow shown;
    QVERIFY(shown.settle());
    shown.window.engine()->send(u"show"_s);
    QVERIFY(shown.settle());
    QVERIFY(!shown.child<QPlainTextEdit>("textWindowText"));
    shown.type(u"show modelCode"_s);
    KVX_EVENTUALLY_EQUAL(shown.answer(), u"show modelCode: done, RV418"_s);
    QVERIFY(!shown.child<QPlainTextEdit>("textWindowText"));
    shown.type(u"show"_s);
    KVX_EVENTUALLY(shown.child<QPlainTextEdit>("textWindowText"));
    QVERIFY(shown.child<QPlainTextEdit>("textWindowText")->toPlainText().contains(u"RV418"_s));
    QVERIFY(shown.child<QPlainTextEdit>("textWindowText")->isVisible());
    // One window for all of them.
    shown.type(u"help"_s);
    KVX_EVENTUALLY(
        shown.child<QPlainTextEdit>("textWindowText")->toPlainText().contains(u"setReportRate HZ"_s));
    QCOMPARE(shown.window.findChildren<QPlainTextEdit *>(u"textWindowText"_s).size(), 1);
}

void tst_MainWindow::withoutASessionACommandSaysSo()
{
    ShownWindow shown;
    QVERIFY(shown.settle());
    shown.trigger("stopSession");
    KVX_EVENTUALLY(shown.hasNotice());
    shown.type(u"start"_s);
    QCOMPARE(shown.answer(), u"There is no session; choose New Session in the menu Session."_s);
    QVERIFY(shown.isAnswerBold());
    QCOMPARE(shown.child<CommandField>("commandField")->text(), u"start"_s);
}

void tst_MainWindow::formerLinesAreRecalled()
{
    ShownWindow shown;
    QVERIFY(shown.settle());
    auto *field = shown.child<CommandField>("commandField");
    shown.type(u"press 1"_s);
    shown.type(u"release 1"_s);
    QCOMPARE(field->text(), QString());
    QTest::keyClicks(field, u"x 2"_s);
    QTest::keyClick(field, Qt::Key_Up);
    QCOMPARE(field->text(), u"release 1"_s);
    QTest::keyClick(field, Qt::Key_Up);
    QTest::keyClick(field, Qt::Key_Up);
    QCOMPARE(field->text(), u"press 1"_s);
    QTest::keyClick(field, Qt::Key_Down);
    QTest::keyClick(field, Qt::Key_Down);
    QCOMPARE(field->text(), u"x 2"_s);
}

void tst_MainWindow::namesAreCompleted()
{
    ShownWindow shown;
    QVERIFY(shown.settle());
    shown.window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&shown.window, StartedEngine::limit));
    auto *field = shown.child<CommandField>("commandField");
    field->setFocus();
    QTest::keyClicks(field, u"setrep"_s);
    QCompleter *completer = field->completer();
    QCOMPARE(completer->completionCount(), 1);
    QCOMPARE(completer->currentCompletion(), u"setReportRate"_s);
    // What is chosen is completed, not sent.
    const qsizetype sent = shown.lines.size();
    KVX_EVENTUALLY(completer->popup()->isVisible());
    QTest::keyClick(completer->popup(), Qt::Key_Down);
    QTest::keyClick(completer->popup(), Qt::Key_Return);
    QCOMPARE(field->text(), u"setReportRate"_s);
    QCOMPARE(shown.lines.size(), sent);
}

void tst_MainWindow::aCrashKeepsTheTimeline()
{
    ShownWindow shown(brokenLibrary(u"crash-without-receiver"_s));
    QVERIFY(shown.settle());
    shown.type(u"device 2 none"_s);
    QVERIFY(shown.settle());
    const auto *dock = shown.child<QDockWidget>("timelineDock");
    const auto *table = dock->findChild<QTableView *>();
    KVX_EVENTUALLY(table->model()->rowCount() > 0);
    shown.type(u"query26 1 2 3"_s);
    KVX_EVENTUALLY(shown.hasNotice());
    QVERIFY2(shown.notice().contains(u"call [2] query26(1, 2, 3)"_s) ||
                 shown.notice().contains(u"call query26(1, 2, 3)"_s),
             qPrintable(shown.notice()));
    // With a sanitizer a crash is an exit code.
    const QRegularExpression crash(u"crashed|ended with exit code 1"_s);
    QVERIFY2(shown.notice().contains(crash), qPrintable(shown.notice()));
    QVERIFY(table->model()->rowCount() > 0);
    QVERIFY2(shown.status().contains(crash), qPrintable(shown.status()));
    QTest::mouseClick(shown.child<QToolButton>("startAgain"), Qt::LeftButton);
    KVX_EVENTUALLY(shown.window.engine()->isRunning());
    QVERIFY(shown.settle());
    QVERIFY(!shown.hasNotice());
}

void tst_MainWindow::aHangIsSaidAndStopped()
{
    ShownWindow shown(brokenLibrary(u"lock-taken-twice"_s));
    shown.window.watch()->setPatience(std::chrono::milliseconds(1));
    KVX_EVENTUALLY(shown.hasNotice());
    KVX_EVENTUALLY(shown.notice().contains(u"receiver getLevelValue()"_s));
    QVERIFY2(shown.notice().startsWith(u"The library does not answer."_s), qPrintable(shown.notice()));
    KVX_EVENTUALLY(shown.status().startsWith(u"Busy since "_s));
    KVX_EVENTUALLY(shown.status().contains(u"receiver getLevelValue()"_s));
    QTest::mouseClick(shown.child<QToolButton>("noticeStop"), Qt::LeftButton);
    KVX_EVENTUALLY(!shown.window.engine()->isRunning());
    QVERIFY(shown.notice().contains(u"stopped"_s));
    QVERIFY(!shown.child<QToolButton>("noticeStop")->isVisible());
}

// The hanging child never ends by itself, so the test would not end either.
void tst_MainWindow::aHangDoesNotDelayTheEnd()
{
    ShownWindow shown(brokenLibrary(u"lock-taken-twice"_s));
    KVX_EVENTUALLY(shown.window.engine()->lastCall().startsWith(u"receiver getLevelValue()"_s));
    QVERIFY(shown.window.close());
    KVX_EVENTUALLY(!shown.window.engine()->isRunning());
}

void tst_MainWindow::aLibraryThatCannotBeLoaded()
{
    const QTemporaryDir folder;
    const QString library = folder.filePath(u"wrong.so"_s);
    QVERIFY(QFile::copy(QStringLiteral(KVX_EXAMPLES) + u"/01-dpi-slots.kvx"_s, library));
    ShownWindow shown(library);
    KVX_EVENTUALLY(shown.hasNotice());
    QVERIFY2(shown.notice().startsWith(u"The library cannot be loaded: "_s), qPrintable(shown.notice()));
    QVERIFY2(shown.notice().endsWith(u'.') && !shown.notice().contains(u"timeline"_s),
             qPrintable(shown.notice()));
    QVERIFY(shown.notice().contains(u"wrong.so"_s));
    QVERIFY(shown.window.openFile(QStringLiteral(KVX_LIBRARY)));
    KVX_EVENTUALLY(shown.window.engine()->isRunning());
    QVERIFY(shown.settle());
    QVERIFY(!shown.hasNotice());
}

void tst_MainWindow::kvxIsMissing()
{
    MainWindow window({u"/nowhere/kvx"_s, {}, {}});
    window.show();
    window.newSession();
    const auto *bar = window.findChild<QToolBar *>("noticeBar"_L1);
    KVX_EVENTUALLY(bar->isVisible());
    const QString notice = window.findChild<QLabel *>("noticeText"_L1)->text();
    QVERIFY2(notice.startsWith(u"kvx cannot be started: /nowhere/kvx: "_s), qPrintable(notice));
    QVERIFY2(notice.endsWith(u'.') && !notice.contains(u"timeline"_s), qPrintable(notice));
}

void tst_MainWindow::filesAreDropped()
{
    ShownWindow shown;
    QVERIFY(shown.settle());
    const QString scenario = QStringLiteral(KVX_EXAMPLES) + u"/01-dpi-slots.kvx"_s;
    shown.drop(scenario);
    QVERIFY(shown.isDropTaken);
    const auto *editor = shown.child<QPlainTextEdit>("scenarioEditor");
    QVERIFY(editor->toPlainText().startsWith(u"# Five DPI slots"_s));
    QVERIFY(editor->isVisible());

    const QString library = brokenLibrary(u"report-rate-flag-without-signal"_s);
    shown.drop(library);
    QVERIFY(shown.isDropTaken);
    QCOMPARE(shown.window.engine()->setup().pluginFile, library);
    QCOMPARE(shown.window.windowTitle(), library.section(u'/', -2));
    KVX_EVENTUALLY(shown.window.engine()->sentCount() >= 2 && !shown.window.engine()->isBusy());

    shown.drop(QStringLiteral(KVX_EXAMPLES) + u"/host/main.cpp"_s);
    QVERIFY(!shown.isDropTaken);
}

void tst_MainWindow::filesAreKept()
{
    const QString scenario = QStringLiteral(KVX_EXAMPLES) + u"/01-dpi-slots.kvx"_s;
    {
        ShownWindow shown;
        QVERIFY(shown.window.openFile(scenario));
        QVERIFY(shown.window.openFile(scenario));
        QVERIFY(shown.window.close());
    }
    const ShownWindow shown;
    const QList<QAction *> files = shown.child<QMenu>("recentFiles")->actions();
    QCOMPARE(files.size(), 2);
    // The library that the window begins with is used, too.
    const QString library = QFileInfo(QStringLiteral(KVX_LIBRARY)).absoluteFilePath();
    QCOMPARE(files.first()->text(), QDir::toNativeSeparators(library));
    QVERIFY(files.last()->text().endsWith(u"01-dpi-slots.kvx"_s));
    files.last()->trigger();
    QVERIFY(shown.child<QPlainTextEdit>("scenarioEditor")->toPlainText().startsWith(u"# Five DPI slots"_s));
}

void tst_MainWindow::theLayoutIsKeptAndReset()
{
    {
        ShownWindow shown;
        shown.child<QDockWidget>("timelineDock")->hide();
        shown.window.addDockWidget(Qt::LeftDockWidgetArea, shown.child<QDockWidget>("scenarioDock"));
        QVERIFY(shown.window.close());
    }
    ShownWindow shown;
    const auto *timeline = shown.child<QDockWidget>("timelineDock");
    auto *scenario = shown.child<QDockWidget>("scenarioDock");
    QVERIFY(timeline->isHidden());
    QCOMPARE(shown.window.dockWidgetArea(scenario), Qt::LeftDockWidgetArea);
    shown.trigger("resetLayout");
    QVERIFY(!timeline->isHidden());
    QCOMPARE(shown.window.dockWidgetArea(scenario), Qt::RightDockWidgetArea);
}

void tst_MainWindow::theWindowIsUsableWhenItIsSmall()
{
    ShownWindow shown;
    constexpr QSize small(1024, 700);
    shown.window.resize(small);
    shown.trigger("resetLayout");
    QVERIFY(shown.settle());
    QVERIFY2(shown.window.minimumSizeHint().width() <= small.width() &&
                 shown.window.minimumSizeHint().height() <= small.height(),
             qPrintable(u"%1 x %2"_s.arg(shown.window.minimumSizeHint().width())
                            .arg(shown.window.minimumSizeHint().height())));
    QCOMPARE(shown.window.size(), small);
}

void tst_MainWindow::theUsualLayoutFollowsTheSize()
{
    {
        ShownWindow shown;
        shown.window.resize(narrowSize);
        KVX_EVENTUALLY(shown.isNarrow());
        shown.child<QDockWidget>("scenarioDock")->raise();
        QVERIFY(shown.window.close());
    }
    ShownWindow shown;
    QVERIFY(shown.settle());
    const auto *scenario = shown.child<QDockWidget>("scenarioDock");
    KVX_EVENTUALLY(!scenario->visibleRegion().isEmpty());
    shown.window.resize(wideSize);
    KVX_EVENTUALLY(!shown.isNarrow());
    KVX_EVENTUALLY(!scenario->visibleRegion().isEmpty());
    const auto *requests = shown.child<QDockWidget>("requestsDock");
    KVX_EVENTUALLY(!requests->visibleRegion().isEmpty());
    KVX_EVENTUALLY_EQUAL(requests->findChild<QScrollArea *>()->horizontalScrollBar()->maximum(), 0);
    // What is new is not the mouse's.
    const auto *mouse = shown.child<QDockWidget>("mouseDock");
    KVX_EVENTUALLY(mouse->width() < wideSize.width() / 3);
    shown.window.resize(2 * wideSize.width(), wideSize.height());
    KVX_EVENTUALLY(shown.window.width() == 2 * wideSize.width() && mouse->width() < wideSize.width() / 3);
}

void tst_MainWindow::anOwnLayoutStays_data()
{
    QTest::addColumn<QString>("change");
    QTest::newRow("closed") << u"closed"_s;
    QTest::newRow("moved") << u"moved"_s;
    QTest::newRow("resized") << u"resized"_s;
}

void tst_MainWindow::anOwnLayoutStays()
{
    QFETCH(const QString, change);
    ShownWindow shown;
    shown.window.resize(wideSize);
    QVERIFY(shown.settle());
    auto *timeline = shown.child<QDockWidget>("timelineDock");
    const QRect mouse = shown.child<QDockWidget>("mouseDock")->geometry();
    if (change == "closed"_L1) {
        timeline->close();
    } else if (change == "moved"_L1) {
        shown.window.addDockWidget(Qt::LeftDockWidgetArea, timeline);
    } else {
        const QPoint separator(mouse.right() + 2, mouse.center().y());
        QVERIFY(shown.window.isSeparator(separator));
        QTest::mouseClick(&shown.window, Qt::LeftButton, {}, separator);
    }
    shown.window.resize(narrowSize);
    QVERIFY(shown.settle());
    QVERIFY(!shown.isNarrow());
    shown.trigger("resetLayout");
    QVERIFY(shown.isNarrow());
}

void tst_MainWindow::aFloatingDockStaysAboveTheWindow()
{
    {
        ShownWindow shown;
        shown.child<QDockWidget>("timelineDock")->setFloating(true);
        QVERIFY(shown.window.close());
    }
    const ShownWindow shown;
    const auto *timeline = shown.child<QDockWidget>("timelineDock");
    QVERIFY(timeline->isFloating() && timeline->isVisible());
    // The one that is shown last is above.
    const QSignalSpy shows(timeline, &QDockWidget::visibilityChanged);
    KVX_EVENTUALLY(shows.contains(QVariantList{true}));
    QVERIFY(timeline->isVisible());
    QCOMPARE(timeline->windowHandle()->transientParent(), shown.window.windowHandle());
}

void tst_MainWindow::theDocksAreConnected()
{
    ShownWindow shown;
    QVERIFY(shown.settle());
    auto *check = shown.window.findChild<CheckDock *>();
    Q_EMIT check->scenarioWanted(u"own"_s, u"mouse 1"_s);
    const auto *editor = shown.child<QPlainTextEdit>("scenarioEditor");
    QCOMPARE(editor->toPlainText(), u"mouse 1"_s);
    KVX_EVENTUALLY(!editor->visibleRegion().isEmpty());
    shown.child<QDockWidget>("checkDock")->raise();
    KVX_EVENTUALLY(editor->visibleRegion().isEmpty());
    shown.trigger("takeTranscript");
    KVX_EVENTUALLY(!editor->visibleRegion().isEmpty());

    const QWidget *sequence = shown.child<QDockWidget>("sequenceDock");
    shown.child<QDockWidget>("sequenceDock")->raise();
    KVX_EVENTUALLY(!sequence->visibleRegion().isEmpty());
    const QImage empty = shown.child<QDockWidget>("sequenceDock")->grab().toImage();
    auto *table = shown.child<QDockWidget>("timelineDock")->findChild<QTableView *>();
    KVX_EVENTUALLY(table->model()->rowCount() > 0);
    table->selectAll();
    KVX_EVENTUALLY(shown.child<QDockWidget>("sequenceDock")->grab().toImage() != empty);

    const QString library = brokenLibrary(u"report-rate-flag-without-signal"_s);
    Q_EMIT shown.window.findChild<LibraryDock *>()->libraryWanted(library);
    QCOMPARE(shown.window.engine()->setup().pluginFile, library);
}

void tst_MainWindow::theWrapperIsKept()
{
    {
        ShownWindow shown(u"plain"_s);
        KVX_EVENTUALLY(shown.hasNotice());
        shown.trigger("runUnder");
        auto *question = shown.child<QInputDialog>("wrapperQuestion");
        QVERIFY(question);
        question->setTextValue(QStringLiteral("\"" KVX_FAKE "\" first"));
        question->accept();
        KVX_EVENTUALLY(!shown.window.engine()->state().isEmpty());
        const QStringList words{QStringLiteral(KVX_FAKE), u"first"_s};
        QCOMPARE(shown.window.engine()->setup().wrapper, words);
        QVERIFY(shown.window.windowTitle().contains(u"under fake_kvx"_s));
    }
    const ShownWindow shown;
    QCOMPARE(shown.window.windowTitle().contains(u"under fake_kvx"_s), true);
}

void tst_MainWindow::changesDelayTheEnd()
{
    ShownWindow shown;
    QTest::keyClicks(shown.child<QPlainTextEdit>("scenarioEditor"), u"mouse 1"_s);
    QVERIFY(!shown.window.close());
    auto *question = shown.child<QMessageBox>("unsavedQuestion");
    QVERIFY(question);
    QTest::mouseClick(question->button(QMessageBox::Discard), Qt::LeftButton);
    QVERIFY(!shown.window.isVisible());
}

void tst_MainWindow::helpAndVersions()
{
    ShownWindow shown;
    QVERIFY(shown.settle());
    shown.trigger("showCommands");
    QVERIFY(shown.child<QPlainTextEdit>("textWindowText")->toPlainText().contains(u"setReportRate HZ"_s));
    shown.trigger("showAbout");
    const auto *box = shown.child<QMessageBox>("aboutBox");
    QVERIFY(box->informativeText().contains(QLatin1StringView(qVersion())));
    QVERIFY(box->informativeText().contains(QStringLiteral(KVX_VERSION)));
    KVX_EVENTUALLY(box->informativeText().contains(u"kvx "_s + QStringLiteral(KVX_VERSION)));
}

// A screen reader says the name, the text or the title.
void tst_MainWindow::everyWidgetThatTakesTheKeyboardHasAName()
{
    ShownWindow shown;
    QVERIFY(shown.settle());
    QStringList nameless;
    const QList<QWidget *> widgets = shown.window.findChildren<QWidget *>();
    for (QWidget *widget : widgets) {
        const bool isInner = widget->objectName().startsWith(u"qt_"_s) ||
                             qobject_cast<QComboBox *>(widget->parentWidget()) ||
                             !widget->isVisibleTo(&shown.window);
        QAccessibleInterface *reader = QAccessible::queryAccessibleInterface(widget);
        if (!isInner && (widget->focusPolicy() & Qt::TabFocus) != 0 && reader &&
            reader->text(QAccessible::Name).isEmpty())
            nameless.append(QLatin1StringView(widget->metaObject()->className()) + u' ' +
                            widget->objectName());
    }
    QVERIFY2(nameless.isEmpty(), qPrintable(nameless.join(u", "_s)));
}

void tst_MainWindow::aScreenReaderReadsTheTextOfALabel()
{
    ShownWindow shown;
    QVERIFY(shown.settle());
    const QList<QLabel *> labels = shown.window.findChildren<QLabel *>();
    for (QLabel *label : labels) {
        // The name of an outcome is made with its text.
        if (label->objectName().isEmpty() || label->objectName().startsWith(u"outcome-"_s))
            continue;
        label->setText(label->text() + u"own"_s);
        const QString read = QAccessible::queryAccessibleInterface(label)->text(QAccessible::Name);
        QVERIFY2(read.contains(label->text()), qPrintable(label->objectName()));
    }
}

// A text with markup must not become another one.
void tst_MainWindow::aTextOfTheLibraryIsPlain()
{
    ShownWindow shown;
    QVERIFY(shown.settle());
    for (const char *name :
         {"checkOutcome", "faultInForce_setReportRate", "faultProblem_setReportRate", "lastAnswer",
          "libraryResidence", "libraryVerdict", "miceMessage", "mouseMessage", "noticeText",
          "requestsMessage", "scenarioMessage", "sequenceMessage", "value-setDpiSlotValues"})
        QVERIFY2(shown.child<QLabel>(name)->textFormat() == Qt::PlainText, name);
}

QTEST_MAIN(tst_MainWindow)
#include "tst_MainWindow.moc"
