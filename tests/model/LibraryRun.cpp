#include "LibraryRun.h"

#include "OtherThread.h"

#include <QtCore/QMetaObject>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

using Kind = Step::Kind;

void callWhatDoesNothing(ILogicalDeviceGen3Mouse &device, int number)
{
    device.setDpiLevel(number);
    device.setDpiValue(number);
    device.setScrollInversionEnabled(number > 0);
    device.notify38();
    device.notify42();
    device.notify43();
    device.notify44();
    device.notify87();
    device.notify90();
    device.notify92();
    device.notify93();
}

}  // namespace

LibraryRun::LibraryRun(OtherThread &otherThread)
    : m_otherThread(otherThread),
      m_fixture({false, false, false}),
      m_secondReceiver(m_fixture.timeline),
      m_plainDevice(m_fixture.timeline)
{
    m_plainDevice.forwardedResult = plainForwardedResult;
    for (int index = 0; index < 2; ++index) {
        receiver(index).duringRequest = [this, index](const QString &) {
            const StepPointer report =
                std::exchange(m_reportInsideRequest[static_cast<std::size_t>(index)], nullptr);
            if (report)
                perform(*report);
        };
    }
}

LibraryRun::~LibraryRun()
{
    // A device that was started twice must not die before the others, wherever the sequence has ended.
    for (int slot = 0; slot < deviceSlotCount; ++slot) {
        if (device(slot) && entry(slot).starts < 2)
            destroyDevice(slot);
    }
    m_fixture.host.unload();
}

void LibraryRun::apply(const StepPointer &step)
{
    switch (step->route) {
    case Step::Route::Direct:
        perform(*step);
        break;
    case Step::Route::OtherThread:
        m_otherThread.run([&] { perform(*step); });
        break;
    case Step::Route::InsideRequest:
        m_reportInsideRequest[static_cast<std::size_t>(step->receiver)] = step;
        break;
    }
}

void LibraryRun::unload()
{
    m_fixture.host.unload();
    m_entries = {};
    deliverQueuedCalls();
}

QStringList LibraryRun::take()
{
    return m_fixture.take(Timeline::Style::WithDevice);
}

const HostedDevice *LibraryRun::device(int slot) const
{
    return m_entries.at(static_cast<std::size_t>(slot)).device.get();
}

const CreatedWith &LibraryRun::createdWith(int slot) const
{
    return m_entries.at(static_cast<std::size_t>(slot)).createdWith;
}

void LibraryRun::perform(const Step &step)
{
    if (isWithoutDevice(step.kind)) {
        performOnHost(step);
        return;
    }
    if (step.kind == Kind::DestroyDevice) {
        destroyDevice(step.slot);
        return;
    }
    HostedDevice &device = *entry(step.slot).device;
    if (step.kind == Kind::Start)
        ++entry(step.slot).starts;
    if (!performSpecial(device, step))
        performCall(device, step);
}

void LibraryRun::performOnHost(const Step &step)
{
    switch (step.kind) {
    case Kind::CreateDevice:
        createDevice(step);
        break;
    case Kind::Initialize:
        m_fixture.host.initialize(&m_fixture.hostServices, step.logSwitches[0], step.logSwitches[1],
                                  step.logSwitches[2]);
        break;
    case Kind::ChangeReceiver:
        receiver(step.receiver).answers = step.answers;
        break;
    default:
        deliverQueuedCalls();
    }
}

bool LibraryRun::performSpecial(HostedDevice &device, const Step &step)
{
    const char *name = nameOf(step.kind);
    switch (step.kind) {
    case Kind::ReceiverDpiMinChanged:
        Q_EMIT receiver(step.receiver).dpiMinChanged(step.number);
        return true;
    case Kind::ReceiverDpiMaxChanged:
        Q_EMIT receiver(step.receiver).dpiMaxChanged(step.number);
        return true;
    case Kind::InvokeOnDpiMinChanged:
    case Kind::InvokeOnDpiMaxChanged:
        QMetaObject::invokeMethod(device.object(), name, Q_ARG(int, step.number));
        return true;
    case Kind::InvokeOnPpidChanged:
        QMetaObject::invokeMethod(device.object(), name, Q_ARG(QString, step.text));
        return true;
    case Kind::InvokeTimerTimeout:
        QMetaObject::invokeMethod(device.object(), name);
        return true;
    case Kind::CallWhatDoesNothing:
        callWhatDoesNothing(*device.device(), step.number);
        return true;
    default:
        return false;
    }
}

void LibraryRun::performCall(HostedDevice &device, const Step &step)
{
    const int number = step.number;
    const auto byte = static_cast<quint8>(number);
    const auto &words = step.words;
    switch (step.kind) {
    case Kind::Start:
        device.start();
        break;
    case Kind::Stop:
        return device.stop();
    case Kind::ForwardToPhysicalDevice:
        device.forwardToPhysicalDevice(words[0], words[1], words[2]);
        break;
    case Kind::Query26:
        device.query26(words[0], words[1], words[2]);
        break;
    case Kind::SetFirmwareVersion:
        return device.setFirmwareVersion(step.firmwareVersion);
    case Kind::SetBatteryLevel:
        return device.setBatteryLevel(number);
    case Kind::DpiValueChangedCallBack:
        return device.dpiValueChangedCallBack(number);
    case Kind::PpidChangedCallBack:
        return device.ppidChangedCallBack(step.text);
    case Kind::SetDpiSlotValues:
        return device.setDpiSlotValues(step.texts);
    case Kind::DpiSlotValuesConfirmed:
        return device.dpiSlotValuesConfirmed(step.slotValues.data());
    case Kind::DpiSlotValuesChangedCallBack:
        return device.dpiSlotValuesChangedCallBack(step.slotValues.data());
    case Kind::SetActiveDpiSlotIndex:
        return device.setActiveDpiSlotIndex(number);
    case Kind::ActiveDpiSlotIndexConfirmed:
        return device.activeDpiSlotIndexConfirmed(number);
    case Kind::ActiveDpiSlotIndexChangedCallBack:
        return device.activeDpiSlotIndexChangedCallBack(number);
    case Kind::SetDpiButtonId:
        return device.setDpiButtonId(number);
    case Kind::DpiButtonIdConfirmed:
        return device.dpiButtonIdConfirmed(number);
    case Kind::DpiButtonIdChangedCallBack:
        return device.dpiButtonIdChangedCallBack(number);
    case Kind::SetReportRate:
        return device.setReportRate(number);
    case Kind::ReportRateConfirmed:
        return device.reportRateConfirmed(number);
    case Kind::ReportRateChangedCallBack:
        return device.reportRateChangedCallBack(&step.rateInfo);
    case Kind::ApplySettings:
        return device.applySettings(step.settings);
    case Kind::ResetSettings:
        return device.resetSettings();
    case Kind::CapabilityChangedCallBack:
        return device.capabilityChangedCallBack(byte);
    case Kind::SetButtonsOrKeysToDefault:
        return device.setButtonsOrKeysToDefault();
    case Kind::DisbaleButtonsOrKeys:
        return device.disbaleButtonsOrKeys(step.numbers);
    case Kind::MouseEventCallBack:
        return device.mouseEventCallBack(byte);
    default:
        Q_UNREACHABLE();
    }
}

void LibraryRun::createDevice(const Step &step)
{
    Entry &created = entry(step.slot);
    created = {};
    IPhysicalDevice *physical = physicalDevice(step.physical);
    created.device = m_fixture.host.createDevice(physical, deviceIds.at(static_cast<std::size_t>(step.slot)));
    created.createdWith = {created.device->device()->instanceId(), physical};
}

void LibraryRun::destroyDevice(int slot)
{
    m_fixture.host.destroyDevice(std::exchange(entry(slot).device, nullptr));
    for (StepPointer &report : m_reportInsideRequest) {
        if (report && report->slot == slot)
            report.reset();
    }
}

FakeReceiver &LibraryRun::receiver(int index)
{
    return index == 0 ? m_fixture.receiver : m_secondReceiver;
}

IPhysicalDevice *LibraryRun::physicalDevice(Physical physical)
{
    switch (physical) {
    case Physical::FirstReceiver:
    case Physical::SecondReceiver:
        return &receiver(receiverOf(physical).value());
    case Physical::NoReceiver:
        return &m_plainDevice;
    case Physical::Nothing:
        break;
    }
    return nullptr;
}

LibraryRun::Entry &LibraryRun::entry(int slot)
{
    return m_entries.at(static_cast<std::size_t>(slot));
}
