#include "Session.h"

using namespace Qt::StringLiterals;

namespace {

QString buttonEvent(int button, bool isPressed)
{
    return u"host buttonEvent(\"com.orvane.KVX.Plugin.LogicalDevice.RV418\", %1, %2)"_s.arg(button).arg(
        isPressed ? u"true"_s : u"false"_s);
}

}  // namespace

void Session::readDefaultProfile()
{
    check(u"the default profile"_s, u"{\r\n  \"version\": 1,\r\n  \"defaultActions\": [\r\n  ]\r\n}\r\n"_s,
          QString::fromUtf8(m_device->device()->defaultProfile()));
    check(u"the size of the device image"_s, 0, static_cast<int>(m_device->device()->deviceImage().size()));
}

void Session::divertButtons()
{
    m_device->disbaleButtonsOrKeys({1, 3});
    awaitReceiver();
    for (const int button : {1, 2, 3})
        m_receiver.act(mouseId, [button](SimulatedMouse &mouse) { return mouse.pressButton(button); });
    for (const int button : {3, 2, 1})
        m_receiver.act(mouseId, [button](SimulatedMouse &mouse) { return mouse.releaseButton(button); });
    awaitReceiver();
    checkTimeline({u"call disbaleButtonsOrKeys([1, 3])"_s,
                   u"receiver setDisabledButtonsOrKeysMask(5) -> true"_s, u"report mouseEventCallBack(1)"_s,
                   buttonEvent(1, true), u"report mouseEventCallBack(5)"_s, buttonEvent(3, true),
                   u"report mouseEventCallBack(1)"_s, buttonEvent(3, false),
                   u"report mouseEventCallBack(0)"_s, buttonEvent(1, false)});
}

void Session::giveButtonsBack()
{
    m_device->setButtonsOrKeysToDefault();
    awaitReceiver();
    m_receiver.act(mouseId, [](SimulatedMouse &mouse) { return mouse.pressButton(1); });
    m_receiver.act(mouseId, [](SimulatedMouse &mouse) { return mouse.releaseButton(1); });
    awaitReceiver();
    checkTimeline(
        {u"call setButtonsOrKeysToDefault()"_s, u"receiver setDisabledButtonsOrKeysMask(0) -> true"_s});
}

void Session::tapSmartPointer()
{
    m_receiver.act(mouseId, [](SimulatedMouse &mouse) { return mouse.pressSmartPointerKey(); });
    const QString released = u"host setCtrlKeyPressed(false)"_s;
    awaitEvent([&] { return stepLines().contains(released); });
    checkTimeline({u"report mouseEventCallBack(128)"_s, u"host setCtrlKeyPressed(true)"_s, released});
    m_receiver.act(mouseId, [](SimulatedMouse &mouse) { return mouse.releaseSmartPointerKey(); });
    awaitReceiver();
}

void Session::applyAndResetSettings()
{
    m_device->applySettings({{u"pointerSpeed"_s, 7}});
    m_device->resetSettings();
    checkTimeline({u"call applySettings({\"pointerSpeed\": 7})"_s, u"call resetSettings()"_s});
}

void Session::changeCapability()
{
    m_receiver.changeMouse(mouseId, [](SimulatedMouse &mouse) { mouse.isSmartPointerSupported = false; });
    m_receiver.report(mouseId, {u"capabilityChangedCallBack"_s, {1}});
    awaitReceiver();
    checkTimeline({u"report capabilityChangedCallBack(1)"_s, u"receiver isSmartPointerSupported() -> false"_s,
                   u"signal isSmartPointerSupportedChanged(false)"_s});
}

void Session::drainBattery()
{
    m_receiver.act(mouseId, [](SimulatedMouse &mouse) { return mouse.drainBattery(25); });
    awaitReceiver();
    checkTimeline({u"report setBatteryLevel(55)"_s, u"signal batteryLevelChanged(55)"_s});
}

void Session::sleepAndWake()
{
    m_receiver.act(mouseId, [](SimulatedMouse &mouse) { return mouse.sleep(); });
    m_device->setReportRate(125);
    awaitReceiver();
    check(u"that a report rate is pending"_s, true, m_device->device()->isReportRateChangePending());
    m_receiver.act(mouseId, [](SimulatedMouse &mouse) { return mouse.wake(); });
    awaitReceiver();
    check(u"that a report rate is pending"_s, false, m_device->device()->isReportRateChangePending());
    check(u"the report rate of the mouse"_s, 125, m_receiver.mouse(mouseId).reportRate);
}
