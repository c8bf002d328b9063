#pragma once

#include <QtCore/QJsonObject>

/// What one started device takes from the heap, beside what its parts take by themselves: "device", "parts" (by name)
/// and "qt", what Qt takes for two QObjects and their connections. All in bytes.
QJsonObject heapOfOneDevice();
