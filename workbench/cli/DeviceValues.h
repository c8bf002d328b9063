#pragma once

#include <QtCore/QList>
#include <QtCore/QPair>
#include <QtCore/QString>

#include <optional>

class HostedDevice;

/// Every value that a host can read from a device, by the name of its getter, as text: numbers in decimal, lists
/// with blanks between their items.
QList<QPair<QString, QString>> deviceValues(const HostedDevice &device);

/// One of them; no value when no getter has the name.
std::optional<QString> deviceValue(const HostedDevice &device, const QString &name);
