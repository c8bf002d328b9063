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

/// The call, and from where it comes, for operations without a command.
QString callComment(const Operation &operation);
/// Where a device is.
QString placeComment(Physical physical);
