#include "HostMap.h"

#include <QtCore/QDataStream>
#include <QtCore/QMetaType>

HostMap::HostMap(const QVariantMap &values)
{
    // The stream carries the map as it carries a variant that holds one: type, not null, entries.
    QByteArray bytes;
    QDataStream writer(&bytes, QDataStream::WriteOnly);
    writer << quint32(QMetaType::QVariantMap) << qint8(0) << values;
    QDataStream reader(bytes);
    reader >> m_map;
    Q_ASSERT(m_map.typeId() == QMetaType::QVariantMap);
}

HostMap::operator const QVariantMap &() const
{
    return *static_cast<const QVariantMap *>(m_map.constData());
}
