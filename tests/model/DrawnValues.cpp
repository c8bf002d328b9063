#include "DrawnValues.h"

#include <array>
#include <limits>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

using Kind = Step::Kind;

// The sane values come first; two draws in three are among them.
template <typename Value>
struct Choice
{
    std::vector<Value> sane;
    std::vector<Value> hostile;

    const Value &at(int choice) const
    {
        constexpr int firstHostile = Draw::largest / 3 * 2;
        const bool isHostile = choice >= firstHostile && !hostile.empty();
        const std::vector<Value> &values = isHostile ? hostile : sane;
        return values.at(static_cast<std::size_t>(isHostile ? choice - firstHostile : choice) %
                         values.size());
    }
};

// What steps carry and receivers answer.
struct Pool
{
    static constexpr int smallest = std::numeric_limits<int>::min();
    static constexpr int largest = std::numeric_limits<int>::max();

    Choice<int> rates{{500, 125, 250}, {1000, 0, 333, -1, -125, 65535, 65536, largest, smallest}};
    Choice<int> slotIndexes{{3, 1, 2, 4}, {5, 6, 7, 99, 0, -1, -2, 65535, 65536, 65539, largest, smallest}};
    Choice<int> buttonIds{{6, 4, 15}, {0, 1, 5, -1, -4, 65536, largest, smallest}};
    Choice<int> minimums{{100, 100, 100, 200}, {0, 1, -1, 8000, 65535, 65536, largest, smallest}};
    Choice<int> maximums{{8000, 8000, 8000, 4000}, {0, 1, -1, 100, 65535, largest, smallest}};
    Choice<int> dpiValues{{1600, 800, 2400}, {12000, 0, -1, largest, smallest}};
    // For what only has to survive them.
    Choice<int> anyNumbers{{800, 1, 3}, {0, -1, 255, 65535, 65536, largest, smallest}};
    Choice<quintptr> words{{1, 22, 77}, {0, 4294967296U, quintptr(1) << 53}};
    Choice<Physical> physicals{{Physical::FirstReceiver, Physical::FirstReceiver, Physical::SecondReceiver},
                               {Physical::NoReceiver, Physical::Nothing}};
    Choice<SlotValues> slotValues{{{800, 1600, 2400, 3200, 4000}, {200, 300, 400, 500, 600}},
                                  {{0, 0, 0, 0, 0}, {65535, 65535, 65535, 65535, 65535}}};
    Choice<quint16> otherSlotValues{{1500, 0}, {65535, 1, 800, 65534}};
    Choice<QString> otherSlotTexts{{u"1500"_s, u"0"_s, u"65535"_s},
                                   {u"100"_s,        u"8000"_s,    u"99"_s,    u"8001"_s,   u"+800"_s,
                                    u" 800"_s,       u"0x10"_s,    u"٨٠٠"_s,   u"65536"_s,  u"70000"_s,
                                    u"65537"_s,      u"131071"_s,  u"-1"_s,    u"-0"_s,     u"4294967296"_s,
                                    u"4294967295"_s, u"\t800\n"_s, u"0800"_s,  u"abc"_s,    QString(),
                                    u"800.0"_s,      u"8e2"_s,     u"1,600"_s, u"800dpi"_s, u"\"quoted\""_s}};
    Choice<QString> ppids{{u"A-1"_s, u"a-1"_s, u"B"_s},
                          {QString(), u"  "_s, u"Mäuschen Ω"_s, u"with \"quotes\" and \\"_s}};
    Choice<QVariantMap> settingMaps{
        {{{u"zoom"_s, 2}}, {}},
        {{{u"name"_s, u"Mäuschen"_s}, {u"zoom"_s, -1}},
         {{u"reportRate"_s, 1000}, {u"dpiButtonId"_s, 3}, {u"two words"_s, u""_s}}}};
    Choice<QList<int>> buttonLists{
        {{1, 3, 5}, {4}, {}, {5, 4, 3, 2, 1}},
        {{2, 2, 7}, {0, 6, 8, -1, 128}, {smallest, largest, 4}, {33, 257, 65537}, {-31, 1}}};
    Choice<int> batteryLevels{{80, 55, 0}, {100, 101, -1, largest, smallest}};
    // Of those that the device only hands on.
    Choice<int> plainValues{{31, 1}, {-1, 65536, largest, smallest}};
    Choice<uint> firmwareVersions{{258, 7}, {0, 65536, 2147483647U, 2147483648U, 0xfedcba98U, 4294967295U}};
    Choice<std::array<quint16, 4>> rateLists{{{125, 250, 500, 1000}, {250, 500, 0, 0}},
                                             {{500, 125, 0, 0},
                                              {0, 125, 500, 1000},
                                              {65534, 65535, 0, 0},
                                              {500, 500, 0, 0},
                                              {125, 0, 500, 1000},
                                              {333, 0, 125, 0}}};
    Choice<quint16> currentRates{{500, 125, 250}, {1000, 0, 65535, 333}};
};

const Pool &pool()
{
    static const Pool all;
    return all;
}

// The first word means nothing.
constexpr quint16 noise = 0x5555;

ReportRateInfo drawnRateInfo(int list, int current)
{
    const std::array<quint16, 4> rates = pool().rateLists.at(list);
    return {noise, pool().currentRates.at(current), {rates[0], rates[1], rates[2], rates[3]}};
}

// One answer is spoilt, or all are sane again.
ReceiverAnswers otherAnswers(ReceiverAnswers answers, const Draw &draw)
{
    using Change = void (*)(ReceiverAnswers &, const Draw &);
    static const std::vector<Change> changes{
        [](ReceiverAnswers &all, const Draw &) { all = {}; },
        [](ReceiverAnswers &all, const Draw &) { all.acceptsRequests = false; },
        [](ReceiverAnswers &all, const Draw &) { all.acceptsRequests = true; },
        [](ReceiverAnswers &all, const Draw &drawn) {
            all.reportRateInfo = drawnRateInfo(drawn.choices[1], drawn.choices[2]);
        },
        [](ReceiverAnswers &all, const Draw &) {
            all.isSmartPointerSupported = !all.isSmartPointerSupported;
        },
        [](ReceiverAnswers &all, const Draw &) { all.hasBatteryLevel = !all.hasBatteryLevel; },
        [](ReceiverAnswers &all, const Draw &) { all.hasReportRateInfo = !all.hasReportRateInfo; },
        [](ReceiverAnswers &all, const Draw &drawn) {
            all.firmwareVersion = pool().firmwareVersions.at(drawn.choices[1]);
        },
        [](ReceiverAnswers &all, const Draw &drawn) {
            all.batteryLevel = pool().batteryLevels.at(drawn.choices[1]);
        },
        [](ReceiverAnswers &all, const Draw &drawn) {
            all.statusValue = pool().plainValues.at(drawn.choices[1]);
        },
        [](ReceiverAnswers &all, const Draw &drawn) {
            all.deviceValue = pool().plainValues.at(drawn.choices[1]);
        },
        [](ReceiverAnswers &all, const Draw &drawn) {
            all.levelValue = pool().plainValues.at(drawn.choices[1]);
        },
        [](ReceiverAnswers &all, const Draw &drawn) {
            all.forwardedResult = pool().words.at(drawn.choices[1]);
        },
    };
    changes.at(static_cast<std::size_t>(draw.choices[0]) % changes.size())(answers, draw);
    return answers;
}

// One slot in two lists differs from the ones that are asked for and confirmed all the time.
std::optional<std::size_t> otherSlot(int choice)
{
    constexpr int firstOther = Draw::largest / 2;
    if (choice < firstOther)
        return std::nullopt;
    return static_cast<std::size_t>(choice) % 5;
}

SlotValues drawnSlotValues(const Draw &draw)
{
    SlotValues values = pool().slotValues.at(draw.choices[0]);
    if (const std::optional<std::size_t> slot = otherSlot(draw.choices[1]))
        values.at(*slot) = pool().otherSlotValues.at(draw.choices[2]);
    return values;
}

constexpr std::array<qsizetype, 5> otherTextCounts{6, 4, 0, 1, 1000};

QStringList drawnSlotTexts(const Draw &draw)
{
    QStringList texts;
    const SlotValues values = pool().slotValues.at(draw.choices[0]);
    for (const quint16 value : values)
        texts.append(QString::number(value));
    if (const std::optional<std::size_t> slot = otherSlot(draw.choices[1])) {
        texts[static_cast<qsizetype>(*slot)] = pool().otherSlotTexts.at(draw.choices[2]);
        // Now and then of another length as well.
        const int fromLargest = (Draw::largest - draw.choices[0]) / 2;
        if (fromLargest < static_cast<int>(otherTextCounts.size())) {
            const qsizetype count = otherTextCounts.at(static_cast<std::size_t>(fromLargest));
            texts = texts.mid(0, count);
            texts.append(QStringList(count - texts.size(), u"800"_s));
        }
    }
    return texts;
}

int drawnNumber(Kind kind, const Draw &draw)
{
    const int choice = draw.choices[0];
    switch (kind) {
    case Kind::ReceiverDpiMinChanged:
    case Kind::InvokeOnDpiMinChanged:
        return pool().minimums.at(choice);
    case Kind::ReceiverDpiMaxChanged:
    case Kind::InvokeOnDpiMaxChanged:
        return pool().maximums.at(choice);
    case Kind::DpiValueChangedCallBack:
        return pool().dpiValues.at(choice);
    case Kind::SetBatteryLevel:
        return pool().batteryLevels.at(choice);
    case Kind::SetActiveDpiSlotIndex:
    case Kind::ActiveDpiSlotIndexConfirmed:
    case Kind::ActiveDpiSlotIndexChangedCallBack:
        return pool().slotIndexes.at(choice);
    case Kind::SetDpiButtonId:
    case Kind::DpiButtonIdConfirmed:
    case Kind::DpiButtonIdChangedCallBack:
        return pool().buttonIds.at(choice);
    case Kind::SetReportRate:
    case Kind::ReportRateConfirmed:
        return pool().rates.at(choice);
    case Kind::MouseEventCallBack:
    case Kind::CapabilityChangedCallBack:
        static_assert(Draw::largest == 255, "every byte shall come");
        return choice;
    default:
        return pool().anyNumbers.at(choice);
    }
}

}  // namespace

void drawValues(Step &step, const Model::World &world, const Draw &draw)
{
    const auto &choices = draw.choices;
    step.number = drawnNumber(step.kind, draw);
    step.firmwareVersion = pool().firmwareVersions.at(choices[0]);
    step.physical = pool().physicals.at(choices[0]);
    for (std::size_t i = 0; i < choices.size(); ++i) {
        step.words.at(i) = pool().words.at(choices.at(i));
        step.logSwitches.at(i) = choices.at(i) <= Draw::largest / 4 * 3;
    }
    switch (step.kind) {
    case Kind::ChangeReceiver:
        step.receiver = draw.target % 4 == 3 ? 1 : 0;
        step.answers =
            otherAnswers(world.receivers.at(static_cast<std::size_t>(step.receiver)).answers, draw);
        break;
    case Kind::PpidChangedCallBack:
    case Kind::InvokeOnPpidChanged:
        step.text = pool().ppids.at(choices[0]);
        break;
    case Kind::SetDpiSlotValues:
        step.texts = drawnSlotTexts(draw);
        break;
    case Kind::DpiSlotValuesConfirmed:
    case Kind::DpiSlotValuesChangedCallBack:
        step.slotValues = drawnSlotValues(draw);
        break;
    case Kind::ReportRateChangedCallBack:
        step.rateInfo = drawnRateInfo(choices[0], choices[1]);
        break;
    case Kind::ApplySettings:
        step.settings = pool().settingMaps.at(choices[0]);
        break;
    case Kind::DisbaleButtonsOrKeys:
        step.numbers = pool().buttonLists.at(choices[0]);
        break;
    default:
        break;
    }
}
