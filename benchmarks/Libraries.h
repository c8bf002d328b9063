#pragma once

#include "IFloorDevice.h"
#include "ILogicalDevicePlugin.h"

#include <QtCore/QPluginLoader>
#include <QtCore/QString>

/// One library, loaded as the host loads it: so that unloading it takes it out of the process.
class LoadedLibrary
{
public:
    /// Ends the program when the file does not load.
    explicit LoadedLibrary(const QString &file);
    Q_DISABLE_COPY_MOVE(LoadedLibrary)
    ~LoadedLibrary();

    /// The root object as one of its interfaces; ends the program when it has it not.
    template <typename Interface>
    Interface *root()
    {
        auto *found = qobject_cast<Interface *>(m_loader.instance());
        if (!found)
            refuse();
        return found;
    }

private:
    [[noreturn]] void refuse() const;

    QPluginLoader m_loader;
};

/// The libraries that are measured and compared with, loaded at first use and unloaded with the program.
struct Libraries
{
    LoadedLibrary product{QStringLiteral(PRODUCT_FILE)};
    LoadedLibrary unlogged{QStringLiteral(UNLOGGED_FILE)};
    LoadedLibrary floors{QStringLiteral(FLOORS_FILE)};
};

Libraries &libraries();
