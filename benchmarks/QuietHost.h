#pragma once

#include "IHostServices.h"
#include "ReceiverBase.h"
#include "Timeline.h"

#include <QtCore/QStringList>

/// A receiver that records nothing, so that what is measured is the device's part.
class QuietReceiver final : public ReceiverBase
{
    Q_OBJECT

public:
    QuietReceiver() : ReceiverBase(m_unused) {}

private:
    Timeline m_unused;
};

/// Host services that do nothing.
class QuietServices final : public IHostServices
{
public:
    void reserved0() override {}
    void reserved1() override {}
    void reserved2() override {}
    void buttonEvent(const QString & /*pluginIid*/, int /*buttonNumber*/, bool /*isPressed*/) override {}
    void setCtrlKeyPressed(bool /*isPressed*/) override {}
};

/// Receives the signals.
class QuietListener final : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void onNumber(int /*number*/) {}
    void onFlag(bool /*isSet*/) {}
    void onTexts(const QStringList & /*texts*/) {}
};
