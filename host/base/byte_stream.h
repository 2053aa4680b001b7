// Little-endian bytes in memory. The reader never reads past its end: the first short read makes it
// fail, it stays failed, and everything read from then on is zero or empty.
#pragma once

#include "host/base/assert.h"

#include <QByteArray>
#include <QString>

#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <utility>

namespace base
{

static_assert(std::endian::native == std::endian::little, "the byte streams copy numbers as they lie");

/// The numbers that files hold: 8 to 64 bit integers of either sign, float and double.
template <class T>
concept StreamNumber = (std::integral<T> && !std::same_as<T, bool>) || std::floating_point<T>;

inline std::span<const std::byte> asBytes(QByteArrayView bytes)
{
    return {reinterpret_cast<const std::byte *>(bytes.data()), static_cast<std::size_t>(bytes.size())};
}

class ByteReader
{
public:
    explicit ByteReader(QByteArrayView bytes) : m_bytes(asBytes(bytes)) {}

    template <StreamNumber T>
    T get()
    {
        T value{};
        if (const auto taken = bytes(sizeof(T)); !taken.empty())
            std::memcpy(&value, taken.data(), sizeof(T));
        return value;
    }
    template <StreamNumber T>
    void get(T &value)
    {
        value = get<T>();
    }

    /// A view into the stream; empty when fewer than `count` bytes are left.
    std::span<const std::byte> bytes(std::size_t count)
    {
        if (m_failed || count > left()) {
            m_failed = true;
            return {};
        }
        m_offset += count;
        return m_bytes.subspan(m_offset - count, count);
    }
    QByteArray byteArray(std::size_t count);
    /// `units` UTF-16 code units; no terminator is expected or removed.
    QString utf16(std::size_t units);
    void skip(std::size_t count) { static_cast<void>(bytes(count)); }
    /// Goes to a place counted from the beginning; fails past the end.
    void seek(std::size_t offset);

    /// For callers that find a value impossible: they fail the stream and check it once at the end.
    void fail() { m_failed = true; }
    bool failed() const { return m_failed; }
    std::size_t offset() const { return m_offset; }
    std::size_t size() const { return m_bytes.size(); }
    std::size_t left() const { return m_bytes.size() - m_offset; }
    bool atEnd() const { return left() == 0; }

private:
    std::span<const std::byte> m_bytes;
    std::size_t m_offset = 0;
    bool m_failed = false;
};

class ByteWriter
{
public:
    /// The type is written out at the call, `put<std::uint16_t>(n)`, so that the layout can be read there.
    template <StreamNumber T>
    void put(std::type_identity_t<T> value)
    {
        m_bytes.append(reinterpret_cast<const char *>(&value), sizeof value);
    }
    void bytes(QByteArrayView bytes) { m_bytes.append(bytes); }
    /// The code units alone: no count, no terminator.
    void utf16(QStringView text);
    void zeros(std::size_t count) { m_bytes.append(static_cast<qsizetype>(count), '\0'); }
    /// Overwrites a number that was written before, such as a length or a checksum.
    template <StreamNumber T>
    void patch(std::size_t offset, std::type_identity_t<T> value)
    {
        overwrite(offset, {reinterpret_cast<const char *>(&value), sizeof value});
    }

    std::size_t size() const { return static_cast<std::size_t>(m_bytes.size()); }
    void reserve(std::size_t size) { m_bytes.reserve(static_cast<qsizetype>(size)); }
    const QByteArray &data() const { return m_bytes; }
    QByteArray take() { return std::exchange(m_bytes, {}); }

private:
    void overwrite(std::size_t offset, QByteArrayView bytes);

    QByteArray m_bytes;
};

} // namespace base
