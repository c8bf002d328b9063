#include "DeviceState.h"

#include <QtCore/QJsonArray>

using namespace Qt::StringLiterals;

namespace {

// Large ids are texts already.
QString textOf(const QJsonValue &id)
{
    return id.toVariant().toString();
}

}  // namespace

QString DeviceState::idOf(const QJsonObject &device)
{
    return textOf(device.value("id"_L1));
}

QString DeviceState::currentId(const QJsonObject &state)
{
    return idOf(currentDevice(state));
}

QJsonObject DeviceState::device(const QJsonObject &state, const QString &id)
{
    const QJsonArray devices = state.value("devices"_L1).toArray();
    for (const QJsonValue &device : devices) {
        if (idOf(device.toObject()) == id)
            return device.toObject();
    }
    return {};
}

QJsonObject DeviceState::currentDevice(const QJsonObject &state)
{
    return device(state, textOf(state.value("current"_L1)));
}
