#include "SessionWatch.h"

#include "EndText.h"

#include <QtCore/QLocale>

using namespace std::chrono_literals;

namespace {

constexpr auto updateInterval = 500ms;

}  // namespace

SessionWatch::SessionWatch(Engine *engine, QObject *parent) : QObject(parent), m_engine(engine)
{
    m_timer.setInterval(updateInterval);
    connect(&m_timer, &QTimer::timeout, this, &SessionWatch::changed);
    connect(engine, &Engine::started, this, [this] {
        m_endText.clear();
        Q_EMIT changed();
    });
    connect(engine, &Engine::busyChanged, this, &SessionWatch::noteBusy);
    connect(engine, &Engine::answered, this, &SessionWatch::noteSign);
    connect(engine, &Engine::entriesCame, this, &SessionWatch::noteSign);
    connect(engine, &Engine::ended, this, [this](const EngineEnd &end) {
        m_endText = endText(end);
        Q_EMIT changed();
    });
}

QString SessionWatch::text() const
{
    if (!m_engine->isRunning())
        return m_endText;
    if (!m_engine->isBusy())
        return tr("Running");
    const qint64 seconds = m_busySince.secsTo(QDateTime::currentDateTime());
    const QString since = QLocale().toString(m_busySince.time(), QLocale::ShortFormat);
    const QString call = m_engine->lastCall();
    return call.isEmpty() ? tr("Busy since %1 (%2 s)").arg(since).arg(seconds)
                          : tr("Busy since %1 (%2 s): %3").arg(since).arg(seconds).arg(call);
}

bool SessionWatch::isSilent() const
{
    return m_engine->isBusy() && m_lastSign.isValid() && m_lastSign.hasExpired(m_patience.count());
}

void SessionWatch::noteBusy(bool isBusy)
{
    if (isBusy) {
        m_busySince = QDateTime::currentDateTime();
        m_timer.start();
        noteSign();
    } else {
        m_timer.stop();
        Q_EMIT changed();
    }
}

void SessionWatch::noteSign()
{
    const bool wasSilent = isSilent();
    m_lastSign.start();
    if (wasSilent)
        Q_EMIT changed();
}
