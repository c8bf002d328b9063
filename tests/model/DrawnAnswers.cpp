#include "DrawnAnswers.h"

#include "Choice.h"

#include <array>
#include <limits>
#include <vector>

namespace {

constexpr int smallest = std::numeric_limits<int>::min();
constexpr int largest = std::numeric_limits<int>::max();

const Choice<int> &batteryLevels()
{
    static const Choice<int> choice{{80, 55, 0}, {100, 101, -1, largest, smallest}};
    return choice;
}

// Of those that the device only hands on.
const Choice<int> &plainValues()
{
    static const Choice<int> choice{{31, 1}, {-1, 65536, largest, smallest}};
    return choice;
}

const Choice<uint> &firmwareVersions()
{
    static const Choice<uint> choice{{258, 7},
                                     {0, 65536, 2147483647U, 2147483648U, 0xfedcba98U, 4294967295U}};
    return choice;
}

const Choice<quintptr> &forwardedResults()
{
    static const Choice<quintptr> choice{{77, 1}, {0, 4294967296U, quintptr(1) << 53}};
    return choice;
}

// The first word means nothing.
constexpr quint16 noise = 0x5555;

const Choice<std::array<quint16, 4>> &rateLists()
{
    static const Choice<std::array<quint16, 4>> choice{{{125, 250, 500, 1000}, {250, 500, 0, 0}},
                                                       {{500, 125, 0, 0},
                                                        {0, 125, 500, 1000},
                                                        {65534, 65535, 0, 0},
                                                        {500, 500, 0, 0},
                                                        {125, 0, 500, 1000},
                                                        {333, 0, 125, 0}}};
    return choice;
}

const Choice<quint16> &currentRates()
{
    static const Choice<quint16> choice{{500, 125, 250}, {1000, 0, 65535, 333}};
    return choice;
}

}  // namespace

int drawnBatteryLevel(int choice)
{
    return batteryLevels().at(choice);
}

ReportRateInfo drawnRateInfo(int list, int current)
{
    const std::array<quint16, 4> rates = rateLists().at(list);
    return {noise, currentRates().at(current), {rates[0], rates[1], rates[2], rates[3]}};
}

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
            all.firmwareVersion = firmwareVersions().at(drawn.choices[1]);
        },
        [](ReceiverAnswers &all, const Draw &drawn) {
            all.batteryLevel = drawnBatteryLevel(drawn.choices[1]);
        },
        [](ReceiverAnswers &all, const Draw &drawn) { all.statusValue = plainValues().at(drawn.choices[1]); },
        [](ReceiverAnswers &all, const Draw &drawn) { all.deviceValue = plainValues().at(drawn.choices[1]); },
        [](ReceiverAnswers &all, const Draw &drawn) { all.levelValue = plainValues().at(drawn.choices[1]); },
        [](ReceiverAnswers &all, const Draw &drawn) {
            all.forwardedResult = forwardedResults().at(drawn.choices[1]);
        },
    };
    changes.at(static_cast<std::size_t>(draw.choices[0]) % changes.size())(answers, draw);
    return answers;
}
