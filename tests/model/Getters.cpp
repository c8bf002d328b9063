#include "Getters.h"

#include "HostedDevice.h"
#include "Lines.h"

#include <limits>

using namespace Qt::StringLiterals;

namespace {

QStringList decimals(const QList<quint16> &values)
{
    QStringList texts;
    for (const quint16 value : values)
        texts.append(QString::number(value));
    return texts;
}

class Differences
{
public:
    template <typename Expected, typename Seen>
    void compare(const char *getter, const Expected &expected, const Seen &seen)
    {
        if (!(expected == seen))
            m_lines.append(u"%1: expected %2, seen %3"_s.arg(
                QLatin1StringView(getter), Model::streamed(expected), Model::streamed(seen)));
    }

    const QStringList &lines() const { return m_lines; }

private:
    QStringList m_lines;
};

}  // namespace

QStringList differentGetters(const Model::Device &model, const CreatedWith &createdWith,
                             const HostedDevice &hosted)
{
    const ILogicalDeviceGen3Mouse &device = *hosted.device();
    Differences differences;
#define COMPARE(getter, expected) differences.compare(#getter, expected, device.getter())
    COMPARE(deviceType, 2);
    COMPARE(deviceClass, 7);
    COMPARE(name, "Orvane Tessa Mouse"_L1);
    COMPARE(instanceId, createdWith.instanceId);
    COMPARE(firmwareVersion, model.firmwareVersion);
    COMPARE(iid, "com.orvane.KVX.Plugin.LogicalDevice.RV418"_L1);
    COMPARE(deviceValue, model.deviceValue);
    COMPARE(modelCode, "RV418"_L1);

    COMPARE(physicalDevice, createdWith.physicalDevice);
    COMPARE(instanceNumber, model.instanceNumber);
    COMPARE(hasBatteryLevel, model.hasBatteryLevel);
    COMPARE(batteryLevel, model.batteryLevel);
    COMPARE(statusValue, model.statusValue);
    COMPARE(query24, 0);
    differences.compare("pairedHostName(1)", ""_L1, device.pairedHostName(1));
    differences.compare("pairedHostName(INT_MIN)", ""_L1,
                        device.pairedHostName(std::numeric_limits<int>::min()));
    COMPARE(isDPILevelSupported, false);
    COMPARE(dpiLevel, 0);
    COMPARE(query30, QStringList());
    COMPARE(isDPILevelChangePending, false);
    COMPARE(isSmartPointerSupported, model.isSmartPointerSupported);
    COMPARE(query33, 0);
    COMPARE(levelValue, model.levelValue);
    COMPARE(query35, false);

    COMPARE(query53, false);
    COMPARE(dpiValue, model.dpiValue);
    COMPARE(dpiMin, model.dpiMin);
    COMPARE(dpiMax, model.dpiMax);
    COMPARE(dpiDelta, 50);
    COMPARE(isDPIValueChangePending, false);
    COMPARE(isDPIValueSupported, true);
    COMPARE(activeDpiSlotIndex, model.activeSlot);
    COMPARE(dpiSlotValues, decimals(model.slotValues));
    COMPARE(dpiButtonId, model.buttonId);
    COMPARE(isActiveDpiSlotIndexChangePending, model.isActiveSlotPending);
    COMPARE(isDpiSlotValuesChangePending, model.isSlotValuesPending);
    COMPARE(isDpiButtonIdChangePending, model.isButtonIdPending);
    COMPARE(query70, 1);
    COMPARE(isReportRateSupported, true);
    COMPARE(reportRate, model.reportRate);
    COMPARE(reportRateValues, model.reportRateValues);
    COMPARE(isReportRateChangePending, model.isReportRatePending);
    COMPARE(isScrollInversionEnabled, false);
    COMPARE(query88, false);
    COMPARE(query89, false);
    COMPARE(query91, false);
#undef COMPARE
    differences.compare("ppid", model.ppid, hosted.gen3()->ppid());
    return differences.lines();
}

QStringList differentFiles(const HostedDevice &hosted)
{
    Differences differences;
    const QByteArray profile("{\r\n"
                             "  \"version\": 1,\r\n"
                             "  \"defaultActions\": [\r\n"
                             "  ]\r\n"
                             "}\r\n");
    differences.compare("defaultProfile", profile, hosted.device()->defaultProfile());
    differences.compare("deviceImage", QByteArray(), hosted.device()->deviceImage());
    return differences.lines();
}
