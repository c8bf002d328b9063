#include "RefusalChapters.h"

#include "PluginFixture.h"

using namespace Qt::StringLiterals;

namespace {

constexpr quint16 firstValues[5] = {700, 750, 800, 850, 900};
constexpr quint16 secondValues[5] = {1100, 1200, 1300, 1400, 1500};
constexpr quint16 otherValues[5] = {800, 1600, 2400, 3200, 4000};
const ReportRateInfo otherRates{0, 333, {250, 1000, 0, 0}};

Chapter start()
{
    const QString requests = u"call start() -> true\n"
                             "receiver getFirmwareVersion() -> 258\n"
                             "receiver hasBatteryLevel() -> true\n"
                             "receiver getStatusValue() -> 31\n"
                             "receiver getBatteryLevel() -> 80\n"
                             "receiver getDeviceValue() -> 32\n"
                             "receiver requestInitialState1() -> %1\n"
                             "receiver requestInitialState2() -> %2\n"
                             "receiver requestInitialState3() -> %3\n"
                             "receiver isSmartPointerSupported() -> true\n"_s;
    const QString yes = u"true"_s;
    const QString no = u"false"_s;
    const QString fallback = u"receiver getReportRateInfo() -> true\n"
                             "warning RV418.LogicalDevice: current report rate not found in list :  333\n"
                             "signal isReportRateChangePendingChanged(true)\n"
                             "receiver setReportRate(125) -> "_s;
    const QString rest = u"receiver getLevelValue() -> 33\n"
                         "signal instanceNumberChanged(0)\n"
                         "signal dpiMinChanged(100)\n"
                         "signal dpiMaxChanged(8000)\n"
                         "call reportRateConfirmed(125)\n"_s;
    const QString sound = fallback + u"true\nsignal reportRateChanged(125)\n"_s + rest +
                          u"signal isReportRateChangePendingChanged(false)\n"_s;
    const QString accepted = requests.arg(yes, yes, yes);
    return {"start",
            {[](HostedDevice &device) { device.start(); },
             [](HostedDevice &device) {
                 auto *receiver = dynamic_cast<FakeReceiver *>(device.device()->physicalDevice());
                 Q_EMIT receiver->dpiMinChanged(100);
                 Q_EMIT receiver->dpiMaxChanged(8000);
             },
             [](HostedDevice &device) { device.reportRateConfirmed(125); }},
            accepted + sound,
            {{"first-state", requests.arg(no, yes, yes) + sound},
             {"second-state", requests.arg(yes, no, yes) + sound},
             {"third-state", requests.arg(yes, yes, no) + sound},
             // Of a rate that it does not know the device says nothing and asks for no other.
             {"report-rates", accepted + u"receiver getReportRateInfo() -> false\n"_s + rest +
                                  u"signal reportRateChanged(125)\n"_s},
             {"fallback-rate", accepted + fallback +
                                   u"false\n"
                                   "warning RV418.LogicalDevice: Dongle set report rate failed\n"
                                   "signal isReportRateChangePendingChanged(false)\n"
                                   "signal reportRateChanged(125)\n"_s +
                                   rest}}};
}

// A rate that is refused at once lets a later one be waited for, so the mouse confirms both. Later it reports
// a list without the rate in force, and the device asks for the first of that list.
Chapter reportRates()
{
    const QString pending = u"signal isReportRateChangePendingChanged(true)\n"_s;
    const QString refused = u"false\n"
                            "warning RV418.LogicalDevice: Dongle set report rate failed\n"
                            "signal isReportRateChangePendingChanged(false)\n"_s;
    const QString shows1000 = u"signal reportRateChanged(1000)\n"_s;
    const QString shows250 = u"signal reportRateChanged(250)\n"_s;
    const QString settled = u"signal isReportRateChangePendingChanged(false)\n"_s;
    const QString first = u"call setReportRate(1000)\n"_s + pending + u"receiver setReportRate(1000) -> "_s;
    const QString firstAccepted = first + u"true\n"_s + shows1000;
    const QString second = u"call setReportRate(250)\nreceiver setReportRate(250) -> "_s;
    const QString secondAccepted = second + u"true\n"_s + shows250;
    const QString confirms500 = u"call reportRateConfirmed(500)\n"_s;
    const QString repeats1000 = u"receiver setReportRate(1000) -> "_s;
    const QString repeats250 = u"receiver setReportRate(250) -> true\n"_s + shows250;
    const QString confirms1000 = u"call reportRateConfirmed(1000)\n"_s;
    const QString confirms250 = u"call reportRateConfirmed(250)\n"_s;
    const QString report = u"call reportRateConfirmed(500)\n"
                           "signal reportRateChanged(500)\n"
                           "call reportRateChangedCallBack({\"currentRate\": 333, "
                           "\"supportedRates\": [250, 1000, 0, 0], \"unused\": 0})\n"
                           "signal reportRateValuesChanged([\"250\", \"1000\"])\n"_s +
                           pending + u"receiver setReportRate(250) -> "_s;
    const QString reported = report + u"true\n"_s + shows250 + confirms250 + settled;
    const QString soundUntilReport = firstAccepted + secondAccepted + confirms500 + repeats1000 +
                                     u"true\n"_s + shows1000 + confirms1000 + settled + confirms250 +
                                     shows250;
    return {"report-rate",
            {[](HostedDevice &device) { device.setReportRate(1000); },
             [](HostedDevice &device) { device.setReportRate(250); },
             [](HostedDevice &device) { device.reportRateConfirmed(500); },
             [](HostedDevice &device) { device.reportRateConfirmed(1000); },
             [](HostedDevice &device) { device.reportRateConfirmed(250); },
             [](HostedDevice &device) { device.reportRateConfirmed(500); },
             [](HostedDevice &device) { device.reportRateChangedCallBack(&otherRates); },
             [](HostedDevice &device) { device.reportRateConfirmed(250); }},
            soundUntilReport + reported,
            // Nothing is pending any more, so the second request is the one that is waited for.
            {{"first", first + refused + shows1000 + u"call setReportRate(250)\n"_s + pending + repeats250 +
                           confirms500 + repeats250 + confirms1000 + repeats250 + confirms250 + settled +
                           reported},
             // The refusal ends the first request, too.
             {"second", firstAccepted + second + refused + shows250 + confirms500 +
                            u"signal reportRateChanged(500)\n"_s + confirms1000 + shows1000 + confirms250 +
                            shows250 + reported},
             {"repeated", firstAccepted + secondAccepted + confirms500 + repeats1000 + refused + shows1000 +
                              confirms1000 + confirms250 + shows250 + reported},
             {"fallback-of-a-report", soundUntilReport + report + refused + shows250 + confirms250}}};
}

/// The words of a chapter of two requests, a confirmation of something else, which makes the device repeat the second
/// request, a confirmation of that request, and a report of the same state.
struct Words
{
    QString first, second;  // with the receiver's call, without its answer
    QString disagreement, repetition;
    QString flag, warning;
    QString agreement;
    QString agreed;            // to a request
    QString otherState;        // of a disagreement when nothing was asked for
    QString wantedState;       // of an agreement when nothing was asked for
    QString report, reported;  // the report itself, and what it changes when no agreement did
};

Chapter twoRequests(const char *name, std::vector<std::function<void(HostedDevice &)>> steps,
                    const Words &words)
{
    const QString yes = u" -> true\n"_s;
    const QString no = u" -> false\nwarning RV418.LogicalDevice: %1\n"_s.arg(words.warning);
    const QString up = u"signal %1(true)\n"_s.arg(words.flag);
    const QString down = u"signal %1(false)\n"_s.arg(words.flag);
    const QString rest =
        words.disagreement + words.repetition + yes + words.agreement + words.agreed + words.report;
    const QString unasked = words.agreement + words.wantedState + words.report + words.reported;
    return {name,
            std::move(steps),
            words.first + yes + up + words.second + yes + rest,
            {{"first", words.first + no + words.second + yes + up + rest},
             // Nothing is waited for any more.
             {"second", words.first + yes + up + words.second + no + down + words.disagreement +
                            words.otherState + unasked},
             {"repeated", words.first + yes + up + words.second + yes + words.disagreement +
                              words.repetition + no + down + unasked}}};
}

// Values that nobody asked for are taken from a report alone, not from a confirmation.
Chapter slotValues()
{
    const QString changed = u"signal dpiSlotValuesChanged([\"700\", \"750\", \"800\", \"850\", \"900\"])\n"_s;
    return twoRequests("slot-values",
                       {[](HostedDevice &device) {
                            device.setDpiSlotValues({u"200"_s, u"300"_s, u"400"_s, u"500"_s, u"600"_s});
                        },
                        [](HostedDevice &device) {
                            device.setDpiSlotValues({u"700"_s, u"750"_s, u"800"_s, u"850"_s, u"900"_s});
                        },
                        [](HostedDevice &device) { device.dpiSlotValuesConfirmed(otherValues); },
                        [](HostedDevice &device) { device.dpiSlotValuesConfirmed(firstValues); },
                        [](HostedDevice &device) { device.dpiSlotValuesChangedCallBack(firstValues); }},
                       {u"call setDpiSlotValues([\"200\", \"300\", \"400\", \"500\", \"600\"])\n"
                        "receiver setDpiSlotValues([200, 300, 400, 500, 600], 15, 2)"_s,
                        u"call setDpiSlotValues([\"700\", \"750\", \"800\", \"850\", \"900\"])\n"
                        "receiver setDpiSlotValues([700, 750, 800, 850, 900], 15, 2)"_s,
                        u"call dpiSlotValuesConfirmed([800, 1600, 2400, 3200, 4000])\n"_s,
                        u"receiver setDpiSlotValues([700, 750, 800, 850, 900], 15, 2)"_s,
                        u"isDpiSlotValuesChangePendingChanged"_s, u"Dongle set dpi slot values failed"_s,
                        u"call dpiSlotValuesConfirmed([700, 750, 800, 850, 900])\n"_s,
                        changed + u"signal isDpiSlotValuesChangePendingChanged(false)\n"_s, QString(),
                        QString(), u"call dpiSlotValuesChangedCallBack([700, 750, 800, 850, 900])\n"_s,
                        changed});
}

Chapter activeSlots()
{
    const QString changed = u"signal activeDpiSlotIndexChanged(4)\nsignal dpiValueChanged(850)\n"_s;
    return twoRequests(
        "active-slot",
        {[](HostedDevice &device) { device.setActiveDpiSlotIndex(3); },
         [](HostedDevice &device) { device.setActiveDpiSlotIndex(4); },
         [](HostedDevice &device) { device.activeDpiSlotIndexConfirmed(5); },
         [](HostedDevice &device) { device.activeDpiSlotIndexConfirmed(4); },
         [](HostedDevice &device) { device.activeDpiSlotIndexChangedCallBack(4); }},
        {u"call setActiveDpiSlotIndex(3)\nreceiver setDpiButtonAndActiveSlot(15, 3)"_s,
         u"call setActiveDpiSlotIndex(4)\nreceiver setDpiButtonAndActiveSlot(15, 4)"_s,
         u"call activeDpiSlotIndexConfirmed(5)\n"_s, u"receiver setDpiButtonAndActiveSlot(15, 4)"_s,
         u"isActiveDpiSlotIndexChangePendingChanged"_s, u"Dongle set active DPI slot index failed"_s,
         u"call activeDpiSlotIndexConfirmed(4)\n"_s,
         u"signal isActiveDpiSlotIndexChangePendingChanged(false)\n"_s + changed,
         u"signal activeDpiSlotIndexChanged(5)\nsignal dpiValueChanged(900)\n"_s, changed,
         u"call activeDpiSlotIndexChangedCallBack(4)\n"_s, QString()});
}

Chapter dpiButtons()
{
    const QString changed = u"signal dpiButtonIdChanged(7)\n"_s;
    return twoRequests("dpi-button",
                       {[](HostedDevice &device) { device.setDpiButtonId(6); },
                        [](HostedDevice &device) { device.setDpiButtonId(7); },
                        [](HostedDevice &device) { device.dpiButtonIdConfirmed(8); },
                        [](HostedDevice &device) { device.dpiButtonIdConfirmed(7); },
                        [](HostedDevice &device) { device.dpiButtonIdChangedCallBack(7); }},
                       {u"call setDpiButtonId(6)\nreceiver setDpiButtonAndActiveSlot(6, 0)"_s,
                        u"call setDpiButtonId(7)\nreceiver setDpiButtonAndActiveSlot(7, 0)"_s,
                        u"call dpiButtonIdConfirmed(8)\n"_s, u"receiver setDpiButtonAndActiveSlot(7, 0)"_s,
                        u"isDpiButtonIdChangePendingChanged"_s, u"Dongle set dpi button id failed"_s,
                        u"call dpiButtonIdConfirmed(7)\n"_s,
                        u"signal isDpiButtonIdChangePendingChanged(false)\n"_s + changed,
                        u"signal dpiButtonIdChanged(8)\n"_s, changed,
                        u"call dpiButtonIdChangedCallBack(7)\n"_s, QString()});
}

// Nobody hears of a refusal: no warning, no flag.
Chapter divertedButtons()
{
    const QString lines = u"call disbaleButtonsOrKeys([1])\n"
                          "receiver setDisabledButtonsOrKeysMask(1) -> %1\n"
                          "call disbaleButtonsOrKeys([2, 3])\n"
                          "receiver setDisabledButtonsOrKeysMask(6) -> %2\n"
                          "call capabilityChangedCallBack(1)\n"
                          "receiver isSmartPointerSupported() -> true\n"
                          "call setButtonsOrKeysToDefault()\n"
                          "receiver setDisabledButtonsOrKeysMask(0) -> %3\n"_s;
    const QString yes = u"true"_s;
    const QString no = u"false"_s;
    return {"diverted-buttons",
            {[](HostedDevice &device) { device.disbaleButtonsOrKeys({1}); },
             [](HostedDevice &device) { device.disbaleButtonsOrKeys({2, 3}); },
             [](HostedDevice &device) { device.capabilityChangedCallBack(1); },
             [](HostedDevice &device) { device.setButtonsOrKeysToDefault(); }},
            lines.arg(yes, yes, yes),
            {{"first", lines.arg(no, yes, yes)},
             {"second", lines.arg(yes, no, yes)},
             {"defaults", lines.arg(yes, yes, no)}}};
}

/// A step of the last chapter: which request it is about, and what follows its call when the receiver accepts that
/// request and when it does not.
struct Sentence
{
    int request;
    QString call, accepted, refused;
};

QString chapterOf(const std::vector<Sentence> &sentences, int refusedRequest)
{
    QString lines;
    for (const Sentence &sentence : sentences)
        lines += sentence.call + (sentence.request == refusedRequest ? sentence.refused : sentence.accepted);
    return lines;
}

// The mouse answers when all are pending, the last first.
Chapter allAtOnce()
{
    enum { None, ReportRate, SlotValues, ActiveSlot, DivertedButtons, DpiButton };
    const QString values =
        u"signal dpiSlotValuesChanged([\"1100\", \"1200\", \"1300\", \"1400\", \"1500\"])\n"_s;
    const QString warning = u" -> false\nwarning RV418.LogicalDevice: "_s;
    const std::vector<Sentence> sentences{
        {ReportRate,
         u"call setReportRate(1000)\n"
         "signal isReportRateChangePendingChanged(true)\n"
         "receiver setReportRate(1000)"_s,
         u" -> true\nsignal reportRateChanged(1000)\n"_s,
         warning + u"Dongle set report rate failed\n"
                   "signal isReportRateChangePendingChanged(false)\n"
                   "signal reportRateChanged(1000)\n"_s},
        {SlotValues,
         u"call setDpiSlotValues([\"1100\", \"1200\", \"1300\", \"1400\", \"1500\"])\n"
         "receiver setDpiSlotValues([1100, 1200, 1300, 1400, 1500], 7, 4)"_s,
         u" -> true\nsignal isDpiSlotValuesChangePendingChanged(true)\n"_s,
         warning + u"Dongle set dpi slot values failed\n"_s},
        {ActiveSlot, u"call setActiveDpiSlotIndex(2)\nreceiver setDpiButtonAndActiveSlot(7, 2)"_s,
         u" -> true\nsignal isActiveDpiSlotIndexChangePendingChanged(true)\n"_s,
         warning + u"Dongle set active DPI slot index failed\n"_s},
        {DivertedButtons, u"call disbaleButtonsOrKeys([4, 5])\nreceiver setDisabledButtonsOrKeysMask(24)"_s,
         u" -> true\n"_s, u" -> false\n"_s},
        {DpiButton, u"call setDpiButtonId(9)\nreceiver setDpiButtonAndActiveSlot(9, 0)"_s,
         u" -> true\nsignal isDpiButtonIdChangePendingChanged(true)\n"_s,
         warning + u"Dongle set dpi button id failed\n"_s},
        {DpiButton, u"call dpiButtonIdConfirmed(9)\n"_s,
         u"signal isDpiButtonIdChangePendingChanged(false)\nsignal dpiButtonIdChanged(9)\n"_s,
         u"signal dpiButtonIdChanged(9)\n"_s},
        {ActiveSlot, u"call activeDpiSlotIndexConfirmed(2)\n"_s,
         u"signal isActiveDpiSlotIndexChangePendingChanged(false)\n"
         "signal activeDpiSlotIndexChanged(2)\nsignal dpiValueChanged(750)\n"_s,
         u"signal activeDpiSlotIndexChanged(2)\nsignal dpiValueChanged(750)\n"_s},
        {SlotValues, u"call dpiSlotValuesConfirmed([1100, 1200, 1300, 1400, 1500])\n"_s,
         values + u"signal isDpiSlotValuesChangePendingChanged(false)\n"_s, QString()},
        {SlotValues, u"call dpiSlotValuesChangedCallBack([1100, 1200, 1300, 1400, 1500])\n"_s, QString(),
         values},
        {ReportRate, u"call reportRateConfirmed(1000)\n"_s,
         u"signal isReportRateChangePendingChanged(false)\n"_s, QString()},
    };
    return {"all-at-once",
            {[](HostedDevice &device) { device.setReportRate(1000); },
             [](HostedDevice &device) {
                 device.setDpiSlotValues({u"1100"_s, u"1200"_s, u"1300"_s, u"1400"_s, u"1500"_s});
             },
             [](HostedDevice &device) { device.setActiveDpiSlotIndex(2); },
             [](HostedDevice &device) { device.disbaleButtonsOrKeys({4, 5}); },
             [](HostedDevice &device) { device.setDpiButtonId(9); },
             [](HostedDevice &device) { device.dpiButtonIdConfirmed(9); },
             [](HostedDevice &device) { device.activeDpiSlotIndexConfirmed(2); },
             [](HostedDevice &device) { device.dpiSlotValuesConfirmed(secondValues); },
             [](HostedDevice &device) { device.dpiSlotValuesChangedCallBack(secondValues); },
             [](HostedDevice &device) { device.reportRateConfirmed(1000); }},
            chapterOf(sentences, None),
            {{"report-rate", chapterOf(sentences, ReportRate)},
             {"slot-values", chapterOf(sentences, SlotValues)},
             {"active-slot", chapterOf(sentences, ActiveSlot)},
             {"diverted-buttons", chapterOf(sentences, DivertedButtons)},
             {"dpi-button", chapterOf(sentences, DpiButton)}}};
}

}  // namespace

const std::vector<Chapter> &chapters()
{
    static const std::vector<Chapter> all{start(),      reportRates(),     slotValues(), activeSlots(),
                                          dpiButtons(), divertedButtons(), allAtOnce()};
    return all;
}
