#pragma once

#include <QtCore/QVariantMap>

/// A map as a host passes it. A QVariantMap stores a std::map, whose layout depends on the C++ library. In a
/// Windows build ours differs from Qt's and the host's, so Qt's code builds this map.
class HostMap
{
public:
    explicit HostMap(const QVariantMap &values);

    /// Not for reading here, only to be handed to code of Qt or the library.
    operator const QVariantMap &() const;

private:
    QVariant m_map;
};
