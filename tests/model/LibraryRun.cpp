#include "LibraryRun.h"

#include "OtherThread.h"

#include <QtCore/QMetaObject>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

using Kind = Operation::Kind;

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
      m_bench({false, false, false}),
      m_secondReceiver(m_bench.timeline),
      m_plainDevice(m_bench.timeline)
{
    m_plainDevice.forwardedResult = plainForwardedResult;
    for (int index = 0; index < 2; ++index) {
        receiver(index).duringRequest = [this, index](const QString &) {
            const OperationPointer report =
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
    m_bench.host.unload();
}

void LibraryRun::apply(const OperationPointer &operation)
{
    switch (operation->route) {
    case Operation::Route::Direct:
        perform(*operation);
        break;
    case Operation::Route::OtherThread:
        m_otherThread.run([&] { perform(*operation); });
        break;
    case Operation::Route::InsideRequest:
        m_reportInsideRequest[static_cast<std::size_t>(operation->receiver)] = operation;
        break;
    }
}

void LibraryRun::unload()
{
    m_bench.host.unload();
    m_entries = {};
    deliverQueuedCalls();
}

QStringList LibraryRun::take()
{
    return m_bench.take(Timeline::Style::WithDevice);
}

const HostedDevice *LibraryRun::device(int slot) const
{
    return m_entries.at(static_cast<std::size_t>(slot)).device.get();
}

QUuid LibraryRun::instanceId(int slot) const
{
    return m_entries.at(static_cast<std::size_t>(slot)).instanceId;
}

const IPhysicalDevice *LibraryRun::physicalDevice(int slot) const
{
    return m_entries.at(static_cast<std::size_t>(slot)).physicalDevice;
}

void LibraryRun::perform(const Operation &operation)
{
    if (isWithoutDevice(operation.kind)) {
        performOnHost(operation);
        return;
    }
    if (operation.kind == Kind::DestroyDevice) {
        destroyDevice(operation.slot);
        return;
    }
    HostedDevice &device = *entry(operation.slot).device;
    if (operation.kind == Kind::Start)
        ++entry(operation.slot).starts;
    if (!performSpecial(device, operation))
        performCall(device, operation);
}

void LibraryRun::performOnHost(const Operation &operation)
{
    switch (operation.kind) {
    case Kind::CreateDevice:
        createDevice(operation);
        break;
    case Kind::Initialize:
        m_bench.host.initialize(&m_bench.hostServices, operation.logSwitches[0], operation.logSwitches[1],
                                operation.logSwitches[2]);
        break;
    case Kind::ChangeReceiver:
        receiver(operation.receiver).answers = operation.answers;
        break;
    default:
        deliverQueuedCalls();
    }
}

bool LibraryRun::performSpecial(HostedDevice &device, const Operation &operation)
{
    const char *name = operationName(operation.kind);
    switch (operation.kind) {
    case Kind::ReceiverDpiMinChanged:
        Q_EMIT receiver(operation.receiver).dpiMinChanged(operation.number);
        return true;
    case Kind::ReceiverDpiMaxChanged:
        Q_EMIT receiver(operation.receiver).dpiMaxChanged(operation.number);
        return true;
    case Kind::InvokeOnDpiMinChanged:
    case Kind::InvokeOnDpiMaxChanged:
        QMetaObject::invokeMethod(device.object(), name, Q_ARG(int, operation.number));
        return true;
    case Kind::InvokeOnPpidChanged:
        QMetaObject::invokeMethod(device.object(), name, Q_ARG(QString, operation.text));
        return true;
    case Kind::InvokeTimerTimeout:
        QMetaObject::invokeMethod(device.object(), name);
        return true;
    case Kind::CallWhatDoesNothing:
        callWhatDoesNothing(*device.device(), operation.number);
        return true;
    default:
        return false;
    }
}

void LibraryRun::performCall(HostedDevice &device, const Operation &operation)
{
    const int number = operation.number;
    const auto byte = static_cast<quint8>(number);
    const auto &words = operation.words;
    switch (operation.kind) {
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
        return device.setFirmwareVersion(operation.firmwareVersion);
    case Kind::SetBatteryLevel:
        return device.setBatteryLevel(number);
    case Kind::DpiValueChangedCallBack:
        return device.dpiValueChangedCallBack(number);
    case Kind::PpidChangedCallBack:
        return device.ppidChangedCallBack(operation.text);
    case Kind::SetDpiSlotValues:
        return device.setDpiSlotValues(operation.texts);
    case Kind::DpiSlotValuesConfirmed:
        return device.dpiSlotValuesConfirmed(operation.slotValues.data());
    case Kind::DpiSlotValuesChangedCallBack:
        return device.dpiSlotValuesChangedCallBack(operation.slotValues.data());
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
        return device.reportRateChangedCallBack(&operation.rateInfo);
    case Kind::ApplySettings:
        return device.applySettings(operation.settings);
    case Kind::ResetSettings:
        return device.resetSettings();
    case Kind::CapabilityChangedCallBack:
        return device.capabilityChangedCallBack(byte);
    case Kind::SetButtonsOrKeysToDefault:
        return device.setButtonsOrKeysToDefault();
    case Kind::DisbaleButtonsOrKeys:
        return device.disbaleButtonsOrKeys(operation.numbers);
    case Kind::MouseEventCallBack:
        return device.mouseEventCallBack(byte);
    default:
        Q_UNREACHABLE();
    }
}

void LibraryRun::createDevice(const Operation &operation)
{
    Entry &created = entry(operation.slot);
    created = {};
    created.physicalDevice = physicalDevice(operation.physical);
    created.device = m_bench.host.createDevice(created.physicalDevice,
                                               deviceIds.at(static_cast<std::size_t>(operation.slot)));
    created.instanceId = created.device->device()->instanceId();
}

void LibraryRun::destroyDevice(int slot)
{
    m_bench.host.destroyDevice(std::exchange(entry(slot).device, nullptr));
    for (OperationPointer &report : m_reportInsideRequest) {
        if (report && report->slot == slot)
            report.reset();
    }
}

FakeReceiver &LibraryRun::receiver(int index)
{
    return index == 0 ? m_bench.receiver : m_secondReceiver;
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
