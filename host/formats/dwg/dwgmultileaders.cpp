// The leaders and the content of a MULTILEADER, and its other fields.
#include "host/formats/dwg/dwgspecials.h"

#include <array>

namespace dwg
{
namespace
{

constexpr DrawingVersion r2010 = DrawingVersion::r2010;

/// The colour as its 32 bits, which is how multileaders show it in DXF.
std::int64_t colorBits(Decoder &d)
{
    const int index = d.in.data.bitShort();
    if (!d.since(DrawingVersion::r2004)) {
        const std::uint32_t bits = index == 256 ? 0xC0000000
                                   : index == 0 ? 0xC1000000
                                                : 0xC3000000 | unsigned(index);
        return std::int32_t(bits);
    }
    const std::int32_t value = d.in.data.bitLong();
    const unsigned flags = d.in.data.rawChar();
    if (flags & 1)
        d.in.text();
    if (flags & 2)
        d.in.text();
    return value;
}

void leaderLine(Decoder &d)
{
    Bits &data = d.in.data;
    d.text(304, QStringLiteral("LEADER_LINE{"));
    const std::size_t points = d.count(data.bitLong(), 6);
    for (std::size_t i = 0; i < points; ++i)
        d.add(10, data.point3());
    const std::size_t breaks = d.count(data.bitLong(), 4);
    for (std::size_t i = 0; i < breaks && !data.failed(); ++i) {
        d.integer(90, data.bitLong());
        const std::size_t pairs = d.count(data.bitLong(), 12);
        for (std::size_t k = 0; k < pairs; ++k) {
            d.add(11, data.point3());
            d.add(12, data.point3());
        }
    }
    d.integer(91, data.bitLong());
    if (d.since(r2010)) {
        const int type = data.bitShort();
        const std::int64_t color = colorBits(d);
        const std::uint64_t linetype = d.in.reference().handle;
        const int lineweight = data.bitLong();
        const double arrowSize = data.bitDouble();
        const std::uint64_t arrow = d.in.reference().handle;
        const int flags = data.bitLong();
        const auto isOwn = [flags](int bit) { return flags & bit; };
        if (isOwn(1))
            d.integer(170, type);
        if (isOwn(2))
            d.integer(92, color);
        if (isOwn(4))
            d.handle(340, linetype);
        if (isOwn(8))
            d.integer(171, lineweight);
        if (isOwn(16))
            d.real(40, arrowSize);
        if (isOwn(32))
            d.handle(341, arrow);
        if (flags != 0)
            d.integer(93, flags);
    }
    d.text(305, QStringLiteral("}"));
}

void leaderRoot(Decoder &d)
{
    Bits &data = d.in.data;
    d.text(302, QStringLiteral("LEADER{"));
    d.integer(290, data.bit());
    d.integer(291, data.bit());
    d.add(10, data.point3());
    d.add(11, data.point3());
    const std::size_t breaks = d.count(data.bitLong(), 12);
    for (std::size_t i = 0; i < breaks; ++i) {
        d.add(12, data.point3());
        d.add(13, data.point3());
    }
    d.integer(90, data.bitLong());
    d.real(40, data.bitDouble());
    const std::size_t lines = d.count(data.bitLong(), 6);
    for (std::size_t i = 0; i < lines && !data.failed(); ++i)
        leaderLine(d);
    if (d.since(r2010))
        d.integer(271, data.bitShort());
    d.text(303, QStringLiteral("}"));
}

void textContent(Decoder &d)
{
    Bits &data = d.in.data;
    d.text(304, d.in.text());
    d.add(11, data.point3());
    d.handle(340, d.in.reference().handle);
    d.add(12, data.point3());
    d.add(13, data.point3());
    for (int group = 42; group <= 45; ++group)
        d.real(group, data.bitDouble());
    d.integer(170, data.bitShort());
    d.integer(90, colorBits(d));
    d.integer(171, data.bitShort());
    d.integer(172, data.bitShort());
    d.integer(91, colorBits(d));
    d.real(141, data.bitDouble());
    d.integer(92, data.bitLong());
    d.integer(291, data.bit());
    d.integer(292, data.bit());
    d.integer(173, data.bitShort());
    d.integer(293, data.bit());
    d.real(142, data.bitDouble());
    d.real(143, data.bitDouble());
    d.integer(294, data.bit());
    const std::size_t columns = d.count(data.bitLong(), 2);
    for (std::size_t i = 0; i < columns; ++i)
        d.real(144, data.bitDouble());
    d.integer(295, data.bit());
    data.bit();
}

void blockContent(Decoder &d)
{
    Bits &data = d.in.data;
    d.handle(341, d.in.reference().handle);
    for (int group = 14; group <= 16; ++group)
        d.add(group, data.point3());
    d.real(46, data.bitDouble());
    d.integer(93, colorBits(d));
    for (int i = 0; i < 16; ++i)
        d.real(47, data.bitDouble());
}

/// Leaders stand in front of the content, in DXF behind it.
void content(Decoder &d)
{
    Bits &data = d.in.data;
    ResbufList before = std::exchange(d.out, {});
    const std::size_t roots = d.count(data.bitLong(), 14);
    for (std::size_t i = 0; i < roots && !data.failed(); ++i)
        leaderRoot(d);
    const ResbufList leaders = std::exchange(d.out, std::move(before));
    d.text(300, QStringLiteral("CONTEXT_DATA{"));
    d.real(40, data.bitDouble());
    d.add(10, data.point3());
    for (const int group : {41, 140, 145})
        d.real(group, data.bitDouble());
    for (int group = 174; group <= 177; ++group)
        d.integer(group, data.bitShort());
    const bool hasText = data.bit();
    d.integer(290, hasText);
    if (hasText)
        textContent(d);
    const bool hasBlock = !hasText && data.bit();
    d.integer(296, hasBlock);
    if (hasBlock)
        blockContent(d);
    for (int group = 110; group <= 112; ++group)
        d.add(group, data.point3());
    d.integer(297, data.bit());
    int top = 0, bottom = 0;
    if (d.since(r2010)) {
        top = data.bitShort();
        bottom = data.bitShort();
    }
    d.out.insert(d.out.end(), leaders.begin(), leaders.end());
    if (d.since(r2010)) {
        d.integer(272, bottom);
        d.integer(273, top);
    }
    d.text(301, QStringLiteral("}"));
}

void labels(Decoder &d)
{
    Bits &data = d.in.data;
    if (!d.since(r2010)) {
        const std::size_t arrows = d.count(data.bitLong());
        for (std::size_t i = 0; i < arrows; ++i) {
            d.integer(94, data.bit());
            d.handle(345, d.in.reference().handle);
        }
    }
    const std::size_t labels = d.count(data.bitLong(), 4);
    for (std::size_t i = 0; i < labels && !data.failed(); ++i) {
        d.handle(330, d.in.reference().handle);
        d.text(302, d.in.text());
        d.integer(177, data.bitShort());
        d.real(44, data.bitDouble());
    }
}

void multileader(Decoder &d)
{
    Bits &data = d.in.data;
    if (d.since(r2010))
        d.integer(270, data.bitShort());
    content(d);
    d.handle(340, d.in.reference().handle);
    d.integer(90, data.bitLong());
    d.integer(170, data.bitShort());
    d.integer(91, colorBits(d));
    d.handle(341, d.in.reference().handle);
    d.integer(171, data.bitLong());
    d.integer(290, data.bit());
    d.integer(291, data.bit());
    d.real(41, data.bitDouble());
    d.optionalHandle(342);
    d.real(42, data.bitDouble());
    d.integer(172, data.bitShort());
    d.handle(343, d.in.reference().handle);
    for (const int group : {173, 95, 174, 175})
        d.integer(group, data.bitShort());
    d.integer(92, colorBits(d));
    d.integer(292, data.bit());
    d.optionalHandle(344);
    d.integer(93, colorBits(d));
    d.add(10, data.point3());
    d.real(43, data.bitDouble());
    d.integer(176, data.bitShort());
    d.integer(293, data.bit());
    labels(d);
    d.integer(294, data.bit());
    d.integer(178, data.bitShort());
    d.integer(179, data.bitShort());
    d.real(45, data.bitDouble());
    if (d.since(r2010)) {
        for (const int group : {271, 273, 272})
            d.integer(group, data.bitShort());
    }
    if (d.since(DrawingVersion::r2013))
        d.integer(295, data.bit());
}

void multileaderStyle(Decoder &d)
{
    Bits &data = d.in.data;
    if (d.since(r2010))
        d.integer(179, data.bitShort());
    for (int group = 170; group <= 172; ++group)
        d.integer(group, data.bitShort());
    d.integer(90, data.bitLong());
    d.real(40, data.bitDouble());
    d.real(41, data.bitDouble());
    d.integer(173, data.bitShort());
    d.integer(91, colorBits(d));
    d.handle(340, d.in.reference().handle);
    d.integer(92, data.bitLong());
    d.integer(290, data.bit());
    d.real(42, data.bitDouble());
    d.integer(291, data.bit());
    d.real(43, data.bitDouble());
    d.text(3, d.in.text());
    d.optionalHandle(341);
    d.real(44, data.bitDouble());
    d.text(300, d.in.text());
    d.handle(342, d.in.reference().handle);
    for (const int group : {174, 178, 175, 176})
        d.integer(group, data.bitShort());
    d.integer(93, colorBits(d));
    d.real(45, data.bitDouble());
    d.integer(292, data.bit());
    d.integer(297, data.bit());
    d.real(46, data.bitDouble());
    d.optionalHandle(343);
    d.integer(94, colorBits(d));
    const AcGePoint3d scale = data.point3();
    d.real(47, scale.x);
    d.real(49, scale.y);
    d.real(140, scale.z);
    d.integer(293, data.bit());
    d.real(141, data.bitDouble());
    d.integer(294, data.bit());
    d.integer(177, data.bitShort());
    d.real(142, data.bitDouble());
    d.integer(296, data.bit());
    d.integer(295, data.bit());
    d.real(143, data.bitDouble());
    if (d.since(r2010)) {
        for (const int group : {271, 273, 272})
            d.integer(group, data.bitShort());
    }
    if (d.since(DrawingVersion::r2013))
        d.integer(298, data.bit());
}

} // namespace

std::span<const SpecialRow> multileaderSpecials()
{
    static constexpr SpecialRow kRows[] = {
        {"multileader", multileader, nullptr},
        {"multileaderStyle", multileaderStyle, nullptr},
    };
    return kRows;
}

} // namespace dwg
