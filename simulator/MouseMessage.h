#pragma once

#include "DeviceOperation.h"

#include <QtCore/QJsonArray>

/// A request to a mouse or a report of one, as plain data.
struct MouseMessage
{
    const DeviceOperation *operation = nullptr;
    /// Behind the device id, as the timeline has them.
    QJsonArray arguments;
};
