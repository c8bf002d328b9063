#pragma once

#include "Model.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QUuid>

class HostedDevice;
class IPhysicalDevice;

/// What all getters of a device answer, in the order of the interfaces.
struct DeviceValues
{
    int deviceType = 2;
    int deviceClass = 7;
    QString name = QStringLiteral("Orvane Tessa Mouse");
    QUuid instanceId;
    uint firmwareVersion = 0;
    QString iid = QStringLiteral("com.orvane.KVX.Plugin.LogicalDevice.RV418");
    int deviceValue = 0;
    QString modelCode = QStringLiteral("RV418");

    const IPhysicalDevice *physicalDevice = nullptr;
    int instanceNumber = 0;
    bool hasBatteryLevel = false;
    int batteryLevel = 0;
    int statusValue = 0;
    int query24 = 0;
    QString pairedHostName = QLatin1String("");
    bool isDPILevelSupported = false;
    int dpiLevel = 0;
    QStringList query30;
    bool isDPILevelChangePending = false;
    bool isSmartPointerSupported = false;
    int query33 = 0;
    int levelValue = 0;
    bool query35 = false;

    bool query53 = false;
    int dpiValue = 0;
    int dpiMin = 0;
    int dpiMax = 0;
    int dpiDelta = 50;
    bool isDPIValueChangePending = false;
    bool isDPIValueSupported = true;
    int activeDpiSlotIndex = 0;
    QStringList dpiSlotValues;
    int dpiButtonId = 0;
    bool isActiveDpiSlotIndexChangePending = false;
    bool isDpiSlotValuesChangePending = false;
    bool isDpiButtonIdChangePending = false;
    int query70 = 1;
    bool isReportRateSupported = true;
    int reportRate = 0;
    QStringList reportRateValues;
    bool isReportRateChangePending = false;
    bool isScrollInversionEnabled = false;
    bool query88 = false;
    bool query89 = false;
    bool query91 = false;

    QString ppid;

    static DeviceValues ofLibrary(const HostedDevice &device);
    /// instanceId and physicalDevice are not the model's to know: they are what they were at creation.
    static DeviceValues ofModel(const Model::Device &device, const QUuid &instanceId,
                                const IPhysicalDevice *physicalDevice);
};

/// One getter that answers otherwise than it should.
struct ValueDifference
{
    QString getter;
    QString expected;
    QString seen;
};

QList<ValueDifference> differences(const DeviceValues &expected, const DeviceValues &seen);

/// The two getters that read a file: the default profile and the device's image, of which there is none.
QList<ValueDifference> differencesOfFiles(const HostedDevice &device);
