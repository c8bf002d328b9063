#pragma once

#include "OperationTable.h"

/// What the rows of the table are made with, and its parts.
namespace OperationRows {

using HostedCall = std::function<void(HostedDevice &)>;

/// A call that the device as its host has it records by itself.
std::function<void(PluginFixture &, HostedDevice &)> hosted(const HostedCall &call);

/// An operation whose second call is seen alone, receiver or not.
Operation sameEverywhere(const char *name, const HostedCall &call, const QString &line, const QString &effect,
                         SignalThread signalThread = SignalThread::Device);

/// The same whenever and wherever it is called.
Operation always(const char *name, const HostedCall &call, const QString &lines,
                 SignalThread signalThread = SignalThread::Device);

/// What answers and does nothing else, but for the number of the device among others.
Operations getters();

/// What these mice take and do nothing about.
Operations operationsWithoutEffect();

/// What no interface has: the device's private slots and the receiver's signals.
Operations operationsByName();

}  // namespace OperationRows
