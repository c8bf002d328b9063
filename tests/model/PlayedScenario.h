#pragma once

#include "Kvx.h"
#include "Rounds.h"

#include <QtCore/QString>

/// A scenario, run by kvx with the library under test.
KvxRun play(const QString &scenario);

/// Empty when the scenario of the round's sequence shows the deviation, and agrees once the model's error is mended;
/// else what it does instead.
QString playedText(const Round &round);
