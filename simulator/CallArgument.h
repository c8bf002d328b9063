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

/// An argument of a call, made from what the timeline has of it. What value() points to lives as long as this.
template <typename Value>
class CallArgument
{
public:
    explicit CallArgument(const QJsonValue &value) : m_value(value) {}

    Value value() const
    {
        if constexpr (std::is_same_v<Value, bool>)
            return m_value.toBool();
        else if constexpr (std::is_same_v<Value, QString>)
            return m_value.toString();
        else if constexpr (std::is_same_v<Value, QStringList>)
            return m_value.toVariant().toStringList();
        else  // numbers beyond 2^53 are texts there
            return static_cast<Value>(m_value.isString() ? m_value.toString().toULongLong()
                                                         : static_cast<quint64>(m_value.toInteger()));
    }

private:
    QJsonValue m_value;
};

template <>
class CallArgument<QList<int>>
{
public:
    explicit CallArgument(const QJsonValue &value)
    {
        const QJsonArray array = value.toArray();
        for (const auto number : array)
            m_numbers.append(number.toInt());
    }

    const QList<int> &value() const { return m_numbers; }

private:
    QList<int> m_numbers;
};

template <>
class CallArgument<QVariantMap>
{
public:
    explicit CallArgument(const QJsonValue &value) : m_settings(settingsOf(value)) {}

    const QVariantMap &value() const { return m_settings.map(); }

private:
    HostMap m_settings;
};

template <>
class CallArgument<const quint16 *>
{
public:
    explicit CallArgument(const QJsonValue &value)
    {
        const QJsonArray array = value.toArray();
        for (std::size_t slot = 0; slot < m_values.size(); ++slot)
            m_values[slot] = static_cast<quint16>(array.at(static_cast<qsizetype>(slot)).toInt());
    }

    const quint16 *value() const { return m_values.data(); }

private:
    std::array<quint16, dpiSlotCount> m_values{};
};

template <>
class CallArgument<const ReportRateInfo *>
{
public:
    explicit CallArgument(const QJsonValue &value) : m_info(reportRateInfoOf(value)) {}

    const ReportRateInfo *value() const { return &m_info; }

private:
    ReportRateInfo m_info;
};
