#pragma once

#include "DeviceId.h"

#include <QtCore/QJsonArray>
#include <QtCore/QList>
#include <QtCore/QString>

#include <chrono>
#include <optional>

/// Something that goes wrong with an operation between plugin and mouse: plain data.
struct ReceiverFault
{
    /// On a request (the plugin calls the receiver), on a report (the mouse tells the plugin), on a value that
    /// the plugin reads:
    enum class Effect {
        Refuse,  ///< the receiver answers false | as Drop | false or 0
        Delay,   ///< the mouse gets it later | it arrives later | no effect
        Drop,    ///< accepted, but the mouse never gets it | it never arrives | no effect
        Repeat,  ///< the mouse gets it several times | it arrives several times | no effect
        Alter,   ///< the mouse gets other arguments | other arguments arrive | another value is read
    };

    static constexpr int always = -1;

    /// The name of the operation, "setReportRate" or "reportRateConfirmed" say.
    QString operation;
    Effect effect = Effect::Refuse;
    /// How many of the next such operations it hits, or always.
    int times = 1;
    /// For Delay: what is added to the time that it takes anyway.
    std::chrono::milliseconds delay{0};
    /// For Repeat: how often in addition.
    int repeats = 1;
    /// For Alter: all arguments in the form of the timeline, or the value that is read.
    QJsonArray arguments;
    /// The mouse that it hits; all mice when unset.
    std::optional<DeviceId> device;

    static QString effectName(Effect effect);
};

/// The faults in force. The first that fits an operation hits it, and goes when it was used up.
class ReceiverFaults
{
public:
    void add(const ReceiverFault &fault);
    void clear();
    QList<ReceiverFault> list() const;

    /// The fault that hits this operation now, counted down.
    std::optional<ReceiverFault> take(const QString &operation, DeviceId id);

private:
    QList<ReceiverFault> m_faults;
};
