#include "MouseFields.h"
#include "Scenario.h"
#include "Words.h"

using namespace Qt::StringLiterals;

namespace {

constexpr int firstButton = 1;
constexpr int lastButton = 5;

QString wantedButton()
{
    return u"a button: %1 to %2, dpi or smart"_s.arg(firstButton).arg(lastButton);
}

}  // namespace

CommandResult Scenario::set(const QStringList &words)
{
    std::optional<QString> problem;
    m_workbench.receiver.changeMouse(m_workbench.currentMouse(), [&](SimulatedMouse &mouse) {
        problem = setMouseField(mouse, words.value(0), words.mid(1));
    });
    return problem ? CommandResult::unusable(*problem) : CommandResult();
}

CommandResult Scenario::act(const std::function<QList<MouseMessage>(SimulatedMouse &)> &action)
{
    m_workbench.receiver.act(m_workbench.currentMouse(), action);
    return settled();
}

CommandResult Scenario::press(const QStringList &words)
{
    if (words == QStringList{u"dpi"_s})
        return act([](SimulatedMouse &mouse) { return mouse.pressDpiButton(); });
    if (words == QStringList{u"smart"_s})
        return act([](SimulatedMouse &mouse) { return mouse.pressSmartPointerKey(); });
    const std::optional<int> number = onlyNumber(words, firstButton, lastButton);
    if (!number)
        return wrongWord(words.join(u' '), wantedButton());
    return act([&](SimulatedMouse &mouse) { return mouse.pressButton(*number); });
}

CommandResult Scenario::release(const QStringList &words)
{
    if (words == QStringList{u"dpi"_s})
        return {};
    if (words == QStringList{u"smart"_s})
        return act([](SimulatedMouse &mouse) { return mouse.releaseSmartPointerKey(); });
    const std::optional<int> number = onlyNumber(words, firstButton, lastButton);
    if (!number)
        return wrongWord(words.join(u' '), wantedButton());
    return act([&](SimulatedMouse &mouse) { return mouse.releaseButton(*number); });
}

CommandResult Scenario::drain(const QStringList &words)
{
    const std::optional<int> percent = onlyNumber(words, -100, 100);
    if (!percent)
        return wrongWord(words.join(u' '), u"a number of percent, -100 to 100"_s);
    return act([&](SimulatedMouse &mouse) { return mouse.drainBattery(*percent); });
}

CommandResult Scenario::sleep(const QStringList & /*words*/)
{
    return act([](SimulatedMouse &mouse) { return mouse.sleep(); });
}

CommandResult Scenario::wake(const QStringList & /*words*/)
{
    return act([](SimulatedMouse &mouse) { return mouse.wake(); });
}
