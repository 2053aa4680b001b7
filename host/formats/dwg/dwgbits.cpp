#include "host/formats/dwg/dwgbits.h"

namespace dwg
{

std::uint64_t Bits::bitLongLong()
{
    const int high = twoBits() << 1;
    const int count = high + (bit() ? 1 : 0);
    std::uint64_t value = 0;
    for (int i = 0; i < count; ++i)
        value |= std::uint64_t(rawChar()) << (8 * i);
    return failed() ? 0 : value;
}

std::uint64_t Bits::modularChar()
{
    std::uint64_t value = 0;
    for (int shift = 0; shift < 63; shift += 7) {
        const std::uint8_t byte = rawChar();
        value |= std::uint64_t(byte & 0x7F) << shift;
        if (!(byte & 0x80))
            return failed() ? 0 : value;
    }
    fail();
    return 0;
}

std::int64_t Bits::signedModularChar()
{
    std::int64_t value = 0;
    for (int shift = 0; shift < 56; shift += 7) {
        const std::uint8_t byte = rawChar();
        if (byte & 0x80) {
            value |= std::int64_t(byte & 0x7F) << shift;
            continue;
        }
        value |= std::int64_t(byte & 0x3F) << shift;
        return failed() ? 0 : byte & 0x40 ? -value : value;
    }
    fail();
    return 0;
}

std::uint32_t Bits::modularShort()
{
    const std::uint16_t low = rawShort();
    if (!(low & 0x8000))
        return low;
    const std::uint16_t high = rawShort();
    if (high & 0x8000)
        fail(); // No object is that long.
    return failed() ? 0 : (low & 0x7FFFu) | std::uint32_t(high) << 15;
}

int Bits::objectType(DrawingVersion version)
{
    if (version < DrawingVersion::r2010)
        return bitShort();
    switch (twoBits()) {
    case 0:
        return rawChar();
    case 1:
        return rawChar() + 0x1F0;
    default:
        return rawShort();
    }
}

HandleRef Bits::handle(std::uint64_t relativeTo)
{
    const std::uint8_t head = rawChar();
    const int code = head >> 4;
    const int count = head & 0xF;
    if (count > 8)
        fail();
    std::uint64_t value = 0;
    for (int i = 0; i < count && !failed(); ++i)
        value = value << 8 | rawChar();
    if (failed())
        return {};
    switch (code) {
    case 0x6:
        return {Reference::softPointer, relativeTo + 1};
    case 0x8:
        return {Reference::softPointer, relativeTo - 1};
    case 0xA:
        return {Reference::softPointer, relativeTo + value};
    case 0xC:
        return {Reference::softPointer, relativeTo - value};
    default:
        return {code >= 2 && code <= 5 ? Reference(code) : Reference::none, value};
    }
}

AcGePoint2d Bits::rawPoint2()
{
    const double x = rawDouble();
    return {x, rawDouble()};
}

AcGePoint3d Bits::rawPoint3()
{
    const double x = rawDouble();
    const double y = rawDouble();
    return {x, y, rawDouble()};
}

AcGePoint2d Bits::point2()
{
    const double x = bitDouble();
    return {x, bitDouble()};
}

AcGePoint3d Bits::point3()
{
    const double x = bitDouble();
    const double y = bitDouble();
    return {x, y, bitDouble()};
}

AcGePoint3d Bits::extrusion(DrawingVersion version)
{
    return version >= DrawingVersion::r2000 && bit() ? AcGePoint3d{0.0, 0.0, 1.0} : point3();
}

double Bits::thickness(DrawingVersion version)
{
    return version >= DrawingVersion::r2000 && bit() ? 0.0 : bitDouble();
}

AcGePoint3d Bits::point3WithDefault(const AcGePoint3d &fallback)
{
    const double x = bitDoubleWithDefault(fallback.x);
    const double y = bitDoubleWithDefault(fallback.y);
    return {x, y, bitDoubleWithDefault(fallback.z)};
}

QByteArray Bits::bytes(std::size_t count)
{
    if (failed() || count > bitsLeft() / 8) {
        fail();
        return {};
    }
    QByteArray taken(qsizetype(count), Qt::Uninitialized);
    for (char &byte : taken)
        byte = char(rawChar());
    return taken;
}

QByteArray Bits::bits(std::size_t count)
{
    if (failed() || count > bitsLeft()) {
        fail();
        return {};
    }
    QByteArray taken = bytes(count / 8);
    const std::size_t rest = count % 8;
    unsigned last = 0;
    for (std::size_t i = 0; i < rest; ++i)
        last |= (bit() ? 0x80u : 0u) >> i;
    if (rest != 0)
        taken.append(char(last));
    return taken;
}

} // namespace dwg
