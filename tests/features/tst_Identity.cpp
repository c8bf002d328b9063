#include "Bench.h"
#include "OtherThread.h"
#include "PlainPhysicalDevice.h"
#include "TimelineText.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QTranslator>
#include <QtCore/QUuid>
#include <QtTest/QTest>

#include <functional>
#include <limits>

using namespace Qt::StringLiterals;

class tst_Identity : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void constructionAndDestructionAreLogged();
    void constructionTouchesNothing();
    void freshDeviceHoldsTheDefaults();
    void identityStaysTheSame();
    void everyDeviceHasItsOwnInstanceId();
    void fixedAnswersInEveryState();
    void pairedHostNameIsEmptyForAnyIndex();
    void operationsWithoutEffect();
    void forwardToPhysicalDevicePassesEverything();
    void query26WithoutReceiver();
    void query26ReplacesItsFirstArgument();
    void nameIsTranslatable();
    void gettersAnswerOnAnyThread();
};

void tst_Identity::constructionAndDestructionAreLogged()
{
    Bench bench;
    bench.take();
    HostedDevice &device = bench.createRecorded(Bench::mouse);
    QCOMPARE(bench.take(), timelineText({u"call createLogicalDevice()"_s, debugLine(u"LogicalDevice enter"_s),
                                         debugLine(u"LogicalDevice exit"_s)}));
    bench.destroy(device);
    QCOMPARE(bench.take(), timelineText({u"call destroyDevice()"_s, debugLine(u"~LogicalDevice enter"_s),
                                         debugLine(u"~LogicalDevice exit"_s)}));
}

void tst_Identity::constructionTouchesNothing()
{
    Bench bench({false, false, false});
    HostedDevice &started = bench.started(1);
    bench.take();
    bench.createRecorded(2);
    QCOMPARE(bench.take(), u"call createLogicalDevice()"_s);
    QCOMPARE(started.device()->instanceNumber(), 0);
    QCOMPARE(bench.receiver.connectionCount("dpiMinChanged(int)"), 1);
}

void tst_Identity::freshDeviceHoldsTheDefaults()
{
    Bench bench;
    const ILogicalDeviceGen3Mouse &device = *bench.create().device();
    QCOMPARE(device.firmwareVersion(), 0U);
    QCOMPARE(device.instanceNumber(), 1);
    QCOMPARE(device.hasBatteryLevel(), false);
    QCOMPARE(device.batteryLevel(), -1);
    QCOMPARE(device.statusValue(), 0);
    QCOMPARE(device.deviceValue(), 0);
    QCOMPARE(device.levelValue(), 0);
    QCOMPARE(device.isSmartPointerSupported(), false);
    QCOMPARE(device.dpiMin(), 0);
    QCOMPARE(device.dpiMax(), 0);
    QCOMPARE(device.dpiValue(), 0);
    QCOMPARE(device.activeDpiSlotIndex(), 2);
    QCOMPARE(device.dpiSlotValues(), QStringList());
    QCOMPARE(device.dpiButtonId(), 15);
    QCOMPARE(device.isActiveDpiSlotIndexChangePending(), false);
    QCOMPARE(device.isDpiSlotValuesChangePending(), false);
    QCOMPARE(device.isDpiButtonIdChangePending(), false);
    QCOMPARE(device.reportRate(), 0);
    QCOMPARE(device.reportRateValues(), QStringList());
    QCOMPARE(device.isReportRateChangePending(), false);
    QCOMPARE(bench.create(2).gen3()->ppid(), QString());
}

void tst_Identity::identityStaysTheSame()
{
    Bench bench;
    HostedDevice &hosted = bench.create();
    const QUuid id = hosted.device()->instanceId();
    QVERIFY(!id.isNull());
    QCOMPARE(id.version(), QUuid::Random);
    const auto verifyIdentity = [&] {
        const ILogicalDeviceGen3Mouse &device = *hosted.device();
        QCOMPARE(device.deviceType(), 2);
        QCOMPARE(device.deviceClass(), 7);
        QCOMPARE(device.name(), u"Orvane Tessa Mouse"_s);
        QCOMPARE(device.instanceId(), id);
        QCOMPARE(device.iid(), u"com.orvane.KVX.Plugin.LogicalDevice.RV418"_s);
        QCOMPARE(device.modelCode(), u"RV418"_s);
        QCOMPARE(device.physicalDevice(), static_cast<IPhysicalDevice *>(&bench.receiver));
    };
    verifyIdentity();
    hosted.start();
    verifyIdentity();
    hosted.stop();
    verifyIdentity();
}

void tst_Identity::everyDeviceHasItsOwnInstanceId()
{
    Bench bench;
    const QUuid one = bench.create(1).device()->instanceId();
    const QUuid other = bench.create(1).device()->instanceId();
    QVERIFY(one != other);
}

void tst_Identity::fixedAnswersInEveryState()
{
    Bench bench;
    HostedDevice &hosted = bench.create();
    const auto verifyAnswers = [&] {
        const ILogicalDeviceGen3Mouse &device = *hosted.device();
        QCOMPARE(device.query24(), 0);
        QCOMPARE(device.pairedHostName(0), QString());
        QCOMPARE(device.isDPILevelSupported(), false);
        QCOMPARE(device.dpiLevel(), 0);
        QCOMPARE(device.query30(), QStringList());
        QCOMPARE(device.isDPILevelChangePending(), false);
        QCOMPARE(device.query33(), 0);
        QCOMPARE(device.query35(), false);
        QCOMPARE(device.query53(), false);
        QCOMPARE(device.dpiDelta(), 50);
        QCOMPARE(device.isDPIValueChangePending(), false);
        QCOMPARE(device.isDPIValueSupported(), true);
        QCOMPARE(device.query70(), 1);
        QCOMPARE(device.isReportRateSupported(), true);
        QCOMPARE(device.isScrollInversionEnabled(), false);
        QCOMPARE(device.query88(), false);
        QCOMPARE(device.query89(), false);
        QCOMPARE(device.query91(), false);
    };
    verifyAnswers();
    hosted.start();
    verifyAnswers();
    hosted.stop();
    verifyAnswers();
}

void tst_Identity::pairedHostNameIsEmptyForAnyIndex()
{
    Bench bench;
    HostedDevice &device = bench.started();
    for (const int index : {0, 1, -1, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()})
        QCOMPARE(device.device()->pairedHostName(index), QString());
}

void tst_Identity::operationsWithoutEffect()
{
    Bench bench;
    HostedDevice &hosted = bench.started();
    bench.take();
    ILogicalDeviceGen3Mouse &device = *hosted.device();
    device.setDpiLevel(3);
    device.setDpiValue(800);
    device.setScrollInversionEnabled(true);
    device.notify38();
    device.notify42();
    device.notify43();
    device.notify44();
    device.notify87();
    device.notify90();
    device.notify92();
    device.notify93();
    QCOMPARE(bench.take(), QString());
    QCOMPARE(device.dpiLevel(), 0);
    QCOMPARE(device.dpiValue(), 0);
    QCOMPARE(device.isScrollInversionEnabled(), false);
}

void tst_Identity::forwardToPhysicalDevicePassesEverything()
{
    Bench bench;
    PlainPhysicalDevice physicalDevice(bench.timeline);
    HostedDevice &device = bench.create(&physicalDevice, Bench::mouse);
    QCOMPARE(device.forwardToPhysicalDevice(11, 22, 33), quintptr(99));
    QCOMPARE(bench.take(), timelineText({u"call forwardToPhysicalDevice(11, 22, 33) -> 99"_s,
                                         u"receiver forwardedCall(11, 22, 33) -> 99"_s}));

    // The same through a receiver, before and after the start.
    HostedDevice &onReceiver = bench.create();
    QCOMPARE(onReceiver.forwardToPhysicalDevice(1, 2, 3), quintptr(77));
    onReceiver.start();
    bench.take();
    QCOMPARE(onReceiver.forwardToPhysicalDevice(4, 5, 6), quintptr(77));
    QCOMPARE(bench.take(), timelineText({u"call forwardToPhysicalDevice(4, 5, 6) -> 77"_s,
                                         u"receiver forwardedCall(4, 5, 6) -> 77"_s}));
}

void tst_Identity::query26WithoutReceiver()
{
    Bench bench;
    HostedDevice &device = bench.create();
    QCOMPARE(device.device()->query26(1, 2, 3), quintptr(0));
    QCOMPARE(bench.take(), QString());

    PlainPhysicalDevice physicalDevice(bench.timeline);
    HostedDevice &other = bench.create(&physicalDevice, Bench::mouse);
    other.start();
    bench.take();
    QCOMPARE(other.device()->query26(1, 2, 3), quintptr(0));
    QCOMPARE(bench.take(), QString());
}

void tst_Identity::query26ReplacesItsFirstArgument()
{
    Bench bench;
    HostedDevice &device = bench.started();
    QCOMPARE(device.device()->query26(1, 22, 33), quintptr(77));
    QCOMPARE(bench.take(Timeline::Style::WithDevice), u"receiver [42] forwardedOperation(22, 33) -> 77"_s);
}

void tst_Identity::nameIsTranslatable()
{
    class Translator : public QTranslator
    {
    public:
        bool isEmpty() const override { return false; }
        QString translate(const char *context, const char *sourceText, const char * /*disambiguation*/,
                          int /*n*/) const override
        {
            const bool isName =
                qstrcmp(context, "LogicalDevice") == 0 && qstrcmp(sourceText, "Orvane Tessa Mouse") == 0;
            return isName ? u"Souris Tessa"_s : QString();
        }
    };

    Bench bench;
    Translator translator;
    HostedDevice &before = bench.create(1);
    QCoreApplication::installTranslator(&translator);
    HostedDevice &during = bench.create(2);
    QCoreApplication::removeTranslator(&translator);
    // Translated once, when the device is made.
    QCOMPARE(before.device()->name(), u"Orvane Tessa Mouse"_s);
    QCOMPARE(during.device()->name(), u"Souris Tessa"_s);
}

void tst_Identity::gettersAnswerOnAnyThread()
{
    Bench bench;
    HostedDevice &device = bench.started();
    OtherThread other;
    other.run([&] {
        QCOMPARE(device.device()->name(), u"Orvane Tessa Mouse"_s);
        QCOMPARE(device.device()->instanceNumber(), 0);
        QCOMPARE(device.device()->reportRate(), 500);
        QCOMPARE(device.device()->firmwareVersion(), 258U);
    });
    QCOMPARE(bench.take(), QString());
}

QTEST_GUILESS_MAIN(tst_Identity)
#include "tst_Identity.moc"
