#pragma once

#include <QtCore/QJsonArray>
#include <QtCore/QString>

/// A request to a mouse or a report of one, as plain data: the name of the interface operation that carries it
/// and its arguments behind the device id, in the form that the timeline writes.
struct MouseMessage
{
    QString operation;
    QJsonArray arguments;
};
