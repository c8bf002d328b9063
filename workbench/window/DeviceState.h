#pragma once

#include <QtCore/QJsonObject>
#include <QtCore/QString>

/// Reads the devices in what Engine::state() answers. Ids are texts, since they have 64 bits.
namespace DeviceState {

QString idOf(const QJsonObject &device);
/// Empty when there is no device.
QString currentId(const QJsonObject &state);
/// Empty when there is no such device.
QJsonObject device(const QJsonObject &state, const QString &id);
QJsonObject currentDevice(const QJsonObject &state);

}  // namespace DeviceState
