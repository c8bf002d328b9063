#pragma once

#include <QtCore/QVariantMap>

/// A map as a host has it, put together by Qt's own code. A QVariantMap keeps its entries in a std::map, so its layout is
/// that of the standard library of whoever fills it; in a Windows build that is another one than the host's and Qt's.
class HostMap
{
public:
    explicit HostMap(const QVariantMap &values);

    /// Not for reading here, only to be handed to code of Qt or the library.
    const QVariantMap &map() const;

private:
    QVariant m_map;
};
