#include <QtCore/QDir>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

using namespace Qt::StringLiterals;

namespace {

/// How the program ended and what it printed.
struct WindowRun
{
    int exitCode = -1;
    QString output;
    QString errors;
};

constexpr int limit = 60000;  // ms; a failure, never a measure

WindowRun runWindow(const QStringList &words, const QProcessEnvironment &environment)
{
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(KVX_WINDOW), words);
    if (!process.waitForFinished(limit))
        return {};
    const int exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    return {exitCode, QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

QProcessEnvironment withoutDisplay()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const QString &name : {u"DISPLAY"_s, u"WAYLAND_DISPLAY"_s, u"QT_QPA_PLATFORM"_s})
        environment.remove(name);
    return environment;
}

}  // namespace

class tst_WindowProgram : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void helpAndVersionNeedNoDisplay();
    void badUsageIsOneSentence_data();
    void badUsageIsOneSentence();
    void aMissingDisplayIsOneSentence();
    void anUnreachableDisplayIsOneSentence();
    void theLibraryBesideKvxIsNamed();
};

void tst_WindowProgram::helpAndVersionNeedNoDisplay()
{
    const WindowRun help = runWindow({u"--help"_s}, withoutDisplay());
    QCOMPARE(help.exitCode, 0);
    for (const QString &option : {u"--plugin"_s, u"--kvx"_s, u"--run-with"_s, u"--version"_s, u"FILE"_s})
        QVERIFY2(help.output.contains(option), qPrintable(option));
    QCOMPARE(help.errors, QString());
    const WindowRun version = runWindow({u"--version"_s}, withoutDisplay());
    QCOMPARE(version.exitCode, 0);
    QCOMPARE(version.output, QStringLiteral("kvx-workbench " KVX_VERSION "\n"));
}

void tst_WindowProgram::badUsageIsOneSentence_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<QString>("sentence");
    const QString scenario = QStringLiteral(KVX_EXAMPLES) + u"/01-dpi-slots.kvx"_s;
    const QString source = QStringLiteral(KVX_EXAMPLES) + u"/host/CMakeLists.txt"_s;
    QTest::newRow("unknown-option") << QStringList{u"--nonsense"_s} << u"--nonsense"_s;
    QTest::newRow("missing-scenario") << QStringList{u"none.kvx"_s} << u"there is no file none.kvx"_s;
    QTest::newRow("missing-library") << QStringList{u"--plugin"_s, u"none.so"_s} << u"none.so"_s;
    QTest::newRow("missing-kvx") << QStringList{u"--kvx"_s, u"none"_s} << u"with --kvx"_s;
    QTest::newRow("folder") << QStringList{QStringLiteral(KVX_EXAMPLES)} << u"is no file"_s;
    QTest::newRow("other-file") << QStringList{source} << u"neither a scenario (.kvx) nor a library"_s;
    QTest::newRow("two-scenarios") << QStringList{scenario, scenario} << u"one scenario and one library"_s;
}

void tst_WindowProgram::badUsageIsOneSentence()
{
    QFETCH(QStringList, words);
    QFETCH(QString, sentence);
    const WindowRun run = runWindow(words, withoutDisplay());
    QCOMPARE(run.exitCode, 2);
    QVERIFY2(run.errors.startsWith(u"kvx-workbench: "_s) && run.errors.contains(sentence),
             qPrintable(run.errors));
    QCOMPARE(run.errors.count(u'\n'), 1);
    QCOMPARE(run.output, QString());
}

void tst_WindowProgram::aMissingDisplayIsOneSentence()
{
    const WindowRun run = runWindow({}, withoutDisplay());
    QCOMPARE(run.exitCode, 2);
    QVERIFY2(run.errors.startsWith(u"kvx-workbench: there is no display"_s), qPrintable(run.errors));
    QCOMPARE(run.errors.count(u'\n'), 1);
}

void tst_WindowProgram::anUnreachableDisplayIsOneSentence()
{
    const QTemporaryDir folder;
    QProcessEnvironment environment = withoutDisplay();
    environment.insert(u"XDG_RUNTIME_DIR"_s, folder.path());
    environment.insert(u"DISPLAY"_s, u"nowhere.invalid:0"_s);
    const WindowRun run = runWindow({}, environment);
    QCOMPARE(run.exitCode, 2);
    QVERIFY2(run.errors.startsWith(u"kvx-workbench: no window can be shown: "_s), qPrintable(run.errors));
    QCOMPARE(run.errors.count(u'\n'), 1);
}

// Only a library with a name is inspected, watched and checked.
void tst_WindowProgram::theLibraryBesideKvxIsNamed()
{
    const QTemporaryDir folder;
    const QString words = folder.filePath(u"words"_s);
    QFile script(folder.filePath(u"note-words"_s));
    QVERIFY(script.open(QIODevice::WriteOnly));
    // Whole at once: whoever finds the file finds all words in it. The window also runs "kvx inspect".
    const QString text = uR"([ "$2" != shell ] || { printf '%s\n' "$@" >'%1.part' && mv '%1.part' '%1'; }
exec "$@"
)"_s.arg(words);
    script.write(text.toUtf8());
    script.close();
    QProcessEnvironment environment = withoutDisplay();
    environment.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
    environment.insert(u"XDG_CONFIG_HOME"_s, folder.path());
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(KVX_WINDOW), {u"--run-with"_s, u"/bin/sh "_s + script.fileName()});
    QVERIFY(QTest::qWaitFor([&] { return QFile::exists(words); }, limit));
    process.kill();
    QVERIFY(process.waitForFinished(limit));
    QFile file(words);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(QString::fromUtf8(file.readAll()),
             QStringLiteral(KVX_COMMAND "\nshell\n--json\n--plugin\n" KVX_LIBRARY "\n"));
}

QTEST_MAIN(tst_WindowProgram)
#include "tst_WindowProgram.moc"
