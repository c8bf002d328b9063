#pragma once

#include "IHostServices.h"
#include "ReceiverBase.h"

#include <atomic>

/// A receiver for several threads at once: it accepts every request and counts them. It has no lock and keeps no
/// order, which would hide the races of its callers from a sanitizer.
class CountingReceiver : public ReceiverBase
{
    Q_OBJECT

public:
    explicit CountingReceiver(Timeline &timeline) : ReceiverBase(timeline) {}

    int requestCount() const { return m_requests.load(std::memory_order_relaxed); }

    /// Below what the callers report, so that the level only grows.
    int getBatteryLevel(DeviceId) override { return 0; }
    bool setDisabledButtonsOrKeysMask(DeviceId, quint8) override { return count(); }
    bool setReportRate(DeviceId, int) override { return count(); }
    bool setDpiButtonAndActiveSlot(DeviceId, int, int) override { return count(); }
    bool setDpiSlotValues(DeviceId, const quint16[5], int, int) override { return count(); }

private:
    bool count()
    {
        m_requests.fetch_add(1, std::memory_order_relaxed);
        return true;
    }

    std::atomic<int> m_requests{0};
};

/// Counts what devices on several threads deliver to the host.
class CountingHostServices : public IHostServices
{
public:
    int buttonEventCount() const { return m_buttonEvents.load(std::memory_order_relaxed); }
    int ctrlEventCount() const { return m_ctrlEvents.load(std::memory_order_relaxed); }

    void reserved0() override {}
    void reserved1() override {}
    void reserved2() override {}
    void buttonEvent(const QString &, int, bool) override
    {
        m_buttonEvents.fetch_add(1, std::memory_order_relaxed);
    }
    void setCtrlKeyPressed(bool) override { m_ctrlEvents.fetch_add(1, std::memory_order_relaxed); }

private:
    std::atomic<int> m_buttonEvents{0};
    std::atomic<int> m_ctrlEvents{0};
};
