#include "MouseFields.h"

#include "SimulatedMouse.h"
#include "TimelineValue.h"
#include "Words.h"

#include <type_traits>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

struct Field
{
    const char *name;
    // Answers whether the values fit the field.
    bool (*set)(SimulatedMouse &mouse, const QStringList &values);
    QJsonValue (*value)(const SimulatedMouse &mouse);
};

bool setValue(bool &value, const QStringList &values)
{
    value = values == QStringList{u"true"_s};
    return value || values == QStringList{u"false"_s};
}

bool setValue(QString &value, const QStringList &values)
{
    value = values.value(0);
    return values.size() == 1;
}

template <typename Number, std::enable_if_t<std::is_integral_v<Number>, bool> = true>
bool setValue(Number &value, const QStringList &values)
{
    const std::optional<int> number = onlyNumber(values);
    value = static_cast<Number>(number.value_or(0));
    return number.has_value();
}

// Those that are not given become 0.
template <std::size_t count>
bool setValue(std::array<quint16, count> &value, const QStringList &values)
{
    value = {};
    bool isRight = !values.isEmpty() && values.size() <= static_cast<qsizetype>(count);
    for (qsizetype i = 0; isRight && i < values.size(); ++i) {
        const std::optional<int> number = onlyNumber({values.at(i)}, 0, 0xffff);
        value[static_cast<std::size_t>(i)] = static_cast<quint16>(number.value_or(0));
        isRight = number.has_value();
    }
    return isRight;
}

template <typename Value>
QJsonValue jsonValue(const Value &value)
{
    return timelineValue(value);
}

template <std::size_t count>
QJsonValue jsonValue(const std::array<quint16, count> &values)
{
    QJsonArray array;
    for (const quint16 value : values)
        array.append(value);
    return array;
}

template <auto member>
QJsonValue valueOf(const SimulatedMouse &mouse)
{
    return jsonValue(mouse.*member);
}

// A value that does not fit changes nothing.
template <auto member>
constexpr Field field(const char *name)
{
    return {name,
            [](SimulatedMouse &mouse, const QStringList &values) {
                auto value = mouse.*member;
                const bool isRight = setValue(value, values);
                if (isRight)
                    mouse.*member = std::move(value);
                return isRight;
            },
            valueOf<member>};
}

using Mouse = SimulatedMouse;
constexpr Field fields[] = {
    {"activeDpiSlotIndex",
     [](SimulatedMouse &mouse, const QStringList &values) {
         const std::optional<int> index = onlyNumber(values, 1, dpiSlotCount);
         mouse.activeDpiSlotIndex = index.value_or(mouse.activeDpiSlotIndex);
         return index.has_value();
     },
     valueOf<&Mouse::activeDpiSlotIndex>},
    field<&Mouse::batteryLevel>("batteryLevel"),
    field<&Mouse::deviceValue>("deviceValue"),
    field<&Mouse::dpiButtonId>("dpiButtonId"),
    field<&Mouse::dpiMax>("dpiMax"),
    field<&Mouse::dpiMin>("dpiMin"),
    field<&Mouse::dpiSlotValues>("dpiSlotValues"),
    field<&Mouse::dpiStep>("dpiStep"),
    field<&Mouse::dpiValue>("dpiValue"),
    field<&Mouse::firmwareVersion>("firmwareVersion"),
    field<&Mouse::forwardedResult>("forwardedResult"),
    field<&Mouse::hasBatteryLevel>("hasBatteryLevel"),
    field<&Mouse::isSmartPointerSupported>("isSmartPointerSupported"),
    field<&Mouse::knowsReportRates>("knowsReportRates"),
    field<&Mouse::levelValue>("levelValue"),
    field<&Mouse::losesSettingsAsleep>("losesSettingsAsleep"),
    field<&Mouse::ppid>("ppid"),
    field<&Mouse::reportRate>("reportRate"),
    field<&Mouse::reportRates>("reportRates"),
    field<&Mouse::statusValue>("statusValue"),
};

}  // namespace

std::optional<QString> setMouseField(SimulatedMouse &mouse, const QString &name, const QStringList &values)
{
    QStringList names;
    for (const Field &field : fields) {
        names.append(QString::fromLatin1(field.name));
        if (names.last() != name)
            continue;
        if (field.set(mouse, values))
            return std::nullopt;
        return u"\"%1\" is no value for %2"_s.arg(values.join(u' '), name);
    }
    return u"a mouse has no \"%1\"; it has %2"_s.arg(name, names.join(u", "_s));
}

QJsonObject mouseFields(const SimulatedMouse &mouse)
{
    QJsonObject object;
    for (const Field &field : fields)
        object.insert(QString::fromLatin1(field.name), field.value(mouse));
    return object;
}
