#pragma once

#include "HostMap.h"
#include "TimelineValue.h"

#include <array>
#include <type_traits>

/// How a scenario writes a value that an operation takes.
enum class ValueForm { Number, Flag, Text, Texts, Numbers, Settings, SlotValues, ReportRates };

template <typename Value>
constexpr ValueForm valueForm()
{
    if constexpr (std::is_same_v<Value, bool>)
        return ValueForm::Flag;
    else if constexpr (std::is_same_v<Value, QString>)
        return ValueForm::Text;
    else if constexpr (std::is_same_v<Value, QStringList>)
        return ValueForm::Texts;
    else if constexpr (std::is_same_v<Value, QList<int>>)
        return ValueForm::Numbers;
    else if constexpr (std::is_same_v<Value, QVariantMap>)
        return ValueForm::Settings;
    else if constexpr (std::is_same_v<Value, const quint16 *>)
        return ValueForm::SlotValues;
    else if constexpr (std::is_same_v<Value, const ReportRateInfo *>)
        return ValueForm::ReportRates;
    else
        return ValueForm::Number;
}

/// The value back from what the timeline has of it. For a pointer, what it points to.
template <typename Value>
auto takenValue(const QJsonValue &value)
{
    if constexpr (std::is_same_v<Value, bool>) {
        return value.toBool();
    } else if constexpr (std::is_same_v<Value, QString>) {
        return value.toString();
    } else if constexpr (std::is_same_v<Value, QStringList>) {
        return value.toVariant().toStringList();
    } else if constexpr (std::is_same_v<Value, QList<int>>) {
        return numbersOf(value);
    } else if constexpr (std::is_same_v<Value, QVariantMap>) {
        return HostMap(settingsOf(value));
    } else if constexpr (std::is_same_v<Value, const quint16 *>) {
        std::array<quint16, dpiSlotCount> values{};
        const QList<int> numbers = numbersOf(value);
        for (std::size_t slot = 0; slot < values.size(); ++slot)
            values[slot] = static_cast<quint16>(numbers.value(static_cast<qsizetype>(slot)));
        return values;
    } else if constexpr (std::is_same_v<Value, const ReportRateInfo *>) {
        return reportRateInfoOf(value);
    } else {  // numbers beyond 2^53 are texts there
        return static_cast<Value>(value.isString() ? value.toString().toULongLong()
                                                   : static_cast<quint64>(value.toInteger()));
    }
}

/// What is passed to an operation for a value. A pointer is valid as long as the value.
template <typename Value>
Value passed(const Value &value)
{
    return value;
}
inline HostMap passed(const QVariantMap &values)
{
    return HostMap(values);
}
inline const quint16 *passed(const std::array<quint16, dpiSlotCount> &values)
{
    return values.data();
}
inline const ReportRateInfo *passed(const ReportRateInfo &info)
{
    return &info;
}
