#pragma once

#include <QtCore/QString>

class PluginFixture;
class HostedDevice;
class StepThread;

/// One life of the library in the process, as a host leads it: load, initialize, create, start, use, destroy, unload,
/// with calls still queued at the end, and devices that nobody destroyed. Answers what was seen, as one line;
/// wholeLife() is how it has to be.
QString liveOnce(StepThread &otherThread);

/// What a life has to show.
QString wholeLife();

/// What a host does with a device and its mouse: each kind of request, confirmed or not, and each kind of report.
void useOnce(PluginFixture &fixture, HostedDevice &device);

/// How many lives a test plays: KVX_LIFECYCLE_ROUNDS, else what this build is given time for.
int roundsToPlay();
