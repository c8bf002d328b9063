#include "OtherThread.h"
#include "PluginFixture.h"
#include "TimelineText.h"

#include <QtTest/QTest>

using namespace Qt::StringLiterals;

class tst_Settings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void applySettingsWritesTheMap();
    void applySettingsWritesAnEmptyMap();
    void applySettingsWithTheSwitchOff();
    void applySettingsChangesNothing();
    void resetSettingsOnAFreshMask_data();
    void resetSettingsOnAFreshMask();
    void resetSettingsKeepsTheDisabledButtons();
    void resetSettingsResetsNothingElse();
    void capabilityChangeIsSignalled();
    void capabilityIsReadWhateverTheArgument_data();
    void capabilityIsReadWhateverTheArgument();
    void sameCapabilityIsNotSignalled();
    void capabilityWithoutReceiver();
    void capabilityIsSignalledOnTheCallingThread();
    void supportIsKnownInItsSignal();
};

void tst_Settings::applySettingsWritesTheMap()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.applySettings({{u"zoom"_s, 2}, {u"name"_s, u"Mäuschen"_s}, {u"isOn"_s, true}});
    // Sorted by name, each value with its type.
    COMPARE_LINES(fixture.take().mid(1),
                  {debugLine(u"applySettings : QMap((\"isOn\", QVariant(bool, true))(\"name\", "
                             "QVariant(QString, \"Mäuschen\"))(\"zoom\", QVariant(int, 2)))"_s)});
}

void tst_Settings::applySettingsWritesAnEmptyMap()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.create();
    device.applySettings({});
    COMPARE_LINES(fixture.take(), {u"call applySettings({})"_s, debugLine(u"applySettings : QMap()"_s)});
}

void tst_Settings::applySettingsWithTheSwitchOff()
{
    PluginFixture fixture({false, true, true});
    HostedDevice &device = fixture.started();
    device.applySettings({{u"reportRate"_s, 1000}});
    COMPARE_LINES(fixture.take(), {u"call applySettings({\"reportRate\": 1000})"_s});
}

void tst_Settings::applySettingsChangesNothing()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.applySettings({{u"reportRate"_s, 1000}, {u"dpiButtonId"_s, 3}});
    QCOMPARE(fixture.take().size(), qsizetype(2));
    QCOMPARE(device.device()->reportRate(), 500);
    QCOMPARE(device.device()->dpiButtonId(), 15);
}

void tst_Settings::resetSettingsOnAFreshMask_data()
{
    QTest::addColumn<bool>("isStarted");
    QTest::newRow("before-start") << false;
    QTest::newRow("after-start") << true;
}

void tst_Settings::resetSettingsOnAFreshMask()
{
    QFETCH(const bool, isStarted);
    PluginFixture fixture;
    HostedDevice &device = isStarted ? fixture.started() : fixture.create();
    device.resetSettings();
    COMPARE_LINES(fixture.take(), {u"call resetSettings()"_s, debugLine(u"resetSettings"_s)});
}

void tst_Settings::resetSettingsKeepsTheDisabledButtons()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.disbaleButtonsOrKeys({1, 2, 3, 4, 5, 8});
    fixture.take();
    device.resetSettings();
    COMPARE_LINES(fixture.take(), {u"call resetSettings()"_s, debugLine(u"resetSettings"_s)});
}

void tst_Settings::resetSettingsResetsNothingElse()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.dpiButtonIdChangedCallBack(3);
    device.activeDpiSlotIndexChangedCallBack(4);
    device.setReportRate(1000);
    device.resetSettings();
    QCOMPARE(device.device()->dpiButtonId(), 3);
    QCOMPARE(device.device()->activeDpiSlotIndex(), 4);
    QCOMPARE(device.device()->reportRate(), 1000);
    QVERIFY(device.device()->isReportRateChangePending());
}

void tst_Settings::capabilityChangeIsSignalled()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    fixture.receiver.answers.isSmartPointerSupported = false;
    device.capabilityChangedCallBack(1);
    COMPARE_LINES(fixture.take(), {u"call capabilityChangedCallBack(1)"_s,
                                   debugLine(u"capabilityChangedCallBack, capability : 1"_s),
                                   u"receiver isSmartPointerSupported() -> false"_s,
                                   u"signal isSmartPointerSupportedChanged(false)"_s});
    QVERIFY(!device.device()->isSmartPointerSupported());
    fixture.receiver.answers.isSmartPointerSupported = true;
    device.capabilityChangedCallBack(1);
    QCOMPARE(fixture.take().constLast(), u"signal isSmartPointerSupportedChanged(true)"_s);
    QVERIFY(device.device()->isSmartPointerSupported());
}

void tst_Settings::capabilityIsReadWhateverTheArgument_data()
{
    QTest::addColumn<int>("capability");
    QTest::newRow("zero") << 0;
    QTest::newRow("a-letter-when-not-widened") << 65;
    QTest::newRow("largest") << 255;
}

void tst_Settings::capabilityIsReadWhateverTheArgument()
{
    QFETCH(const int, capability);
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    fixture.receiver.answers.isSmartPointerSupported = false;
    device.capabilityChangedCallBack(static_cast<quint8>(capability));
    COMPARE_LINES(fixture.take(), {u"call capabilityChangedCallBack(%1)"_s.arg(capability),
                                   debugLine(u"capabilityChangedCallBack, capability : %1"_s.arg(capability)),
                                   u"receiver isSmartPointerSupported() -> false"_s,
                                   u"signal isSmartPointerSupportedChanged(false)"_s});
}

void tst_Settings::sameCapabilityIsNotSignalled()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.capabilityChangedCallBack(1);
    device.capabilityChangedCallBack(1);
    const QStringList once{u"call capabilityChangedCallBack(1)"_s,
                           debugLine(u"capabilityChangedCallBack, capability : 1"_s),
                           u"receiver isSmartPointerSupported() -> true"_s};
    COMPARE_LINES(fixture.take(), once + once);
}

void tst_Settings::capabilityWithoutReceiver()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.create();
    device.capabilityChangedCallBack(1);
    COMPARE_LINES(fixture.take(), {u"call capabilityChangedCallBack(1)"_s,
                                   debugLine(u"capabilityChangedCallBack, capability : 1"_s)});
}

void tst_Settings::capabilityIsSignalledOnTheCallingThread()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.started();
    fixture.receiver.answers.isSmartPointerSupported = false;
    OtherThread other;
    other.run([&] { device.capabilityChangedCallBack(1); });
    COMPARE_LINES(fixture.take(), {u"call capabilityChangedCallBack(1) on thread 2"_s,
                                   u"receiver isSmartPointerSupported() -> false on thread 2"_s,
                                   u"signal isSmartPointerSupportedChanged(false) on thread 2"_s});
    deliverQueuedCalls();
    COMPARE_LINES(fixture.take(), {});
}

void tst_Settings::supportIsKnownInItsSignal()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.started();
    fixture.receiver.answers.isSmartPointerSupported = false;
    QList<bool> seen;
    fixture.onceInside(u"signal isSmartPointerSupportedChanged(false)"_s,
                       [&] { seen += device.device()->isSmartPointerSupported(); });
    device.capabilityChangedCallBack(1);
    QCOMPARE(seen, QList<bool>{false});
}

QTEST_GUILESS_MAIN(tst_Settings)
#include "tst_Settings.moc"
