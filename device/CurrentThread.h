#pragma once

#include <QtCore/QThread>

// As QThread::currentThread(), for less: each thread asks Qt once and keeps the answer, since it stays the
// QThread that it is for as long as Qt knows it. Inline, because most of the cost would be the call.
inline const QThread *currentThread()
{
    static thread_local const QThread *known = nullptr;
    if (Q_UNLIKELY(!known))
        known = QThread::currentThread();
    return known;
}
