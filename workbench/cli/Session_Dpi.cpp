#include "Session.h"

using namespace Qt::StringLiterals;

namespace {

ReceiverFault faultOn(const QString &operation, ReceiverFault::Effect effect)
{
    ReceiverFault fault;
    fault.operation = operation;
    fault.effect = effect;
    return fault;
}

}  // namespace

void Session::changeDpiSlotValues()
{
    m_device->setDpiSlotValues({u"400"_s, u"1600"_s, u"nonsense"_s, u"65536"_s, u"6400"_s});
    check(u"that slot values are pending"_s, true, m_device->device()->isDpiSlotValuesChangePending());
    awaitReceiver();
    checkTimeline({u"call setDpiSlotValues([\"400\", \"1600\", \"nonsense\", \"65536\", \"6400\"])"_s,
                   u"receiver setDpiSlotValues([400, 1600, 0, 0, 6400], 6, 2) -> true"_s,
                   u"signal isDpiSlotValuesChangePendingChanged(true)"_s,
                   u"report dpiSlotValuesConfirmed([400, 1600, 2400, 3200, 6400])"_s,
                   u"signal dpiSlotValuesChanged([\"400\", \"1600\", \"2400\", \"3200\", \"6400\"])"_s,
                   u"signal isDpiSlotValuesChangePendingChanged(false)"_s});
    check(u"the slot values"_s, QStringList{u"400"_s, u"1600"_s, u"2400"_s, u"3200"_s, u"6400"_s},
          m_device->device()->dpiSlotValues());
}

void Session::refuseDpiSlotValues()
{
    m_receiver.addFault(faultOn(u"setDpiSlotValues"_s, ReceiverFault::Effect::Refuse));
    m_device->setDpiSlotValues({u"100"_s, u"200"_s, u"300"_s, u"400"_s, u"500"_s});
    checkTimeline({u"call setDpiSlotValues([\"100\", \"200\", \"300\", \"400\", \"500\"])"_s,
                   u"receiver setDpiSlotValues([100, 200, 300, 400, 500], 6, 2) -> false"_s,
                   u"verdict fault on setDpiSlotValues: refuse"_s});
    check(u"that slot values are pending"_s, false, m_device->device()->isDpiSlotValuesChangePending());
}

void Session::disagreeAboutDpiSlotValues()
{
    m_receiver.changeMouse(mouseId, [](SimulatedMouse &mouse) { mouse.dpiStep = 100; });
    m_receiver.setResendLimit(2);
    m_device->setDpiSlotValues({u"450"_s, u"1600"_s, u"2400"_s, u"3200"_s, u"6400"_s});
    awaitReceiver();
    const QString request = u"receiver setDpiSlotValues([450, 1600, 2400, 3200, 6400], 6, 2) -> true"_s;
    const QString answer = u"report dpiSlotValuesConfirmed([500, 1600, 2400, 3200, 6400])"_s;
    checkTimeline(
        {u"call setDpiSlotValues([\"450\", \"1600\", \"2400\", \"3200\", \"6400\"])"_s, request,
         u"signal isDpiSlotValuesChangePendingChanged(true)"_s, answer, request, answer, request,
         u"verdict setDpiSlotValues was sent again 2 times without an agreeing confirmation; it gets no "
         "more answers"_s});
    check(u"that slot values are pending"_s, true, m_device->device()->isDpiSlotValuesChangePending());

    m_receiver.changeMouse(mouseId, [](SimulatedMouse &mouse) { mouse.dpiStep = 0; });
    m_device->setDpiSlotValues({u"400"_s, u"1600"_s, u"2400"_s, u"3200"_s, u"6400"_s});
    awaitReceiver();
    check(u"that slot values are pending"_s, false, m_device->device()->isDpiSlotValuesChangePending());
}

void Session::changeActiveDpiSlot()
{
    m_device->setActiveDpiSlotIndex(5);
    awaitReceiver();
    checkTimeline({u"call setActiveDpiSlotIndex(5)"_s, u"receiver setDpiButtonAndActiveSlot(6, 5) -> true"_s,
                   u"signal isActiveDpiSlotIndexChangePendingChanged(true)"_s,
                   u"report activeDpiSlotIndexConfirmed(5)"_s,
                   u"signal isActiveDpiSlotIndexChangePendingChanged(false)"_s,
                   u"signal activeDpiSlotIndexChanged(5)"_s, u"signal dpiValueChanged(6400)"_s,
                   u"report dpiValueChangedCallBack(6400)"_s});
    check(u"the DPI"_s, 6400, m_device->device()->dpiValue());
}

void Session::loseActiveDpiSlotConfirmation()
{
    m_receiver.addFault(faultOn(u"activeDpiSlotIndexConfirmed"_s, ReceiverFault::Effect::Drop));
    m_device->setActiveDpiSlotIndex(1);
    awaitReceiver();
    checkTimeline({u"call setActiveDpiSlotIndex(1)"_s, u"receiver setDpiButtonAndActiveSlot(6, 1) -> true"_s,
                   u"signal isActiveDpiSlotIndexChangePendingChanged(true)"_s,
                   u"verdict fault on activeDpiSlotIndexConfirmed: drop"_s,
                   u"report dpiValueChangedCallBack(400)"_s, u"signal dpiValueChanged(400)"_s});
    check(u"that the active slot is pending"_s, true,
          m_device->device()->isActiveDpiSlotIndexChangePending());
    check(u"the active slot"_s, 5, m_device->device()->activeDpiSlotIndex());

    m_receiver.report(mouseId, {u"activeDpiSlotIndexConfirmed"_s, {1}});
    awaitReceiver();
    check(u"that the active slot is pending"_s, false,
          m_device->device()->isActiveDpiSlotIndexChangePending());
    check(u"the active slot"_s, 1, m_device->device()->activeDpiSlotIndex());
}

void Session::changeDpiButton()
{
    ReceiverFault late = faultOn(u"dpiButtonIdConfirmed"_s, ReceiverFault::Effect::Delay);
    late.delay = std::chrono::milliseconds(20);
    m_receiver.addFault(late);
    m_device->setDpiButtonId(4);
    awaitReceiver();
    checkTimeline({u"call setDpiButtonId(4)"_s, u"receiver setDpiButtonAndActiveSlot(4, 0) -> true"_s,
                   u"signal isDpiButtonIdChangePendingChanged(true)"_s,
                   u"verdict fault on dpiButtonIdConfirmed: delay"_s, u"report dpiButtonIdConfirmed(4)"_s,
                   u"signal isDpiButtonIdChangePendingChanged(false)"_s, u"signal dpiButtonIdChanged(4)"_s});
    check(u"the DPI button"_s, 4, m_device->device()->dpiButtonId());
}

void Session::pressDpiButton()
{
    m_receiver.act(mouseId, [](SimulatedMouse &mouse) { return mouse.pressButton(4); });
    awaitReceiver();
    checkTimeline({u"report activeDpiSlotIndexChangedCallBack(2)"_s, u"signal activeDpiSlotIndexChanged(2)"_s,
                   u"signal dpiValueChanged(1600)"_s, u"report dpiValueChangedCallBack(1600)"_s});
    check(u"the active slot"_s, 2, m_device->device()->activeDpiSlotIndex());
}
