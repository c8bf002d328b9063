#include "DockFixture.h"
#include "Eventually.h"
#include "LibraryDock.h"
#include "ThisSystem.h"

#include <QtCore/QDateTime>
#include <QtCore/QDir>
#include <QtCore/QTemporaryDir>
#include <QtTest/QSignalSpy>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QListView>

using namespace Qt::StringLiterals;

namespace {

QString builtLibrary()
{
    return QStringLiteral(KVX_LIBRARY);
}

/// The dock; as the main window does, it starts a child with the wanted library.
struct ShownDock : DockFixture<LibraryDock>
{
    explicit ShownDock(const QString &library = builtLibrary()) : DockFixture({}, library)
    {
        QObject::connect(&dock, &LibraryDock::libraryWanted, &dock, [this](const QString &file) {
            engine.setSetup({QStringLiteral(KVX_COMMAND), file, {}});
            engine.restart();
        });
    }

    QString verdict() const { return widget<QLabel>("libraryVerdict")->text(); }
    QString change() const { return widget<QLabel>("libraryChange")->text(); }
    QString residence() const { return widget<QLabel>("libraryResidence")->text(); }
    QString report() const { return widget<QPlainTextEdit>("libraryReport")->toPlainText(); }

    QSignalSpy wanted{&dock, &LibraryDock::libraryWanted};
};

// A copy has the time of the original on Windows.
bool setTimeToNow(const QString &file)
{
    QFile open(file);
    return open.open(QIODevice::Append) &&
           open.setFileTime(QDateTime::currentDateTime(), QFileDevice::FileModificationTime);
}

/// A folder with a library of its own, which can be built again.
struct Folder
{
    Folder() { QFile::copy(builtLibrary(), pluginFile); }

    /// As a linker does: another file takes its place. On Windows a loaded one can only be renamed.
    bool takeAway() { return QFile::rename(pluginFile, folder.filePath(u"old%1"_s.arg(++builds))); }
    bool build()
    {
        const QString fresh = folder.filePath(u"fresh"_s);
        return QFile::copy(builtLibrary(), fresh) && setTimeToNow(fresh) && takeAway() &&
               QFile::rename(fresh, pluginFile);
    }

    QTemporaryDir folder;
    QString pluginFile = folder.filePath(QFileInfo(builtLibrary()).fileName());
    int builds = 0;
};

bool append(const QString &file, const QByteArray &bytes)
{
    QFile open(file);
    return open.open(QIODevice::Append) && open.write(bytes) == bytes.size();
}

}  // namespace

class tst_LibraryDock : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theLoadedLibraryIsInspected();
    void aFileThatIsNoPluginIsRefused();
    void aLibraryIsOpenedByItsPath();
    void aLibraryIsOpenedByTheDialog();
    void aRebuiltLibraryIsOffered();
    void aRebuiltLibraryIsReloadedWhenItIsWhole();
    void unloadLeavesNothing();
    void whatFailsIsReported();
    void theWrapperRunsTheInspection();
};

void tst_LibraryDock::theLoadedLibraryIsInspected()
{
    ShownDock shown;
    KVX_EVENTUALLY(shown.verdict().endsWith(u"is a device plugin."_s));
    QVERIFY2(shown.report().contains(QFileInfo(builtLibrary()).canonicalFilePath()),
             qUtf8Printable(shown.report()));
    QVERIFY(shown.report().contains(u"metadata header"_s));
    QCOMPARE(QDir::fromNativeSeparators(shown.widget<QLineEdit>("libraryPath")->text()), builtLibrary());
    KVX_EVENTUALLY_EQUAL(shown.residence(), u"The library is in the process."_s);
    QCOMPARE(shown.change(), QString());
}

void tst_LibraryDock::aFileThatIsNoPluginIsRefused()
{
    ShownDock shown;
    KVX_EVENTUALLY(!shown.report().isEmpty());
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"notes.so"_s);
    QVERIFY(append(file, "no library"));
    shown.type("libraryPath", file);
    shown.click("libraryInspect");
    KVX_EVENTUALLY(shown.verdict().contains(u"notes.so cannot be used (exit code 2)"_s));
    QVERIFY2(shown.report().contains(u"notes.so"_s), qUtf8Printable(shown.report()));
    QVERIFY(shown.wanted.isEmpty());
    QVERIFY(shown.engine.isRunning());

    shown.type("libraryPath", u" "_s);
    QTest::keyClick(shown.widget("libraryPath"), Qt::Key_Return);
    QCOMPARE(shown.verdict(), u"There is no path to open."_s);
    QVERIFY(shown.wanted.isEmpty());
}

void tst_LibraryDock::aLibraryIsOpenedByItsPath()
{
    ShownDock shown;
    const Folder folder;
    shown.type("libraryPath", folder.pluginFile);
    QTest::keyClick(shown.widget("libraryPath"), Qt::Key_Return);
    QCOMPARE(shown.wanted.size(), 1);
    QCOMPARE(shown.wanted.first().first().toString(), folder.pluginFile);
    KVX_EVENTUALLY(shown.report().contains(QFileInfo(folder.pluginFile).canonicalFilePath()));

    KVX_EVENTUALLY(!shown.engine.state().isEmpty());
    shown.type("libraryPath", builtLibrary());
    shown.click("libraryOpen");
    QCOMPARE(shown.wanted.size(), 2);
    KVX_EVENTUALLY(shown.report().contains(QFileInfo(builtLibrary()).canonicalFilePath()));
}

void tst_LibraryDock::aLibraryIsOpenedByTheDialog()
{
    ShownDock shown;
    const Folder folder;
    // The dialog begins in the folder of the path.
    shown.type("libraryPath", folder.folder.filePath(u"other"_s));
    shown.click("libraryChoose");
    auto *const dialog = shown.widget<QFileDialog>("libraryDialog");
    auto *const list = dialog->findChild<QListView *>(u"listView"_s);
    QVERIFY(list);
    KVX_EVENTUALLY(list->model()->rowCount(list->rootIndex()) == 1);
    const QModelIndex file = list->model()->index(0, 0, list->rootIndex());
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualRect(file).center());
    QPushButton *const accept = dialog->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Open);
    KVX_EVENTUALLY(accept->isEnabled());
    QTest::mouseClick(accept, Qt::LeftButton);
    KVX_EVENTUALLY_EQUAL(shown.wanted.size(), 1);
    QCOMPARE(shown.wanted.first().first().toString(), folder.pluginFile);
    KVX_EVENTUALLY(shown.report().contains(QFileInfo(folder.pluginFile).canonicalFilePath()));
}

void tst_LibraryDock::aRebuiltLibraryIsOffered()
{
    Folder folder;
    ShownDock shown(folder.pluginFile);
    KVX_EVENTUALLY(!shown.report().isEmpty());
    QVERIFY(folder.build());
    KVX_EVENTUALLY_EQUAL(shown.change(), u"The file was built again after it was loaded."_s);
    QVERIFY(shown.wanted.isEmpty());
    shown.click("libraryReload");
    QCOMPARE(shown.wanted.size(), 1);
    QCOMPARE(shown.wanted.first().first().toString(), folder.pluginFile);
    KVX_EVENTUALLY_EQUAL(shown.change(), QString());
    // The one that took its place is watched, too.
    KVX_EVENTUALLY(shown.engine.isRunning());
    KVX_EVENTUALLY(!shown.report().isEmpty());
    QVERIFY(folder.build());
    KVX_EVENTUALLY_EQUAL(shown.change(), u"The file was built again after it was loaded."_s);
}

void tst_LibraryDock::aRebuiltLibraryIsReloadedWhenItIsWhole()
{
    Folder folder;
    ShownDock shown(folder.pluginFile);
    KVX_EVENTUALLY(!shown.report().isEmpty());
    shown.click("libraryReloadsItself");
    QVERIFY(shown.widget<QCheckBox>("libraryReloadsItself")->isChecked());

    QVERIFY(folder.takeAway());
    KVX_EVENTUALLY_EQUAL(shown.change(), u"The file is gone; waiting for another."_s);
    const QByteArray bytes = contentOf(builtLibrary());
    QVERIFY(append(folder.pluginFile, bytes.first(bytes.size() / 2)));
    KVX_EVENTUALLY_EQUAL(shown.change(), u"The file has changed and is not whole yet."_s);
    QVERIFY(shown.wanted.isEmpty());
    QVERIFY(append(folder.pluginFile, bytes.sliced(bytes.size() / 2)));
    KVX_EVENTUALLY_EQUAL(shown.wanted.size(), 1);
    QCOMPARE(shown.wanted.first().first().toString(), folder.pluginFile);
    KVX_EVENTUALLY_EQUAL(shown.change(), QString());
}

void tst_LibraryDock::unloadLeavesNothing()
{
    ShownDock shown;
    QVERIFY(shown.play({u"mouse 1"_s, u"start"_s}));
    KVX_EVENTUALLY(shown.widget("libraryUnload")->isEnabled());
    QVERIFY(!shown.widget("libraryLoad")->isEnabled());
    shown.click("libraryUnload");
    QCOMPARE(shown.lines.last(), u"unload"_s);
    KVX_EVENTUALLY_EQUAL(shown.residence(), u"Unloaded: nothing of the library is left in the process."_s);
    QCOMPARE(shown.answers.last().result, u"done"_s);
    KVX_EVENTUALLY(shown.widget("libraryLoad")->isEnabled());
    QVERIFY(!shown.widget("libraryUnload")->isEnabled());
    shown.click("libraryLoad");
    QCOMPARE(shown.lines.last(), u"load"_s);
    KVX_EVENTUALLY_EQUAL(shown.residence(), u"The library is in the process."_s);
    KVX_EVENTUALLY(shown.widget("libraryUnload")->isEnabled());
    QVERIFY(shown.wanted.isEmpty());
}

void tst_LibraryDock::whatFailsIsReported()
{
    ShownDock shown;
    QVERIFY(shown.play({u"unload"_s, u"load as a/b"_s}));
    QCOMPARE(shown.residence(), u"⚠ "_s + shown.answers.last().message);
    QVERIFY(shown.residence().contains(u"a/b"_s));

    // A library on Windows has no mark with which it stays.
    if constexpr (!ThisSystem::isWindows) {
        ShownDock staying(QStringLiteral(KVX_BROKEN_LIBRARIES "/library-that-stays-loaded/") +
                          QFileInfo(builtLibrary()).fileName());
        KVX_EVENTUALLY(staying.widget("libraryUnload")->isEnabled());
        staying.click("libraryUnload");
        KVX_EVENTUALLY_EQUAL(staying.residence(), u"⚠ unload: the library is still in the process"_s);
    }
}

void tst_LibraryDock::theWrapperRunsTheInspection()
{
    ShownDock shown;
    KVX_EVENTUALLY(shown.verdict().endsWith(u"is a device plugin."_s));
    shown.engine.setSetup({QStringLiteral(KVX_COMMAND), builtLibrary(), {u"/no/such/wrapper"_s}});
    shown.click("libraryInspect");
    KVX_EVENTUALLY(shown.verdict().endsWith(u"was not inspected."_s));
    QVERIFY2(shown.report().startsWith(u"kvx cannot be started: "_s), qUtf8Printable(shown.report()));
}

QTEST_MAIN(tst_LibraryDock)
#include "tst_LibraryDock.moc"
