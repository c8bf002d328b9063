#include "SimulatedMouse.h"

#include <QtCore/QJsonObject>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

QJsonArray slotValuesArgument(const SimulatedMouse &mouse)
{
    return {timelineValue(mouse.dpiSlotValues.data())};
}

}  // namespace

ReportRateInfo SimulatedMouse::reportRateInfo() const
{
    ReportRateInfo info{};
    info.currentRate = static_cast<quint16>(reportRate);
    std::copy(reportRates.begin(), reportRates.end(), info.supportedRates);
    return info;
}

std::optional<QList<MouseMessage>> SimulatedMouse::take(const MouseMessage &request)
{
    if (isAsleep) {
        unheard.append(request);
        return QList<MouseMessage>();
    }
    const QString &operation = request.operation;
    const QJsonArray &arguments = request.arguments;
    if (operation == u"setReportRate")
        return takeReportRate(arguments.at(0).toInt());
    if (operation == u"setDpiSlotValues")
        return takeDpiSlotValues(arguments.at(0).toArray());
    if (operation == u"setDpiButtonAndActiveSlot")
        return takeDpiButtonAndActiveSlot(arguments.at(0).toInt(), arguments.at(1).toInt());
    if (operation == u"setDisabledButtonsOrKeysMask") {
        disabledButtonsOrKeysMask = static_cast<quint8>(arguments.at(0).toInt());
        return QList<MouseMessage>();
    }
    for (int part = 1; part <= 3; ++part) {
        if (operation == u"requestInitialState"_s + QString::number(part))
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
    return {{u"reportRateConfirmed"_s, {reportRate}}};
}

QList<MouseMessage> SimulatedMouse::takeDpiSlotValues(const QJsonArray &values)
{
    for (qsizetype slot = 0; slot < dpiSlotCount; ++slot) {
        const auto value = static_cast<quint16>(values.at(slot).toInt());
        if (value != 0)
            dpiSlotValues[static_cast<std::size_t>(slot)] = roundedDpi(value);
    }
    QList<MouseMessage> reports{{u"dpiSlotValuesConfirmed"_s, slotValuesArgument(*this)}};
    appendDpiChange(reports);
    return reports;
}

QList<MouseMessage> SimulatedMouse::takeDpiButtonAndActiveSlot(int buttonId, int slotIndex)
{
    if (slotIndex == 0) {
        dpiButtonId = buttonId;
        return {{u"dpiButtonIdConfirmed"_s, {dpiButtonId}}};
    }
    if (slotIndex >= 1 && slotIndex <= dpiSlotCount)
        activeDpiSlotIndex = slotIndex;
    QList<MouseMessage> reports{{u"activeDpiSlotIndexConfirmed"_s, {activeDpiSlotIndex}}};
    appendDpiChange(reports);
    return reports;
}

void SimulatedMouse::appendDpiChange(QList<MouseMessage> &reports)
{
    const int slotValue = dpiSlotValues.at(static_cast<std::size_t>(activeDpiSlotIndex - 1));
    if (slotValue == dpiValue)
        return;
    dpiValue = slotValue;
    reports.append({u"dpiValueChangedCallBack"_s, {dpiValue}});
}

QList<MouseMessage> SimulatedMouse::initialState(int part) const
{
    if (part == 1) {
        return {{u"dpiMinChanged"_s, {dpiMin}},
                {u"dpiMaxChanged"_s, {dpiMax}},
                {u"dpiSlotValuesChangedCallBack"_s, slotValuesArgument(*this)}};
    }
    if (part == 2) {
        return {{u"activeDpiSlotIndexChangedCallBack"_s, {activeDpiSlotIndex}},
                {u"dpiButtonIdChangedCallBack"_s, {dpiButtonId}},
                {u"dpiValueChangedCallBack"_s, {dpiValue}}};
    }
    const ReportRateInfo info = reportRateInfo();
    QList<MouseMessage> reports{{u"ppidChangedCallBack"_s, {ppid}}};
    if (knowsReportRates)
        reports.append({u"reportRateChangedCallBack"_s, {timelineValue(&info)}});
    return reports;
}
