#pragma once

#include <QtCore/QString>

#include <functional>
#include <vector>

class Bench;
class HostedDevice;

/// One operation with an effect, called with one set of arguments, and what is to be seen of it with the log lines
/// of debugging off: the call itself first, then receiver, host, signals and warnings.
struct Operation
{
    const char *name;
    std::function<void(HostedDevice &)> call;
    /// On a device as runningDevice() makes it.
    QString whileRunning;
    /// The second time there.
    QString again;
    /// On a device that has no receiver, or has not looked for it yet.
    QString unbound;
    /// The same for the second time.
    QString unboundAgain;
};

/// All but start(), which is a test of its own.
const std::vector<Operation> &everyOperation();

/// A started device with a known DPI range. Its receiver has since lost the support of the smart pointer.
HostedDevice &runningDevice(Bench &bench);
