// Dimensions, leaders and tolerances.
#include "host/formats/dwg/dwgspecials.h"

#include <algorithm>
#include <array>

namespace dwg
{
namespace
{

using enum DrawingVersion;

enum Hidden : int {
    kFlags = kFirstHidden,
    kBlockScale,
    kOrdinateFlags,
    kLeaderFlag,
    kLeaderOrigin,
    kLeaderTail
};

/// What all dimensions begin with. Their kind stands in the low bits of group 70.
void dimension(Decoder &d)
{
    Bits &data = d.in.data;
    if (d.since(r2010))
        d.integer(280, data.rawChar());
    d.add(210, data.point3());
    const AcGePoint2d middle = data.rawPoint2();
    const double elevation = data.bitDouble();
    const unsigned flags = data.rawChar();
    d.hidden(kFlags, std::int64_t(flags));
    d.add(11, at(middle, elevation));
    d.text(1, d.in.text());
    d.angle(53, data.bitDouble());
    d.angle(51, data.bitDouble());
    d.hidden(kBlockScale, data.point3());
    d.angle(54, data.bitDouble());
    if (d.since(r2000)) {
        d.integer(71, data.bitShort());
        d.integer(72, data.bitShort());
        d.real(41, data.bitDouble());
        d.real(42, data.bitDouble());
    }
    if (d.since(r2007)) {
        for (int group = 73; group <= 75; ++group)
            d.integer(group, data.bit());
    }
    d.add(12, at(data.rawPoint2(), elevation));
    // Bit 7: the text stands where a person put it; bit 5: nobody else uses the block.
    d.integer(70, (flags & 1 ? 0 : 128) | (flags & 2 ? 32 : 0));
}

void writeDimension(Encoder &e)
{
    BitWriter &data = e.data;
    if (e.since(r2010))
        data.rawChar(unsigned(e.integer(280)));
    data.point3(e.point(210));
    const AcGePoint3d middle = e.point(11);
    data.rawPoint2({middle.x, middle.y});
    data.bitDouble(middle.z);
    const auto shown = e.peek(70).integer();
    const auto flags = unsigned(e.hiddenInteger(kFlags)) & ~3u;
    data.rawChar(flags | (shown & 128 ? 0u : 1u) | (shown & 32 ? 2u : 0u));
    e.putText(e.text(1));
    data.bitDouble(e.radians(e.real(53)));
    data.bitDouble(e.radians(e.real(51)));
    data.point3(e.isNew() ? AcGePoint3d(1.0, 1.0, 1.0) : e.hiddenPoint(kBlockScale));
    data.bitDouble(e.radians(e.real(54)));
    data.bitShort(e.small(71));
    data.bitShort(e.small(72));
    data.bitDouble(e.real(41));
    data.bitDouble(e.real(42));
    if (e.since(r2007)) {
        for (int group = 73; group <= 75; ++group)
            data.bit(e.integer(group) != 0);
    }
    data.rawPoint2(e.plane(12));
}

void kindOfDimension(Decoder &d)
{
    const auto flags = std::ranges::find_if(d.out, [](const resbuf &group) { return group.restype == 70; });
    if (flags == d.out.end())
        return;
    static constexpr std::array kKinds{6, 0, 1, 5, 2, 4, 3};
    // An arc counts as an angle by three points, a jogged radius as a radius.
    const bool isArc = d.find(71 + kSubclass);
    const int kind =
        d.in.type() >= kOrdinateDimension && d.in.type() < kOrdinateDimension + int(kKinds.size())
            ? kKinds[std::size_t(d.in.type() - kOrdinateDimension)]
        : isArc ? 5
                : 4;
    std::int64_t value = flags->integer() | kind;
    if (d.in.type() == kOrdinateDimension) {
        const unsigned ordinate = d.in.data.rawChar();
        d.hidden(kOrdinateFlags, std::int64_t(ordinate));
        value |= ordinate & 1 ? 64 : 0; // x
    }
    flags->assign(value);
}

void writeKindOfDimension(Encoder &e)
{
    constexpr int kIsX = 64;
    if (e.place.type == kOrdinateDimension)
        e.data.rawChar((unsigned(e.hiddenInteger(kOrdinateFlags)) & ~1u) |
                       (e.peek(70).integer() & kIsX ? 1u : 0u));
}

void dimensionHandles(Decoder &d)
{
    d.text(3, d.recordName(d.in.reference().handle));
    const QString block = d.recordName(d.in.reference().handle);
    if (!block.isEmpty())
        d.text(2, block);
}

void writeDimensionHandles(Encoder &e)
{
    e.putName(SymbolTable::dimStyle, e.text(3));
    e.putName(SymbolTable::block, e.text(2));
}

void arcOfDimension(Decoder &d)
{
    d.add(16, at(d.in.data.rawPoint2(), 0.0));
}

void writeArcOfDimension(Encoder &e)
{
    e.data.rawPoint2(e.plane(16));
}

void leader(Decoder &d)
{
    Bits &data = d.in.data;
    d.hidden(kLeaderFlag, std::int64_t(data.bit()));
    d.integer(73, data.bitShort());
    d.integer(72, data.bitShort());
    const std::size_t points = d.count(data.bitLong(), 6);
    d.integer(76, std::int64_t(points));
    for (std::size_t i = 0; i < points; ++i)
        d.add(10, data.point3());
    d.hidden(kLeaderOrigin, data.point3());
    d.add(210, data.point3());
    d.add(211, data.point3());
    d.add(212, data.point3());
    if (d.since(DrawingVersion::r14))
        d.add(213, data.point3());
    if (!d.since(r2000))
        data.bitDouble();
    d.real(40, data.bitDouble());
    d.real(41, data.bitDouble());
    d.integer(74, data.bit());
    d.integer(71, data.bit());
    if (d.since(r2000)) {
        d.hidden(kLeaderTail, std::int64_t(data.bitShort()));
        d.hidden(kLeaderTail + 1, std::int64_t(data.bit()));
        d.hidden(kLeaderTail + 2, std::int64_t(data.bit()));
    } else {
        data.bitShort();
        data.bitDouble();
        data.bit();
        data.bit();
        data.bitShort();
        d.integer(77, data.bitShort());
        data.bit();
        data.bit();
    }
    d.handle(340, d.in.reference().handle);
    d.text(3, d.recordName(d.in.reference().handle));
    d.integer(75, 0);
}

void writeLeader(Encoder &e)
{
    BitWriter &data = e.data;
    data.bit(e.hiddenInteger(kLeaderFlag) != 0);
    data.bitShort(e.small(73));
    data.bitShort(e.small(72));
    data.bitLong(std::int32_t(e.left(10)));
    while (e.left(10) != 0)
        data.point3(e.point(10));
    data.point3(e.hiddenPoint(kLeaderOrigin));
    for (int group = 210; group <= 213; ++group)
        data.point3(e.point(group));
    data.bitDouble(e.real(40));
    data.bitDouble(e.real(41));
    data.bit(e.integer(74) != 0);
    data.bit(e.integer(71) != 0);
    data.bitShort(int(e.hiddenInteger(kLeaderTail)));
    data.bit(e.hiddenInteger(kLeaderTail + 1) != 0);
    data.bit(e.hiddenInteger(kLeaderTail + 2) != 0);
    e.putHandleGroup(340);
    e.putName(SymbolTable::dimStyle, e.text(3));
}

void toleranceHead(Decoder &d)
{
    if (d.since(r2000))
        return;
    d.in.data.bitShort();
    d.in.data.bitDouble();
    d.in.data.bitDouble();
}

void writeToleranceHead(Encoder &)
{
    // Only before AC1015.
}

} // namespace

std::span<const SpecialRow> dimensionSpecials()
{
    static constexpr SpecialRow kRows[] = {
        {"dimension", dimension, writeDimension},
        {"kindOfDimension", kindOfDimension, writeKindOfDimension},
        {"dimensionHandles", dimensionHandles, writeDimensionHandles},
        {"arcOfDimension", arcOfDimension, writeArcOfDimension},
        {"leader", leader, writeLeader},
        {"toleranceHead", toleranceHead, writeToleranceHead},
    };
    return kRows;
}

} // namespace dwg
