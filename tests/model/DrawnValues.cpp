#include "DrawnValues.h"

#include "Choice.h"
#include "DrawnAnswers.h"

#include <limits>

using namespace Qt::StringLiterals;

namespace {

using Kind = Operation::Kind;

constexpr int smallest = std::numeric_limits<int>::min();
constexpr int largest = std::numeric_limits<int>::max();

const Choice<int> &rates()
{
    static const Choice<int> choice{{500, 125, 250},
                                    {1000, 0, 333, -1, -125, 65535, 65536, largest, smallest}};
    return choice;
}

const Choice<int> &slotIndexes()
{
    static const Choice<int> choice{{3, 1, 2, 4},
                                    {5, 6, 7, 99, 0, -1, -2, 65535, 65536, 65539, largest, smallest}};
    return choice;
}

const Choice<int> &buttonIds()
{
    static const Choice<int> choice{{6, 4, 15}, {0, 1, 5, -1, -4, 65536, largest, smallest}};
    return choice;
}

const Choice<int> &minimums()
{
    static const Choice<int> choice{{100, 100, 100, 200}, {0, 1, -1, 8000, 65535, 65536, largest, smallest}};
    return choice;
}

const Choice<int> &maximums()
{
    static const Choice<int> choice{{8000, 8000, 8000, 4000}, {0, 1, -1, 100, 65535, largest, smallest}};
    return choice;
}

const Choice<int> &dpiValues()
{
    static const Choice<int> choice{{1600, 800, 2400}, {12000, 0, -1, largest, smallest}};
    return choice;
}

// For what only has to survive them.
const Choice<int> &anyNumbers()
{
    static const Choice<int> choice{{800, 1, 3}, {0, -1, 255, 65535, 65536, largest, smallest}};
    return choice;
}

const Choice<uint> &firmwareVersions()
{
    static const Choice<uint> choice{{258, 7}, {0, 2147483648U, 4294967295U}};
    return choice;
}

const Choice<quintptr> &words()
{
    static const Choice<quintptr> choice{{1, 22, 77}, {0, 4294967296U, quintptr(1) << 53}};
    return choice;
}

const Choice<Physical> &physicals()
{
    static const Choice<Physical> choice{
        {Physical::FirstReceiver, Physical::FirstReceiver, Physical::SecondReceiver},
        {Physical::NoReceiver, Physical::Nothing}};
    return choice;
}

const Choice<SlotValues> &slotValues()
{
    static const Choice<SlotValues> choice{{{800, 1600, 2400, 3200, 4000}, {200, 300, 400, 500, 600}},
                                           {{0, 0, 0, 0, 0}, {65535, 65535, 65535, 65535, 65535}}};
    return choice;
}

const Choice<quint16> &otherSlotValues()
{
    static const Choice<quint16> choice{{1500, 0}, {65535, 1, 800, 65534}};
    return choice;
}

const Choice<QString> &otherSlotTexts()
{
    static const Choice<QString> choice{
        {u"1500"_s, u"0"_s, u"65535"_s},
        {u"100"_s,        u"8000"_s,       u"99"_s,      u"8001"_s,      u"+800"_s,   u" 800"_s, u"0x10"_s,
         u"٨٠٠"_s,        u"65536"_s,      u"70000"_s,   u"65537"_s,     u"131071"_s, u"-1"_s,   u"-0"_s,
         u"4294967296"_s, u"4294967295"_s, u"\t800\n"_s, u"0800"_s,      u"abc"_s,    QString(), u"800.0"_s,
         u"8e2"_s,        u"1,600"_s,      u"800dpi"_s,  u"\"quoted\""_s}};
    return choice;
}

const Choice<QString> &ppids()
{
    static const Choice<QString> choice{{u"A-1"_s, u"a-1"_s, u"B"_s},
                                        {QString(), u"  "_s, u"Mäuschen Ω"_s, u"with \"quotes\" and \\"_s}};
    return choice;
}

const Choice<QVariantMap> &settingMaps()
{
    static const Choice<QVariantMap> choice{
        {{{u"zoom"_s, 2}}, {}},
        {{{u"name"_s, u"Mäuschen"_s}, {u"zoom"_s, -1}},
         {{u"reportRate"_s, 1000}, {u"dpiButtonId"_s, 3}, {u"two words"_s, u""_s}}}};
    return choice;
}

const Choice<QList<int>> &buttonLists()
{
    static const Choice<QList<int>> choice{
        {{1, 3, 5}, {4}, {}, {5, 4, 3, 2, 1}},
        {{2, 2, 7}, {0, 6, 8, -1, 128}, {smallest, largest, 4}, {33, 257, 65537}, {-31, 1}}};
    return choice;
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
    SlotValues values = slotValues().at(draw.choices[0]);
    if (const std::optional<std::size_t> slot = otherSlot(draw.choices[1]))
        values.at(*slot) = otherSlotValues().at(draw.choices[2]);
    return values;
}

constexpr std::array<qsizetype, 5> otherTextCounts{6, 4, 0, 1, 1000};

QStringList drawnSlotTexts(const Draw &draw)
{
    QStringList texts;
    const SlotValues values = slotValues().at(draw.choices[0]);
    for (const quint16 value : values)
        texts.append(QString::number(value));
    if (const std::optional<std::size_t> slot = otherSlot(draw.choices[1])) {
        texts[static_cast<qsizetype>(*slot)] = otherSlotTexts().at(draw.choices[2]);
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
        return minimums().at(choice);
    case Kind::ReceiverDpiMaxChanged:
    case Kind::InvokeOnDpiMaxChanged:
        return maximums().at(choice);
    case Kind::DpiValueChangedCallBack:
        return dpiValues().at(choice);
    case Kind::SetBatteryLevel:
        return drawnBatteryLevel(choice);
    case Kind::SetActiveDpiSlotIndex:
    case Kind::ActiveDpiSlotIndexConfirmed:
    case Kind::ActiveDpiSlotIndexChangedCallBack:
        return slotIndexes().at(choice);
    case Kind::SetDpiButtonId:
    case Kind::DpiButtonIdConfirmed:
    case Kind::DpiButtonIdChangedCallBack:
        return buttonIds().at(choice);
    case Kind::SetReportRate:
    case Kind::ReportRateConfirmed:
        return rates().at(choice);
    case Kind::MouseEventCallBack:
    case Kind::CapabilityChangedCallBack:
        static_assert(Draw::largest == 255, "every byte shall come");
        return choice;
    default:
        return anyNumbers().at(choice);
    }
}

}  // namespace

void drawValues(Operation &operation, const Model::World &world, const Draw &draw)
{
    const auto &choices = draw.choices;
    operation.number = drawnNumber(operation.kind, draw);
    operation.firmwareVersion = firmwareVersions().at(choices[0]);
    operation.physical = physicals().at(choices[0]);
    for (std::size_t i = 0; i < choices.size(); ++i) {
        operation.words.at(i) = words().at(choices.at(i));
        operation.logSwitches.at(i) = choices.at(i) <= Draw::largest / 4 * 3;
    }
    switch (operation.kind) {
    case Kind::ChangeReceiver:
        operation.receiver = draw.target % 4 == 3 ? 1 : 0;
        operation.answers =
            otherAnswers(world.receivers.at(static_cast<std::size_t>(operation.receiver)).answers, draw);
        break;
    case Kind::PpidChangedCallBack:
    case Kind::InvokeOnPpidChanged:
        operation.text = ppids().at(choices[0]);
        break;
    case Kind::SetDpiSlotValues:
        operation.texts = drawnSlotTexts(draw);
        break;
    case Kind::DpiSlotValuesConfirmed:
    case Kind::DpiSlotValuesChangedCallBack:
        operation.slotValues = drawnSlotValues(draw);
        break;
    case Kind::ReportRateChangedCallBack:
        operation.rateInfo = drawnRateInfo(choices[0], choices[1]);
        break;
    case Kind::ApplySettings:
        operation.settings = settingMaps().at(choices[0]);
        break;
    case Kind::DisbaleButtonsOrKeys:
        operation.numbers = buttonLists().at(choices[0]);
        break;
    default:
        break;
    }
}
