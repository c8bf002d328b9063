#include "HostedDevice.h"

HostedDevice::HostedDevice(Timeline &timeline, ILogicalDeviceGen3Mouse *device, DeviceId id)
    : m_timeline(timeline),
      m_device(device),
      m_object(dynamic_cast<QObject *>(device)),
      m_gen3(qobject_cast<ILogicalDeviceGen3 *>(m_object)),
      m_id(id),
      m_signalRecorder(timeline, m_object, id)
{}

QJsonValue HostedDevice::call(const DeviceOperation &operation, const QJsonArray &arguments)
{
    const quint64 entry = m_timeline.record(TimelineEntry::Kind::Call, m_id, operation.text(), arguments);
    const QJsonValue result = operation.call(*m_device, arguments);
    if (!result.isUndefined())
        m_timeline.setResult(entry, result);
    return result;
}
