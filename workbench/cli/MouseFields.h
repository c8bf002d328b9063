#pragma once

#include <QtCore/QJsonObject>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>

struct SimulatedMouse;

/// Sets a field by its name. Answers nothing when that worked, else what is wrong with the name or the values.
std::optional<QString> setMouseField(SimulatedMouse &mouse, const QString &name, const QStringList &values);

/// All these fields with their values.
QJsonObject mouseFields(const SimulatedMouse &mouse);
