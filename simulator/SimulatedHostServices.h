#pragma once

#include "IHostServices.h"

#include <QtCore/QtGlobal>

class Timeline;

/// The host's service object: writes button and Ctrl events to the timeline, and a verdict when an operation
/// is called that a plugin must never call.
class SimulatedHostServices : public IHostServices
{
public:
    /// timeline must outlive the object.
    explicit SimulatedHostServices(Timeline &timeline);
    Q_DISABLE_COPY_MOVE(SimulatedHostServices)

    void reserved0() override;
    void reserved1() override;
    void reserved2() override;
    void buttonEvent(const QString &pluginIid, int buttonNumber, bool isPressed) override;
    void setCtrlKeyPressed(bool isPressed) override;

private:
    void recordReservedCall(const QString &operation);

    Timeline &m_timeline;
};
