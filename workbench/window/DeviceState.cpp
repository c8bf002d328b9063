#include "DeviceState.h"

#include <QtCore/QJsonArray>

using namespace Qt::StringLiterals;

QString DeviceState::idOf(const QJsonObject &device)
{
    return device.value("id"_L1).toString();
}

QString DeviceState::currentId(const QJsonObject &state)
{
    return idOf(currentDevice(state));
}

QJsonObject DeviceState::device(const QJsonObject &state, const QString &id)
{
    const QJsonArray devices = state.value("devices"_L1).toArray();
    for (const auto value : devices) {
        const QJsonObject device = value.toObject();
        if (idOf(device) == id)
            return device;
    }
    return {};
}

QJsonObject DeviceState::currentDevice(const QJsonObject &state)
{
    return device(state, state.value("current"_L1).toString());
}
