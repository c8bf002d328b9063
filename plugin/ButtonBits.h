#pragma once

#include <QtCore/QtGlobal>

// The bits of the disabled-buttons mask and of a mouse event: button n has bit n - 1; bits 5 and 6 are
// unused.

constexpr int firstButton = 1;
constexpr int lastButton = 5;
constexpr quint8 smartPointerBit = 0x80;

constexpr quint8 buttonBit(int buttonNumber)
{
    return static_cast<quint8>(1U << (buttonNumber - firstButton));
}
