#pragma once

#include "Engine.h"

#include <QtCore/QDateTime>
#include <QtCore/QElapsedTimer>
#include <QtCore/QTimer>

#include <chrono>

/// What the child is doing, in a sentence, and whether it has been silent for so long that the user should know.
class SessionWatch : public QObject
{
    Q_OBJECT

public:
    explicit SessionWatch(Engine *engine, QObject *parent = nullptr);

    QString text() const;
    /// A line waits for its answer, and nothing has come for the time of patience.
    bool isSilent() const;
    void setPatience(std::chrono::milliseconds patience) { m_patience = patience; }

Q_SIGNALS:
    void changed();

private:
    void noteBusy(bool isBusy);
    void noteSign();

    Engine *m_engine;
    QTimer m_timer;
    QElapsedTimer m_lastSign;
    QDateTime m_busySince;
    QString m_endText;
    std::chrono::milliseconds m_patience{5000};
};
