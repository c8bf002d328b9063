#include "MouseFields.h"
#include "Scenario.h"
#include "Words.h"

using namespace Qt::StringLiterals;

CommandResult Scenario::set(const QStringList &words)
{
    std::optional<QString> problem;
    m_workbench.currentReceiver().changeMouse(m_workbench.currentMouse(), [&](SimulatedMouse &mouse) {
        problem = setMouseField(mouse, words.value(0), words.mid(1));
    });
    return problem ? CommandResult::unusable(*problem) : CommandResult();
}

CommandResult Scenario::act(const std::function<QList<MouseMessage>(SimulatedMouse &)> &action)
{
    m_workbench.currentReceiver().act(m_workbench.currentMouse(), action);
    return settle();
}

CommandResult Scenario::press(const QStringList &words)
{
    return moveButton(words, &SimulatedMouse::pressButton, &SimulatedMouse::pressSmartPointerKey,
                      &SimulatedMouse::pressDpiButton);
}

CommandResult Scenario::release(const QStringList &words)
{
    return moveButton(words, &SimulatedMouse::releaseButton, &SimulatedMouse::releaseSmartPointerKey,
                      &SimulatedMouse::releaseDpiButton);
}

CommandResult Scenario::moveButton(const QStringList &words,
                                   QList<MouseMessage> (SimulatedMouse::*button)(int),
                                   KeyAction smartPointerKey, KeyAction dpiButton)
{
    constexpr int buttonCount = 5;
    const bool isDpiButton = words == QStringList{u"dpi"_s};
    if (isDpiButton || words == QStringList{u"smart"_s})
        return act(
            [&](SimulatedMouse &mouse) { return (mouse.*(isDpiButton ? dpiButton : smartPointerKey))(); });
    const std::optional<int> number = onlyNumber(words, 1, buttonCount);
    if (!number)
        return wrongWord(words.join(u' '), u"a button: 1 to %1, dpi or smart"_s.arg(buttonCount));
    return act([&](SimulatedMouse &mouse) { return (mouse.*button)(*number); });
}

CommandResult Scenario::drain(const QStringList &words)
{
    const std::optional<int> percent = onlyNumber(words, -100, 100);
    if (!percent)
        return wrongWord(words.join(u' '), u"a number of percent, -100 to 100"_s);
    return act([&](SimulatedMouse &mouse) { return mouse.drainBattery(*percent); });
}
