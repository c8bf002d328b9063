#pragma once

#include "CallArgument.h"
#include "ILogicalDeviceGen3.h"
#include "ILogicalDeviceGen3Mouse.h"
#include "IPhysicalDeviceDongle.h"

#include <array>
#include <cstddef>
#include <type_traits>
#include <utility>

/// An operation between host, device and receiver. Operations.h has all of them.
struct DeviceOperation
{
    enum class Side {
        Call,            ///< the host calls the device
        Report,          ///< the receiver reports to the device
        ReceiverSignal,  ///< the receiver emits it; every started device reacts
        Request,         ///< the device asks the receiver, which accepts or refuses
        Read,            ///< the device reads a value from the receiver
    };
    using Call = QJsonValue (*)(ILogicalDeviceGen3Mouse &device, const QJsonArray &arguments);

    const char *name = nullptr;
    Side side = Side::Call;
    /// Of the arguments without the device id; of a Read, of the value that is read.
    std::array<ValueForm, 3> forms{};
    std::size_t formCount = 0;
    /// Calls the operation with arguments as the timeline has them, and answers the result; undefined when there is
    /// none. Null for the receiver's own operations.
    Call call = nullptr;
    /// Whether it only answers a value, without arguments.
    bool isGetter = false;

    QString text() const { return QString::fromLatin1(name); }
};

/// A request to a mouse or a report of one, as plain data.
struct MouseMessage
{
    const DeviceOperation *operation = nullptr;
    /// Behind the device id, as the timeline has them.
    QJsonArray arguments;
};

/// An operation of the device that can be called with its own types, too.
template <auto deviceFunction>
struct CallableOperation : DeviceOperation
{
    static constexpr auto function = deviceFunction;
};

template <typename Function>
struct MemberFunction;
template <typename Result, typename Class, typename... Arguments>
struct MemberFunction<Result (Class::*)(Arguments...)>
{
    using Interface = Class;
};
template <typename Result, typename Class, typename... Arguments>
struct MemberFunction<Result (Class::*)(Arguments...) const>
{
    using Interface = Class;
};
template <typename Function>
using InterfaceOf = typename MemberFunction<Function>::Interface;

/// The device through one of its interfaces.
template <typename Interface>
Interface &viewOf(ILogicalDeviceGen3Mouse &device)
{
    if constexpr (std::is_base_of_v<Interface, ILogicalDeviceGen3Mouse>)
        return device;
    else
        return dynamic_cast<Interface &>(device);
}

template <auto function, typename Result, typename... Arguments, std::size_t... indices>
QJsonValue callDevice(ILogicalDeviceGen3Mouse &device, const QJsonArray &arguments,
                      std::index_sequence<indices...> /*all*/)
{
    const auto call = [&]() -> Result {
        return (viewOf<InterfaceOf<decltype(function)>>(device).*
                function)(passed(takenValue<std::decay_t<Arguments>>(arguments.at(indices)))...);
    };
    if constexpr (std::is_void_v<Result>) {
        call();
        return QJsonValue::Undefined;
    } else {
        return timelineValue(call());
    }
}

template <auto function, typename Result, typename... Arguments>
constexpr DeviceOperation describeCall(const char *name, DeviceOperation::Side side, bool isGetter)
{
    return {name,
            side,
            {valueForm<std::decay_t<Arguments>>()...},
            sizeof...(Arguments),
            [](ILogicalDeviceGen3Mouse &device, const QJsonArray &arguments) {
                return callDevice<function, Result, Arguments...>(device, arguments,
                                                                  std::index_sequence_for<Arguments...>());
            },
            isGetter};
}

template <auto function, typename Interface, typename Result, typename... Arguments>
constexpr CallableOperation<function> describe(const char *name, DeviceOperation::Side side,
                                               Result (Interface::* /*function*/)(Arguments...))
{
    return {describeCall<function, Result, Arguments...>(name, side, false)};
}

template <auto function, typename Interface, typename Result, typename... Arguments>
constexpr CallableOperation<function> describe(const char *name, DeviceOperation::Side side,
                                               Result (Interface::* /*function*/)(Arguments...) const)
{
    return {describeCall<function, Result, Arguments...>(name, side, sizeof...(Arguments) == 0)};
}

/// A request or a read.
template <auto function, typename Result, typename... Arguments>
constexpr DeviceOperation describe(const char *name, DeviceOperation::Side side,
                                   Result (IPhysicalDeviceDongle::* /*function*/)(DeviceId, Arguments...))
{
    if (side == DeviceOperation::Side::Read)
        return {name, side, {valueForm<Result>()}, 1};
    return {name, side, {valueForm<Arguments>()...}, sizeof...(Arguments)};
}
