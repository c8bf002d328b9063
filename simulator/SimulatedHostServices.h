#pragma once

#include "IHostServices.h"
#include "Timeline.h"

#include <QtCore/QtGlobal>

/// The host's service object: records the plugin's button and Ctrl events on the timeline, with the thread that they come
/// from, and does nothing else. An operation that a plugin must never call also leaves a verdict. Any thread.
class SimulatedHostServices : public IHostServices
{
public:
    /// timeline must outlive the object.
    explicit SimulatedHostServices(Timeline &timeline) : m_timeline(timeline) {}
    Q_DISABLE_COPY_MOVE(SimulatedHostServices)

    void reserved0() override { recordReservedCall(__func__); }
    void reserved1() override { recordReservedCall(__func__); }
    void reserved2() override { recordReservedCall(__func__); }
    void buttonEvent(const QString &pluginIid, int buttonNumber, bool isPressed) override
    {
        record(__func__, {pluginIid, buttonNumber, isPressed});
    }
    void setCtrlKeyPressed(bool isPressed) override { record(__func__, {isPressed}); }

private:
    void record(const char *operation, const QJsonArray &arguments)
    {
        m_timeline.record(TimelineEntry::Kind::HostService, {}, QString::fromLatin1(operation), arguments);
    }
    void recordReservedCall(const char *operation)
    {
        record(operation, {});
        m_timeline.recordVerdict(QStringLiteral("a plugin must not call %1 of the host services")
                                     .arg(QString::fromLatin1(operation)));
    }

    Timeline &m_timeline;
};
