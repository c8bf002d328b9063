#pragma once

#include <QtCore/QtGlobal>

/// Names one mouse on its physical device. Opaque: only the host and its receiver give it a meaning;
/// the plugin passes it on unchanged.
using DeviceId = quint64;
