#include "MouseFields.h"

#include "SimulatedMouse.h"
#include "Words.h"

#include <QtCore/QMap>

#include <functional>

using namespace Qt::StringLiterals;

namespace {

// Answers whether the values fit the field.
using Setter = std::function<bool(SimulatedMouse &, const QStringList &)>;

template <typename Number>
Setter number(Number SimulatedMouse::*field)
{
    return [field](SimulatedMouse &mouse, const QStringList &values) {
        const std::optional<int> value = numberOf(values.value(0));
        if (!value || values.size() != 1)
            return false;
        mouse.*field = static_cast<Number>(*value);
        return true;
    };
}

Setter flag(bool SimulatedMouse::*field)
{
    return [field](SimulatedMouse &mouse, const QStringList &values) {
        const bool isTrue = values == QStringList{u"true"_s};
        if (!isTrue && values != QStringList{u"false"_s})
            return false;
        mouse.*field = isTrue;
        return true;
    };
}

// Up to so many numbers; those that are not given become 0.
template <std::size_t count>
Setter numbers(std::array<quint16, count> SimulatedMouse::*field)
{
    return [field](SimulatedMouse &mouse, const QStringList &values) {
        if (values.isEmpty() || values.size() > static_cast<qsizetype>(count))
            return false;
        std::array<quint16, count> parsed{};
        for (qsizetype i = 0; i < values.size(); ++i) {
            const std::optional<int> value = numberOf(values.at(i));
            if (!value || *value < 0 || *value > 0xffff)
                return false;
            parsed[static_cast<std::size_t>(i)] = static_cast<quint16>(*value);
        }
        mouse.*field = parsed;
        return true;
    };
}

Setter word(QString SimulatedMouse::*field)
{
    return [field](SimulatedMouse &mouse, const QStringList &values) {
        if (values.size() != 1)
            return false;
        mouse.*field = values.at(0);
        return true;
    };
}

const QMap<QString, Setter> &setters()
{
    static const QMap<QString, Setter> table{
        {u"activeDpiSlotIndex"_s,
         [](SimulatedMouse &mouse, const QStringList &values) {
             const std::optional<int> index = numberOf(values.value(0));
             if (!index || *index < 1 || *index > dpiSlotCount || values.size() != 1)
                 return false;
             mouse.activeDpiSlotIndex = *index;
             return true;
         }},
        {u"batteryLevel"_s, number(&SimulatedMouse::batteryLevel)},
        {u"deviceValue"_s, number(&SimulatedMouse::deviceValue)},
        {u"dpiButtonId"_s, number(&SimulatedMouse::dpiButtonId)},
        {u"dpiMax"_s, number(&SimulatedMouse::dpiMax)},
        {u"dpiMin"_s, number(&SimulatedMouse::dpiMin)},
        {u"dpiSlotValues"_s, numbers(&SimulatedMouse::dpiSlotValues)},
        {u"dpiStep"_s, number(&SimulatedMouse::dpiStep)},
        {u"dpiValue"_s, number(&SimulatedMouse::dpiValue)},
        {u"firmwareVersion"_s, number(&SimulatedMouse::firmwareVersion)},
        {u"hasBatteryLevel"_s, flag(&SimulatedMouse::hasBatteryLevel)},
        {u"isSmartPointerSupported"_s, flag(&SimulatedMouse::isSmartPointerSupported)},
        {u"knowsReportRates"_s, flag(&SimulatedMouse::knowsReportRates)},
        {u"levelValue"_s, number(&SimulatedMouse::levelValue)},
        {u"losesSettingsAsleep"_s, flag(&SimulatedMouse::losesSettingsAsleep)},
        {u"ppid"_s, word(&SimulatedMouse::ppid)},
        {u"reportRate"_s, number(&SimulatedMouse::reportRate)},
        {u"reportRates"_s, numbers(&SimulatedMouse::reportRates)},
        {u"statusValue"_s, number(&SimulatedMouse::statusValue)},
    };
    return table;
}

}  // namespace

QStringList mouseFieldNames()
{
    return setters().keys();
}

std::optional<QString> setMouseField(SimulatedMouse &mouse, const QString &name, const QStringList &values)
{
    const auto setter = setters().constFind(name);
    if (setter == setters().constEnd())
        return u"a mouse has no \"%1\"; it has %2"_s.arg(name, mouseFieldNames().join(u", "_s));
    if (!(*setter)(mouse, values))
        return u"\"%1\" is no value for %2"_s.arg(values.join(u' '), name);
    return std::nullopt;
}
