#pragma once

#include "DeviceId.h"
#include "DeviceOperation.h"

#include <QtCore/QJsonArray>
#include <QtCore/QList>

#include <chrono>
#include <optional>

/// Something that goes wrong with an operation between plugin and mouse: plain data for SimulatedReceiver::addFault().
/// Each time that it takes effect, the timeline has a verdict.
struct ReceiverFault
{
    /// On a request (the plugin calls the receiver), on a report (of the mouse), on a value that the plugin reads:
    enum class Effect {
        Refuse,  ///< the receiver answers false | as Drop | false or 0
        Delay,   ///< the mouse gets it later | it arrives later | no effect
        Drop,    ///< accepted, but the mouse never gets it | it never arrives | no effect
        Repeat,  ///< the mouse gets it several times | it arrives several times | no effect
        Alter,   ///< the mouse gets other arguments | other arguments arrive | another value is read
    };
    /// In the order of Effect.
    static constexpr std::array effectNames{"refuse", "delay", "drop", "repeat", "alter"};

    static constexpr int always = -1;

    /// Of Operations.h, for example &requests::setReportRate or &reports::reportRateConfirmed.
    const DeviceOperation *operation = nullptr;
    Effect effect = Effect::Refuse;
    /// How many of the next such operations it affects, or always.
    int times = 1;
    /// For Delay: what is added to the time that it takes anyway.
    std::chrono::milliseconds delay{0};
    /// For Repeat: how often in addition.
    int repeats = 1;
    /// For Alter: all arguments as the timeline has them, or the value that is read.
    QJsonArray arguments;
    /// The mouse that it affects; all mice when unset.
    std::optional<DeviceId> device;

    QString effectName() const
    {
        return QString::fromLatin1(effectNames.at(static_cast<std::size_t>(effect)));
    }
};
