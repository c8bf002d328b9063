#pragma once

#include "HostedDevice.h"
#include "Timeline.h"
#include "TimelineValue.h"

#include <QtCore/QUuid>

#include <type_traits>

/// Calls operations of one device through the tables of its interfaces and writes each to the timeline, with its
/// answer. For those that HostedDevice does not record, because nothing comes of them but an answer.
class TableCalls
{
public:
    TableCalls(Timeline &timeline, HostedDevice &device) : m_timeline(timeline), m_device(device) {}

    template <typename Result, typename Interface, typename... Parameters, typename... Arguments>
    void operator()(const char *name, Result (Interface::*operation)(Parameters...),
                    Arguments... arguments) const
    {
        call<Interface, Result>(name, operation, arguments...);
    }

    template <typename Result, typename Interface, typename... Parameters, typename... Arguments>
    void operator()(const char *name, Result (Interface::*operation)(Parameters...) const,
                    Arguments... arguments) const
    {
        call<Interface, Result>(name, operation, arguments...);
    }

private:
    template <typename Interface, typename Result, typename Operation, typename... Arguments>
    void call(const char *name, Operation operation, Arguments... arguments) const
    {
        const quint64 entry = m_timeline.record(TimelineEntry::Kind::Call, m_device.id(),
                                                QString::fromLatin1(name), {recordedValue(arguments)...});
        if constexpr (std::is_void_v<Result>)
            (view<Interface>()->*operation)(arguments...);
        else
            m_timeline.setResult(entry, recordedValue((view<Interface>()->*operation)(arguments...)));
    }

    template <typename Interface>
    Interface *view() const
    {
        if constexpr (std::is_same_v<Interface, ILogicalDeviceGen3>)
            return m_device.gen3();
        else
            return m_device.device();
    }

    template <typename Value>
    static QJsonValue recordedValue(const Value &value)
    {
        if constexpr (std::is_same_v<Value, QByteArray>)
            return QString::number(value.size()) + QStringLiteral(" bytes");
        else if constexpr (std::is_same_v<Value, QUuid>)
            return value.version() == QUuid::Random ? QStringLiteral("random") : value.toString();
        else if constexpr (std::is_same_v<Value, IPhysicalDevice *>)
            return value ? QStringLiteral("physical device") : QStringLiteral("none");
        else if constexpr (std::is_same_v<Value, IDevice *>)
            return QStringLiteral("device");
        else
            return timelineValue(value);
    }

    Timeline &m_timeline;
    HostedDevice &m_device;
};
