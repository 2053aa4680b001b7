// Bits in memory, most significant bit of each byte first, as DWG files pack them. The reader never reads
// past its end: the first short read makes it fail, it stays failed, and everything read from then on is
// zero.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace base
{

/// The names of the packed types are those of the published description of the DWG format.
class BitReader
{
public:
    explicit BitReader(std::span<const std::byte> bytes) : m_bytes(bytes) {}

    bool bit() ///< B
    {
        if (m_failed || bitsLeft() == 0) {
            m_failed = true;
            return false;
        }
        const unsigned byte = std::to_integer<unsigned>(m_bytes[m_position / 8]);
        const bool value = byte & (0x80u >> (m_position % 8));
        ++m_position;
        return value;
    }
    std::uint8_t twoBits() ///< BB
    {
        const int high = bit() ? 2 : 0;
        return std::uint8_t(high + (bit() ? 1 : 0));
    }
    std::uint8_t rawChar();                       ///< RC
    std::uint16_t rawShort();                     ///< RS
    std::uint32_t rawLong();                      ///< RL
    double rawDouble();                           ///< RD
    std::int16_t bitShort();                      ///< BS
    std::int32_t bitLong();                       ///< BL
    double bitDouble();                           ///< BD
    double bitDoubleWithDefault(double fallback); ///< DD

    bool failed() const { return m_failed; }
    /// For callers that find a value impossible.
    void fail() { m_failed = true; }
    std::size_t bitsLeft() const { return m_bytes.size() * 8 - m_position; }
    /// In bits.
    std::size_t position() const { return m_position; }
    /// Fails past the end.
    void seek(std::size_t position);
    void skip(std::size_t bits);

private:
    template <class Number>
    Number raw();

    std::span<const std::byte> m_bytes;
    std::size_t m_position = 0; ///< In bits.
    bool m_failed = false;
};

} // namespace base
