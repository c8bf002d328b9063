#pragma once

#include "Circumstances.h"

#include <QtCore/QList>
#include <QtCore/QPair>
#include <QtCore/QStringList>

#include <array>
#include <vector>

/// How often operations were made: each kind by each route that it may come by, and under each circumstance.
class DrawnCounts
{
public:
    DrawnCounts();

    /// Not for reports that are only kept back: they count when they are made.
    void count(const MadeStep &made);

    /// All that there is to count, with what it came to.
    QList<QPair<QString, qint64>> all() const;
    /// What never came.
    QStringList missing() const;

private:
    std::array<std::array<qint64, routeCount>, kindCount> m_byKindAndRoute{};
    std::vector<qint64> m_byCircumstance;
};
