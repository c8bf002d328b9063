#pragma once

#include "Engine.h"

#include <functional>

/// Runs kvx with these arguments, under the engine's wrapper, and calls the function from the event loop with what it
/// printed, or with a problem in one sentence. Nothing is called when the receiver is gone by then.
void askKvx(const Engine::Setup &setup, const QStringList &arguments, QObject *receiver,
            const std::function<void(const QString &output, const QString &problem)> &answer);
