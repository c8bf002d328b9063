#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>

class PluginHost;
class Timeline;

struct LifeDifference
{
    QString message;
    /// Lines.
    QStringList expected;
    QStringList actual;
};

/// Devices that live on several threads at once, each on the thread that creates it, with a receiver, a mouse and a
/// timeline of its own. As a host must, one thread at a time changes a device: its own, or a second one for which its
/// own waits. One life is played alone on this thread, then so many on each of the threads. Each must leave the same lines as the first,
/// apart from the instance numbers, and its device and mouse must agree; the first difference is answered.
/// timeline: where host services and log are recorded; what they hear meanwhile goes to the lives' own timelines.
std::optional<LifeDifference> playParallelLives(PluginHost &host, Timeline &timeline, int threads, int lives);
