#include "OtherThread.h"
#include "PluginFixture.h"
#include "SignalRecorder.h"
#include "TimelineText.h"

#include <QtCore/QPoint>
#include <QtTest/QTest>

using namespace Qt::StringLiterals;

class BaseEmitter : public QObject
{
    Q_OBJECT

Q_SIGNALS:
    void inherited();
};

class Emitter : public BaseEmitter
{
    Q_OBJECT

Q_SIGNALS:
    void numbers(bool yes, int number, uint count, qint64 large, quint64 id, quint8 byte);
    void texts(const QString &text, const QStringList &list);
    void withDefault(int first, int second = 2);
    void opaque(const QPoint &point);

public Q_SLOTS:
    void notASignal() {}
};

class tst_SignalRecorder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void recordsEverySignalBelowQObject();
    void recordsOnTheEmittingThread();
    void recordsBeforeLaterSlots();
    void senderMayGoFirst();
    void recorderMayGoFirst();
    void missingSenderIsTold();
    void deviceArgumentIsThisOrOther();
    void everySignalOfADeviceIsRecorded();
};

void tst_SignalRecorder::recordsEverySignalBelowQObject()
{
    Timeline timeline;
    Emitter emitter;
    const SignalRecorder recorder(timeline, &emitter, 42);
    QVERIFY(recorder.isComplete());
    emitter.setObjectName(u"a signal of QObject"_s);
    Q_EMIT emitter.inherited();
    Q_EMIT emitter.numbers(true, -5, 4294967295U, qint64{1} << 54, 7, 255);
    Q_EMIT emitter.texts(u"a \"b\""_s, {u"x"_s, u"y"_s});
    Q_EMIT emitter.withDefault(1);
    Q_EMIT emitter.opaque({1, 2});
    emitter.notASignal();
    COMPARE_LINES(timeline.lines(Timeline::Style::WithDevice),
                  {u"signal [42] inherited()"_s,
                   u"signal [42] numbers(true, -5, 4294967295, \"18014398509481984\", 7, 255)"_s,
                   u"signal [42] texts(\"a \\\"b\\\"\", [\"x\", \"y\"])"_s,
                   u"signal [42] withDefault(1, 2)"_s, u"signal [42] opaque(\"QPoint\")"_s});
}

void tst_SignalRecorder::recordsOnTheEmittingThread()
{
    Timeline timeline;
    Emitter emitter;
    const SignalRecorder recorder(timeline, &emitter, {});
    OtherThread other;
    other.run([&] { Q_EMIT emitter.inherited(); });
    COMPARE_LINES(timeline.take(), {u"signal inherited() on thread 2"_s});
}

void tst_SignalRecorder::recordsBeforeLaterSlots()
{
    Timeline timeline;
    Emitter emitter;
    const SignalRecorder recorder(timeline, &emitter, {});
    connect(&emitter, &Emitter::inherited, &emitter, [&] { timeline.recordVerdict(u"slot"_s); });
    Q_EMIT emitter.inherited();
    COMPARE_LINES(timeline.take(), {u"signal inherited()"_s, u"verdict slot"_s});
}

void tst_SignalRecorder::senderMayGoFirst()
{
    Timeline timeline;
    auto emitter = std::make_unique<Emitter>();
    const SignalRecorder recorder(timeline, emitter.get(), {});
    emitter.reset();
    COMPARE_LINES(timeline.take(), {});
}

void tst_SignalRecorder::recorderMayGoFirst()
{
    Timeline timeline;
    Emitter emitter;
    auto recorder = std::make_unique<SignalRecorder>(timeline, &emitter, std::nullopt);
    recorder.reset();
    Q_EMIT emitter.inherited();
    COMPARE_LINES(timeline.take(), {});
}

void tst_SignalRecorder::missingSenderIsTold()
{
    Timeline timeline;
    const SignalRecorder recorder(timeline, nullptr, 42);
    QVERIFY(!recorder.isComplete());
    COMPARE_LINES(timeline.take(Timeline::Style::WithDevice),
                  {u"verdict [42] there is no object whose signals could be recorded"_s});
}

void tst_SignalRecorder::deviceArgumentIsThisOrOther()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &first = fixture.create(1);
    HostedDevice &second = fixture.create(2);
    first.device()->stopped(first.device());
    first.device()->stopped(second.device());
    first.device()->stopped(nullptr);
    COMPARE_LINES(fixture.take(Timeline::Style::WithDevice),
                  {u"signal [1] stopped(\"this\")"_s, u"signal [1] stopped(\"other\")"_s,
                   u"signal [1] stopped(null)"_s});
}

void tst_SignalRecorder::everySignalOfADeviceIsRecorded()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.create();
    const QMetaObject *metaObject = device.object()->metaObject();
    int signalCount = 0;
    for (int index = metaObject->methodOffset(); index < metaObject->methodCount(); ++index) {
        const QMetaMethod method = metaObject->method(index);
        if (method.methodType() != QMetaMethod::Signal)
            continue;
        ++signalCount;
        fixture.take();
        void *arguments[] = {nullptr, nullptr, nullptr};
        QVariant values[2];
        for (int parameter = 0; parameter < method.parameterCount(); ++parameter) {
            values[parameter] = QVariant(method.parameterMetaType(parameter));
            arguments[parameter + 1] = values[parameter].data();
        }
        QMetaObject::activate(device.object(), metaObject, index - metaObject->methodOffset(), arguments);
        const QStringList lines = fixture.take();
        QCOMPARE(lines.size(), qsizetype(1));
        QVERIFY2(lines.first().startsWith(u"signal "_s + QString::fromLatin1(method.name()) + u'('),
                 qPrintable(lines.first()));
    }
    QCOMPARE(signalCount, 29);
}

QTEST_GUILESS_MAIN(tst_SignalRecorder)
#include "tst_SignalRecorder.moc"
