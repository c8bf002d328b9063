#include "RandomSteps.h"

#include "SimulatedMouse.h"

#include <array>

using namespace Qt::StringLiterals;

namespace {

template <typename Numbers>
QString listed(const Numbers &numbers)
{
    QStringList texts;
    for (const auto number : numbers)
        texts.append(QString::number(number));
    return texts.join(u' ');
}

}  // namespace

int RandomSteps::upTo(int last)
{
    return static_cast<int>(m_engine() % (static_cast<quint32>(last) + 1));
}

bool RandomSteps::chance(int percent)
{
    constexpr int all = 100;
    return upTo(all - 1) < percent;
}

RandomSteps::Step RandomSteps::next(const SimulatedMouse &mouse)
{
    if (mouse.isAsleep)
        return chance(30) ? Step{{u"wake"_s}} : requestsTogether(mouse);
    switch (upTo(9)) {
    case 0:
        return {{u"sleep"_s}};
    case 1:
    case 2:
        return changeOfTheMouse(mouse);
    case 3:
    case 4:
        return hand(mouse);
    case 5:
        return faultyRequest(mouse);
    case 6:
        return otherCall();
    case 7:
        return lostReport(mouse);
    default:
        return requestsTogether(mouse);
    }
}

QStringList RandomSteps::stateReports(const SimulatedMouse &mouse)
{
    return {u"report dpiSlotValuesChangedCallBack "_s + listed(mouse.dpiSlotValues),
            u"report activeDpiSlotIndexChangedCallBack %1"_s.arg(mouse.activeDpiSlotIndex),
            u"report dpiButtonIdChangedCallBack %1"_s.arg(mouse.dpiButtonId),
            u"report dpiValueChangedCallBack %1"_s.arg(mouse.dpiValue),
            u"report reportRateConfirmed %1"_s.arg(mouse.reportRate)};
}

QString RandomSteps::route()
{
    return chance(30) ? u"other-thread "_s : QString();
}

QString RandomSteps::offeredRate(const SimulatedMouse &mouse)
{
    QStringList rates;
    for (const quint16 rate : mouse.reportRates) {
        if (rate != 0)
            rates.append(QString::number(rate));
    }
    return oneOf(rates);
}

// In the range, or one that the device takes for "any".
QString RandomSteps::slotValue(const SimulatedMouse &mouse)
{
    constexpr std::array odd{"0", "65536", "many", "99999"};
    if (chance(20))
        return QString::fromLatin1(oneOf(odd));
    return QString::number(mouse.dpiMin + upTo(mouse.dpiMax - mouse.dpiMin));
}

// One that a mouse can agree with. isAlone: the mouse has answered all requests before it.
QString RandomSteps::request(const SimulatedMouse &mouse, bool isAlone)
{
    constexpr int lastButton = 6;
    switch (upTo(3)) {
    case 0:
        return u"setReportRate "_s + offeredRate(mouse);
    case 1:
        return u"setActiveDpiSlotIndex %1"_s.arg(1 + upTo(dpiSlotCount - 1));
    case 2:
        return u"setDpiButtonId %1"_s.arg(upTo(lastButton));
    default:
        break;
    }
    QStringList values;
    for (int slot = 0; slot < dpiSlotCount; ++slot)
        values.append(slotValue(mouse));
    // Else the answer to another request may answer this one, too.
    if (!isAlone)
        values.first() = QString::number(mouse.dpiMin + m_ownValue++ % (mouse.dpiMax - mouse.dpiMin + 1));
    return u"setDpiSlotValues "_s + values.join(u' ');
}

// Sent before the mouse has answered any of them.
RandomSteps::Step RandomSteps::requestsTogether(const SimulatedMouse &mouse)
{
    Step step;
    const int count = 1 + upTo(2);
    const bool isAlone = count == 1 && !mouse.isAsleep;
    for (int done = 0; done < count; ++done)
        step.commands.append(route() + request(mouse, isAlone) + u" nowait"_s);
    step.commands.append(u"settle"_s);
    return step;
}

RandomSteps::Step RandomSteps::faultyRequest(const SimulatedMouse &mouse)
{
    constexpr std::array requests{"setReportRate", "setDpiSlotValues", "setDpiButtonAndActiveSlot"};
    constexpr std::array answers{"reportRateConfirmed", "dpiSlotValuesConfirmed",
                                 "activeDpiSlotIndexConfirmed", "dpiButtonIdConfirmed"};
    const bool losesTrack = chance(50);
    Step step = requestsTogether(mouse);
    if (losesTrack) {
        step.commands.prepend(u"fault %1 refuse"_s.arg(QLatin1StringView(oneOf(requests))));
        step.losesTrack = true;
    } else if (chance(50)) {
        step.commands.prepend(
            u"fault %1 repeat %2"_s.arg(QLatin1StringView(oneOf(requests))).arg(1 + upTo(2)));
    } else {
        step.commands.prepend(
            u"fault %1 repeat %2"_s.arg(QLatin1StringView(oneOf(answers))).arg(1 + upTo(2)));
    }
    step.commands.append(u"clear-faults"_s);
    return step;
}

// The mouse moves on and the device does not hear of it.
RandomSteps::Step RandomSteps::lostReport(const SimulatedMouse &mouse)
{
    Step step = changeOfTheMouse(mouse);
    const QString report = step.commands.last().section(u"report "_s, 1).section(u' ', 0, 0);
    step.commands.insert(step.commands.size() - 1, u"fault %1 drop"_s.arg(report));
    step.commands.append(u"clear-faults"_s);
    // Not one of those that stateReports() has.
    step.commands.append(step.commands.at(step.commands.size() - 2));
    return step;
}

RandomSteps::Step RandomSteps::changeOfTheMouse(const SimulatedMouse &mouse)
{
    constexpr int lastButton = 6;
    constexpr int lastVersion = 9999;
    const auto changed = [this](const QString &field, const QString &report, const QString &value) {
        return Step{{u"set %1 %2"_s.arg(field, value), route() + u"report %1 %2"_s.arg(report, value)}};
    };
    const auto dpi = [&] { return QString::number(mouse.dpiMin + upTo(mouse.dpiMax - mouse.dpiMin)); };
    switch (upTo(6)) {
    case 0:
        return changed(u"reportRate"_s, u"reportRateConfirmed"_s, offeredRate(mouse));
    case 1:
        return changed(u"dpiValue"_s, u"dpiValueChangedCallBack"_s, dpi());
    case 2:
        return changed(u"dpiButtonId"_s, u"dpiButtonIdChangedCallBack"_s,
                       QString::number(1 + upTo(lastButton - 1)));
    case 3:
        return changed(u"ppid"_s, u"ppidChangedCallBack"_s, u"RV418-%1"_s.arg(upTo(lastVersion)));
    case 4:
        return changed(u"firmwareVersion"_s, u"setFirmwareVersion"_s, QString::number(upTo(lastVersion)));
    case 5:
        return changed(u"dpiSlotValues"_s, u"dpiSlotValuesChangedCallBack"_s,
                       QStringList{dpi(), dpi(), dpi(), dpi(), dpi()}.join(u' '));
    default:
        break;
    }
    return changeOfTheActiveSlot(mouse);
}

// Which the DPI follows, unless it is that slot already.
RandomSteps::Step RandomSteps::changeOfTheActiveSlot(const SimulatedMouse &mouse)
{
    const int slot = upTo(dpiSlotCount - 1);
    Step step;
    if (slot + 1 != mouse.activeDpiSlotIndex)
        step.commands.append(
            u"set dpiValue %1"_s.arg(mouse.dpiSlotValues.at(static_cast<std::size_t>(slot))));
    step.commands += {u"set activeDpiSlotIndex %1"_s.arg(slot + 1),
                      route() + u"report activeDpiSlotIndexChangedCallBack %1"_s.arg(slot + 1)};
    return step;
}

RandomSteps::Step RandomSteps::hand(const SimulatedMouse &mouse)
{
    constexpr int lastButton = 5;
    constexpr int mostPercent = 20;
    switch (upTo(3)) {
    case 0:
        return {{u"drain %1"_s.arg(upTo(2 * mostPercent) - mostPercent)}};
    case 1:
        return {{u"press dpi"_s, u"release dpi"_s}};
    case 2:
        // The tap of Ctrl ends before anything else happens, at whatever time.
        if (mouse.isSmartPointerSupported)
            return {{u"press smart"_s, u"wait host setCtrlKeyPressed(false)"_s, u"release smart"_s}};
        [[fallthrough]];
    default:
        return {{u"%1 %2"_s.arg(chance(50) ? u"press"_s : u"release"_s).arg(1 + upTo(lastButton - 1))}};
    }
}

RandomSteps::Step RandomSteps::otherCall()
{
    switch (upTo(4)) {
    case 0:
        return {{route() + u"disbaleButtonsOrKeys %1 %2"_s.arg(1 + upTo(4)).arg(1 + upTo(4))}};
    case 1:
        return {{route() + u"setButtonsOrKeysToDefault"_s}};
    case 2:
        return {{route() + u"applySettings speed=%1"_s.arg(upTo(9))}};
    case 3:
        return {{route() + u"resetSettings"_s}};
    default:
        return {{route() + u"stop"_s}};
    }
}
