#include "Probe.h"

#include <QtCore/QString>

#include <windows.h>

namespace {

const auto *file()
{
    static const QString name = QStringLiteral(KVX_RUNTIME_PROBE).replace(u'/', u'\\');
    return reinterpret_cast<const wchar_t *>(name.utf16());
}

}  // namespace

Probe::Probe()
{
    const auto *name = file();
    m_module = LoadLibraryW(name);
    if (!m_module)
        m_error = GetLastError();
}

void Probe::unload()
{
    if (m_module)
        FreeLibrary(static_cast<HMODULE>(m_module));
    m_module = nullptr;
}

bool Probe::isInProcess()
{
    return GetModuleHandleW(file()) != nullptr;
}

void *Probe::address(const char *name) const
{
    const auto found = GetProcAddress(static_cast<HMODULE>(m_module), name);
    if (!found)
        qFatal("the probe has no %s", name);
    return reinterpret_cast<void *>(found);
}
