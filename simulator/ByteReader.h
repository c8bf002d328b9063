#pragma once

#include <QtCore/QByteArrayView>
#include <QtCore/QtEndian>

#include <optional>

/// Reads little-endian numbers and ranges from bytes that may be damaged: whatever lies outside them is no
/// value. Offsets and sizes may be any number.
class ByteReader
{
public:
    explicit ByteReader(QByteArrayView bytes) : m_bytes(bytes) {}

    std::optional<QByteArrayView> range(quint64 offset, quint64 size) const
    {
        const auto available = static_cast<quint64>(m_bytes.size());
        if (offset > available || size > available - offset)
            return {};
        return m_bytes.sliced(static_cast<qsizetype>(offset), static_cast<qsizetype>(size));
    }

    template <typename Number>
    std::optional<Number> number(quint64 offset) const
    {
        const std::optional<QByteArrayView> bytes = range(offset, sizeof(Number));
        if (!bytes)
            return {};
        return qFromLittleEndian<Number>(bytes->data());
    }

    /// As number(), with 0 for what lies outside: where the range has been checked, or 0 means nothing.
    template <typename Number>
    Number numberOrZero(quint64 offset) const
    {
        return number<Number>(offset).value_or(Number{0});
    }

    /// The bytes from offset up to the next null byte, which must come within longest bytes.
    std::optional<QByteArrayView> text(quint64 offset, qsizetype longest = 4096) const
    {
        if (offset >= static_cast<quint64>(m_bytes.size()))
            return {};
        const QByteArrayView rest = m_bytes.sliced(static_cast<qsizetype>(offset));
        const qsizetype length = rest.first(qMin(longest, rest.size())).indexOf('\0');
        if (length < 0)
            return {};
        return rest.first(length);
    }

private:
    QByteArrayView m_bytes;
};
