#include "PluginInspection.h"
#include "Session.h"

#include <QtCore/QFile>
#include <QtCore/QPointer>
#include <QtCore/QRegularExpression>

using namespace Qt::StringLiterals;

void Session::checkMetadata()
{
    const PluginMetadata metadata = inspectPlugin(m_pluginFile).metadata.value_or(PluginMetadata());
    check(u"the IID"_s, u"com.orvane.KVX.Plugin.LogicalDevice.RV418"_s, metadata.iid);
    check(u"the class name"_s, u"LogicalDevicePlugin"_s, metadata.className);
}

void Session::initializeFactory()
{
    check(u"the answer of initialize"_s, true, m_host.initialize(&m_hostServices, true, true, true));
}

void Session::createDevice()
{
    m_device = m_host.createDevice(&m_receiver, mouseId);
    const ILogicalDeviceGen3Mouse *device = m_device->device();
    check(u"that the device is a mouse"_s, true, device != nullptr);
    if (!device)
        return;
    check(u"the model code"_s, u"RV418"_s, device->modelCode());
    check(u"the instance number"_s, 1, device->instanceNumber());
    check(u"the battery level"_s, -1, device->batteryLevel());
    check(u"the report rate"_s, 0, device->reportRate());
    checkTimeline({u"call createLogicalDevice()"_s});
    m_receiver.attach(mouseId, m_device->device());
}

void Session::startDevice()
{
    check(u"the answer of start"_s, true, m_device->start());
    checkTimeline({u"call start() -> true"_s, u"receiver getFirmwareVersion() -> 258"_s,
                   u"receiver hasBatteryLevel() -> true"_s, u"receiver getStatusValue() -> 1"_s,
                   u"receiver getBatteryLevel() -> 80"_s, u"receiver getDeviceValue() -> 2"_s,
                   u"receiver requestInitialState1() -> true"_s, u"receiver requestInitialState2() -> true"_s,
                   u"receiver requestInitialState3() -> true"_s,
                   u"receiver isSmartPointerSupported() -> true"_s, u"receiver getReportRateInfo() -> true"_s,
                   u"receiver getLevelValue() -> 3"_s, u"signal instanceNumberChanged(0)"_s});
    const ILogicalDeviceGen3Mouse &device = *m_device->device();
    check(u"the firmware version"_s, 258U, device.firmwareVersion());
    check(u"that there is a battery level"_s, true, device.hasBatteryLevel());
    check(u"the battery level"_s, 80, device.batteryLevel());
    check(u"the report rate"_s, 500, device.reportRate());
    check(u"the report rates"_s, QStringList{u"125"_s, u"250"_s, u"500"_s, u"1000"_s},
          device.reportRateValues());
    check(u"the instance number"_s, 0, device.instanceNumber());
}

void Session::awaitInitialState()
{
    awaitReceiver();
    check(u"the reports of the mouse"_s,
          QStringList{u"report dpiMinChanged(100)"_s, u"report dpiMaxChanged(8000)"_s,
                      u"report dpiSlotValuesChangedCallBack([800, 1600, 2400, 3200, 4000])"_s,
                      u"report activeDpiSlotIndexChangedCallBack(2)"_s,
                      u"report dpiButtonIdChangedCallBack(6)"_s, u"report dpiValueChangedCallBack(1600)"_s,
                      u"report ppidChangedCallBack(\"RV418-0001\")"_s,
                      u"report reportRateChangedCallBack({\"currentRate\": 500, "
                      "\"supportedRates\": [125, 250, 500, 1000], \"unused\": 0})"_s},
          stepLines().filter(QRegularExpression(u"^report "_s)));
    check(u"the report rate"_s, 500, m_device->device()->reportRate());
    check(u"that a report rate is pending"_s, false, m_device->device()->isReportRateChangePending());
}

void Session::stopDevice()
{
    readValues();
    m_device->stop();
    checkTimeline({u"call stop()"_s, u"signal stopped(\"this\")"_s});
}

void Session::destroyDevice()
{
    const QPointer<QObject> object = m_device->object();
    m_receiver.detach(mouseId);
    m_host.destroyDevice(std::move(m_device));
    check(u"that the device is gone"_s, true, object.isNull());
    checkTimeline({u"call destroyDevice()"_s});
}

void Session::unloadPlugin()
{
    check(u"the answer of unload"_s, true, m_host.unload());
    // Only with the library do its resources go.
    check(u"that the library is still in the process"_s, false,
          QFile::exists(u":/com.orvane.KVX.Plugin.LogicalDevice.RV418/DefaultProfile.json"_s));
}
