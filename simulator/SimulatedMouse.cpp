#include "SimulatedMouse.h"

#include "Operations.h"

#include <algorithm>

ReportRateInfo SimulatedMouse::reportRateInfo() const
{
    ReportRateInfo info{};
    info.currentRate = static_cast<quint16>(reportRate);
    std::copy(reportRates.begin(), reportRates.end(), info.supportedRates);
    return info;
}

QList<MouseMessage> SimulatedMouse::take(const MouseMessage &request)
{
    if (isAsleep) {
        unheard.append(request);
        return {};
    }
    const DeviceOperation *operation = request.operation;
    const QJsonArray &arguments = request.arguments;
    if (operation == &requests::setReportRate)
        return takeReportRate(arguments.at(0).toInt());
    if (operation == &requests::setDpiSlotValues)
        return takeDpiSlotValues(arguments.at(0).toArray());
    if (operation == &requests::setDpiButtonAndActiveSlot)
        return takeDpiButtonAndActiveSlot(arguments.at(0).toInt(), arguments.at(1).toInt());
    if (operation == &requests::setDisabledButtonsOrKeysMask)
        disabledButtonsOrKeysMask = static_cast<quint8>(arguments.at(0).toInt());
    const std::array states{&requests::requestInitialState1, &requests::requestInitialState2,
                            &requests::requestInitialState3};
    for (int part = 1; part <= 3; ++part) {
        if (operation == states.at(static_cast<std::size_t>(part - 1)))
            return initialState(part);
    }
    return {};
}

QList<MouseMessage> SimulatedMouse::takeReportRate(int rate)
{
    const bool isOffered =
        rate != 0 && std::find(reportRates.begin(), reportRates.end(), rate) != reportRates.end();
    if (isOffered)
        reportRate = rate;
    return {{&reports::reportRateConfirmed, {reportRate}}};
}

QList<MouseMessage> SimulatedMouse::takeDpiSlotValues(const QJsonArray &values)
{
    for (qsizetype slot = 0; slot < dpiSlotCount; ++slot) {
        const auto value = static_cast<quint16>(values.at(slot).toInt());
        if (value != 0)
            dpiSlotValues[static_cast<std::size_t>(slot)] = roundedDpi(value);
    }
    QList<MouseMessage> reports{{&reports::dpiSlotValuesConfirmed, {timelineValue(dpiSlotValues.data())}}};
    appendDpiChange(reports);
    return reports;
}

QList<MouseMessage> SimulatedMouse::takeDpiButtonAndActiveSlot(int buttonId, int slotIndex)
{
    if (slotIndex == 0) {
        dpiButtonId = buttonId;
        return {{&reports::dpiButtonIdConfirmed, {dpiButtonId}}};
    }
    if (slotIndex >= 1 && slotIndex <= dpiSlotCount)
        activeDpiSlotIndex = slotIndex;
    QList<MouseMessage> reports{{&reports::activeDpiSlotIndexConfirmed, {activeDpiSlotIndex}}};
    appendDpiChange(reports);
    return reports;
}

void SimulatedMouse::appendDpiChange(QList<MouseMessage> &reports)
{
    const int slotValue = dpiSlotValues.at(static_cast<std::size_t>(activeDpiSlotIndex - 1));
    if (slotValue == dpiValue)
        return;
    dpiValue = slotValue;
    reports.append({&reports::dpiValueChangedCallBack, {dpiValue}});
}

QList<MouseMessage> SimulatedMouse::initialState(int part) const
{
    if (part == 1) {
        return {{&receiverSignals::dpiMinChanged, {dpiMin}},
                {&receiverSignals::dpiMaxChanged, {dpiMax}},
                {&reports::dpiSlotValuesChangedCallBack, {timelineValue(dpiSlotValues.data())}}};
    }
    if (part == 2) {
        return {{&reports::activeDpiSlotIndexChangedCallBack, {activeDpiSlotIndex}},
                {&reports::dpiButtonIdChangedCallBack, {dpiButtonId}},
                {&reports::dpiValueChangedCallBack, {dpiValue}}};
    }
    const ReportRateInfo info = reportRateInfo();
    QList<MouseMessage> reports{{&reports::ppidChangedCallBack, {ppid}}};
    if (knowsReportRates)
        reports.append({&reports::reportRateChangedCallBack, {timelineValue(&info)}});
    return reports;
}
