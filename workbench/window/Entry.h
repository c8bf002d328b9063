#pragma once

#include <QtCore/QJsonArray>
#include <QtCore/QList>
#include <QtCore/QMetaType>
#include <QtCore/QString>

#include <optional>

/// One line of the timeline, as the child printed it.
struct Entry
{
    /// From 1, in the order in which things began.
    quint64 sequence = 0;
    /// Since the child's timeline was made, in microseconds.
    qint64 time = 0;
    /// 1 is the child's main thread; others are numbered as they appear.
    int thread = 1;
    std::optional<quint64> device;
    int receiver = 1;
    /// call, receiver, report, signal, log, host, verdict.
    QString kind;
    /// Of an operation or signal; of a log line its severity.
    QString name;
    QJsonArray arguments;
    /// The entry as a scenario writes it: "signal reportRateChanged(500)".
    QString text;
    /// What the child printed: one JSON object.
    QString json;
};
