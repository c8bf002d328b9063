#pragma once

#include <QtCore/QString>

#include <functional>
#include <vector>

class PluginFixture;
class HostedDevice;

/// Where another thread's call emits: at once on that thread, or later on the device's.
enum class SignalThread { Device, Calling };

/// One operation, called with one set of arguments, and what is to be seen of it with the log lines of debugging off:
/// the call itself first, then receiver, host, signals and warnings.
struct Operation
{
    /// As in the tables of the interfaces or the device's meta-object; receiver:: and the name for what the receiver
    /// signals.
    const char *name;
    std::function<void(PluginFixture &, HostedDevice &)> call;
    /// On a device as runningDevice() makes it.
    QString whileRunning;
    /// The second time there.
    QString again;
    /// On a device that has no receiver, or has not looked for it yet.
    QString unbound;
    /// The same for the second time.
    QString unboundAgain;
    SignalThread signalThread = SignalThread::Device;
};

using Operations = std::vector<Operation>;

/// All but those without a row.
const Operations &everyOperation();

/// Operations without a row in the table, and where they are tested.
struct OperationWithoutRow
{
    const char *name;
    const char *reason;
};

/// The signals have none either, though they stand in the tables: hosts connect to them and never call them, and what
/// a call of one does is in contract/entry-points/.
const std::vector<OperationWithoutRow> &operationsWithoutRow();

/// A started device with a known DPI range. Its receiver has since lost the support of the smart pointer.
HostedDevice &runningDevice(PluginFixture &fixture);
