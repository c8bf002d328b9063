#pragma once

#include "IFloorDevice.h"

#include <QtCore/QObject>

#include <array>

/// The floors of all operations in one object, which stands in its library as a logical device does in its own:
/// an interface behind a QObject.
class FloorDevice final : public QObject, public IFloorDevice
{
    Q_OBJECT
    Q_INTERFACES(IFloorDevice)

public:
    FloorDevice(IPhysicalDeviceDongle *receiver, IHostServices *hostServices);
    Q_DISABLE_COPY_MOVE(FloorDevice)
    ~FloorDevice() override;

    void mouseEventCallBack(quint8 mouseEvent) override;
    void setBatteryLevel(int newBatteryLevel) override;
    void queueBatteryLevel(int newBatteryLevel) override;
    void setDpiSlotValues(QStringList values) override;
    void dpiSlotValuesConfirmed(const quint16 values[5]) override;
    void setReportRate(int rate) override;
    void reportRateConfirmed(int rate) override;
    void start() override;

Q_SIGNALS:
    void instanceNumberChanged(int instanceNumber);
    void batteryLevelChanged(int newBatteryLevel);
    void dpiSlotValuesChanged(QStringList values);
    void isDpiSlotValuesChangePendingChanged(bool isPending);
    void reportRateChanged(int newDPILevel);
    void isReportRateChangePendingChanged(bool pending);

private:
    static void announceNumbers();

    IPhysicalDeviceDongle *m_receiver = nullptr;
    IHostServices *m_hostServices = nullptr;
    quint8 m_mouseEvent = 0;
    int m_batteryLevel = 0;
    std::array<quint16, 5> m_dpiSlotValues = {};
    std::array<quint16, 5> m_pendingDpiSlotValues = {};
    bool m_isDpiSlotValuesChangePending = false;
    int m_reportRate = 0;
    int m_pendingReportRate = 0;
    int m_instanceNumber = 0;
};
