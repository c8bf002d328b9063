#pragma once

#include "DeviceId.h"

#include <QtCore/QList>
#include <QtCore/QMetaMethod>
#include <QtCore/QObject>

#include <optional>

class Timeline;

/// Writes every signal of an object to the timeline, on the thread that emits it and before slots that were
/// connected later: all signals that the object's classes declare, those of QObject itself left out.
/// An argument of type IDevice* is written as "this" when it is the sender's own view, else as "other"; one of
/// a type that the timeline has no form for is written as the name of its type.
class SignalRecorder : public QObject
{
public:
    /// sender is not owned and may be deleted first. device: what the entries name as their device.
    /// A signal that cannot be connected leaves a verdict on the timeline, and isComplete() is false.
    SignalRecorder(Timeline &timeline, QObject *sender, std::optional<DeviceId> device);
    Q_DISABLE_COPY_MOVE(SignalRecorder)

    /// Whether there is a sender and each of its signals is recorded.
    bool isComplete() const { return m_isComplete; }

    // Written by hand in place of Q_OBJECT: each connected signal of the sender is one more method here.
    int qt_metacall(QMetaObject::Call call, int id, void **arguments) override;

private:
    QJsonValue argumentValue(QMetaType type, const void *argument) const;
    void recordSignal(const QMetaMethod &signal, void **arguments);

    Timeline &m_timeline;
    const std::optional<DeviceId> m_device;
    const void *m_ownDevice = nullptr;  // the sender as IDevice*, for comparison only
    QList<QMetaMethod> m_signals;
    bool m_isComplete = true;
};
