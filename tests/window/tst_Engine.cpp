#include "EndText.h"
#include "Eventually.h"

#include <QtCore/QElapsedTimer>
#include <QtTest/QSignalSpy>

using namespace Qt::StringLiterals;

class tst_Engine : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aSessionOfLines();
    void theSignalsOfALineComeInOrder();
    void aLineBreakBecomesABlank();
    void aLineThatCannotBeUsedChangesNothing();
    void aCrashHasItsLastCall();
    void aHangIsStopped();
    void aHangDoesNotDelayTheEndOfTheWindow();
    void restartBeginsWithAFreshLibrary();
    void quitIsAnEndWithoutFault();
    void aLibraryThatCannotBeLoaded();
    void aMissingProgram();
    void theWrapperRunsTheChild();
    void wrongOutput_data();
    void wrongOutput();
    void anEndInTheMiddleOfALine();
};

void tst_Engine::aSessionOfLines()
{
    StartedEngine started;
    QVERIFY(started.play({u"mouse 1"_s, u"start"_s, u"setReportRate 250"_s}));
    QCOMPARE(started.answers.size(), 3);
    QCOMPARE(started.answers.last().result, u"done"_s);
    QCOMPARE(started.engine.lastCall(), u"report reportRateConfirmed(250)"_s);
    QCOMPARE(started.engine.sentCount(), 3);
    QVERIFY(!started.entries.isEmpty());
    for (qsizetype i = 0; i < started.entries.size(); ++i) {
        QVERIFY(!started.entries.at(i).text.isEmpty());
        QVERIFY(i == 0 || started.entries.at(i - 1).sequence < started.entries.at(i).sequence);
    }
}

void tst_Engine::theSignalsOfALineComeInOrder()
{
    StartedEngine started;
    QVERIFY(started.play({u"mouse 1"_s, u"start"_s}));
    QStringList events;
    // Entries, with a state behind them, may come in several parts.
    const auto note = [&events](const QString &event) {
        if (!events.contains(event))
            events.append(event);
    };
    const Engine *engine = &started.engine;
    connect(engine, &Engine::sent, this, [note] { note(u"sent"_s); });
    connect(engine, &Engine::busyChanged, this,
            [note](bool isBusy) { note(isBusy ? u"busy"_s : u"idle"_s); });
    connect(engine, &Engine::entriesCame, this, [note] { note(u"entries"_s); });
    connect(engine, &Engine::answered, this, [note] { note(u"answered"_s); });
    const QSignalSpy states(engine, &Engine::stateChanged);
    started.engine.send(u"setReportRate 250"_s);
    // A state comes when something has changed, so the last one may come before the answer.
    KVX_EVENTUALLY(events.contains(u"idle"_s) && !states.isEmpty());
    const QStringList expected{u"sent"_s, u"busy"_s, u"entries"_s, u"answered"_s, u"idle"_s};
    QCOMPARE(events, expected);
}

void tst_Engine::aLineBreakBecomesABlank()
{
    StartedEngine started;
    QVERIFY(started.play({u"mouse 1\nstart"_s}));
    QCOMPARE(started.lines, QStringList{u"mouse 1 start"_s});
    QCOMPARE(started.answers.size(), 1);
    QCOMPARE(started.answers.first().result, u"unusable"_s);
}

void tst_Engine::aLineThatCannotBeUsedChangesNothing()
{
    StartedEngine started;
    // The answer to an empty line comes behind the state.
    QVERIFY(started.play({u"mouse 1"_s, QString()}));
    const QJsonObject state = started.engine.state();
    QVERIFY(started.play({u"nonsense \"open"_s}));
    QCOMPARE(started.answers.last().result, u"unusable"_s);
    QVERIFY(!started.answers.last().message.isEmpty());
    QCOMPARE(started.engine.state(), state);
    QVERIFY(started.play({u"start"_s}));
    QCOMPARE(started.answers.last().result, u"done"_s);
}

void tst_Engine::aCrashHasItsLastCall()
{
    StartedEngine started(brokenLibrary(u"crash-without-receiver"_s));
    QVERIFY(started.play({u"device 1 none"_s}));
    QVERIFY(!started.play({u"query26 1 2 3"_s}));
    QCOMPARE(started.ends.size(), 1);
    const EngineEnd end = started.ends.first();
    QCOMPARE(end.kind, EngineEnd::Kind::Crashed);
    QCOMPARE(end.lastCall, u"call query26(1, 2, 3)"_s);
    QVERIFY(endText(end).contains(end.lastCall));
    QVERIFY(!started.engine.isBusy());
    started.engine.send(u"start"_s);
    QCOMPARE(started.lines.size(), 2);
}

void tst_Engine::aHangIsStopped()
{
    StartedEngine started(brokenLibrary(u"lock-taken-twice"_s));
    QVERIFY(started.play({u"device 1 none"_s}));
    started.engine.send(u"start"_s);
    KVX_EVENTUALLY(started.engine.lastCall() == u"call start()"_s);
    QVERIFY(started.engine.isBusy());
    started.engine.stop();
    KVX_EVENTUALLY(started.ends.size() == 1);
    QCOMPARE(started.ends.first().kind, EngineEnd::Kind::Stopped);
    QCOMPARE(started.ends.first().lastCall, u"call start()"_s);
}

// The hanging child never ends by itself, so the test would not end either.
void tst_Engine::aHangDoesNotDelayTheEndOfTheWindow()
{
    auto started = std::make_unique<StartedEngine>(brokenLibrary(u"lock-taken-twice"_s));
    QVERIFY(started->play({u"device 1 none"_s}));
    started->engine.send(u"start"_s);
    KVX_EVENTUALLY(started->engine.lastCall() == u"call start()"_s);
    started.reset();
    QVERIFY(!started);
}

void tst_Engine::restartBeginsWithAFreshLibrary()
{
    StartedEngine started;
    QVERIFY(started.play({u"mouse 1"_s, u"start"_s}));
    QSignalSpy states(&started.engine, &Engine::stateChanged);
    started.engine.restart();
    KVX_EVENTUALLY(states.size() == 1);
    QCOMPARE(started.ends.size(), 1);
    QCOMPARE(started.ends.first().kind, EngineEnd::Kind::Stopped);
    QCOMPARE(started.engine.sentCount(), 0);
    QCOMPARE(started.engine.state().value("devices"_L1).toArray().size(), 0);
    started.ends.clear();
    QVERIFY(started.play({u"mouse 1"_s}));
    QCOMPARE(started.answers.last().number, 1);
}

void tst_Engine::quitIsAnEndWithoutFault()
{
    StartedEngine started;
    started.engine.send(u"quit"_s);
    KVX_EVENTUALLY(started.ends.size() == 1);
    QCOMPARE(started.answers.last().result, u"end"_s);
    QCOMPARE(started.ends.first().kind, EngineEnd::Kind::Finished);
    QCOMPARE(started.ends.first().exitCode, 0);
}

void tst_Engine::aLibraryThatCannotBeLoaded()
{
    StartedEngine started(QStringLiteral(KVX_EXAMPLES) + u"/01-dpi-slots.kvx"_s);
    QVERIFY(!started.settle());
    const EngineEnd end = started.ends.first();
    QCOMPARE(end.kind, EngineEnd::Kind::Unloadable);
    QCOMPARE(end.exitCode, 2);
    QVERIFY2(end.errorText.contains(u"01-dpi-slots.kvx"_s), qPrintable(end.errorText));
    QCOMPARE(started.answers.size(), 1);
    QCOMPARE(started.answers.first().number, 0);
}

void tst_Engine::aMissingProgram()
{
    StartedEngine started;
    started.engine.stop();
    KVX_EVENTUALLY(started.ends.size() == 1);
    started.ends.clear();
    started.engine.setSetup({u"/nowhere/kvx"_s, {}, {}});
    started.engine.start();
    KVX_EVENTUALLY(started.ends.size() == 1);
    QCOMPARE(started.ends.first().kind, EngineEnd::Kind::NotStarted);
    QVERIFY(!started.ends.first().errorText.isEmpty());
}

void tst_Engine::theWrapperRunsTheChild()
{
    StartedEngine started;
    QVERIFY(started.settle());
    QSignalSpy states(&started.engine, &Engine::stateChanged);
    // The fake child takes kvx's place and knows no plugin of that name.
    started.engine.setSetup({QStringLiteral(KVX_COMMAND), u"plain"_s, {QStringLiteral(KVX_FAKE)}});
    started.engine.restart();
    KVX_EVENTUALLY(states.size() == 1);
    const QJsonObject fakeState{{u"isLoaded"_s, true}};
    QCOMPARE(started.engine.state(), fakeState);
}

void tst_Engine::wrongOutput_data()
{
    QTest::addColumn<QString>("mode");
    for (const char *mode :
         {"plain", "garbage", "wrong-types", "half-lines", "huge-line", "answers-from-nowhere"})
        QTest::newRow(mode) << QString::fromLatin1(mode);
}

void tst_Engine::wrongOutput()
{
    QFETCH(QString, mode);
    StartedEngine started(QStringLiteral(KVX_LIBRARY));
    QVERIFY(started.settle());
    started.engine.setSetup({QStringLiteral(KVX_FAKE), mode, {}});
    started.engine.restart();
    const QJsonObject fakeState{{u"isLoaded"_s, true}};
    KVX_EVENTUALLY(started.engine.state() == fakeState);
    started.ends.clear();
    started.answers.clear();
    started.engine.send(u"one"_s);
    started.engine.send(u"two"_s);
    QVERIFY(started.engine.isBusy());
    KVX_EVENTUALLY(!started.answers.isEmpty() && started.answers.last().number == 2);
    QVERIFY(!started.engine.isBusy());
    QVERIFY(started.ends.isEmpty());
    QVERIFY(started.engine.isRunning());
}

void tst_Engine::anEndInTheMiddleOfALine()
{
    StartedEngine started;
    QVERIFY(started.settle());
    started.engine.stop();
    KVX_EVENTUALLY(started.ends.size() == 1);
    started.ends.clear();
    started.engine.setSetup({QStringLiteral(KVX_FAKE), u"ends-in-a-line"_s, {}});
    started.engine.start();
    KVX_EVENTUALLY(started.ends.size() == 1);
    const EngineEnd end = started.ends.first();
    QCOMPARE(end.kind, EngineEnd::Kind::Crashed);
    QCOMPARE(end.exitCode, 7);
    QCOMPARE(end.lastCall, u"call f()"_s);
    QCOMPARE(end.errorText, u"kvx: no more"_s);
    QCOMPARE(end.crash, QString());
}

QTEST_MAIN(tst_Engine)
#include "tst_Engine.moc"
