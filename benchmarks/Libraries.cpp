#include "Libraries.h"

#include <cstdio>
#include <cstdlib>

LoadedLibrary::LoadedLibrary(const QString &file)
{
    m_loader.setLoadHints({});
    m_loader.setFileName(file);
    if (!m_loader.load())
        refuse();
}

LoadedLibrary::~LoadedLibrary()
{
    m_loader.unload();
}

void LoadedLibrary::refuse() const
{
    std::fprintf(stderr, "measure: %s cannot be measured (%s); build it anew: ./dev build bench\n",
                 qUtf8Printable(m_loader.fileName()), qUtf8Printable(m_loader.errorString()));
    std::exit(2);
}

Libraries &libraries()
{
    static Libraries loaded;
    return loaded;
}
