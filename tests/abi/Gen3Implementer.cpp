#include "Gen3Implementer.h"

QString Gen3Implementer::ppid() const
{
    return {};
}

#ifndef DROPPED_OPERATION
void Gen3Implementer::ppidChangedCallBack(QString ppid)
{
    Q_EMIT ppidChanged(ppid);
}
#endif

std::unique_ptr<QObject> makeGen3Implementer()
{
    return std::make_unique<Gen3Implementer>();
}
