#include "OtherThread.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QMetaObject>

OtherThread::OtherThread()
{
    m_context.moveToThread(&m_thread);
    m_thread.start();
}

OtherThread::~OtherThread()
{
    m_thread.quit();
    m_thread.wait();
}

void OtherThread::run(const std::function<void()> &function)
{
    QMetaObject::invokeMethod(&m_context, function, Qt::BlockingQueuedConnection);
}

void deliverQueuedCalls()
{
    QCoreApplication::sendPostedEvents();
}
