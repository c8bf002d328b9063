#include "Kvx.h"
#include "PluginFixture.h"
#include "ScenarioFiles.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QProcess>
#include <QtTest/QTest>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int mostMilliseconds = 120000;

QStringList hangs()
{
    return {u"mouse 1"_s, u"start"_s, u"expect modelCode RV418"_s};
}

QStringList passes()
{
    return {u"expect metadata {\"IID\":\"com.orvane.KVX.Plugin.LogicalDevice.RV418\","
            "\"archlevel\":0,\"className\":\"LogicalDevicePlugin\"}"_s};
}

QStringList fails()
{
    return {u"expect metadata {}"_s};
}

// How many processes have all the words among their own.
int processesWith(const QStringList &words)
{
    int count = 0;
    const QStringList numbers = QDir(u"/proc"_s).entryList({u"[0-9]*"_s}, QDir::Dirs);
    for (const QString &number : numbers) {
        QFile file(u"/proc/%1/cmdline"_s.arg(number));
        const QStringList own =
            file.open(QFile::ReadOnly) ? QString::fromUtf8(file.readAll()).split(u'\0') : QStringList();
        if (std::all_of(words.cbegin(), words.cend(),
                        [&](const QString &word) { return own.contains(word); }))
            ++count;
    }
    return count;
}

bool waitForProcessesWith(const QStringList &words, int count)
{
    return QTest::qWaitFor([&] { return processesWith(words) == count; }, mostMilliseconds);
}

}  // namespace

class tst_KvxCheckProcesses : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void interruptedCheckSaysHowFarItCame_data();
    void interruptedCheckSaysHowFarItCame();
    void killedCheckLeavesNoProcess();
    void deadlineEndsTheWholeTree();
    void terminalShowsProgress();
    void closedPipeLosesNoReport();
    void reportIsNoStream();
    void lostOutputIsSaid_data();
    void lostOutputIsSaid();

private:
    // Starts a check that does not come to its end by itself, and waits until it hangs.
    void startHanging(QProcess &process);

    ScenarioFiles m_files;
    QString m_hanging;
    QString m_passing;
};

void tst_KvxCheckProcesses::init()
{
    m_hanging = m_files.write(u"hangs"_s, hangs());
    m_passing = m_files.write(u"passes"_s, passes());
}

void tst_KvxCheckProcesses::startHanging(QProcess &process)
{
    process.start(QStringLiteral(KVX_COMMAND),
                  {u"check"_s, brokenLibrary(u"lock-taken-twice"_s), m_passing, m_hanging, u"--timeout"_s,
                   u"off"_s, u"--jobs"_s, u"1"_s, u"--json"_s, m_files.path(u"report.json"_s)});
    QVERIFY(waitForProcessesWith({u"--steps"_s, m_hanging}, 1));
}

void tst_KvxCheckProcesses::interruptedCheckSaysHowFarItCame_data()
{
    QTest::addColumn<int>("signal");
    QTest::addColumn<QString>("name");
    QTest::newRow("ctrl-c") << SIGINT << u"SIGINT"_s;
    QTest::newRow("request-to-end") << SIGTERM << u"SIGTERM"_s;
}

void tst_KvxCheckProcesses::interruptedCheckSaysHowFarItCame()
{
    QFETCH(const int, signal);
    QFETCH(const QString, name);
    QProcess process;
    startHanging(process);
    kill(static_cast<pid_t>(process.processId()), signal);
    QVERIFY(process.waitForFinished(mostMilliseconds));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 3);
    const QByteArray output = process.readAllStandardOutput();
    QVERIFY2(output.contains("\n1 of 2 scenarios in "), output.constData());
    const QString answer = u"interrupted (%1) after 1 of 2 scenarios, no answer"_s.arg(name);
    QVERIFY2(output.endsWith(answer.toUtf8() + ": 1 pass\n"), output.constData());
    QCOMPARE(processesWith({m_hanging}), 0);
    QFile report(m_files.path(u"report.json"_s));
    QVERIFY(report.open(QFile::ReadOnly));
    const QJsonObject object = QJsonDocument::fromJson(report.readAll()).object();
    QCOMPARE(object.value("planned"_L1).toInt(), 2);
    QCOMPARE(object.value("interruption"_L1).toString(), name);
    QCOMPARE(object.value("answer"_L1).toString(), answer);
    QCOMPARE(object.value("scenarios"_L1).toArray().size(), 1);
}

void tst_KvxCheckProcesses::killedCheckLeavesNoProcess()
{
    QProcess process;
    startHanging(process);
    process.kill();
    QVERIFY(process.waitForFinished(mostMilliseconds));
    QVERIFY(waitForProcessesWith({m_hanging}, 0));
}

void tst_KvxCheckProcesses::deadlineEndsTheWholeTree()
{
    const QString seconds = u"100000.%1"_s.arg(getpid());
    const QString file = m_files.path(u"spawned"_s);
    qputenv("KVX_SPAWNED_SECONDS", seconds.toUtf8());
    qputenv("KVX_SPAWNED_FILE", file.toUtf8());
    const KvxRun run =
        runKvx({u"check"_s, wrongLibrary(u"SpawningPlugin"_s), m_passing, u"--timeout"_s, u"10"_s});
    QCOMPARE(run.exitCode, 1);
    QVERIFY2(run.output.contains(u"timeout    "_s + m_passing), qPrintable(run.output.join(u'\n')));
    QVERIFY(QFile::exists(file));
    QVERIFY(waitForProcessesWith({seconds}, 0));
}

void tst_KvxCheckProcesses::terminalShowsProgress()
{
    const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
    QVERIFY(terminal >= 0 && grantpt(terminal) == 0 && unlockpt(terminal) == 0);
    QFile output;
    QVERIFY(output.open(terminal, QFile::ReadOnly | QFile::Unbuffered, QFile::AutoCloseHandle));
    QProcess process;
    process.setStandardOutputFile(QString::fromLocal8Bit(ptsname(terminal)));
    process.start(QStringLiteral(KVX_COMMAND), {u"check"_s, PluginFixture::builtPluginFile(), m_passing,
                                                m_files.write(u"fails"_s, fails()), u"--jobs"_s, u"1"_s});
    QVERIFY(process.waitForFinished(mostMilliseconds));
    QCOMPARE(process.exitCode(), 1);
    constexpr qint64 enough = 1 << 16;
    const QByteArray text = output.read(enough);
    QVERIFY2(text.contains("\r1 of 2 ") && text.contains("\r2 of 2, 1 went wrong "), text.constData());
    // Only what went wrong has a line.
    QVERIFY2(text.contains("\rfail       ") && !text.contains("\rpass       "), text.constData());
    QVERIFY2(text.contains("\rdoes not keep the contract: 1 pass, 1 fail\r\n"), text.constData());
}

void tst_KvxCheckProcesses::closedPipeLosesNoReport()
{
    int ends[2] = {};  // to read, to write
    QCOMPARE(pipe(ends), 0);
    close(ends[0]);
    const QString report = m_files.path(u"piped.json"_s);
    QProcess process;
    process.setChildProcessModifier([&] { dup2(ends[1], STDOUT_FILENO); });
    process.start(QStringLiteral(KVX_COMMAND),
                  {u"check"_s, PluginFixture::builtPluginFile(), m_passing, u"--json"_s, report});
    QVERIFY(process.waitForFinished(mostMilliseconds));
    close(ends[1]);
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 0);
    QCOMPARE(process.readAllStandardError(), QByteArray());
    QVERIFY(QFile::exists(report));
}

void tst_KvxCheckProcesses::reportIsNoStream()
{
    for (const QString &name : {u"/dev/stdout"_s, u"/dev/fd/1"_s}) {
        QProcess process;
        process.setStandardOutputFile(m_files.path(u"output"_s));
        process.start(QStringLiteral(KVX_COMMAND),
                      {u"check"_s, PluginFixture::builtPluginFile(), m_passing, u"--json"_s, name});
        QVERIFY(process.waitForFinished(mostMilliseconds));
        QCOMPARE(QString::fromUtf8(process.readAllStandardError()),
                 u"kvx: \"%1\" is no regular file; give the name of a file\n"_s.arg(name));
        QCOMPARE(process.exitCode(), 2);
    }
}

void tst_KvxCheckProcesses::lostOutputIsSaid_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("check") << QStringList{u"check"_s, PluginFixture::builtPluginFile(), u"load/one-device"_s};
    QTest::newRow("list") << QStringList{u"check"_s, u"--list"_s};
    QTest::newRow("inspect") << QStringList{u"inspect"_s, PluginFixture::builtPluginFile()};
}

void tst_KvxCheckProcesses::lostOutputIsSaid()
{
    QFETCH(const QStringList, arguments);
    QProcess process;
    process.setStandardOutputFile(u"/dev/full"_s);
    process.start(QStringLiteral(KVX_COMMAND), arguments);
    QVERIFY(process.waitForFinished(mostMilliseconds));
    QCOMPARE(process.readAllStandardError(),
             QByteArray("kvx: the output cannot be written: No space left on device\n"));
    QCOMPARE(process.exitCode(), 2);
}

QTEST_GUILESS_MAIN(tst_KvxCheckProcesses)
#include "tst_KvxCheckProcesses.moc"
