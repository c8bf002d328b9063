#include "OtherThread.h"
#include "PlainPhysicalDevice.h"
#include "PluginFixture.h"
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
    PluginFixture fixture;
    fixture.take();
    HostedDevice &device = fixture.createRecorded(PluginFixture::mouse);
    COMPARE_LINES(fixture.take(), {u"call createLogicalDevice()"_s, debugLine(u"LogicalDevice enter"_s),
                                   debugLine(u"LogicalDevice exit"_s)});
    fixture.destroy(device);
    COMPARE_LINES(fixture.take(), {u"call destroyDevice()"_s, debugLine(u"~LogicalDevice enter"_s),
                                   debugLine(u"~LogicalDevice exit"_s)});
}

void tst_Identity::constructionTouchesNothing()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &started = fixture.started(1);
    fixture.take();
    fixture.createRecorded(2);
    COMPARE_LINES(fixture.take(), {u"call createLogicalDevice()"_s});
    QCOMPARE(started.device()->instanceNumber(), 0);
    QCOMPARE(fixture.receiver.connectionCount("dpiMinChanged(int)"), 1);
}

void tst_Identity::freshDeviceHoldsTheDefaults()
{
    PluginFixture fixture;
    const ILogicalDeviceGen3Mouse &device = *fixture.create().device();
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
    COMPARE_LINES(device.dpiSlotValues(), {});
    QCOMPARE(device.dpiButtonId(), 15);
    QCOMPARE(device.isActiveDpiSlotIndexChangePending(), false);
    QCOMPARE(device.isDpiSlotValuesChangePending(), false);
    QCOMPARE(device.isDpiButtonIdChangePending(), false);
    QCOMPARE(device.reportRate(), 0);
    COMPARE_LINES(device.reportRateValues(), {});
    QCOMPARE(device.isReportRateChangePending(), false);
    QCOMPARE(fixture.create(2).gen3()->ppid(), QString());
}

void tst_Identity::identityStaysTheSame()
{
    PluginFixture fixture;
    HostedDevice &hosted = fixture.create();
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
        QCOMPARE(device.physicalDevice(), static_cast<IPhysicalDevice *>(&fixture.receiver));
    };
    verifyIdentity();
    hosted.start();
    verifyIdentity();
    hosted.stop();
    verifyIdentity();
}

void tst_Identity::everyDeviceHasItsOwnInstanceId()
{
    PluginFixture fixture;
    const QUuid one = fixture.create(1).device()->instanceId();
    const QUuid other = fixture.create(1).device()->instanceId();
    QVERIFY(one != other);
}

void tst_Identity::fixedAnswersInEveryState()
{
    PluginFixture fixture;
    HostedDevice &hosted = fixture.create();
    const auto verifyAnswers = [&] {
        const ILogicalDeviceGen3Mouse &device = *hosted.device();
        QCOMPARE(device.query24(), 0);
        QCOMPARE(device.pairedHostName(0), QString());
        QCOMPARE(device.isDPILevelSupported(), false);
        QCOMPARE(device.dpiLevel(), 0);
        COMPARE_LINES(device.query30(), {});
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
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    for (const int index : {0, 1, -1, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()})
        QCOMPARE(device.device()->pairedHostName(index), QString());
}

void tst_Identity::operationsWithoutEffect()
{
    PluginFixture fixture;
    HostedDevice &hosted = fixture.started();
    fixture.take();
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
    COMPARE_LINES(fixture.take(), {});
    QCOMPARE(device.dpiLevel(), 0);
    QCOMPARE(device.dpiValue(), 0);
    QCOMPARE(device.isScrollInversionEnabled(), false);
}

void tst_Identity::forwardToPhysicalDevicePassesEverything()
{
    PluginFixture fixture;
    PlainPhysicalDevice physicalDevice(fixture.timeline);
    HostedDevice &device = fixture.create(&physicalDevice, PluginFixture::mouse);
    QCOMPARE(device.forwardToPhysicalDevice(11, 22, 33), quintptr(99));
    COMPARE_LINES(fixture.take(), {u"call forwardToPhysicalDevice(11, 22, 33) -> 99"_s,
                                   u"receiver forwardedCall(11, 22, 33) -> 99"_s});

    // The same through a receiver, before and after the start.
    HostedDevice &onReceiver = fixture.create();
    QCOMPARE(onReceiver.forwardToPhysicalDevice(1, 2, 3), quintptr(77));
    onReceiver.start();
    fixture.take();
    QCOMPARE(onReceiver.forwardToPhysicalDevice(4, 5, 6), quintptr(77));
    COMPARE_LINES(fixture.take(), {u"call forwardToPhysicalDevice(4, 5, 6) -> 77"_s,
                                   u"receiver forwardedCall(4, 5, 6) -> 77"_s});
}

void tst_Identity::query26WithoutReceiver()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.create();
    QCOMPARE(device.device()->query26(1, 2, 3), quintptr(0));
    COMPARE_LINES(fixture.take(), {});

    PlainPhysicalDevice physicalDevice(fixture.timeline);
    HostedDevice &other = fixture.create(&physicalDevice, PluginFixture::mouse);
    other.start();
    fixture.take();
    QCOMPARE(other.device()->query26(1, 2, 3), quintptr(0));
    COMPARE_LINES(fixture.take(), {});
}

void tst_Identity::query26ReplacesItsFirstArgument()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    QCOMPARE(device.device()->query26(1, 22, 33), quintptr(77));
    COMPARE_LINES(fixture.take(Timeline::Style::WithDevice),
                  {u"receiver [42] forwardedOperation(22, 33) -> 77"_s});
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

    PluginFixture fixture;
    Translator translator;
    HostedDevice &before = fixture.create(1);
    QCoreApplication::installTranslator(&translator);
    HostedDevice &during = fixture.create(2);
    QCoreApplication::removeTranslator(&translator);
    // Translated once, when the device is made.
    QCOMPARE(before.device()->name(), u"Orvane Tessa Mouse"_s);
    QCOMPARE(during.device()->name(), u"Souris Tessa"_s);
}

void tst_Identity::gettersAnswerOnAnyThread()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    OtherThread other;
    other.run([&] {
        QCOMPARE(device.device()->name(), u"Orvane Tessa Mouse"_s);
        QCOMPARE(device.device()->instanceNumber(), 0);
        QCOMPARE(device.device()->reportRate(), 500);
        QCOMPARE(device.device()->firmwareVersion(), 258U);
    });
    COMPARE_LINES(fixture.take(), {});
}

QTEST_GUILESS_MAIN(tst_Identity)
#include "tst_Identity.moc"
