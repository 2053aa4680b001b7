// Bits of a DWG file in the making: the codes of dwgbits.h the other way round.
//
// Of the forms that a code has for a value, the shortest is written, as the programs do that DWG comes from.
#pragma once

#include "host/formats/dwg/dwgbits.h"

namespace dwg
{

class BitWriter
{
public:
    void bit(bool value) { bits(value, 1); }
    /// The low `count` bits, highest first.
    void bits(std::uint64_t value, int count);
    void twoBits(unsigned value) { bits(value, 2); }
    void rawChar(unsigned value) { bits(value & 0xFF, 8); }
    void rawShort(std::uint16_t value);
    void rawLong(std::uint32_t value);
    void rawDouble(double value);
    void bitShort(int value); ///< The low 16 bits count.
    void bitLong(std::int32_t value);
    void bitLongLong(std::uint64_t value);
    void bitDouble(double value);
    void bitDoubleWithDefault(double value, double fallback);
    void modularChar(std::uint64_t value);
    void signedModularChar(std::int64_t value);
    void modularShort(std::uint32_t value); ///< Below 2^30.
    void objectType(DrawingVersion version, int type);
    void handle(int code, std::uint64_t value);
    void rawPoint2(const AcGePoint2d &value);
    void rawPoint3(const AcGePoint3d &value);
    void point2(const AcGePoint2d &value);
    void point3(const AcGePoint3d &value);
    void extrusion(DrawingVersion version, const AcGePoint3d &value);
    void thickness(DrawingVersion version, double value);
    void bytes(const QByteArray &value);
    /// The first `count` bits of `value`.
    void bits(const QByteArray &value, std::size_t count);
    void append(const BitWriter &other) { bits(other.m_bytes, other.m_size); }
    /// Up to a whole byte.
    void pad(bool ones);

    std::size_t size() const { return m_size; } ///< In bits.
    /// The last byte is filled up with zeros.
    const QByteArray &written() const { return m_bytes; }

private:
    QByteArray m_bytes;
    std::size_t m_size = 0;
};

} // namespace dwg
