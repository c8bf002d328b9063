#pragma once

#include "Sequence.h"

#include <QtCore/QString>

/// The sequence as a file for kvx run. What no command can do there stands as a comment that names the call.
/// Every mouse takes all requests, or refuses them, and says nothing by itself. Where all has commands and the deviation can be seen
/// with the means of a scenario, the last lines expect what the model expects, so that the run fails as long as
/// the library deviates.
QString scenarioText(const SequenceResult &result);
