#pragma once

#include <QtGui/QColor>

/// The colour with a share of another, from 0 to 1.
inline QColor mixed(const QColor &color, const QColor &other, double share)
{
    const auto mix = [share](int one, int another) { return qRound(one * (1 - share) + another * share); };
    return {mix(color.red(), other.red()), mix(color.green(), other.green()),
            mix(color.blue(), other.blue())};
}
