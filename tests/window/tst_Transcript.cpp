#include "Eventually.h"
#include "ScenarioText.h"
#include "Transcript.h"

#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtTest/QSignalSpy>

using namespace Qt::StringLiterals;

class tst_Transcript : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void commentStart_data();
    void commentStart();
    void linesAreKeptAsTheyWereSent();
    void anOutcomeIsExpected();
    void whatCannotBeUsedIsAComment();
    void aRestartBeginsAnotherOne();
    void kvxPlaysIt();
};

void tst_Transcript::commentStart_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<int>("start");
    QTest::newRow("no-comment") << u"mouse 1"_s << 7;
    QTest::newRow("behind-a-command") << u"mouse 1 # a"_s << 8;
    QTest::newRow("whole-line") << u"# a"_s << 0;
    QTest::newRow("inside-a-word") << u"set ppid a#b"_s << 12;
    QTest::newRow("inside-quotes") << u"set ppid \"a #b\" # c"_s << 16;
    QTest::newRow("quote-inside-quotes") << u"set ppid \"a\\\" #b\" # c"_s << 18;
    QTest::newRow("empty") << QString() << 0;
}

void tst_Transcript::commentStart()
{
    QFETCH(QString, line);
    QFETCH(int, start);
    QCOMPARE(::commentStart(line), start);
}

void tst_Transcript::linesAreKeptAsTheyWereSent()
{
    StartedEngine started;
    const Transcript transcript(&started.engine);
    QSignalSpy added(&transcript, &Transcript::lineAdded);
    const QStringList lines{u"mouse 1"_s, u"start  # why"_s, u""_s, u"# only this"_s, u"press 1"_s};
    QVERIFY(started.play(lines + QStringList{u"help"_s}));
    QCOMPARE(transcript.lines(), lines);
    QCOMPARE(added.size(), lines.size());
    QCOMPARE(transcript.text(), lines.join(u'\n') + u'\n');
}

void tst_Transcript::anOutcomeIsExpected()
{
    StartedEngine started;
    const Transcript transcript(&started.engine);
    QSignalSpy changed(&transcript, &Transcript::lineChanged);
    QVERIFY(
        started.play({u"mouse 1"_s, u"start"_s, u"fault setReportRate refuse"_s, u"setReportRate 1000 # no"_s,
                      u"fault reportRateConfirmed drop"_s, u"setReportRate 250"_s}));
    QCOMPARE(transcript.lines().at(3), u"setReportRate 1000 => refused"_s);
    QCOMPARE(transcript.lines().at(5), u"setReportRate 250 => pending"_s);
    QCOMPARE(changed.size(), 2);
    QCOMPARE(changed.first().first().toInt(), 3);
}

void tst_Transcript::whatCannotBeUsedIsAComment()
{
    StartedEngine started;
    const Transcript transcript(&started.engine);
    QVERIFY(started.play({u"mouse 1"_s, u"sett ppid X"_s}));
    QCOMPARE(transcript.lines().at(0), u"mouse 1"_s);
    QVERIFY(transcript.lines().at(1).startsWith(u"# unusable: sett ppid X ("_s));
}

void tst_Transcript::aRestartBeginsAnotherOne()
{
    StartedEngine started;
    const Transcript transcript(&started.engine);
    QVERIFY(started.play({u"mouse 1"_s}));
    QSignalSpy cleared(&transcript, &Transcript::cleared);
    started.engine.restart();
    KVX_EVENTUALLY(cleared.size() == 1);
    QCOMPARE(transcript.text(), QString());
    started.ends.clear();
    QVERIFY(started.play({u"mouse 2"_s}));
    QCOMPARE(transcript.lines(), QStringList{u"mouse 2"_s});
}

void tst_Transcript::kvxPlaysIt()
{
    StartedEngine started;
    const Transcript transcript(&started.engine);
    QVERIFY(started.play({u"help"_s, u"mouse 1"_s, u"nonsense"_s, u"start"_s, u"fault setReportRate refuse"_s,
                          u"setReportRate 250"_s, u"show reportRate"_s, u"press \"open"_s,
                          u"expect reportRate 250"_s}));
    const QTemporaryDir folder;
    QFile file(folder.filePath(u"transcript.kvx"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(transcript.text().toUtf8());
    file.close();
    QProcess kvx;
    kvx.start(QStringLiteral(KVX_COMMAND),
              {u"run"_s, u"--plugin"_s, QStringLiteral(KVX_LIBRARY), file.fileName()});
    QVERIFY(kvx.waitForFinished(StartedEngine::limit));
    QVERIFY2(kvx.exitCode() == 0, kvx.readAllStandardError().constData());
}

QTEST_MAIN(tst_Transcript)
#include "tst_Transcript.moc"
