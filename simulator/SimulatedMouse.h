#pragma once

#include "DeviceOperation.h"

#include <QtCore/QList>
#include <QtCore/QString>

#include <array>

/// One mouse: its state as plain data, sane from the start, and what it does. To try something else, change a field.
/// Has no thread of its own; SimulatedReceiver holds the mice and guards them.
struct SimulatedMouse
{
    uint firmwareVersion = 0x0102;
    bool hasBatteryLevel = true;
    int batteryLevel = 80;  // percent
    int statusValue = 1;    // this and the next two: passed through, without a meaning here
    int deviceValue = 2;
    int levelValue = 3;
    bool isSmartPointerSupported = true;
    QString ppid = QStringLiteral("RV418-0001");

    int dpiMin = 100;  // DPI, as dpiMax, dpiSlotValues and dpiValue
    int dpiMax = 8000;
    std::array<quint16, dpiSlotCount> dpiSlotValues{800, 1600, 2400, 3200, 4000};
    int activeDpiSlotIndex = 2;  // 1 to 5
    int dpiValue = 1600;
    int dpiButtonId = 6;  // a button's number

    int reportRate = 500;                                     // Hz
    std::array<quint16, 4> reportRates{125, 250, 500, 1000};  // a 0 ends the list
    bool knowsReportRates = true;

    quint8 disabledButtonsOrKeysMask = 0;  // diverted buttons: bit 0 is button 1
    quint8 heldButtons = 0;                // bits as in the mask
    int dpiStep = 0;                       // slot values are rounded to multiples of it; 0: taken as they are

    bool isAsleep = false;
    bool losesSettingsAsleep = false;  // wakes with the settings of a new mouse
    QList<MouseMessage> unheard;       // requests that came while it slept
    quintptr forwardedResult = 0;

    ReportRateInfo reportRateInfo() const;

    /// Does what the request says and returns the reports that answer it, in their order.
    /// The mouse decides: a rate that it does not offer and a slot that it does not have leave it as it
    /// is, and what it confirms is what is in force. A slot value of 0 leaves that slot as it is. Slot values
    /// are taken alone; the button and the active slot that travel with them change nothing.
    /// requestInitialState1 reports the DPI range and the slot values, 2 the active slot, DPI button and DPI,
    /// 3 the product id string and the report rates.
    /// Asleep it does and reports nothing, and hears the request when it wakes.
    QList<MouseMessage> take(const MouseMessage &request);

    // SimulatedMouse_Actions.cpp: what a hand does with the mouse, and what time does to it. Each returns the
    // reports that this makes, none while the mouse is asleep.

    /// buttonNumber: 1 to 5. A diverted button is reported. The others do what they do in the mouse: the one whose
    /// number is the DPI button's id goes to the next DPI slot.
    QList<MouseMessage> pressButton(int buttonNumber);
    QList<MouseMessage> releaseButton(int buttonNumber);
    /// The button that only changes the DPI slot, from the last to the first.
    QList<MouseMessage> pressDpiButton();
    QList<MouseMessage> releaseDpiButton() { return {}; }
    /// The smart-pointer key is reported whatever is diverted; a mouse without one reports nothing.
    QList<MouseMessage> pressSmartPointerKey();
    QList<MouseMessage> releaseSmartPointerKey();
    /// percent: what is taken from the battery, down to 0; negative charges it, up to 100.
    QList<MouseMessage> drainBattery(int percent);
    QList<MouseMessage> sleep();
    /// Reports everything when the settings were lost, then does what was requested while it slept.
    QList<MouseMessage> wake();

private:
    QList<MouseMessage> takeReportRate(int rate);
    QList<MouseMessage> takeDpiSlotValues(const QJsonArray &values);
    QList<MouseMessage> takeDpiButtonAndActiveSlot(int buttonId, int slotIndex);
    QList<MouseMessage> initialState(int part) const;
    void appendDpiChange(QList<MouseMessage> &reports);
    quint16 roundedDpi(quint16 value) const;
    QList<MouseMessage> buttonReport() const;
};
