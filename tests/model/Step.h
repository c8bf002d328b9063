#pragma once

#include "DeviceId.h"
#include "FakeReceiver.h"
#include "ReportRateInfo.h"

#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVariantMap>

#include <array>
#include <cstddef>
#include <memory>
#include <optional>

/// At most so many devices live at a time. The device in slot n has the id deviceIds[n].
constexpr int deviceSlotCount = 4;
constexpr std::array<DeviceId, deviceSlotCount> deviceIds{1, 2, 3, 18446744073709551615U};

/// What a device is created with.
enum class Physical {
    FirstReceiver,
    SecondReceiver,
    NoReceiver,  ///< a physical device of another kind
    Nothing,     ///< null
};

/// What a physical device of another kind answers to the forwarded call.
constexpr quintptr plainForwardedResult = 99;

using SlotValues = std::array<quint16, 5>;

/// One step of a sequence: plain data. The address of slotValues is part of it, for the device writes that
/// address to its log.
struct Step
{
    enum class Kind {
        // The host and its surroundings.
        CreateDevice,
        DestroyDevice,
        Initialize,
        DeliverQueuedCalls,
        ChangeReceiver,
        // The device as a whole.
        Start,
        Stop,
        ForwardToPhysicalDevice,
        Query26,
        CallWhatDoesNothing,
        SetFirmwareVersion,
        SetBatteryLevel,
        // DPI range, value and product id; the receiver's signals, and the device's slots called by their
        // names.
        ReceiverDpiMinChanged,
        ReceiverDpiMaxChanged,
        InvokeOnDpiMinChanged,
        InvokeOnDpiMaxChanged,
        DpiValueChangedCallBack,
        PpidChangedCallBack,
        InvokeOnPpidChanged,
        // What the mouse confirms.
        SetDpiSlotValues,
        DpiSlotValuesConfirmed,
        DpiSlotValuesChangedCallBack,
        SetActiveDpiSlotIndex,
        ActiveDpiSlotIndexConfirmed,
        ActiveDpiSlotIndexChangedCallBack,
        SetDpiButtonId,
        DpiButtonIdConfirmed,
        DpiButtonIdChangedCallBack,
        SetReportRate,
        ReportRateConfirmed,
        ReportRateChangedCallBack,
        // Settings, buttons, events.
        ApplySettings,
        ResetSettings,
        CapabilityChangedCallBack,
        SetButtonsOrKeysToDefault,
        DisbaleButtonsOrKeys,
        MouseEventCallBack,
        InvokeTimerTimeout,
    };

    enum class Route {
        Direct,
        OtherThread,
        InsideRequest,  ///< kept back until the device's receiver gets a request, and made before it answers
    };

    Kind kind = Kind::DeliverQueuedCalls;
    Route route = Route::Direct;
    int slot = 0;
    int receiver = 0;  ///< of ChangeReceiver and of the receiver's signals: 0 or 1

    int number = 0;
    uint firmwareVersion = 0;
    Physical physical = Physical::FirstReceiver;
    std::array<bool, 3> logSwitches{};
    std::array<quintptr, 3> words{};
    SlotValues slotValues{};
    QString text;
    QStringList texts;
    QList<int> numbers;
    QVariantMap settings;
    ReportRateInfo rateInfo{};
    ReceiverAnswers answers;
};

constexpr std::size_t kindCount = static_cast<std::size_t>(Step::Kind::InvokeTimerTimeout) + 1;
constexpr std::size_t routeCount = static_cast<std::size_t>(Step::Route::InsideRequest) + 1;

/// The library and the model get the same object.
using StepPointer = std::shared_ptr<const Step>;

/// A step whose values are those of a new one.
Step stepOf(Step::Kind kind, Step::Route route = Step::Route::Direct, int slot = 0);

/// The name as the timeline shows it, or in QMetaObject::invokeMethod().
const char *nameOf(Step::Kind kind);
/// "setReportRate(500)", as the timeline shows the call.
QString callText(const Step &step);
/// How often the kind is drawn, among the others.
int weightOf(Step::Kind kind);
/// A report of the mouse, which may come in the middle of a request.
bool isReport(Step::Kind kind);
/// Must be made on the thread of the devices.
bool needsDeviceThread(Step::Kind kind);
/// Needs no device.
bool isWithoutDevice(Step::Kind kind);
/// The receiver that the physical device is, 0 or 1; none for others.
std::optional<int> receiverOf(Physical physical);
