#pragma once

#include "DeviceId.h"

#include <QtCore/QMetaObject>
#include <QtCore/QStringList>
#include <QtCore/QThread>
#include <QtCore/QTimer>

#include <array>
#include <utility>

class IHostServices;
class IPhysicalDeviceDongle;

/// Some operations of a logical device as the least code that does for the host what the device does: under the same
/// names, with the same checks and the same signals. It has no log.
class FloorDevice : public QObject
{
    Q_OBJECT

public:
    /// Neither is owned.
    FloorDevice(IPhysicalDeviceDongle *receiver, IHostServices *hostServices);

    virtual void mouseEventCallBack(quint8 mouseEvent);
    virtual void setBatteryLevel(int newBatteryLevel);
    virtual void setDpiSlotValues(QStringList values);
    virtual void dpiSlotValuesConfirmed(const quint16 values[5]);
    virtual void setReportRate(int rate);
    virtual void reportRateConfirmed(int rate);

Q_SIGNALS:
    void batteryLevelChanged(int newBatteryLevel);
    void dpiSlotValuesChanged(QStringList values);
    void isDpiSlotValuesChangePendingChanged(bool isPending);
    void reportRateChanged(int newDPILevel);
    void isReportRateChangePendingChanged(bool pending);

private:
    using SlotValues = std::array<quint16, 5>;

    template <typename Emission>
    void emitOnOwnThread(Emission emission)
    {
        if (QThread::currentThread() == thread())
            emission();
        else
            QMetaObject::invokeMethod(this, std::move(emission), Qt::QueuedConnection);
    }

    void setSmartPointerKey(bool isDown);
    quint16 parsed(const QString &text) const;
    void sendDpiSlotValues(const SlotValues &values);
    void setDpiSlotValuesChangePending(bool isPending);
    void setReportRateChangePending(bool isPending);

    IPhysicalDeviceDongle *m_receiver = nullptr;
    IHostServices *m_hostServices = nullptr;
    DeviceId m_deviceId = 1;
    quint8 m_mouseEvent = 0;
    QTimer m_smartPointerCtrReleaseTimer;
    int m_batteryLevel = -1;
    int m_dpiMin = 100;
    int m_dpiMax = 8000;
    int m_dpiButtonId = 15;
    int m_activeDpiSlotIndex = 2;
    SlotValues m_dpiSlotValues = {};
    SlotValues m_pendingDpiSlotValues = {};
    bool m_isDpiSlotValuesChangePending = false;
    int m_reportRate = 0;
    int m_reportRatePending = 0;
    bool m_isReportRateChangePending = false;
};
