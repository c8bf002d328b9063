#include "HostTranslator.h"
#include "PluginFixture.h"
#include "TimelineText.h"

#include <QtTest/QTest>

#include <functional>

using namespace Qt::StringLiterals;

namespace {

using Act = std::function<void(HostedDevice &)>;
using Read = std::function<QString(const HostedDevice &)>;

constexpr quint16 slotValues[5] = {800, 1600, 2400, 3200, 4000};

// What identifies a device, as far as its constructor has come.
QString identity(const PluginFixture &fixture)
{
    const auto *device =
        dynamic_cast<const ILogicalDeviceGen3Mouse *>(fixture.host.root()->children().constLast());
    return u"%1, %2, name \"%3\""_s.arg(device->physicalDevice() ? u"receiver"_s : u"no receiver"_s,
                                        device->instanceId().isNull() ? u"no id"_s : u"id"_s, device->name());
}

}  // namespace

Q_DECLARE_METATYPE(Act)
Q_DECLARE_METATYPE(Read)

// What a host's log handler finds when it asks the device from inside a line.
class tst_LogHandler : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void valueInsideItsLine_data();
    void valueInsideItsLine();
    void constructionSeenFromItsLines();
    void constructionSeenByATranslator();
};

void tst_LogHandler::valueInsideItsLine_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<Act>("act");
    QTest::addColumn<Read>("read");
    QTest::addColumn<QString>("inside");
    QTest::addColumn<QString>("after");
    const auto row = [](const char *tag, const QString &line, const Act &act, const Read &read,
                        const QString &inside, const QString &after) {
        QTest::newRow(tag) << line << act << read << inside << after;
    };
    const auto text = [](const QStringList &values) { return values.join(u' '); };
    const auto invoke = [](HostedDevice &device, const char *slot) {
        QMetaObject::invokeMethod(device.object(), slot, Q_ARG(int, 100));
    };
    row(
        "dpi-minimum", u"Updating dpiMin :  100"_s,
        [=](HostedDevice &device) { invoke(device, "onDpiMinChanged"); },
        [](const HostedDevice &device) { return QString::number(device.device()->dpiMin()); }, u"0"_s,
        u"100"_s);
    row(
        "dpi-maximum", u"Updating dpiMax :  100"_s,
        [=](HostedDevice &device) { invoke(device, "onDpiMaxChanged"); },
        [](const HostedDevice &device) { return QString::number(device.device()->dpiMax()); }, u"0"_s,
        u"100"_s);
    row(
        "dpi", u"Updating dpiValue :  1600"_s,
        [](HostedDevice &device) { device.dpiValueChangedCallBack(1600); },
        [](const HostedDevice &device) { return QString::number(device.device()->dpiValue()); }, u"0"_s,
        u"1600"_s);
    row(
        "product-id", u"Updating ppid :  \"PP1\""_s,
        [](HostedDevice &device) { device.ppidChangedCallBack(u"PP1"_s); },
        [](const HostedDevice &device) { return device.gen3()->ppid(); }, QString(), u"PP1"_s);
    row(
        "active-slot", u"Updating activeDpiSlotIndex =  3"_s,
        [](HostedDevice &device) { device.activeDpiSlotIndexChangedCallBack(3); },
        [](const HostedDevice &device) { return QString::number(device.device()->activeDpiSlotIndex()); },
        u"2"_s, u"3"_s);
    row(
        "dpi-button", u"Updating dpiButtonId =  7"_s,
        [](HostedDevice &device) { device.dpiButtonIdChangedCallBack(7); },
        [](const HostedDevice &device) { return QString::number(device.device()->dpiButtonId()); }, u"15"_s,
        u"7"_s);
    row(
        "slot-values", u"Updating dpiSlotValues :  QList(800, 1600, 2400, 3200, 4000)"_s,
        [](HostedDevice &device) { device.dpiSlotValuesChangedCallBack(slotValues); },
        [=](const HostedDevice &device) { return text(device.device()->dpiSlotValues()); }, QString(),
        u"800 1600 2400 3200 4000"_s);
    const Act start = [](HostedDevice &device) { device.start(); };
    const Read rate = [](const HostedDevice &device) {
        return QString::number(device.device()->reportRate());
    };
    row("rate-at-start", u"got current report rate :  500"_s, start, rate, u"0"_s, u"500"_s);
    row(
        "rate-values-at-start", u"got supported report rate :  250"_s, start,
        [=](const HostedDevice &device) { return text(device.device()->reportRateValues()); }, u"125"_s,
        u"125 250 500 1000"_s);
    // The one value that is stored before its line.
    row(
        "requested-rate", u"Updating new report rate :  1000"_s,
        [](HostedDevice &device) { device.setReportRate(1000); }, rate, u"1000"_s, u"1000"_s);
}

void tst_LogHandler::valueInsideItsLine()
{
    QFETCH(const QString, line);
    QFETCH(const Act, act);
    QFETCH(const Read, read);
    QFETCH(const QString, inside);
    QFETCH(const QString, after);
    PluginFixture fixture;
    HostedDevice &device = fixture.create();
    QStringList seen;
    fixture.onceInside(debugLine(line), [&] { seen += read(device); });
    act(device);
    QCOMPARE(seen, QStringList{inside});
    QCOMPARE(read(device), after);
}

void tst_LogHandler::constructionSeenFromItsLines()
{
    PluginFixture fixture;
    QStringList seen;
    fixture.timeline.setObserver([&](const TimelineEntry &entry) {
        if (entry.kind == TimelineEntry::Kind::Log)
            seen += identity(fixture);
    });
    fixture.createRecorded(PluginFixture::mouse);
    fixture.timeline.setObserver({});
    COMPARE_LINES(seen, {u"no receiver, no id, name \"\""_s, u"receiver, id, name \"Orvane Tessa Mouse\""_s});
}

void tst_LogHandler::constructionSeenByATranslator()
{
    PluginFixture fixture;
    QStringList seen;
    const HostTranslator translator([&] { seen += identity(fixture); });
    fixture.create();
    COMPARE_LINES(seen, {u"receiver, id, name \"\""_s});
}

QTEST_GUILESS_MAIN(tst_LogHandler)
#include "tst_LogHandler.moc"
