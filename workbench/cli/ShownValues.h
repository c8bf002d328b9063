#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>

class HostedDevice;

/// The names of the getters whose values a scenario can show and compare.
QStringList shownValueNames();

/// What the getter answers, as text: numbers in decimal, lists with blanks between their items. No value when no getter
/// has this name.
std::optional<QString> shownValue(const HostedDevice &device, const QString &name);
