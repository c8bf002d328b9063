#pragma once

#include <QtCore/QStringList>

#include <thread>

/// What the probe has noted, by thread.
namespace Record {

QStringList ofThread(std::thread::id thread);

/// Of the calling thread. Forgets all that was noted before.
QStringList take();

/// What the probe will be told when it asks; empty for nothing.
void setWish(const char *wish);

}  // namespace Record
