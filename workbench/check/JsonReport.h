#pragma once

#include <QtCore/QJsonObject>

struct CheckReport;

/// What writeJson() writes.
QJsonObject toJson(const CheckReport &report);
