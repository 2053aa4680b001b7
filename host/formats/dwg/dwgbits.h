// Bits of a DWG file: what objects are made of beyond the plain bit codes of the base.
//
// As in the base, the first short or impossible read makes the reader fail, and everything after it is zero.
#pragma once

#include "host/acdb/dbsource.h"
#include "host/acge/gepoint.h"
#include "host/base/bit_stream.h"

#include <QByteArray>

#include <string_view>

namespace dwg
{

/// How an object refers to another.
enum class Reference : std::uint8_t {
    none = 0,
    softOwner = 2,
    hardOwner = 3,
    softPointer = 4,
    hardPointer = 5
};

struct HandleRef {
    Reference kind = Reference::none;
    std::uint64_t handle = 0;
};

inline std::span<const std::byte> asBytes(std::string_view bytes)
{
    return std::as_bytes(std::span(bytes.data(), bytes.size()));
}

class Bits : public base::BitReader
{
public:
    Bits() : BitReader({}) {}
    explicit Bits(std::string_view bytes) : BitReader(asBytes(bytes)) {}

    std::uint64_t bitLongLong();                                ///< BLL
    std::uint64_t modularChar();                                ///< MC
    std::int64_t signedModularChar();                           ///< MC, 0x40 in the last byte negates
    std::uint32_t modularShort();                               ///< MS
    int objectType(DrawingVersion version);                     ///< OT
    HandleRef handle(std::uint64_t relativeTo);                 ///< H
    AcGePoint2d rawPoint2();                                    ///< 2RD
    AcGePoint3d rawPoint3();                                    ///< 3RD
    AcGePoint2d point2();                                       ///< 2BD
    AcGePoint3d point3();                                       ///< 3BD
    AcGePoint3d extrusion(DrawingVersion);                      ///< BE
    double thickness(DrawingVersion);                           ///< BT
    AcGePoint3d point3WithDefault(const AcGePoint3d &fallback); ///< 3DD
    /// `count` bytes from any bit on; empty when there are not so many.
    QByteArray bytes(std::size_t count);
    /// `count` bits, the last byte filled up with zeros.
    QByteArray bits(std::size_t count);
};

} // namespace dwg
