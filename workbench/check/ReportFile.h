#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <optional>

/// Writes the whole file or leaves it as it was. No value, or why it could not be written.
std::optional<QString> writeReportFile(const QString &file, const QByteArray &content);
