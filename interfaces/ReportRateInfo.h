#pragma once

#include <QtCore/QtGlobal>

#include <cstddef>

/// What a receiver knows of a mouse's report rate, all rates in Hz.
/// Crosses the library boundary by address; the layout is binary contract.
struct ReportRateInfo
{
    /// Set by the receiver; the plugin reads it nowhere.
    quint16 unused;
    /// The rate that the mouse uses now.
    quint16 currentRate;
    /// The rates on offer in the receiver's order; a 0 ends the list before its fourth entry.
    quint16 supportedRates[4];
};

static_assert(sizeof(ReportRateInfo) == 12);
static_assert(offsetof(ReportRateInfo, currentRate) == 2);
static_assert(offsetof(ReportRateInfo, supportedRates) == 4);
