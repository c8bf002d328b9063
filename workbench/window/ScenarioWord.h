#pragma once

#include <QtCore/QString>

/// The text as one word of a scenario: in quotes where it needs them.
QString scenarioWord(const QString &text);
