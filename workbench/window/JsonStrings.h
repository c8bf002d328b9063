#pragma once

#include <QtCore/QJsonArray>
#include <QtCore/QJsonValue>
#include <QtCore/QStringList>

/// The texts of an array; none for any other value.
inline QStringList stringsOf(const QJsonValue &value)
{
    QStringList strings;
    const QJsonArray items = value.toArray();
    for (const auto &item : items)
        strings.append(item.toString());
    return strings;
}
