#pragma once

#include "CheckReport.h"

#include <QtCore/QDate>

#include <optional>

/// A failure that is known and accepted for a time.
struct Waiver
{
    QString name;
    QString reason;
    /// The last day on which it counts; invalid for none.
    QDate until;
};

struct Waivers
{
    QList<Waiver> all;
    /// Why the file cannot be used, in one sentence; empty when it can.
    QString problem;
};

Waivers readWaivers(const QString &file);

/// Applies a waiver that counts on this day to the verdict of a scenario that ran.
void applyWaiver(const QList<Waiver> &waivers, const QDate &today, ScenarioVerdict &verdict);

/// What is wrong with the waivers after a check, a sentence each: a scenario that passes, a day that is over, a name that
/// is no scenario's. names: of all scenarios.
QStringList staleWaivers(const QList<Waiver> &waivers, const QDate &today,
                         const QList<ScenarioVerdict> &verdicts, const QStringList &names);
