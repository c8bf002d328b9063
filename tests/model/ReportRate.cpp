#include "Lines.h"

#include <algorithm>
#include <iterator>

namespace Model {

namespace {

constexpr int preferredRate = 125;

void setPendingFlag(World &world, Device &device, bool isPending)
{
    change(world, device, "isReportRateChangePendingChanged", &Device::isReportRatePending, isPending);
}

// A 0 ends the list.
QList<int> listedRates(const ReportRateInfo &info)
{
    const auto *end = std::find(std::begin(info.supportedRates), std::end(info.supportedRates), 0);
    return QList<int>(std::begin(info.supportedRates), end);
}

// When the rate in force is not on offer.
void fallBack(World &world, Device &device, const ReportRateInfo &info)
{
    if (device.isBound && listedRates(info).contains(preferredRate))
        setReportRate(world, device, preferredRate);
    else if (!device.reportRateValues.isEmpty())
        setReportRate(world, device, info.supportedRates[0]);
    else
        warn(world, "report rate not initialized");
}

void storeRate(World &world, Device &device, int rate)
{
    change(world, device, "reportRateChanged", &Device::reportRate, rate);
}

}  // namespace

void readReportRates(World &world, Device &device, const ReportRateInfo &info)
{
    const QList<int> rates = listedRates(info);
    const int current = info.currentRate;
    for (const int rate : rates) {
        debug(world, "got supported report rate : ", rate);
        device.reportRateValues.append(QString::number(rate));
        if (rate == current) {
            debug(world, "got current report rate : ", current);
            device.reportRate = current;
        }
    }
    if (rates.contains(current))
        return;
    warn(world, "current report rate not found in list : ", current);
    fallBack(world, device, info);
}

void setReportRate(World &world, Device &device, int rate)
{
    if (rate == device.reportRate)
        return;
    device.reportRate = rate;
    debug(world, "Updating new report rate : ", rate);
    if (!device.isBound) {
        warnOfNoReceiver(world);
        return;
    }
    if (!device.isReportRatePending) {
        device.pendingReportRate = rate;
        setPendingFlag(world, device, true);
    }
    if (!request(world, device, "setReportRate", argumentText(rate))) {
        warn(world, "Dongle set report rate failed");
        device.pendingReportRate = 0;
        setPendingFlag(world, device, false);
    }
    emitOnDeviceThread(world, device, "reportRateChanged", &Device::reportRate);
}

void reportRateConfirmed(World &world, Device &device, int rate)
{
    const int pending = device.pendingReportRate;
    debug(world, "reportRateConfirmed rate :", rate, ", reportRatePending :", pending);
    if (pending == rate) {
        device.pendingReportRate = 0;
        setPendingFlag(world, device, false);
        storeRate(world, device, rate);
    } else if (pending == 0) {
        storeRate(world, device, rate);
    } else if (pending > 0 && rate != device.reportRate) {
        // Silently, so that the rate that is waited for counts as a new one.
        device.reportRate = rate;
        setReportRate(world, device, pending);
    }
}

void reportRateChanged(World &world, Device &device, const ReportRateInfo &info)
{
    const QList<int> rates = listedRates(info);
    QStringList texts;
    for (const int rate : rates) {
        debug(world, "got supported report rate : ", rate);
        texts.append(QString::number(rate));
    }
    change(world, device, "reportRateValuesChanged", &Device::reportRateValues, texts);
    const int current = info.currentRate;
    if (rates.contains(current))
        reportRateConfirmed(world, device, current);
    else
        fallBack(world, device, info);
}

}  // namespace Model
