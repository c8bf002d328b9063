#pragma once

#include "ReportRateInfo.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonValue>
#include <QtCore/QList>
#include <QtCore/QStringList>
#include <QtCore/QVariantMap>

#include <limits>
#include <type_traits>

class IPhysicalDevice;
class QUuid;

/// How many DPI slots a mouse of this family has; the length of every slot-value array of the interfaces.
constexpr int dpiSlotCount = 5;

/// What the timeline keeps of a value: numbers as numbers, but those beyond 2^53 as strings of decimal
/// digits, because readers of JSON would round them.
template <typename Number, std::enable_if_t<std::is_integral_v<Number>, bool> = true>
QJsonValue timelineValue(Number value)
{
    if constexpr (std::is_same_v<Number, bool>) {
        return value;
    } else if constexpr (std::numeric_limits<Number>::digits <= 53) {
        return static_cast<qint64>(value);
    } else {
        constexpr Number largestExact = Number{1} << 53;
        const bool isExact =
            value <= largestExact && (!std::is_signed_v<Number> || value >= Number{} - largestExact);
        return isExact ? QJsonValue(static_cast<qint64>(value)) : QJsonValue(QString::number(value));
    }
}

QJsonValue timelineValue(const QString &value);
QJsonValue timelineValue(const QStringList &values);
/// Its text on one line.
QJsonValue timelineValue(const QByteArray &text);
/// "random" where it differs from run to run.
QJsonValue timelineValue(const QUuid &id);
/// Which it is differs from run to run; whether there is one does not.
QJsonValue timelineValue(const IPhysicalDevice *physicalDevice);
QJsonValue timelineValue(const QList<int> &values);
QJsonValue timelineValue(const QVariantMap &values);
/// values: dpiSlotCount numbers, or null.
QJsonValue timelineValue(const quint16 *values);
/// info may be null.
QJsonValue timelineValue(const ReportRateInfo *info);

/// Back from what the timeline keeps; what is missing is 0.
ReportRateInfo reportRateInfoOf(const QJsonValue &value);
QVariantMap settingsOf(const QJsonValue &value);
QList<int> numbersOf(const QJsonValue &value);

/// The value as a readable line shows it: strings in quotes, arrays in brackets.
QString readableValue(const QJsonValue &value);
/// The value as a command of a scenario has it: strings without quotes, arrays with blanks between their items.
QString plainValue(const QJsonValue &value);
