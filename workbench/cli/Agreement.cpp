#include "Agreement.h"

#include "HostedDevice.h"
#include "SimulatedMouse.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace {

// Emitted on the thread of the call; all others on the device's own.
constexpr std::array emittedByTheCall{"stopped",         "isSmartPointerSupportedChanged",
                                      "dpiValueChanged", "dpiMinChanged",
                                      "dpiMaxChanged",   "ppidChanged"};

bool isOnWrongThread(const TimelineEntry &signal)
{
    return signal.thread != 1 &&
           std::none_of(emittedByTheCall.begin(), emittedByTheCall.end(),
                        [&](const char *name) { return signal.name == QLatin1StringView(name); });
}

template <typename Numbers>
QString listed(const Numbers &numbers)
{
    QStringList texts;
    for (const quint16 number : numbers)
        texts.append(QString::number(number));
    return texts.join(u' ');
}

QString offeredRates(const SimulatedMouse &mouse)
{
    QList<quint16> rates;
    for (const quint16 rate : mouse.reportRates) {
        if (rate == 0)
            break;
        rates.append(rate);
    }
    return listed(rates);
}

QList<std::pair<QString, QString>> valuesOf(const SimulatedMouse &mouse)
{
    const auto flag = [](bool value) { return value ? u"true"_s : u"false"_s; };
    QList<std::pair<QString, QString>> values{
        {u"firmwareVersion"_s, QString::number(mouse.firmwareVersion)},
        {u"hasBatteryLevel"_s, flag(mouse.hasBatteryLevel)},
        {u"statusValue"_s, QString::number(mouse.statusValue)},
        {u"deviceValue"_s, QString::number(mouse.deviceValue)},
        {u"levelValue"_s, QString::number(mouse.levelValue)},
        {u"ppid"_s, mouse.ppid},
        {u"isSmartPointerSupported"_s, flag(mouse.isSmartPointerSupported)},
        {u"dpiMin"_s, QString::number(mouse.dpiMin)},
        {u"dpiMax"_s, QString::number(mouse.dpiMax)},
        {u"dpiValue"_s, QString::number(mouse.dpiValue)},
        {u"dpiSlotValues"_s, listed(mouse.dpiSlotValues)},
        {u"activeDpiSlotIndex"_s, QString::number(mouse.activeDpiSlotIndex)},
        {u"dpiButtonId"_s, QString::number(mouse.dpiButtonId)}};
    if (mouse.hasBatteryLevel)
        values.append({u"batteryLevel"_s, QString::number(mouse.batteryLevel)});
    if (mouse.knowsReportRates)
        values += {{u"reportRate"_s, QString::number(mouse.reportRate)},
                   {u"reportRateValues"_s, offeredRates(mouse)}};
    return values;
}

}  // namespace

void LastSignals::note(const TimelineEntry &entry)
{
    using Kind = TimelineEntry::Kind;
    if (!entry.device)
        return;
    if (entry.kind == Kind::Call &&
        (entry.name == u"createLogicalDevice" || entry.name == calls::start.text()))
        forget(*entry.device);
    if (entry.kind != Kind::Signal)
        return;
    m_values[*entry.device].insert(entry.name, plainValue(entry.arguments.at(0)));
    if (isOnWrongThread(entry))
        m_onWrongThread[*entry.device].append(Timeline::line(entry, Timeline::Style::Plain));
}

void LastSignals::forget(DeviceId id)
{
    m_values.erase(id);
    m_onWrongThread.remove(id);
}

QHash<QString, QString> LastSignals::of(DeviceId id) const
{
    const auto found = m_values.find(id);
    return found == m_values.cend() ? QHash<QString, QString>() : found->second;
}

QStringList disagreements(const HostedDevice &device, const LastSignals &lastSignals,
                          const SimulatedMouse *mouse)
{
    QStringList found = lastSignals.onWrongThread(device.id());
    for (QString &line : found)
        line = u"on another thread than the device's: "_s + line;
    const auto compare = [&](const DeviceOperation &getter, const QString &expected, const QString &reason) {
        const QString seen = plainValue(getter.call(*device.device(), {}));
        if (seen != expected)
            found.append(
                u"%1: expected \"%2\", %3, seen \"%4\""_s.arg(getter.text(), expected, reason, seen));
    };
    const QHash<QString, QString> signalled = lastSignals.of(device.id());
    for (const DeviceOperation *operation : otherOperations()) {
        if (!operation->isGetter)
            continue;
        const auto value = signalled.constFind(operation->text() + u"Changed"_s);
        if (value != signalled.cend())
            compare(*operation, *value, u"as its last signal"_s);
        if (operation->text().endsWith(u"ChangePending"))
            compare(*operation, u"false"_s, u"as nothing is under way"_s);
    }
    if (mouse) {
        const QList<std::pair<QString, QString>> values = valuesOf(*mouse);
        for (const auto &[name, value] : values)
            compare(*findOperation(otherOperations(), name), value, u"as the mouse"_s);
    }
    return found;
}
