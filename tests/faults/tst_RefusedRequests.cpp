#include "PluginFixture.h"
#include "TimelineText.h"

#include <QtTest/QTest>

#include <functional>

using namespace Qt::StringLiterals;

namespace {

constexpr quint16 otherValues[5] = {800, 1600, 2400, 3200, 4000};

// Lets the receiver refuse one request, counted from 1 over all operations that it may refuse.
void refuseTheNth(FakeReceiver &receiver, int refused)
{
    receiver.answers.acceptsRequests = refused != 1;
    receiver.duringRequest = [&receiver, refused, next = 1](const QString &) mutable {
        ++next;
        receiver.answers.acceptsRequests = next != refused;
    };
}

// A story of three requests: two of the host, and one that the device sends again when the mouse disagrees.
using Story = std::function<void(HostedDevice &)>;

void reportRates(HostedDevice &device)
{
    device.setReportRate(1000);
    device.setReportRate(250);
    device.reportRateConfirmed(500);
}

void slotValues(HostedDevice &device)
{
    device.setDpiSlotValues({u"200"_s, u"300"_s, u"400"_s, u"500"_s, u"600"_s});
    device.setDpiSlotValues({u"700"_s, u"750"_s, u"800"_s, u"850"_s, u"900"_s});
    device.dpiSlotValuesConfirmed(otherValues);
}

void activeSlots(HostedDevice &device)
{
    device.setActiveDpiSlotIndex(3);
    device.setActiveDpiSlotIndex(4);
    device.activeDpiSlotIndexConfirmed(5);
}

void dpiButtons(HostedDevice &device)
{
    device.setDpiButtonId(6);
    device.setDpiButtonId(7);
    device.dpiButtonIdConfirmed(8);
}

void divertedButtons(HostedDevice &device)
{
    device.disbaleButtonsOrKeys({1});
    device.disbaleButtonsOrKeys({2, 3});
    device.setButtonsOrKeysToDefault();
}

void addRow(const QByteArray &name, const Story &story, int refused, const QString &flags,
            const QString &timeline)
{
    QTest::newRow(name.constData()) << story << refused << flags << timeline;
}

void addReportRateRows()
{
    const QString firstAccepted = u"call setReportRate(1000)\n"
                                  "signal isReportRateChangePendingChanged(true)\n"
                                  "receiver setReportRate(1000) -> true\n"
                                  "signal reportRateChanged(1000)\n"_s;
    const QString secondAccepted = u"call setReportRate(250)\n"
                                   "receiver setReportRate(250) -> true\n"
                                   "signal reportRateChanged(250)\n"_s;
    addRow("report-rate-none", reportRates, 0, u"report rate"_s,
           firstAccepted + secondAccepted +
               u"call reportRateConfirmed(500)\n"
               "receiver setReportRate(1000) -> true\n"
               "signal reportRateChanged(1000)"_s);
    // Nothing is pending any more, so the second request is the one that is waited for.
    addRow("report-rate-first", reportRates, 1, u"report rate"_s,
           u"call setReportRate(1000)\n"
           "signal isReportRateChangePendingChanged(true)\n"
           "receiver setReportRate(1000) -> false\n"
           "warning RV418.LogicalDevice: Dongle set report rate failed\n"
           "signal isReportRateChangePendingChanged(false)\n"
           "signal reportRateChanged(1000)\n"
           "call setReportRate(250)\n"
           "signal isReportRateChangePendingChanged(true)\n"
           "receiver setReportRate(250) -> true\n"
           "signal reportRateChanged(250)\n"
           "call reportRateConfirmed(500)\n"
           "receiver setReportRate(250) -> true\n"
           "signal reportRateChanged(250)"_s);
    // The refusal ends the first request, too.
    addRow("report-rate-second", reportRates, 2, {},
           firstAccepted + u"call setReportRate(250)\n"
                           "receiver setReportRate(250) -> false\n"
                           "warning RV418.LogicalDevice: Dongle set report rate failed\n"
                           "signal isReportRateChangePendingChanged(false)\n"
                           "signal reportRateChanged(250)\n"
                           "call reportRateConfirmed(500)\n"
                           "signal reportRateChanged(500)"_s);
    addRow("report-rate-repeated", reportRates, 3, {},
           firstAccepted + secondAccepted +
               u"call reportRateConfirmed(500)\n"
               "receiver setReportRate(1000) -> false\n"
               "warning RV418.LogicalDevice: Dongle set report rate failed\n"
               "signal isReportRateChangePendingChanged(false)\n"
               "signal reportRateChanged(1000)"_s);
}

void addSlotValuesRows()
{
    const QString first = u"call setDpiSlotValues([\"200\", \"300\", \"400\", \"500\", \"600\"])\n"
                          "receiver setDpiSlotValues([200, 300, 400, 500, 600], 15, 2) -> "_s;
    const QString second = u"call setDpiSlotValues([\"700\", \"750\", \"800\", \"850\", \"900\"])\n"
                           "receiver setDpiSlotValues([700, 750, 800, 850, 900], 15, 2) -> "_s;
    const QString confirmation = u"call dpiSlotValuesConfirmed([800, 1600, 2400, 3200, 4000])"_s;
    const QString repetition = u"\nreceiver setDpiSlotValues([700, 750, 800, 850, 900], 15, 2) -> "_s;
    const QString accepted = u"true\n"_s;
    const QString pending = u"true\nsignal isDpiSlotValuesChangePendingChanged(true)\n"_s;
    const QString refused = u"false\nwarning RV418.LogicalDevice: Dongle set dpi slot values failed"_s;
    const QString ended = u"\nsignal isDpiSlotValuesChangePendingChanged(false)"_s;

    addRow("slot-values-none", slotValues, 0, u"slot values"_s,
           first + pending + second + accepted + confirmation + repetition + u"true"_s);
    addRow("slot-values-first", slotValues, 1, u"slot values"_s,
           first + refused + u'\n' + second + pending + confirmation + repetition + u"true"_s);
    // Nothing was asked for that the mouse could confirm: the report is not taken.
    addRow("slot-values-second", slotValues, 2, {},
           first + pending + second + refused + ended + u'\n' + confirmation);
    addRow("slot-values-repeated", slotValues, 3, {},
           first + pending + second + accepted + confirmation + repetition + refused + ended);
}

/// What the active slot's story says, or the DPI button's: they differ in their words alone.
struct Words
{
    QString first, second, confirmation, repetition;
    QString pendingChanged, refused, changed;
};

void addRowsOf(const QByteArray &name, const Story &story, const QString &flag, const Words &words)
{
    const QString first = words.first + u" -> "_s;
    const QString second = words.second + u" -> "_s;
    const QString waitsForTheSecond = words.confirmation + u'\n' + words.repetition + u" -> "_s;
    const QString pending = u"true\nsignal %1(true)\n"_s.arg(words.pendingChanged);
    const QString refused = u"false\nwarning RV418.LogicalDevice: "_s + words.refused;
    const QString ended = u"\nsignal %1(false)"_s.arg(words.pendingChanged);

    addRow(name + "-none", story, 0, flag,
           first + pending + second + u"true\n"_s + waitsForTheSecond + u"true"_s);
    addRow(name + "-first", story, 1, flag,
           first + refused + u'\n' + second + pending + waitsForTheSecond + u"true"_s);
    // Nothing is waited for, so the report is the mouse's state.
    addRow(name + "-second", story, 2, {},
           first + pending + second + refused + ended + u'\n' + words.confirmation + u"\nsignal "_s +
               words.changed);
    addRow(name + "-repeated", story, 3, {},
           first + pending + second + u"true\n"_s + waitsForTheSecond + refused + ended);
}

void addActiveSlotRows()
{
    addRowsOf("active-slot", activeSlots, u"active slot"_s,
              {u"call setActiveDpiSlotIndex(3)\nreceiver setDpiButtonAndActiveSlot(15, 3)"_s,
               u"call setActiveDpiSlotIndex(4)\nreceiver setDpiButtonAndActiveSlot(15, 4)"_s,
               u"call activeDpiSlotIndexConfirmed(5)"_s, u"receiver setDpiButtonAndActiveSlot(15, 4)"_s,
               u"isActiveDpiSlotIndexChangePendingChanged"_s, u"Dongle set active DPI slot index failed"_s,
               u"activeDpiSlotIndexChanged(5)"_s});
}

void addDpiButtonRows()
{
    addRowsOf("dpi-button", dpiButtons, u"DPI button"_s,
              {u"call setDpiButtonId(6)\nreceiver setDpiButtonAndActiveSlot(6, 0)"_s,
               u"call setDpiButtonId(7)\nreceiver setDpiButtonAndActiveSlot(7, 0)"_s,
               u"call dpiButtonIdConfirmed(8)"_s, u"receiver setDpiButtonAndActiveSlot(7, 0)"_s,
               u"isDpiButtonIdChangePendingChanged"_s, u"Dongle set dpi button id failed"_s,
               u"dpiButtonIdChanged(8)"_s});
}

// Nobody hears of a refusal: no warning, no flag.
void addDivertedButtonsRows()
{
    const QString timeline = u"call disbaleButtonsOrKeys([1])\n"
                             "receiver setDisabledButtonsOrKeysMask(1) -> %1\n"
                             "call disbaleButtonsOrKeys([2, 3])\n"
                             "receiver setDisabledButtonsOrKeysMask(6) -> %2\n"
                             "call setButtonsOrKeysToDefault()\n"
                             "receiver setDisabledButtonsOrKeysMask(0) -> %3"_s;
    const QString yes = u"true"_s;
    const QString no = u"false"_s;
    addRow("diverted-buttons-none", divertedButtons, 0, {}, timeline.arg(yes, yes, yes));
    addRow("diverted-buttons-first", divertedButtons, 1, {}, timeline.arg(no, yes, yes));
    addRow("diverted-buttons-second", divertedButtons, 2, {}, timeline.arg(yes, no, yes));
    addRow("default-buttons", divertedButtons, 3, {}, timeline.arg(yes, yes, no));
}

QString pendingFlags(const ILogicalDeviceGen3Mouse &mouse)
{
    QStringList flags;
    if (mouse.isReportRateChangePending())
        flags += u"report rate"_s;
    if (mouse.isDpiSlotValuesChangePending())
        flags += u"slot values"_s;
    if (mouse.isActiveDpiSlotIndexChangePending())
        flags += u"active slot"_s;
    if (mouse.isDpiButtonIdChangePending())
        flags += u"DPI button"_s;
    return flags.join(u", "_s);
}

}  // namespace

Q_DECLARE_METATYPE(Story)

// The receiver refuses the 1st, the 2nd, the 3rd request of each kind, and of a start.
class tst_RefusedRequests : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void refused_data();
    void refused();
    void refusedFallbackOfAReport();
    void refusedDuringStart_data();
    void refusedDuringStart();
};

void tst_RefusedRequests::refused_data()
{
    QTest::addColumn<Story>("story");
    QTest::addColumn<int>("refused");
    QTest::addColumn<QString>("flags");
    QTest::addColumn<QString>("timeline");
    addReportRateRows();
    addSlotValuesRows();
    addActiveSlotRows();
    addDpiButtonRows();
    addDivertedButtonsRows();
}

void tst_RefusedRequests::refused()
{
    QFETCH(const Story, story);
    QFETCH(const int, refused);
    QFETCH(const QString, flags);
    QFETCH(const QString, timeline);
    PluginFixture fixture({false, true, true});
    HostedDevice &device = fixture.started();
    Q_EMIT fixture.receiver.dpiMinChanged(100);
    Q_EMIT fixture.receiver.dpiMaxChanged(8000);
    fixture.take();
    refuseTheNth(fixture.receiver, refused);
    story(device);
    COMPARE_LINES(fixture.take(), linesOf(timeline));
    QCOMPARE(pendingFlags(*device.device()), flags);
}

// The rate in force is none of those that the mouse lists, so the device asks for the first of them.
void tst_RefusedRequests::refusedFallbackOfAReport()
{
    PluginFixture fixture({false, true, true});
    HostedDevice &device = fixture.started();
    refuseTheNth(fixture.receiver, 1);
    const ReportRateInfo info{0, 333, {250, 1000, 0, 0}};
    device.reportRateChangedCallBack(&info);
    COMPARE_LINES(fixture.take(),
                  {u"call reportRateChangedCallBack({\"currentRate\": 333, "
                   "\"supportedRates\": [250, 1000, 0, 0], \"unused\": 0})"_s,
                   u"signal reportRateValuesChanged([\"250\", \"1000\"])"_s,
                   u"signal isReportRateChangePendingChanged(true)"_s,
                   u"receiver setReportRate(250) -> false"_s, warningLine(u"Dongle set report rate failed"_s),
                   u"signal isReportRateChangePendingChanged(false)"_s, u"signal reportRateChanged(250)"_s});
    QCOMPARE(device.device()->reportRate(), 250);
    QCOMPARE(pendingFlags(*device.device()), QString());
}

void tst_RefusedRequests::refusedDuringStart_data()
{
    QTest::addColumn<int>("refused");
    QTest::newRow("none") << 0;
    QTest::newRow("first-state") << 1;
    QTest::newRow("second-state") << 2;
    QTest::newRow("third-state") << 3;
    QTest::newRow("fallback-report-rate") << 4;
}

// The mouse runs at a rate that it does not list, so the start makes a fourth request.
void tst_RefusedRequests::refusedDuringStart()
{
    QFETCH(const int, refused);
    PluginFixture fixture({false, true, true});
    fixture.receiver.answers.reportRateInfo = {0, 333, {500, 125, 0, 0}};
    HostedDevice &device = fixture.create();
    refuseTheNth(fixture.receiver, refused);
    QVERIFY(device.start());

    const auto answer = [&](int number) { return number == refused ? u"false"_s : u"true"_s; };
    QStringList expected{u"call start() -> true"_s,
                         u"receiver getFirmwareVersion() -> 258"_s,
                         u"receiver hasBatteryLevel() -> true"_s,
                         u"receiver getStatusValue() -> 31"_s,
                         u"receiver getBatteryLevel() -> 80"_s,
                         u"receiver getDeviceValue() -> 32"_s,
                         u"receiver requestInitialState1() -> "_s + answer(1),
                         u"receiver requestInitialState2() -> "_s + answer(2),
                         u"receiver requestInitialState3() -> "_s + answer(3),
                         u"receiver isSmartPointerSupported() -> true"_s,
                         u"receiver getReportRateInfo() -> true"_s,
                         warningLine(u"current report rate not found in list :  333"_s),
                         u"signal isReportRateChangePendingChanged(true)"_s,
                         u"receiver setReportRate(125) -> "_s + answer(4)};
    if (refused == 4)
        expected += {warningLine(u"Dongle set report rate failed"_s),
                     u"signal isReportRateChangePendingChanged(false)"_s};
    expected += {u"signal reportRateChanged(125)"_s, u"receiver getLevelValue() -> 33"_s,
                 u"signal instanceNumberChanged(0)"_s};
    COMPARE_LINES(fixture.take(), expected);
    QCOMPARE(pendingFlags(*device.device()), refused == 4 ? QString() : u"report rate"_s);
    QCOMPARE(device.device()->reportRate(), 125);
}

QTEST_GUILESS_MAIN(tst_RefusedRequests)
#include "tst_RefusedRequests.moc"
