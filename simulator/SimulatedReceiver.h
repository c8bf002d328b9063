#pragma once

#include "ReceiverFault.h"
#include "RecordingReceiver.h"
#include "SimulatedMouse.h"

#include <QtCore/QHash>
#include <QtCore/QMutex>
#include <QtCore/QPointer>
#include <QtCore/QTimer>

#include <atomic>
#include <chrono>
#include <functional>

class ILogicalDeviceGen3Mouse;

/// A wireless receiver with any number of simulated mice, and the host's side of it that hands the mice's
/// reports to the logical devices.
///
/// Every call of the plugin is recorded. A request that is accepted reaches the mouse after answerDelay(),
/// through the event loop of the receiver's thread and never inside the request; the mouse's reports are
/// delivered there, in the order in which the requests came, unless a fault changes that. Reports for a mouse without
/// an attached device are dropped. The DPI range travels by signals that name no mouse: every started device hears them.
///
/// An operation for a mouse that is not there is refused, or answered with 0, with a verdict.
///
/// Any thread may call it, except where it says otherwise. It must outlive the devices that were created with it.
class SimulatedReceiver : public RecordingReceiver
{
    Q_OBJECT

public:
    /// number: where there are several, which the timeline names in the entries of this one.
    explicit SimulatedReceiver(Timeline &timeline, int number = 1);
    int number() const { return m_number; }

    /// Adds a mouse or replaces its state. Reports nothing.
    void setMouse(DeviceId id, const SimulatedMouse &mouse);
    /// What is under way to it is lost. No effect when there is no mouse with this id.
    void removeMouse(DeviceId id);
    /// A copy of its state now; a default mouse when there is none with this id.
    SimulatedMouse mouse(DeviceId id) const;
    /// Changes the mouse in place, without a report. False when there is no mouse with this id.
    /// The function runs under the receiver's lock and must not call the receiver.
    bool changeMouse(DeviceId id, const std::function<void(SimulatedMouse &)> &change);

    /// From now on the logical device gets the reports of this mouse, in place of another one. Attach it before it is
    /// started, or the answers to its start are lost. Detached by itself when it is deleted, which must happen on the
    /// receiver's thread.
    void attach(DeviceId id, ILogicalDeviceGen3Mouse *device);
    /// Drops this mouse's reports from now on, those under way included.
    void detach(DeviceId id);

    /// For the next operations that it matches. Of several faults for one operation the oldest takes effect.
    void addFault(const ReceiverFault &fault);
    void clearFaults();
    /// Those that are not used up.
    QList<ReceiverFault> faults() const;

    /// From an accepted request to its report; 5 ms by default. For the requests that follow.
    void setAnswerDelay(std::chrono::milliseconds delay) { m_answerDelay = delay; }

    /// How often a plugin may send a request again because its confirmation disagreed, 20 times by default, before the
    /// receiver stops answering it and leaves a verdict. The next request that is no such repetition is answered again.
    void setResendLimit(int limit) { m_resendLimit = limit; }

    /// Does something to the mouse, such as SimulatedMouse::pressButton(); its reports are delivered from the event loop.
    /// False when there is no mouse with this id. The function runs under the receiver's lock and must not call the
    /// receiver.
    bool act(DeviceId id, const std::function<QList<MouseMessage>(SimulatedMouse &)> &action);

    /// A report that no request asked for, with an operation of reports:: or receiverSignals::. Delivered from the event
    /// loop; the mouse does not change.
    void report(DeviceId id, const MouseMessage &message);
    /// The same, delivered on the calling thread before the call returns.
    void reportAtOnce(DeviceId id, const MouseMessage &message);
    /// The same, kept back until one of the mice gets a request, and delivered before that is answered, on the
    /// thread of the request. Takes the place of another one that is kept back.
    void reportInsideRequest(DeviceId id, const MouseMessage &message);

    /// Whether nothing is under way to a mouse or from one. A condition for waitForTimeline().
    bool isIdle() const;

protected:
    /// A forwarded call that names no mouse is answered with its first argument.
    QJsonValue answer(const DeviceOperation &operation, std::optional<DeviceId> id,
                      const QJsonArray &arguments) override;
    ReportRateInfo reportRateInfo(DeviceId id) const override { return mouse(id).reportRateInfo(); }

private:
    // What a logical device is called through, as long as it lives.
    struct Attachment
    {
        QPointer<QObject> object;
        ILogicalDeviceGen3Mouse *device = nullptr;
    };
    // On its way through the air.
    struct Transit
    {
        enum class Kind {
            Request,
            Report,
            HeldReport,  // a fault has hit it already
        };
        std::chrono::steady_clock::time_point due;
        Kind kind = Kind::Request;
        DeviceId id = 0;
        MouseMessage message;
    };
    // Waits for the next request.
    struct KeptReport
    {
        DeviceId id = 0;
        MouseMessage message;
    };
    // The report that is being delivered; a request that comes from within is a repetition.
    struct Delivery
    {
        DeviceId id = 0;
        const DeviceOperation *operation = nullptr;
        Qt::HANDLE thread = nullptr;
        bool isAnsweredByRequest = false;
    };

    /// Sends an accepted request on to the mouse.
    void forward(DeviceId id, MouseMessage request, const std::optional<ReceiverFault> &fault);
    /// False when this request repeats another one for the last time that is allowed.
    bool countRepetition(DeviceId id, const DeviceOperation &operation);
    /// The fault that affects this operation now. It goes when it was used up.
    std::optional<ReceiverFault> takeFault(const DeviceOperation &operation, DeviceId id);
    void recordFault(const ReceiverFault &fault, DeviceId id);
    void deliverKeptReport();
    void enqueue(Transit::Kind kind, DeviceId id, const MouseMessage &message,
                 std::chrono::milliseconds delay);
    void scheduleDelivery();
    void deliverDue();
    void arriveAtMouse(DeviceId id, const MouseMessage &request);
    void deliverReport(DeviceId id, const MouseMessage &report);
    void callDevice(ILogicalDeviceGen3Mouse &device, const MouseMessage &report);
    ILogicalDeviceGen3Mouse *attachedDevice(DeviceId id) const;

    const int m_number;
    mutable QMutex m_mutex;
    // Guarded by the mutex, which is never held while a device, the timeline or a slot is called.
    QHash<DeviceId, SimulatedMouse> m_mice;
    QHash<DeviceId, Attachment> m_devices;
    QList<ReceiverFault> m_faults;
    QList<Transit> m_transits;  // in the order in which they are due
    // By mouse and report: answered by a request so often.
    QHash<DeviceId, QHash<const DeviceOperation *, int>> m_repetitions;
    std::optional<Delivery> m_delivery;
    std::optional<KeptReport> m_keptReport;

    std::atomic<std::chrono::milliseconds> m_answerDelay{std::chrono::milliseconds(5)};
    std::atomic<int> m_resendLimit{20};
    QTimer m_timer;  // the receiver's thread only
};
