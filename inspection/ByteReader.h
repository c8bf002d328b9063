#pragma once

#include <QtCore/QByteArrayView>
#include <QtCore/QtEndian>

#include <optional>

/// Reads little-endian numbers and ranges from bytes that may be damaged. Offsets and sizes may be any number.
class ByteReader
{
public:
    explicit ByteReader(QByteArrayView bytes) : m_bytes(bytes) {}

    /// No value unless all of it is within the bytes.
    std::optional<QByteArrayView> range(quint64 offset, quint64 size) const
    {
        const auto available = static_cast<quint64>(m_bytes.size());
        if (offset > available || size > available - offset)
            return {};
        return m_bytes.sliced(static_cast<qsizetype>(offset), static_cast<qsizetype>(size));
    }

    /// 0 unless all of it is within the bytes.
    template <typename Number>
    Number number(quint64 offset) const
    {
        const std::optional<QByteArrayView> bytes = range(offset, sizeof(Number));
        return bytes ? qFromLittleEndian<Number>(bytes->data()) : Number{0};
    }

    /// The bytes from offset up to the next null byte. No value when there is none among the next 4096.
    std::optional<QByteArrayView> text(quint64 offset) const
    {
        constexpr quint64 longest = 4096;
        const auto available = static_cast<quint64>(m_bytes.size());
        const quint64 size = offset < available ? qMin(longest, available - offset) : 0;
        const QByteArrayView start = range(offset, size).value_or(QByteArrayView());
        const qsizetype length = start.indexOf('\0');
        return length < 0 ? std::nullopt : std::optional(start.first(length));
    }

private:
    QByteArrayView m_bytes;
};
