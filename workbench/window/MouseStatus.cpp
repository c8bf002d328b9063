#include "MouseStatus.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QJsonArray>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

QSet<int> numbersOf(const QJsonValue &value)
{
    QSet<int> numbers;
    const QJsonArray items = value.toArray();
    for (const auto item : items)
        numbers.insert(item.toInt());
    return numbers;
}

}  // namespace

MouseStatus MouseStatus::of(const QJsonObject &device)
{
    const QJsonObject mouse = device.value("mouse"_L1).toObject();
    MouseStatus status;
    status.hasMouse = !mouse.isEmpty();
    status.isAsleep = mouse.value("isAsleep"_L1).toBool();
    status.hasBatteryLevel = mouse.value("hasBatteryLevel"_L1).toBool();
    status.batteryLevel = mouse.value("batteryLevel"_L1).toInt();
    status.activeSlot = mouse.value("activeDpiSlotIndex"_L1).toInt();
    status.dpi = mouse.value("dpiValue"_L1).toInt();
    status.reportRate = mouse.value("reportRate"_L1).toInt();
    status.heldButtons = numbersOf(mouse.value("heldButtons"_L1));
    status.divertedButtons = numbersOf(mouse.value("disabledButtonsOrKeys"_L1));
    return status;
}

QString listOf(const QSet<int> &buttons)
{
    QList<int> sorted = buttons.values();
    std::sort(sorted.begin(), sorted.end());
    QStringList texts;
    for (const int number : std::as_const(sorted))
        texts.append(number == MouseStatus::smartPointerKey
                         ? QCoreApplication::translate("MouseStatus", "smart pointer")
                         : QString::number(number));
    return texts.isEmpty() ? QCoreApplication::translate("MouseStatus", "none") : texts.join(u", "_s);
}
