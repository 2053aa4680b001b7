#include "host/formats/dwg/dwgbitwriter.h"

#include <algorithm>
#include <array>
#include <bit>

namespace dwg
{

void BitWriter::bits(std::uint64_t value, int count)
{
    while (count > 0) {
        const int used = int(m_size % 8);
        if (used == 0)
            m_bytes.append('\0');
        const int taken = std::min(8 - used, count);
        const unsigned part = unsigned(value >> (count - taken)) & ((1u << taken) - 1);
        char &last = m_bytes[m_bytes.size() - 1];
        last = char(std::uint8_t(last) | part << (8 - used - taken));
        m_size += std::size_t(taken);
        count -= taken;
    }
}

void BitWriter::rawShort(std::uint16_t value)
{
    rawChar(value);
    rawChar(value >> 8);
}

void BitWriter::rawLong(std::uint32_t value)
{
    rawShort(std::uint16_t(value));
    rawShort(std::uint16_t(value >> 16));
}

void BitWriter::rawDouble(double value)
{
    const auto whole = std::bit_cast<std::uint64_t>(value);
    rawLong(std::uint32_t(whole));
    rawLong(std::uint32_t(whole >> 32));
}

void BitWriter::bitShort(int value)
{
    const auto stored = std::uint16_t(value);
    if (stored == 0) {
        twoBits(2);
    } else if (stored == 256) {
        twoBits(3);
    } else if (stored < 256) {
        twoBits(1);
        rawChar(stored);
    } else {
        twoBits(0);
        rawShort(stored);
    }
}

void BitWriter::bitLong(std::int32_t value)
{
    if (value == 0) {
        twoBits(2);
    } else if (value > 0 && value < 256) {
        twoBits(1);
        rawChar(unsigned(value));
    } else {
        twoBits(0);
        rawLong(std::uint32_t(value));
    }
}

void BitWriter::bitLongLong(std::uint64_t value)
{
    const int count = std::min(int(std::bit_width(value) + 7) / 8, 7);
    bits(unsigned(count), 3);
    for (int i = 0; i < count; ++i)
        rawChar(unsigned(value >> (8 * i)));
}

void BitWriter::bitDouble(double value)
{
    const auto whole = std::bit_cast<std::uint64_t>(value);
    if (whole == 0) {
        twoBits(2); // Not for -0.
    } else if (value == 1.0) {
        twoBits(1);
    } else {
        twoBits(0);
        rawDouble(value);
    }
}

void BitWriter::bitDoubleWithDefault(double value, double fallback)
{
    using Bytes = std::array<std::uint8_t, 8>;
    const auto wanted = std::bit_cast<Bytes>(value);
    const auto known = std::bit_cast<Bytes>(fallback);
    const auto differs = [&](std::size_t from, std::size_t to) {
        return !std::equal(wanted.begin() + from, wanted.begin() + to, known.begin() + from);
    };
    if (differs(6, 8)) {
        twoBits(3);
        rawDouble(value);
        return;
    }
    const bool hasSix = differs(4, 6);
    if (!hasSix && !differs(0, 4)) {
        twoBits(0);
        return;
    }
    twoBits(hasSix ? 2 : 1);
    if (hasSix) {
        rawChar(wanted[4]);
        rawChar(wanted[5]);
    }
    for (std::size_t i = 0; i < 4; ++i)
        rawChar(wanted[i]);
}

void BitWriter::modularChar(std::uint64_t value)
{
    for (; value > 0x7F; value >>= 7)
        rawChar(unsigned(value & 0x7F) | 0x80);
    rawChar(unsigned(value));
}

void BitWriter::signedModularChar(std::int64_t value)
{
    std::uint64_t size = value < 0 ? std::uint64_t(0) - std::uint64_t(value) : std::uint64_t(value);
    for (; size > 0x3F; size >>= 7)
        rawChar(unsigned(size & 0x7F) | 0x80);
    rawChar(unsigned(size) | (value < 0 ? 0x40 : 0));
}

void BitWriter::modularShort(std::uint32_t value)
{
    if (value < 0x8000) {
        rawShort(std::uint16_t(value));
        return;
    }
    rawShort(std::uint16_t(value | 0x8000));
    rawShort(std::uint16_t(value >> 15 & 0x7FFF));
}

void BitWriter::objectType(DrawingVersion version, int type)
{
    constexpr int kFirstFar = 0x1F0;
    if (version < DrawingVersion::r2010) {
        bitShort(type);
    } else if (type < 256) {
        twoBits(0);
        rawChar(unsigned(type));
    } else if (type >= kFirstFar && type < kFirstFar + 256) {
        twoBits(1);
        rawChar(unsigned(type - kFirstFar));
    } else {
        twoBits(2);
        rawShort(std::uint16_t(type));
    }
}

void BitWriter::handle(int code, std::uint64_t value)
{
    const int count = int(std::bit_width(value) + 7) / 8;
    bits(unsigned(code), 4);
    bits(unsigned(count), 4);
    bits(value, 8 * count);
}

void BitWriter::rawPoint2(const AcGePoint2d &value)
{
    rawDouble(value.x);
    rawDouble(value.y);
}

void BitWriter::rawPoint3(const AcGePoint3d &value)
{
    rawDouble(value.x);
    rawDouble(value.y);
    rawDouble(value.z);
}

void BitWriter::point2(const AcGePoint2d &value)
{
    bitDouble(value.x);
    bitDouble(value.y);
}

void BitWriter::point3(const AcGePoint3d &value)
{
    bitDouble(value.x);
    bitDouble(value.y);
    bitDouble(value.z);
}

void BitWriter::extrusion(DrawingVersion version, const AcGePoint3d &value)
{
    const bool isUsual = value == AcGePoint3d{0.0, 0.0, 1.0};
    if (version >= DrawingVersion::r2000)
        bit(isUsual);
    if (version < DrawingVersion::r2000 || !isUsual)
        point3(value);
}

void BitWriter::thickness(DrawingVersion version, double value)
{
    if (version >= DrawingVersion::r2000)
        bit(value == 0.0);
    if (version < DrawingVersion::r2000 || value != 0.0)
        bitDouble(value);
}

void BitWriter::bytes(const QByteArray &value)
{
    bits(value, std::size_t(value.size()) * 8);
}

void BitWriter::bits(const QByteArray &value, std::size_t count)
{
    const auto whole = qsizetype(count / 8);
    if (m_size % 8 == 0) {
        m_bytes.append(value.constData(), whole);
        m_size += std::size_t(whole) * 8;
    } else {
        for (qsizetype i = 0; i < whole; ++i)
            rawChar(std::uint8_t(value[i]));
    }
    if (const int rest = int(count % 8); rest != 0)
        bits(std::uint64_t(std::uint8_t(value[whole]) >> (8 - rest)), rest);
}

void BitWriter::pad(bool ones)
{
    if (const int rest = int(m_size % 8); rest != 0)
        bits(ones ? 0xFF : 0, 8 - rest);
}

} // namespace dwg
