#include "host/base/bit_stream.h"

#include <array>
#include <bit>

namespace base
{

void BitReader::seek(std::size_t position)
{
    if (position > m_bytes.size() * 8)
        m_failed = true;
    else
        m_position = position;
}

void BitReader::skip(std::size_t bits)
{
    if (bits > bitsLeft())
        m_failed = true;
    else
        m_position += bits;
}

std::uint8_t BitReader::rawChar()
{
    if (m_failed || bitsLeft() < 8) {
        m_failed = true;
        return 0;
    }
    const std::size_t at = m_position / 8;
    const unsigned shift = m_position % 8;
    unsigned value = std::to_integer<unsigned>(m_bytes[at]) << shift;
    if (shift != 0)
        value |= std::to_integer<unsigned>(m_bytes[at + 1]) >> (8 - shift);
    m_position += 8;
    return std::uint8_t(value);
}

// Least significant byte first.
template <class Number>
Number BitReader::raw()
{
    std::array<std::uint8_t, sizeof(Number)> bytes{};
    if (m_failed || bitsLeft() < 8 * bytes.size()) {
        m_failed = true;
        return Number{};
    }
    const std::byte *const from = m_bytes.data() + m_position / 8;
    const unsigned shift = m_position % 8;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        unsigned value = std::to_integer<unsigned>(from[i]) << shift;
        if (shift != 0)
            value |= std::to_integer<unsigned>(from[i + 1]) >> (8 - shift);
        bytes[i] = std::uint8_t(value);
    }
    m_position += 8 * bytes.size();
    return std::bit_cast<Number>(bytes);
}

std::uint16_t BitReader::rawShort()
{
    return raw<std::uint16_t>();
}

std::uint32_t BitReader::rawLong()
{
    return raw<std::uint32_t>();
}

double BitReader::rawDouble()
{
    return raw<double>();
}

std::int16_t BitReader::bitShort()
{
    switch (twoBits()) {
    case 0:
        return std::int16_t(rawShort());
    case 1:
        return rawChar();
    case 2:
        return 0;
    default:
        return m_failed ? 0 : 256;
    }
}

std::int32_t BitReader::bitLong()
{
    switch (twoBits()) {
    case 0:
        return std::int32_t(rawLong());
    case 1:
        return rawChar();
    case 2:
        return 0;
    default:
        m_failed = true; // No number has this prefix.
        return 0;
    }
}

double BitReader::bitDouble()
{
    switch (twoBits()) {
    case 0:
        return rawDouble();
    case 1:
        return 1.0;
    case 2:
        return 0.0;
    default:
        m_failed = true; // No number has this prefix.
        return 0.0;
    }
}

// The prefix says which of the default's bytes are replaced: none, the low four, those and the two above.
double BitReader::bitDoubleWithDefault(double fallback)
{
    auto bytes = std::bit_cast<std::array<std::uint8_t, 8>>(fallback);
    const std::uint8_t prefix = twoBits();
    if (prefix == 3)
        return rawDouble();
    if (prefix == 2) {
        bytes[4] = rawChar();
        bytes[5] = rawChar();
    }
    if (prefix >= 1) {
        for (std::size_t i = 0; i < 4; ++i)
            bytes[i] = rawChar();
    }
    return m_failed ? 0.0 : std::bit_cast<double>(bytes);
}

} // namespace base
