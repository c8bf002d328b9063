#pragma once

#include "runtime_probe.h"

#include <QtCore/qglobal.h>

/// The probe, loaded. Unloaded on destruction.
class Probe
{
public:
    Probe();
    ~Probe() { unload(); }
    Q_DISABLE_COPY_MOVE(Probe)

    bool isLoaded() const { return m_module != nullptr; }
    /// Windows' number for why it is not.
    unsigned long error() const { return m_error; }
    void unload();

    /// Whether it is in the process, whoever has loaded it.
    static bool isInProcess();

    /// Use OF_PROBE.
    template <typename Function>
    Function *function(const char *name) const
    {
        return reinterpret_cast<Function *>(address(name));
    }

private:
    void *address(const char *name) const;

    void *m_module = nullptr;
    unsigned long m_error = 0;
};

/// One of the functions that runtime_probe.h declares: OF_PROBE(probe, throwCode)(3);
#define OF_PROBE(probe, name) (probe).function<decltype(::name)>(#name)
