#pragma once

#include <QtCore/QJsonObject>
#include <QtCore/QSet>
#include <QtCore/QStringList>

/// What the drawn mouse shows.
struct MouseStatus
{
    /// device: as the child's state has it.
    static MouseStatus of(const QJsonObject &device);
    /// The number of the smart-pointer key among the held buttons.
    static constexpr int smartPointerKey = 8;

    bool hasMouse = false;
    bool isAsleep = false;
    bool hasBatteryLevel = false;
    int batteryLevel = 0;  // percent
    int activeSlot = 0;    // from 1
    int dpi = 0;
    int reportRate = 0;  // Hz
    QSet<int> heldButtons;
    QSet<int> divertedButtons;
};

/// The buttons in order, with commas between; "none" when there are none.
QString listOf(const QSet<int> &buttons);
