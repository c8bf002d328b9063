#pragma once

#include "Operation.h"

#include <QtCore/QList>
#include <QtCore/QPair>
#include <QtCore/QString>
#include <QtCore/QStringList>

/// The requests that a scenario's mouse would answer with reports by itself.
const QStringList &answeredRequests();
/// The fields of a scenario's mouse, and their values, that make it answer so.
QList<QPair<QString, QString>> mouseFields(const ReceiverAnswers &answers);
/// The command that makes the operation on the current mouse; empty where there is none.
QString scenarioCommand(const Operation &operation);

/// The report as kvx run shows it: "setBatteryLevel(5)".
QString reportText(const Operation &operation);
/// The words in front of a command that let it come by the route, with the blank behind them.
QString routeWords(Operation::Route route);

/// The call, and from where it comes, for operations without a command.
QString callComment(const Operation &operation);
/// The command that makes a device without a mouse.
QString deviceCommand(Physical physical, const QString &id);
