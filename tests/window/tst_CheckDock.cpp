#include "CheckDock.h"
#include "StartedEngine.h"

#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>
#include <QtGui/QClipboard>
#include <QtGui/QDesktopServices>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QProgressBar>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTextBrowser>
#include <QtWidgets/QTreeWidget>

#include <algorithm>
#include <functional>

using namespace Qt::StringLiterals;

namespace {

constexpr int limit = 120000;  // ms; a failure, never a measure

bool waitFor(const std::function<bool()> &condition)
{
    return QTest::qWaitFor(condition, limit);
}

/// A dock on the screen, and what it shows.
struct ShownDock
{
    explicit ShownDock(const QString &library = QStringLiteral(KVX_LIBRARY), const QStringList &wrapper = {})
        : dock(&engine)
    {
        engine.setSetup({QStringLiteral(KVX_COMMAND), library, wrapper});
        dock.resize(900, 600);
        dock.show();
    }

    template <typename Widget>
    Widget *find(const char *name)
    {
        return dock.findChild<Widget *>(QLatin1StringView(name));
    }

    /// Starts the engine with the library.
    bool open(const QString &library)
    {
        engine.setSetup({QStringLiteral(KVX_COMMAND), library, {}});
        QSignalSpy started(&engine, &Engine::started);
        engine.restart();
        return waitFor([&] { return !started.isEmpty(); });
    }

    void click(const char *name) { QTest::mouseClick(find<QPushButton>(name), Qt::LeftButton); }

    void type(const QString &words)
    {
        QTest::mouseClick(find<QLineEdit>("checkNames"), Qt::LeftButton);
        QTest::keyClicks(find<QLineEdit>("checkNames"), words);
    }

    bool isRunning() { return find<QPushButton>("checkCancel")->isEnabled(); }

    /// Types the words, starts with Enter and waits for the end.
    bool check(const QString &words)
    {
        type(words);
        QTest::keyClick(find<QLineEdit>("checkNames"), Qt::Key_Return);
        return waitForEnd();
    }

    bool waitForEnd()
    {
        return waitFor([this] { return !isRunning(); });
    }

    QString outcome() { return find<QLabel>("checkOutcome")->text(); }
    QString details() { return find<QTextBrowser>("checkDetails")->toPlainText(); }
    QTreeWidget *tree() { return find<QTreeWidget>("checkTree"); }

    /// What is not hidden: "FEATURE: COUNTS", and under it "  SCENARIO: VERDICT".
    QStringList shownTree()
    {
        QStringList lines;
        for (QTreeWidgetItemIterator item(tree(), QTreeWidgetItemIterator::NotHidden); *item; ++item) {
            if (!(*item)->parent())
                lines.append((*item)->text(0));
            else if (!(*item)->parent()->isHidden())
                lines.append(u"  %1: %2"_s.arg((*item)->text(0), (*item)->text(1)));
        }
        return lines;
    }

    void selectFirstScenario()
    {
        tree()->setFocus();
        for (const Qt::Key key : {Qt::Key_Home, Qt::Key_Right, Qt::Key_Down})
            QTest::keyClick(tree(), key);
    }

    /// Chooses with the keyboard, as with a closed box.
    void filter(const QString &beginning)
    {
        auto *const box = find<QComboBox>("checkFilter");
        box->setFocus();
        QTest::keyClick(box, Qt::Key_Home);
        for (int row = 1; row < box->count() && !box->currentText().startsWith(beginning); ++row)
            QTest::keyClick(box, Qt::Key_Down);
    }

    Engine engine;
    CheckDock dock;
};

}  // namespace

class tst_CheckDock : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    // In place of a browser.
    void takeUrl(const QUrl &url) { m_urls.append(url); }

private Q_SLOTS:
    void soundLibraryKeepsTheContract();
    void failureShowsItsDifference();
    void crashNamesTheLastCall();
    void hangIsATimeout();
    void cancelKeepsWhatHasRun();
    void cancelTwiceEndsAtOnce();
    void whatCannotRunIsSaid_data();
    void whatCannotRunIsSaid();
    void resultOfAnotherLibraryIsSaid();
    void resultOfAnEarlierBuildIsSaid();
    void countsLeaveRoomForTheNames();
    void filterShowsOneVerdict();
    void scenarioIsOpened();
    void scenarioThatIsGoneIsSaid();
    void wrapperRunsTheCheckAndIsRepeated();
    void reportIsSavedAndShown();
    void reportThatCannotBeWrittenIsSaid();

private:
    QList<QUrl> m_urls;
};

void tst_CheckDock::soundLibraryKeepsTheContract()
{
    ShownDock shown;
    QTest::keyClicks(shown.find<QComboBox>("checkLevel"), u"load"_s);
    QList<int> progress;
    connect(shown.find<QProgressBar>("checkProgress"), &QProgressBar::valueChanged, &shown.dock,
            [&](int value) { progress.append(value); });
    shown.click("checkStart");
    QVERIFY(shown.isRunning());
    QVERIFY(!shown.find<QPushButton>("checkStart")->isEnabled());
    QVERIFY(shown.waitForEnd());
    QVERIFY2(shown.outcome().contains("RV418.so: keeps the part of the contract that was run; "_L1) ||
                 shown.outcome().contains("RV418.dll: keeps the part of the contract that was run; "_L1),
             qPrintable(shown.outcome()));
    const QStringList tree = shown.shownTree();
    QVERIFY2(tree.contains(u"  one-device: pass"_s), qPrintable(tree.join(u'\n')));
    QVERIFY(tree.filter(u"fail"_s).isEmpty());
    // Each scenario moved it on.
    QCOMPARE(progress.last(), shown.find<QProgressBar>("checkProgress")->maximum());
    QCOMPARE(progress.last(), tree.filter(u"  "_s).size());
    QVERIFY(progress.size() >= progress.last());
}

void tst_CheckDock::failureShowsItsDifference()
{
    ShownDock shown(brokenLibrary(u"report-rate-flag-without-signal"_s));
    QVERIFY(shown.check(u"report-rate/confirmed identity/model"_s));
    QVERIFY2(shown.outcome().contains("does not keep the contract; "_L1), qPrintable(shown.outcome()));
    QVERIFY(shown.tree()->currentItem());
    const QString details = shown.details();
    for (const QString &part :
         {u"fail: report-rate/confirmed"_s, u"Found: line "_s, u"Expected (-) and actual (+)"_s,
          u"=> - signal isReportRateChangePendingChanged(true)"_s, u"Log of the library"_s,
          u"debug RV418.LogicalDevice: Updating new report rate :"_s, u"Repeat"_s, u" check "_s,
          u" --seed "_s})
        QVERIFY2(details.contains(part), qPrintable(part + u"\n\n"_s + details));
    shown.click("checkCopyCommand");
    QVERIFY(QGuiApplication::clipboard()->text().contains(u" report-rate/confirmed --seed "_s));
}

void tst_CheckDock::crashNamesTheLastCall()
{
    ShownDock shown(brokenLibrary(u"crash-without-receiver"_s));
    QVERIFY(shown.check(u"identity/forward-without-a-receiver"_s));
    QCOMPARE(shown.shownTree(),
             QStringList({u"identity: 1 crash"_s, u"  forward-without-a-receiver: crash"_s}));
    QVERIFY2(shown.details().contains("Last call"_L1), qPrintable(shown.details()));
}

void tst_CheckDock::hangIsATimeout()
{
    ShownDock shown(brokenLibrary(u"lock-taken-twice"_s));
    QVERIFY(shown.check(u"registry/one-device --timeout 1"_s));
    QCOMPARE(shown.shownTree(), QStringList({u"registry: 1 timeout"_s, u"  one-device: timeout"_s}));
    QVERIFY2(shown.details().contains("Last call"_L1), qPrintable(shown.details()));
}

// The hang keeps the check running until it is cancelled.
void tst_CheckDock::cancelKeepsWhatHasRun()
{
    ShownDock shown(brokenLibrary(u"lock-taken-twice"_s));
    shown.type(u"entry-points/metadata registry/one-device --jobs 1 --timeout off"_s);
    shown.click("checkStart");
    QVERIFY(waitFor([&] { return !shown.shownTree().isEmpty(); }));
    shown.click("checkCancel");
    QVERIFY(shown.waitForEnd());
    QVERIFY2(shown.outcome().contains("incomplete: "_L1), qPrintable(shown.outcome()));
    QVERIFY(!shown.shownTree().isEmpty());
    QVERIFY(!shown.shownTree().contains(u"registry: 1 timeout"_s));
    QVERIFY(shown.find<QPushButton>("checkStart")->isEnabled());
}

void tst_CheckDock::cancelTwiceEndsAtOnce()
{
    QStringList wrapper;
#ifndef Q_OS_WIN
    // It does not pass on the request to end.
    wrapper = {u"/bin/sh"_s, u"-c"_s, u"trap '' TERM; \"$@\"; exit"_s, u"sh"_s};
#endif
    ShownDock shown(QStringLiteral(KVX_LIBRARY), wrapper);
    QTest::keyClicks(shown.find<QComboBox>("checkLevel"), u"stress"_s);
    shown.type(u"stress --jobs 1"_s);
    shown.click("checkStart");
    QVERIFY(waitFor([&] { return shown.find<QProgressBar>("checkProgress")->maximum() > 0; }));
    shown.click("checkCancel");
#ifndef Q_OS_WIN
    QVERIFY(shown.isRunning());
    shown.click("checkCancel");
#endif
    QVERIFY(shown.waitForEnd());
    QVERIFY2(shown.outcome().contains("ended before it wrote its report"_L1), qPrintable(shown.outcome()));
    QVERIFY2(shown.outcome().contains("incomplete: "_L1), qPrintable(shown.outcome()));
}

void tst_CheckDock::whatCannotRunIsSaid_data()
{
    QTest::addColumn<QString>("kvx");
    QTest::addColumn<QString>("library");
    QTest::addColumn<QString>("words");
    QTest::addColumn<QString>("says");
    const QString kvx = QStringLiteral(KVX_COMMAND);
    const QString library = QStringLiteral(KVX_LIBRARY);
    QTest::newRow("no-library") << kvx << QString() << QString() << u"There is no library to check"_s;
    QTest::newRow("no-plugin") << kvx << kvx << QString() << u"kvx: "_s;
    QTest::newRow("no-such-file") << kvx << u"/nowhere/library"_s << QString() << u"/nowhere/library"_s;
    QTest::newRow("no-such-scenario") << kvx << library << u"sesion"_s << u"near are session"_s;
    QTest::newRow("no-kvx") << u"/nowhere/kvx"_s << library << QString()
                            << u"/nowhere/kvx cannot be started"_s;
}

void tst_CheckDock::whatCannotRunIsSaid()
{
    QFETCH(const QString, kvx);
    QFETCH(const QString, library);
    QFETCH(const QString, words);
    QFETCH(const QString, says);
    ShownDock shown;
    shown.engine.setSetup({kvx, library, {}});
    QVERIFY(shown.check(words));
    QVERIFY2(shown.outcome().contains(says), qPrintable(shown.outcome()));
    QVERIFY(shown.shownTree().isEmpty());
    QVERIFY(shown.find<QPushButton>("checkStart")->isEnabled());
    QVERIFY(!shown.find<QPushButton>("checkSaveReport")->isEnabled());
    QVERIFY(!shown.find<QPushButton>("checkOpenReport")->isEnabled());
}

void tst_CheckDock::resultOfAnotherLibraryIsSaid()
{
    const QString checked = brokenLibrary(u"report-rate-flag-without-signal"_s);
    ShownDock shown(checked);
    const auto *note = shown.find<QLabel>("checkOtherLibrary");
    QVERIFY(shown.open(checked));
    QVERIFY(shown.check(u"report-rate/confirmed"_s));
    QVERIFY(!note->isVisible());
    QVERIFY(shown.open(QStringLiteral(KVX_LIBRARY)));
    QVERIFY(note->isVisible());
    QCOMPARE(note->text(), u"Result of %1; the window now has another library."_s.arg(checked));
    shown.click("checkStart");
    QVERIFY(!note->isVisible());
    QVERIFY(shown.waitForEnd());
    QVERIFY2(shown.outcome().contains("keeps the part of the contract that was run; "_L1),
             qPrintable(shown.outcome()));
}

void tst_CheckDock::resultOfAnEarlierBuildIsSaid()
{
    const QTemporaryDir folder;
    const QString library = folder.filePath(QFileInfo(QStringLiteral(KVX_LIBRARY)).fileName());
    QVERIFY(QFile::copy(QStringLiteral(KVX_LIBRARY), library));
    ShownDock shown(library);
    const auto *note = shown.find<QLabel>("checkOtherLibrary");
    QVERIFY(shown.check(u"report-rate/confirmed"_s));
    QVERIFY(shown.open(library));
    QVERIFY(!note->isVisible());

    shown.engine.stop();
    QVERIFY(waitFor([&] { return !shown.engine.isRunning(); }));
    QFile file(library);
    QVERIFY(file.open(QIODevice::Append));
    QVERIFY(file.setFileTime(QDateTime::currentDateTime().addDays(1), QFileDevice::FileModificationTime));
    file.close();
    QVERIFY(shown.open(library));
    QVERIFY(note->isVisible());
    QCOMPARE(note->text(), u"Result of an earlier build of %1."_s.arg(library));
    shown.click("checkStart");
    QVERIFY(!note->isVisible());
    QVERIFY(shown.waitForEnd());
}

void tst_CheckDock::countsLeaveRoomForTheNames()
{
    ShownDock shown(brokenLibrary(u"report-rate-flag-without-signal"_s));
    QVERIFY(shown.check(u"report-rate"_s));
    const QString counts = shown.shownTree().constFirst().section(u": "_s, 1);
    QVERIFY2(counts.contains(u" fail, "_s) && counts.contains(u" pass"_s), qPrintable(counts));
    QVERIFY(shown.tree()->columnWidth(1) < shown.tree()->fontMetrics().horizontalAdvance(counts));
}

void tst_CheckDock::filterShowsOneVerdict()
{
    ShownDock shown(brokenLibrary(u"report-rate-flag-without-signal"_s));
    QVERIFY(shown.check(u"report-rate/confirmed load/one-device"_s));
    const QStringList all{u"load: 1 pass"_s, u"  one-device: pass"_s, u"report-rate: 1 fail"_s,
                          u"  confirmed: fail"_s};
    QCOMPARE(shown.shownTree(), all);
    const QStringList failed = all.sliced(2);
    shown.filter(u"all but pass"_s);
    QCOMPARE(shown.find<QComboBox>("checkFilter")->currentText(), u"all but pass (1)"_s);
    QCOMPARE(shown.shownTree(), failed);
    shown.filter(u"fail"_s);
    QCOMPARE(shown.find<QComboBox>("checkFilter")->currentText(), u"fail (1)"_s);
    QCOMPARE(shown.shownTree(), failed);
    shown.filter(u"crash"_s);
    QCOMPARE(shown.shownTree(), QStringList());
    // It holds for the next check, too.
    shown.filter(u"pass"_s);
    QCOMPARE(shown.shownTree(), all.first(2));
    QTest::keyClick(shown.find<QLineEdit>("checkNames"), Qt::Key_Return);
    QVERIFY(shown.waitForEnd());
    QCOMPARE(shown.shownTree(), all.first(2));
}

void tst_CheckDock::scenarioIsOpened()
{
    const QString text =
        QString::fromUtf8(contentOf(QStringLiteral(KVX_CONTRACT) + u"/load/one-device.kvx"_s));
    ShownDock shown;
    QSignalSpy wanted(&shown.dock, &CheckDock::scenarioWanted);
    QVERIFY(!shown.find<QPushButton>("checkOpenScenario")->isEnabled());
    QVERIFY(shown.check(u"load/one-device"_s));

    QTest::mouseClick(shown.tree()->viewport(), Qt::LeftButton, {},
                      shown.tree()->visualItemRect(shown.tree()->topLevelItem(0)).center());
    QVERIFY(!shown.find<QPushButton>("checkOpenScenario")->isEnabled());
    QTest::keyClick(shown.tree(), Qt::Key_Right);
    QTest::keyClick(shown.tree(), Qt::Key_Down);
    QVERIFY2(shown.details().contains("pass: load/one-device"_L1), qPrintable(shown.details()));
    shown.click("checkOpenScenario");
    QVERIFY(waitFor([&] { return wanted.size() == 1; }));
    QCOMPARE(wanted.last(), QVariantList({u"load/one-device"_s, text}));

    const QPoint place = shown.tree()->visualItemRect(shown.tree()->currentItem()).center();
    QTest::mouseClick(shown.tree()->viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(shown.tree()->viewport(), Qt::LeftButton, {}, place);
    QVERIFY(waitFor([&] { return wanted.size() == 2; }));
    QCOMPARE(wanted.last(), wanted.first());
}

void tst_CheckDock::scenarioThatIsGoneIsSaid()
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"mine.kvx"_s);
    QVERIFY(QFile::copy(QStringLiteral(KVX_CONTRACT) + u"/load/one-device.kvx"_s, file));
    ShownDock shown;
    QSignalSpy wanted(&shown.dock, &CheckDock::scenarioWanted);
    QVERIFY(shown.check(file));
    QCOMPARE(shown.shownTree().constFirst(), u"files: 1 pass"_s);
    shown.selectFirstScenario();
    QVERIFY(QFile::remove(file));
    shown.click("checkOpenScenario");
    QVERIFY(waitFor([&] { return shown.outcome().contains(file + u" cannot be opened: kvx: "_s); }));
    QCOMPARE(wanted.size(), 0);
}

void tst_CheckDock::wrapperRunsTheCheckAndIsRepeated()
{
#ifdef Q_OS_WIN
    const QStringList wrapper{u"cmd.exe"_s, u"/c"_s};
#else
    const QStringList wrapper{u"/usr/bin/env"_s, u"A=two words"_s};
#endif
    ShownDock shown(QStringLiteral(KVX_LIBRARY), wrapper);
    QVERIFY(shown.check(u"load/one-device"_s));
    QVERIFY2(shown.outcome().contains("keeps the part of the contract"_L1), qPrintable(shown.outcome()));
    shown.selectFirstScenario();
    shown.click("checkCopyCommand");
    QStringList words = wrapper;
    words << QStringLiteral(KVX_COMMAND) << u"check"_s
          << QFileInfo(QStringLiteral(KVX_LIBRARY)).absoluteFilePath() << u"load/one-device"_s;
    const QString command = QGuiApplication::clipboard()->text();
    std::transform(words.cbegin(), words.cend(), words.begin(), CheckSystem::quoted);
    QVERIFY2(command.startsWith(words.join(u' ') + u" --seed "_s), qPrintable(command));
}

void tst_CheckDock::reportIsSavedAndShown()
{
    ShownDock shown;
    QVERIFY(shown.check(u"load/one-device"_s));
    QDesktopServices::setUrlHandler(u"file"_s, this, "takeUrl");
    shown.click("checkOpenReport");
    QDesktopServices::unsetUrlHandler(u"file"_s);
    QCOMPARE(m_urls.size(), 1);
    const QByteArray page = contentOf(m_urls.first().toLocalFile());
    QVERIFY(page.contains("load/one-device"));

    const QTemporaryDir folder;
    const QString file = folder.filePath(u"saved report.html"_s);
    shown.click("checkSaveReport");
    auto *const dialog = shown.find<QFileDialog>("checkReportDialog");
    QVERIFY(dialog);
    dialog->selectFile(file);
    auto *const accept = dialog->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Save);
    QVERIFY(waitFor([&] { return accept->isEnabled(); }));
    QTest::mouseClick(accept, Qt::LeftButton);
    QVERIFY(waitFor([&] { return QFile::exists(file); }));
    QCOMPARE(contentOf(file), page);
    QVERIFY(shown.outcome().contains(file));
}

void tst_CheckDock::reportThatCannotBeWrittenIsSaid()
{
    ShownDock shown;
    QVERIFY(shown.check(u"load/one-device"_s));
    shown.click("checkSaveReport");
    auto *const dialog = shown.find<QFileDialog>("checkReportDialog");
    QVERIFY(dialog);
    Q_EMIT dialog->fileSelected(u"/nowhere/report.html"_s);
    QVERIFY2(shown.outcome().contains("/nowhere/report.html cannot be written: "_L1),
             qPrintable(shown.outcome()));
}

QTEST_MAIN(tst_CheckDock)
#include "tst_CheckDock.moc"
