#pragma once

#include "ILogicalDeviceGen3.h"

#include <QtCore/QObject>

#include <memory>

/// The smallest correct way to implement an interface that declares a signal. Each macro makes a mistake that
/// the compiler must refuse; test-interface-misuse sets them one at a time.
class Gen3Implementer : public QObject, public ILogicalDeviceGen3
{
    Q_OBJECT
    Q_INTERFACES(ILogicalDeviceGen3)

public:
    QString ppid() const override;
#ifndef DROPPED_OPERATION
    void ppidChangedCallBack(QString ppid) override;
#endif

Q_SIGNALS:
#if defined(MISSPELLED_SIGNAL)
    void ppidChangd(QString ppid) override;
#elif defined(MISSPELLED_UNMARKED_SIGNAL)
    void ppidChangd(QString ppid);
#elif defined(SIGNAL_BY_REFERENCE)
    void ppidChanged(const QString &ppid) override;
#else
    void ppidChanged(QString ppid) override;
#endif
};

/// Does not compile while an operation is missing.
std::unique_ptr<QObject> makeGen3Implementer();
