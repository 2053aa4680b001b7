#include "host/formats/dwg/dwgspecials.h"

#include "host/base/code_page.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace dwg
{
namespace
{

constexpr DrawingVersion r2000 = DrawingVersion::r2000;
constexpr DrawingVersion r2004 = DrawingVersion::r2004;
constexpr DrawingVersion r2007 = DrawingVersion::r2007;
constexpr DrawingVersion r2010 = DrawingVersion::r2010;
constexpr DrawingVersion r2013 = DrawingVersion::r2013;
constexpr DrawingVersion r2018 = DrawingVersion::r2018;

AcGePoint3d at(const AcGePoint2d &plane, double z)
{
    return {plane.x, plane.y, z};
}

// Lines, faces, texts ---------------------------------------------------------------------------

void line(Decoder &d)
{
    AcGePoint3d start, end;
    if (!d.in.facts().since(r2000)) {
        start = d.in.data.point3();
        end = d.in.data.point3();
    } else {
        const bool isFlat = d.in.data.bit();
        start.x = d.in.data.rawDouble();
        end.x = d.in.data.bitDoubleWithDefault(start.x);
        start.y = d.in.data.rawDouble();
        end.y = d.in.data.bitDoubleWithDefault(start.y);
        if (!isFlat) {
            start.z = d.in.data.rawDouble();
            end.z = d.in.data.bitDoubleWithDefault(start.z);
        }
    }
    d.add(10, start);
    d.add(11, end);
}

void face(Decoder &d)
{
    std::array<AcGePoint3d, 4> corners;
    int flags = 0;
    if (!d.in.facts().since(r2000)) {
        for (AcGePoint3d &corner : corners)
            corner = d.in.data.point3();
        flags = d.in.data.bitShort();
    } else {
        const bool hasNoFlags = d.in.data.bit();
        const bool isFlat = d.in.data.bit();
        corners[0] = at(d.in.data.rawPoint2(), 0.0);
        if (!isFlat)
            corners[0].z = d.in.data.rawDouble();
        for (std::size_t i = 1; i < corners.size(); ++i)
            corners[i] = d.in.data.point3WithDefault(corners[i - 1]);
        if (!hasNoFlags)
            flags = d.in.data.bitShort();
    }
    for (std::size_t i = 0; i < corners.size(); ++i)
        d.add(10 + int(i), corners[i]);
    d.integer(70, flags);
}

void solid(Decoder &d)
{
    const double elevation = d.in.data.bitDouble();
    for (int i = 0; i < 4; ++i)
        d.add(10 + i, at(d.in.data.rawPoint2(), elevation));
}

/// What a TEXT has of its own since AC1015: a byte tells what is not the usual value.
void text(Decoder &d)
{
    const bool isOld = !d.in.facts().since(r2000);
    const unsigned absent = isOld ? 0 : d.in.data.rawChar();
    const auto has = [absent](unsigned bit) { return !(absent & bit); };
    const auto number = [&] { return isOld ? d.in.data.bitDouble() : d.in.data.rawDouble(); };
    const double elevation = has(0x01) ? number() : 0.0;
    const AcGePoint2d insertion = d.in.data.rawPoint2();
    AcGePoint2d alignment;
    if (isOld) {
        alignment = d.in.data.rawPoint2();
    } else if (has(0x02)) {
        alignment.x = d.in.data.bitDoubleWithDefault(insertion.x);
        alignment.y = d.in.data.bitDoubleWithDefault(insertion.y);
    }
    const AcGePoint3d normal = isOld ? d.in.data.point3() : d.in.data.extrusion(d.in.version());
    d.real(39, isOld ? d.in.data.bitDouble() : d.in.data.thickness(d.in.version()));
    d.angle(51, has(0x04) ? number() : 0.0);
    d.angle(50, has(0x08) ? number() : 0.0);
    d.real(40, number());
    d.real(41, has(0x10) ? number() : 1.0);
    d.text(1, d.in.text());
    d.integer(71, has(0x20) ? d.in.data.bitShort() : 0);
    const int horizontal = has(0x40) ? d.in.data.bitShort() : 0;
    const int vertical = has(0x80) ? d.in.data.bitShort() : 0;
    d.integer(72, horizontal);
    d.integer(d.in.type() == kText ? 73 : 74, vertical);
    d.add(10, at(insertion, elevation));
    d.add(210, normal);
    if (horizontal != 0 || vertical != 0)
        d.add(11, at(alignment, elevation));
}

/// ATTRIB and ATTDEF behind the text; attributes of several lines are not read.
void attribute(Decoder &d)
{
    if (d.in.facts().since(r2010))
        d.integer(280 + kSubclass, d.in.data.rawChar());
    if (d.in.facts().since(r2018) && d.in.data.rawChar() != 1) {
        d.in.data.fail();
        return;
    }
    d.text(2, d.in.text());
    d.integer(73 + kSubclass, d.in.data.bitShort());
    d.integer(70 + kSubclass, d.in.data.rawChar());
    if (d.in.facts().since(r2007))
        d.integer(280 + 2 * kSubclass, d.in.data.bit());
    if (d.in.type() != kAttdef)
        return;
    if (d.in.facts().since(r2010))
        d.in.data.rawChar();
    d.text(3, d.in.text());
}

/// Long texts stand in pieces of 250 characters, all but the last in group 3.
void pieces(Decoder &d, const QString &text, int lastGroup, int group)
{
    constexpr qsizetype kPiece = 250;
    qsizetype begin = 0;
    for (; text.size() - begin > kPiece; begin += kPiece)
        d.text(group, text.mid(begin, kPiece));
    d.text(lastGroup, text.mid(begin));
}

void backgroundOfMtext(Decoder &d)
{
    if (!d.in.facts().since(r2004))
        return;
    const int flags = d.in.data.bitLong();
    if (flags == 0)
        return;
    d.integer(90, flags);
    const int frame = d.in.facts().since(r2018) ? 0x10 : 0;
    if (!(flags & (0x01 | frame)))
        return;
    d.real(45, d.in.data.bitDouble());
    d.color(63, d.in.color());
    d.integer(441, d.in.data.bitLong());
}

/// AC1032 files the columns of a text with it.
void columnsOfMtext(Decoder &d)
{
    if (!d.in.facts().since(r2018) || d.in.data.bit())
        return;
    d.in.data.bitShort();
    d.in.data.bit();
    d.in.reference();
    const int attachment = d.in.data.bitLong();
    const AcGePoint3d direction = d.in.data.point3();
    const AcGePoint3d insertion = d.in.data.point3();
    const double width = d.in.data.bitDouble();
    const double height = d.in.data.bitDouble();
    const double extentsWidth = d.in.data.bitDouble();
    const double extentsHeight = d.in.data.bitDouble();
    const int type = d.in.data.bitShort();
    d.text(101 + kSubclass, QStringLiteral("Embedded Object"));
    d.integer(70 + kSubclass, attachment);
    d.add(10 + kSubclass, direction);
    d.add(11 + kSubclass, insertion);
    d.real(40 + kSubclass, width);
    d.real(41 + kSubclass, height);
    d.real(42 + kSubclass, extentsWidth);
    d.real(43 + kSubclass, extentsHeight);
    d.integer(71 + kSubclass, type);
    if (type == 0)
        return;
    const std::size_t heights = d.count(d.in.data.bitLong());
    const double columnWidth = d.in.data.bitDouble();
    const double gutter = d.in.data.bitDouble();
    const bool isAutomatic = d.in.data.bit();
    const bool isReversed = d.in.data.bit();
    d.integer(72 + kSubclass, std::int64_t(heights));
    d.real(44 + kSubclass, columnWidth);
    d.real(45 + kSubclass, gutter);
    d.integer(73 + kSubclass, isAutomatic);
    d.integer(74 + kSubclass, isReversed);
    if (!isAutomatic && type == 2) {
        for (std::size_t i = 0; i < heights && !d.in.data.failed(); ++i)
            d.real(46 + kSubclass, d.in.data.bitDouble());
    }
}

void mtext(Decoder &d)
{
    pieces(d, d.in.text(), 1, 3);
    d.text(7, d.recordName(d.in.reference().handle));
    if (d.in.facts().since(r2000)) {
        d.integer(73, d.in.data.bitShort());
        d.real(44, d.in.data.bitDouble());
        d.in.data.bit();
    }
    backgroundOfMtext(d);
    columnsOfMtext(d);
}

// Blocks, polylines ------------------------------------------------------------------------------

void insertScale(Decoder &d)
{
    double x = 1.0, y = 1.0, z = 1.0;
    if (!d.in.facts().since(r2000)) {
        x = d.in.data.bitDouble();
        y = d.in.data.bitDouble();
        z = d.in.data.bitDouble();
    } else {
        const int flags = d.in.data.twoBits();
        if (flags != 3 && flags != 1)
            x = d.in.data.rawDouble();
        y = z = x;
        if (flags < 2) {
            y = d.in.data.bitDoubleWithDefault(x);
            z = d.in.data.bitDoubleWithDefault(x);
        }
    }
    d.real(41, x);
    d.real(42, y);
    d.real(43, z);
}

void hasParts(Decoder &d)
{
    d.hasParts = d.in.data.bit();
    d.integer(66, d.hasParts);
}

void partCount(Decoder &d)
{
    if (d.in.facts().since(r2004))
        d.partCount =
            d.hasParts ? std::size_t(std::max(d.in.data.bitLong(), 0)) : std::size_t(d.in.data.bitLong() * 0);
}

void parts(Decoder &d)
{
    if (!d.hasParts)
        return;
    if (!d.in.facts().since(r2004)) {
        d.parts.first = d.in.reference().handle;
        d.parts.last = d.in.reference().handle;
    } else if (d.partCount > d.in.handles.bitsLeft() / 8) {
        d.in.handles.fail();
    } else {
        for (std::size_t i = 0; i < d.partCount; ++i)
            d.parts.owned.push_back(d.in.reference().handle);
    }
    d.parts.end = d.in.reference().handle;
}

void vertex2d(Decoder &d)
{
    d.integer(70, d.in.data.rawChar());
    AcGePoint3d place = d.in.data.point3();
    PlanePolyline whole;
    if (const auto known = d.neighbours.polylines.find(d.common.owner.handle);
        known != d.neighbours.polylines.end())
        whole = known->second;
    place.z = whole.elevation;
    const double start = d.in.data.bitDouble();
    const double end = start < 0.0 ? -start : d.in.data.bitDouble(); // One for both is stored once, negated.
    d.add(10, place);
    // DXF says only what differs from the whole.
    if (std::abs(start) != whole.startWidth || end != whole.endWidth) {
        d.real(40, std::abs(start));
        d.real(41, end);
    }
    d.real(42, d.in.data.bitDouble());
    if (d.in.facts().since(r2010))
        d.integer(91, d.in.data.bitLong());
    const double tangent = d.in.data.bitDouble();
    d.angle(50, tangent);
}

void faceRecord(Decoder &d)
{
    d.add(10, AcGePoint3d());
    d.integer(70, 128);
    for (int group = 71; group <= 74; ++group)
        d.integer(group, d.in.data.bitShort());
}

void polyline2d(Decoder &d)
{
    d.integer(66, 1);
    d.integer(70, d.in.data.bitShort());
    d.integer(75, d.in.data.bitShort());
    d.real(40, d.in.data.bitDouble());
    d.real(41, d.in.data.bitDouble());
    d.real(39, d.in.data.thickness(d.in.version()));
    d.add(10, AcGePoint3d(0.0, 0.0, d.in.data.bitDouble()));
    d.add(210, d.in.data.extrusion(d.in.version()));
}

void polyline3d(Decoder &d)
{
    const unsigned smooth = d.in.data.rawChar();
    const unsigned flags = d.in.data.rawChar();
    d.integer(66, 1);
    d.add(10, AcGePoint3d());
    d.integer(70, 8 | (flags & 1) | (smooth & 3 ? 4 : 0));
    d.integer(75, smooth & 1 ? 5 : smooth & 2 ? 6 : 0);
}

void meshOf(Decoder &d, int flag, std::initializer_list<int> groups)
{
    d.integer(66, 1);
    d.add(10, AcGePoint3d());
    if (flag == 64)
        d.integer(70, flag);
    for (const int group : groups)
        d.integer(group, group == 70 ? d.in.data.bitShort() | flag : d.in.data.bitShort());
}

void polyfaceMesh(Decoder &d)
{
    meshOf(d, 64, {71, 72});
}

void polygonMesh(Decoder &d)
{
    meshOf(d, 16, {70, 75, 71, 72, 73, 74});
}

void lwPolyline(Decoder &d)
{
    Bits &data = d.in.data;
    const int flags = data.bitShort();
    const double width = flags & 4 ? data.bitDouble() : 0.0;
    if (!(flags & 32))
        d.real(43, width);
    if (flags & 8)
        d.real(38, data.bitDouble());
    if (flags & 2)
        d.real(39, data.bitDouble());
    if (flags & 1)
        d.add(210, data.point3());
    const std::size_t points = d.count(data.bitLong(), 4);
    const std::size_t bulges = flags & 16 ? d.count(data.bitLong(), 2) : 0;
    const std::size_t ids = flags & 1024 && d.in.facts().since(r2010) ? d.count(data.bitLong(), 2) : 0;
    const std::size_t widths = flags & 32 ? d.count(data.bitLong(), 4) : 0;
    std::vector<AcGePoint2d> places(points);
    for (std::size_t i = 0; i < points; ++i) {
        if (i == 0 || !d.in.facts().since(r2000)) {
            places[i] = data.rawPoint2();
            continue;
        }
        places[i].x = data.bitDoubleWithDefault(places[i - 1].x);
        places[i].y = data.bitDoubleWithDefault(places[i - 1].y);
    }
    std::vector<double> bulge(points);
    for (std::size_t i = 0; i < bulges; ++i) {
        const double value = data.bitDouble();
        if (i < points)
            bulge[i] = value;
    }
    std::vector<std::int64_t> id(ids);
    for (std::int64_t &value : id)
        value = data.bitLong();
    std::vector<AcGePoint2d> ends(widths);
    for (AcGePoint2d &value : ends)
        value = data.point2();
    d.integer(90, std::int64_t(points));
    d.integer(70, (flags & 512 ? 1 : 0) | (flags & 256 ? 128 : 0));
    for (std::size_t i = 0; i < points; ++i) {
        d.add(10 + kSubclass, places[i]);
        if (i < widths) {
            d.real(40 + kSubclass, ends[i].x);
            d.real(41 + kSubclass, ends[i].y);
        }
        if (bulge[i] != 0.0)
            d.real(42 + kSubclass, bulge[i]);
        if (i < ids)
            d.integer(91 + kSubclass, id[i]);
    }
}

// Dimensions, leaders ----------------------------------------------------------------------------

/// What all dimensions begin with. Their kind stands in the low bits of group 70.
void dimension(Decoder &d)
{
    Bits &data = d.in.data;
    if (d.in.facts().since(r2010))
        d.integer(280, data.rawChar());
    d.add(210, data.point3());
    const AcGePoint2d middle = data.rawPoint2();
    const double elevation = data.bitDouble();
    const unsigned flags = data.rawChar();
    d.add(11, at(middle, elevation));
    d.text(1, d.in.text());
    d.angle(53, data.bitDouble());
    d.angle(51, data.bitDouble());
    data.point3(); // Scale of the block, which DXF does not have.
    d.angle(54, data.bitDouble());
    if (d.in.facts().since(r2000)) {
        d.integer(71, data.bitShort());
        d.integer(72, data.bitShort());
        d.real(41, data.bitDouble());
        d.real(42, data.bitDouble());
    }
    if (d.in.facts().since(r2007)) {
        for (int group = 73; group <= 75; ++group)
            d.integer(group, data.bit());
    }
    d.add(12, at(data.rawPoint2(), elevation));
    // Bit 7: the text stands where a person put it; bit 5: nobody else uses the block.
    d.integer(70, (flags & 1 ? 0 : 128) | (flags & 2 ? 32 : 0));
}

void kindOfDimension(Decoder &d)
{
    const auto flags = std::ranges::find_if(d.out, [](const resbuf &group) { return group.restype == 70; });
    if (flags == d.out.end())
        return;
    static constexpr std::array kKinds{6, 0, 1, 5, 2, 4, 3};
    constexpr int kFirst = 0x14;
    // An arc counts as an angle by three points, a jogged radius as a radius.
    const bool isArc = d.find(71 + kSubclass);
    const int kind = d.in.type() >= kFirst && d.in.type() < kFirst + int(kKinds.size())
                         ? kKinds[std::size_t(d.in.type() - kFirst)]
                     : isArc ? 5
                             : 4;
    std::int64_t value = flags->integer() | kind;
    if (d.in.type() == kFirst && d.in.data.rawChar() & 1)
        value |= 64; // Of an ordinate: x.
    flags->assign(value);
}

void dimensionHandles(Decoder &d)
{
    d.text(3, d.recordName(d.in.reference().handle));
    const QString block = d.recordName(d.in.reference().handle);
    if (!block.isEmpty())
        d.text(2, block);
}

void arcOfDimension(Decoder &d)
{
    d.add(16, at(d.in.data.rawPoint2(), 0.0));
}

void leader(Decoder &d)
{
    Bits &data = d.in.data;
    data.bit();
    d.integer(73, data.bitShort());
    d.integer(72, data.bitShort());
    const std::size_t points = d.count(data.bitLong(), 6);
    d.integer(76, std::int64_t(points));
    for (std::size_t i = 0; i < points; ++i)
        d.add(10, data.point3());
    data.point3(); // Origin
    d.add(210, data.point3());
    d.add(211, data.point3());
    d.add(212, data.point3());
    if (d.in.facts().since(DrawingVersion::r14))
        d.add(213, data.point3());
    if (!d.in.facts().since(r2000))
        data.bitDouble();
    d.real(40, data.bitDouble());
    d.real(41, data.bitDouble());
    d.integer(74, data.bit());
    d.integer(71, data.bit());
    if (!d.in.facts().since(r2000)) {
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

void toleranceHead(Decoder &d)
{
    if (d.in.facts().since(r2000))
        return;
    d.in.data.bitShort();
    d.in.data.bitDouble();
    d.in.data.bitDouble();
}

void mline(Decoder &d)
{
    Bits &data = d.in.data;
    d.real(40, data.bitDouble());
    d.integer(70, data.rawChar());
    const AcGePoint3d base = data.point3();
    const AcGePoint3d normal = data.point3();
    const int open = data.bitShort();
    const std::size_t lines = data.rawChar();
    const std::size_t vertices = d.count(data.bitShort(), 18);
    d.integer(71, open);
    d.integer(72, std::int64_t(vertices));
    d.integer(73, std::int64_t(lines));
    d.add(10, base);
    d.add(210, normal);
    for (std::size_t i = 0; i < vertices && !data.failed(); ++i) {
        for (int group = 11; group <= 13; ++group)
            d.add(group + kSubclass, data.point3());
        for (std::size_t line = 0; line < lines && !data.failed(); ++line) {
            for (const auto &[countGroup, valueGroup] : {std::pair{74, 41}, std::pair{75, 42}}) {
                const std::size_t values = d.count(data.bitShort(), 2);
                d.integer(countGroup + kSubclass, std::int64_t(values));
                for (std::size_t v = 0; v < values; ++v)
                    d.real(valueGroup + kSubclass, data.bitDouble());
            }
        }
    }
    const std::uint64_t style = d.in.reference().handle;
    d.text(2, d.recordName(style));
    d.handle(340, style);
}

// Curves -----------------------------------------------------------------------------------------

void spline(Decoder &d)
{
    Bits &data = d.in.data;
    int scenario = data.bitLong();
    int flags1 = 0;
    int knotParameter = 0;
    if (d.in.facts().since(r2013)) {
        flags1 = data.bitLong();
        knotParameter = data.bitLong();
        scenario = knotParameter == 15 || !(flags1 & 1) ? 1 : 2;
    }
    const int degree = data.bitLong();
    std::size_t knots = 0, controls = 0, fits = 0;
    int flags = 0;
    bool weighted = false;
    if (scenario == 2) {
        d.real(44, data.bitDouble());
        d.add(12, data.point3());
        d.add(13, data.point3());
        fits = d.count(data.bitLong(), 6);
    } else {
        flags |= data.bit() ? 4 : 0;
        flags |= data.bit() ? 1 : 0;
        flags |= data.bit() ? 2 : 0;
        d.real(42, data.bitDouble());
        d.real(43, data.bitDouble());
        knots = d.count(data.bitLong(), 2);
        controls = d.count(data.bitLong(), 6);
        weighted = data.bit();
    }
    d.integer(71, degree);
    d.integer(72, std::int64_t(knots));
    d.integer(73, std::int64_t(controls));
    d.integer(74, std::int64_t(fits));
    for (std::size_t i = 0; i < knots; ++i)
        d.real(40, data.bitDouble());
    for (std::size_t i = 0; i < controls; ++i) {
        d.add(10 + kSubclass, data.point3());
        if (weighted)
            d.real(41 + kSubclass, data.bitDouble());
    }
    for (std::size_t i = 0; i < fits; ++i)
        d.add(11 + kSubclass, data.point3());
    const bool isFlat = std::ranges::all_of(d.out, [](const resbuf &group) {
        const int code = group.restype % kSubclass;
        return code < 10 || code > 13 || group.point().z == 0.0;
    });
    if (flags1 & 4)
        flags |= 1;
    if (scenario == 2)
        flags |= 32 | 1024; // By the points that it goes through.
    if (isFlat) {
        flags |= 8;
        d.add(210, AcGePoint3d(0.0, 0.0, 1.0));
    }
    d.integer(70, flags);
}

/// A closed curve of a hatch's boundary, by its segments.
void hatchEdges(Decoder &d)
{
    Bits &data = d.in.data;
    const std::size_t edges = d.count(data.bitLong(), 8);
    d.integer(93, std::int64_t(edges));
    for (std::size_t i = 0; i < edges && !data.failed(); ++i) {
        const int type = data.rawChar();
        d.integer(72, type);
        if (type == 1) {
            d.add(10, data.rawPoint2());
            d.add(11, data.rawPoint2());
        } else if (type == 2 || type == 3) {
            d.add(10, data.rawPoint2());
            if (type == 3)
                d.add(11, data.rawPoint2());
            d.real(40, data.bitDouble());
            d.angle(50, data.bitDouble());
            d.angle(51, data.bitDouble());
            d.integer(73, data.bit());
        } else if (type == 4) {
            const int degree = data.bitLong();
            const bool isRational = data.bit();
            const bool isPeriodic = data.bit();
            const std::size_t knots = d.count(data.bitLong(), 2);
            const std::size_t controls = d.count(data.bitLong(), 128);
            d.integer(94, degree);
            d.integer(73, isRational);
            d.integer(74, isPeriodic);
            d.integer(95, std::int64_t(knots));
            d.integer(96, std::int64_t(controls));
            for (std::size_t k = 0; k < knots; ++k)
                d.real(40, data.bitDouble());
            for (std::size_t k = 0; k < controls; ++k) {
                d.add(10, data.rawPoint2());
                if (isRational)
                    d.real(42, data.bitDouble());
            }
            if (d.in.facts().since(r2010)) {
                const std::size_t fits = d.count(data.bitLong(), 128);
                d.integer(97, std::int64_t(fits));
                for (std::size_t k = 0; k < fits; ++k)
                    d.add(11, data.rawPoint2());
                if (fits != 0) {
                    d.add(12, data.rawPoint2());
                    d.add(13, data.rawPoint2());
                }
            }
        } else {
            data.fail();
        }
    }
}

void hatchPolyline(Decoder &d)
{
    Bits &data = d.in.data;
    const bool hasBulges = data.bit();
    const bool isClosed = data.bit();
    const std::size_t points = d.count(data.bitLong(), 128);
    d.integer(72, hasBulges);
    d.integer(73, isClosed);
    d.integer(93, std::int64_t(points));
    for (std::size_t i = 0; i < points; ++i) {
        d.add(10, data.rawPoint2());
        if (hasBulges)
            d.real(42, data.bitDouble());
    }
}

void hatchLines(Decoder &d)
{
    Bits &data = d.in.data;
    d.angle(52, data.bitDouble());
    d.real(41, data.bitDouble());
    d.integer(77, data.bit());
    const std::size_t lines = d.count(data.bitShort(), 12);
    d.integer(78, std::int64_t(lines));
    for (std::size_t i = 0; i < lines && !data.failed(); ++i) {
        d.angle(53, data.bitDouble());
        for (int group = 43; group <= 46; ++group)
            d.real(group, data.bitDouble());
        const std::size_t dashes = d.count(data.bitShort(), 2);
        d.integer(79, std::int64_t(dashes));
        for (std::size_t k = 0; k < dashes; ++k)
            d.real(49, data.bitDouble());
    }
}

/// The colour run of a hatch, which DXF writes at the end.
ResbufList hatchGradient(Decoder &d)
{
    ResbufList groups;
    if (!d.in.facts().since(r2004))
        return groups;
    Bits &data = d.in.data;
    const int isGradient = data.bitLong();
    const int reserved = data.bitLong();
    const double angle = data.bitDouble();
    const double shift = data.bitDouble();
    const int isSingle = data.bitLong();
    const double tint = data.bitDouble();
    const std::size_t colors = d.count(data.bitLong(), 12);
    const auto add = [&groups](int code, resbuf::Value value) {
        groups.emplace_back(code, std::move(value));
    };
    add(450, std::int64_t(isGradient));
    add(451, std::int64_t(reserved));
    add(460, angle);
    add(461, shift);
    add(452, std::int64_t(isSingle));
    add(462, tint);
    add(453, std::int64_t(colors));
    for (std::size_t i = 0; i < colors && !data.failed(); ++i) {
        add(463, data.bitDouble());
        data.bitShort();
        const std::uint32_t rgb = std::uint32_t(data.bitLong());
        data.rawChar();
        add(63, std::int64_t(nearestColorIndex(rgb & 0xFFFFFF)));
        add(421, std::int64_t(rgb & 0xFFFFFF));
    }
    add(470, d.in.text());
    if (isGradient == 0)
        groups.clear();
    return groups;
}

void hatch(Decoder &d)
{
    Bits &data = d.in.data;
    const ResbufList gradient = hatchGradient(d);
    d.add(10, AcGePoint3d(0.0, 0.0, data.bitDouble()));
    d.add(210, data.point3());
    d.text(2, d.in.text());
    const bool isSolid = data.bit();
    const bool isAssociative = data.bit();
    const std::size_t paths = d.count(data.bitLong(), 4);
    d.integer(70, isSolid);
    d.integer(71, isAssociative);
    d.integer(91, std::int64_t(paths));
    bool isDerived = false;
    for (std::size_t i = 0; i < paths && !data.failed(); ++i) {
        const int flags = data.bitLong();
        d.integer(92, flags);
        isDerived = isDerived || flags & 4;
        if (flags & 2)
            hatchPolyline(d);
        else
            hatchEdges(d);
        const std::int64_t sources = data.bitLong();
        if (sources < 0 || std::size_t(sources) > d.in.handles.bitsLeft() / 8) {
            data.fail();
            return;
        }
        d.integer(97, sources);
        for (std::int64_t k = 0; k < sources; ++k)
            d.handle(330, d.in.reference().handle);
    }
    d.integer(75, data.bitShort());
    d.integer(76, data.bitShort());
    if (!isSolid)
        hatchLines(d);
    if (isDerived)
        d.real(47, data.bitDouble());
    const std::size_t seeds = d.count(data.bitLong(), 128);
    d.integer(98, std::int64_t(seeds));
    for (std::size_t i = 0; i < seeds; ++i)
        d.add(10, AcGePoint2d(data.rawPoint2()));
    d.out.insert(d.out.end(), gradient.begin(), gradient.end());
}

// Pictures, viewports, frames --------------------------------------------------------------------

void imageClip(Decoder &d)
{
    Bits &data = d.in.data;
    if (d.in.facts().since(r2010))
        d.integer(290, data.bit());
    const int type = data.bitShort();
    const std::size_t points = type == 1 ? 2 : d.count(data.bitLong(), 128);
    d.integer(71, type);
    d.integer(91 + kSubclass, std::int64_t(points)); // 90 and 91 of an image are apart.
    for (std::size_t i = 0; i < points; ++i)
        d.add(14, data.rawPoint2());
    // DXF closes the polygon.
    const resbuf *const first = d.find(14);
    if (type != 1 && first && points > 2 && !(*first == d.out.back())) {
        const resbuf closing = *first;
        d.out.push_back(closing);
        std::ranges::find(d.out, 91 + kSubclass, &resbuf::restype)->assign(std::int64_t(points + 1));
    }
    d.handle(340, d.in.reference().handle);
    d.handle(360, d.in.reference().handle);
}

void viewport(Decoder &d)
{
    Bits &data = d.in.data;
    d.add(10, data.point3());
    d.real(40, data.bitDouble());
    d.real(41, data.bitDouble());
    d.integer(68, 0);
    d.integer(69, 0);
    if (!d.in.facts().since(r2000)) {
        d.in.reference();
        return;
    }
    d.add(17, data.point3());
    d.add(16, data.point3());
    d.angle(51, data.bitDouble());
    d.real(45, data.bitDouble());
    d.real(42, data.bitDouble());
    d.real(43, data.bitDouble());
    d.real(44, data.bitDouble());
    d.angle(50, data.bitDouble());
    for (int group = 12; group <= 15; ++group)
        d.add(group, data.rawPoint2());
    d.integer(72, data.bitShort());
    if (d.in.facts().since(r2007))
        d.integer(61, data.bitShort());
    const std::size_t frozen = std::size_t(std::max(data.bitLong(), 0));
    const int status = data.bitLong();
    d.integer(90, status);
    d.text(1, d.in.text());
    d.integer(281, data.rawChar());
    d.integer(74, data.bit());
    d.integer(71, data.bit());
    for (int group = 110; group <= 112; ++group)
        d.add(group, data.point3());
    d.real(146, data.bitDouble());
    d.integer(79, data.bitShort());
    if (d.in.facts().since(r2004))
        d.integer(170, data.bitShort());
    if (d.in.facts().since(r2007)) {
        d.integer(292, data.bit());
        d.integer(282, data.rawChar());
        d.real(141, data.bitDouble());
        d.real(142, data.bitDouble());
        d.color(63, d.in.color());
    }
    if (frozen > d.in.handles.bitsLeft() / 8) {
        d.in.handles.fail();
        return;
    }
    const int frozenGroup = d.in.facts().since(r2004) ? 331 : 341;
    for (std::size_t i = 0; i < frozen; ++i)
        d.handle(frozenGroup, d.in.reference().handle);
    const auto optional = [&d](int group) {
        if (const std::uint64_t named = d.in.reference().handle)
            d.handle(group, named);
    };
    optional(340);
    if (!d.in.facts().since(r2004))
        d.in.reference();
    optional(345);
    optional(346);
    if (d.in.facts().since(r2007)) {
        for (const int group : {332, 348, 333, 361})
            optional(group);
    }
    // DXF says by numbers which one it is and whether it is on; the file has a bit for that.
    constexpr int kOff = 0x20000;
    const auto number = d.neighbours.viewportNumbers.find(d.in.handle());
    const std::int64_t id = number == d.neighbours.viewportNumbers.end() ? 0 : number->second;
    std::ranges::find(d.out, 68, &resbuf::restype)->assign(status & kOff ? std::int64_t(0) : id);
    std::ranges::find(d.out, 69, &resbuf::restype)->assign(id);
}

void oleFrame(Decoder &d)
{
    Bits &data = d.in.data;
    d.integer(70, data.bitShort());
    const int mode = d.in.facts().since(r2000) ? data.bitShort() : 0;
    const std::size_t size = std::size_t(std::max(data.bitLong(), 0));
    const QByteArray bytes = data.bytes(size);
    // The frame's corners begin behind a mark of two bytes.
    Bits corners(std::string_view(bytes.constData(), std::size_t(bytes.size())));
    corners.skip(16);
    d.text(3, QStringLiteral("OLE"));
    d.add(10, corners.rawPoint3());
    corners.rawPoint3();
    d.add(11, corners.rawPoint3());
    d.integer(71, 2); // Embedded.
    d.integer(72, mode);
    d.integer(90, std::int64_t(size));
    constexpr qsizetype kChunk = 127;
    for (qsizetype i = 0; i < bytes.size(); i += kChunk)
        d.add(310, bytes.mid(i, kChunk));
    d.text(1 + kSubclass, QStringLiteral("OLE"));
}

/// The geometry of solids and regions, a text that is veiled in DWG and DXF alike.
void acis(Decoder &d)
{
    Bits &data = d.in.data;
    const bool isEmpty = data.bit();
    if (!isEmpty) {
        data.bit();
        const int version = data.bitShort();
        if (version != 1) {
            data.fail();
            return;
        }
        d.integer(70, version);
    }
    QByteArray veiled;
    for (std::int64_t size = isEmpty ? 0 : data.bitLong(); size > 0 && !data.failed(); size = data.bitLong())
        veiled += data.bytes(std::size_t(size));
    constexpr qsizetype kPiece = 255;
    QList<QByteArray> lines = veiled.split('\n');
    if (!lines.isEmpty() && lines.back().isEmpty())
        lines.removeLast();
    for (QByteArray &line : lines) {
        if (line.endsWith('\r'))
            line.chop(1);
        d.text(1 + 2 * kSubclass, QString::fromLatin1(line.left(kPiece)));
        for (qsizetype i = kPiece; i < line.size(); i += kPiece)
            d.text(3 + 2 * kSubclass, QString::fromLatin1(line.mid(i, kPiece)));
    }
    // What follows are lines to show of it, which DXF does not have.
    constexpr int kSolid = 0x26;
    if (d.in.facts().since(r2007) && d.in.type() == kSolid)
        d.handle(350, d.in.reference().handle);
}

void owner(Decoder &d)
{
    d.handle(330 + kSubclass, d.common.owner.handle);
}

} // namespace

Special findSpecial(std::string_view name)
{
    static constexpr struct {
        std::string_view name;
        Special read;
    } kSpecials[] = {
        {"line", line},
        {"face", face},
        {"solid", solid},
        {"text", text},
        {"attribute", attribute},
        {"mtext", mtext},
        {"insertScale", insertScale},
        {"hasParts", hasParts},
        {"partCount", partCount},
        {"parts", parts},
        {"vertex2d", vertex2d},
        {"faceRecord", faceRecord},
        {"polyline2d", polyline2d},
        {"polyline3d", polyline3d},
        {"polyfaceMesh", polyfaceMesh},
        {"polygonMesh", polygonMesh},
        {"lwPolyline", lwPolyline},
        {"dimension", dimension},
        {"kindOfDimension", kindOfDimension},
        {"dimensionHandles", dimensionHandles},
        {"arcOfDimension", arcOfDimension},
        {"leader", leader},
        {"toleranceHead", toleranceHead},
        {"mline", mline},
        {"spline", spline},
        {"hatch", hatch},
        {"imageClip", imageClip},
        {"viewport", viewport},
        {"oleFrame", oleFrame},
        {"owner", owner},
        {"acis", acis},
    };
    const auto *const known =
        std::ranges::find_if(kSpecials, [name](const auto &row) { return row.name == name; });
    if (known != std::end(kSpecials))
        return known->read;
    const auto ofObject = findObjectSpecial(name);
    return ofObject ? ofObject : findMultileaderSpecial(name);
}

} // namespace dwg
