#include "MouseReport.h"

#include "ILogicalDeviceGen3.h"
#include "ILogicalDeviceGen3Mouse.h"
#include "ReportRateInfo.h"
#include "TimelineValue.h"

#include <QtCore/QHash>

#include <array>

using namespace Qt::StringLiterals;

namespace {

using Deliver = void (*)(ILogicalDeviceGen3Mouse &, const QJsonValue &);

template <auto operation>
void deliverInt(ILogicalDeviceGen3Mouse &device, const QJsonValue &argument)
{
    (device.*operation)(argument.toInt());
}

template <auto operation>
void deliverByte(ILogicalDeviceGen3Mouse &device, const QJsonValue &argument)
{
    (device.*operation)(static_cast<quint8>(argument.toInt()));
}

template <auto operation>
void deliverSlotValues(ILogicalDeviceGen3Mouse &device, const QJsonValue &argument)
{
    const QJsonArray array = argument.toArray();
    std::array<quint16, dpiSlotCount> values{};
    for (std::size_t slot = 0; slot < values.size(); ++slot)
        values[slot] = static_cast<quint16>(array.at(static_cast<qsizetype>(slot)).toInt());
    (device.*operation)(values.data());
}

void deliverReportRates(ILogicalDeviceGen3Mouse &device, const QJsonValue &argument)
{
    const ReportRateInfo info = reportRateInfoOf(argument);
    device.reportRateChangedCallBack(&info);
}

void deliverPpid(ILogicalDeviceGen3Mouse &device, const QJsonValue &argument)
{
    if (auto *gen3 = dynamic_cast<ILogicalDeviceGen3 *>(&device))
        gen3->ppidChangedCallBack(argument.toString());
}

void deliverFirmwareVersion(ILogicalDeviceGen3Mouse &device, const QJsonValue &argument)
{
    device.setFirmwareVersion(static_cast<uint>(argument.toInteger()));
}

const QHash<QString, Deliver> &deliveries()
{
    using Mouse = ILogicalDeviceGen3Mouse;
    static const QHash<QString, Deliver> table{
        {u"reportRateConfirmed"_s, deliverInt<&Mouse::reportRateConfirmed>},
        {u"reportRateChangedCallBack"_s, deliverReportRates},
        {u"dpiValueChangedCallBack"_s, deliverInt<&Mouse::dpiValueChangedCallBack>},
        {u"dpiSlotValuesConfirmed"_s, deliverSlotValues<&Mouse::dpiSlotValuesConfirmed>},
        {u"dpiSlotValuesChangedCallBack"_s, deliverSlotValues<&Mouse::dpiSlotValuesChangedCallBack>},
        {u"activeDpiSlotIndexConfirmed"_s, deliverInt<&Mouse::activeDpiSlotIndexConfirmed>},
        {u"activeDpiSlotIndexChangedCallBack"_s, deliverInt<&Mouse::activeDpiSlotIndexChangedCallBack>},
        {u"dpiButtonIdConfirmed"_s, deliverInt<&Mouse::dpiButtonIdConfirmed>},
        {u"dpiButtonIdChangedCallBack"_s, deliverInt<&Mouse::dpiButtonIdChangedCallBack>},
        {u"ppidChangedCallBack"_s, deliverPpid},
        {u"setFirmwareVersion"_s, deliverFirmwareVersion},
        {u"setBatteryLevel"_s, deliverInt<&Mouse::setBatteryLevel>},
        {u"capabilityChangedCallBack"_s, deliverByte<&Mouse::capabilityChangedCallBack>},
        {u"mouseEventCallBack"_s, deliverByte<&Mouse::mouseEventCallBack>},
    };
    return table;
}

}  // namespace

bool deliverMouseReport(ILogicalDeviceGen3Mouse &device, const MouseMessage &report)
{
    const Deliver deliver = deliveries().value(report.operation, nullptr);
    if (!deliver)
        return false;
    deliver(device, report.arguments.at(0));
    return true;
}
