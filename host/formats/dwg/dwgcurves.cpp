// Lines, faces, polylines, splines, multilines and bodies.
#include "host/base/host_text.h"
#include "host/formats/dwg/dwgspecials.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace dwg
{
namespace
{

using enum DrawingVersion;

enum Hidden : int { kFlags = kFirstHidden, kWidth, kHeight, kSmooth, kScenario, kSplineFlags, kKnots };

void line(Decoder &d)
{
    AcGePoint3d start, end;
    if (!d.since(r2000)) {
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

void writeLine(Encoder &e)
{
    const AcGePoint3d start = e.point(10);
    const AcGePoint3d end = e.point(11);
    const bool isFlat = start.z == 0.0 && end.z == 0.0;
    e.data.bit(isFlat);
    e.data.rawDouble(start.x);
    e.data.bitDoubleWithDefault(end.x, start.x);
    e.data.rawDouble(start.y);
    e.data.bitDoubleWithDefault(end.y, start.y);
    if (!isFlat) {
        e.data.rawDouble(start.z);
        e.data.bitDoubleWithDefault(end.z, start.z);
    }
}

void face(Decoder &d)
{
    std::array<AcGePoint3d, 4> corners;
    int flags = 0;
    if (!d.since(r2000)) {
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

void writeFace(Encoder &e)
{
    std::array<AcGePoint3d, 4> corners;
    for (std::size_t i = 0; i < corners.size(); ++i)
        corners[i] = e.point(10 + int(i));
    const int flags = e.small(70);
    const bool isFlat = corners[0].z == 0.0;
    e.data.bit(flags == 0);
    e.data.bit(isFlat);
    e.data.rawPoint2({corners[0].x, corners[0].y});
    if (!isFlat)
        e.data.rawDouble(corners[0].z);
    for (std::size_t i = 1; i < corners.size(); ++i) {
        e.data.bitDoubleWithDefault(corners[i].x, corners[i - 1].x);
        e.data.bitDoubleWithDefault(corners[i].y, corners[i - 1].y);
        e.data.bitDoubleWithDefault(corners[i].z, corners[i - 1].z);
    }
    if (flags != 0)
        e.data.bitShort(flags);
}

void solid(Decoder &d)
{
    const double elevation = d.in.data.bitDouble();
    for (int i = 0; i < 4; ++i)
        d.add(10 + i, at(d.in.data.rawPoint2(), elevation));
}

void writeSolid(Encoder &e)
{
    std::array<AcGePoint3d, 4> corners;
    for (std::size_t i = 0; i < corners.size(); ++i)
        corners[i] = e.point(10 + int(i));
    e.data.bitDouble(corners[0].z);
    for (const AcGePoint3d &corner : corners) {
        if (corner.z != corners[0].z)
            e.fail(Host::tr("its corners do not lie in one plane"));
        e.data.rawPoint2({corner.x, corner.y});
    }
}

// Polylines --------------------------------------------------------------------------------------

void vertex2d(Decoder &d)
{
    d.integer(70, d.in.data.rawChar());
    AcGePoint3d place = d.in.data.point3();
    PlanePolyline whole;
    if (const auto known = d.neighbours.polylines.find(d.common.owner.handle);
        known != d.neighbours.polylines.end())
        whole = known->second;
    d.hidden(kHeight, place.z);
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
    if (d.since(r2010))
        d.integer(91, d.in.data.bitLong());
    const double tangent = d.in.data.bitDouble();
    d.angle(50, tangent);
}

void writeVertex2d(Encoder &e)
{
    PlanePolyline whole;
    if (const auto known = e.names.neighbours.polylines.find(e.old.common.owner.handle);
        known != e.names.neighbours.polylines.end())
        whole = known->second;
    e.data.rawChar(unsigned(e.integer(70)));
    AcGePoint3d place = e.point(10);
    if (!e.isNew() && place.z == whole.elevation)
        place.z = e.hiddenReal(kHeight, place.z);
    e.data.point3(place);
    const double start = e.left(40) != 0 ? e.real(40) : whole.startWidth;
    const double end = e.left(41) != 0 ? e.real(41) : whole.endWidth;
    if (start == end && start > 0.0) {
        e.data.bitDouble(-start);
    } else {
        e.data.bitDouble(start);
        e.data.bitDouble(end);
    }
    e.data.bitDouble(e.real(42));
    if (e.since(r2010))
        e.data.bitLong(e.small(91));
    e.data.bitDouble(e.radians(e.real(50)));
}

void faceRecord(Decoder &d)
{
    d.add(10, AcGePoint3d());
    d.integer(70, 128);
    for (int group = 71; group <= 74; ++group)
        d.integer(group, d.in.data.bitShort());
}

void writeFaceRecord(Encoder &e)
{
    for (int group = 71; group <= 74; ++group)
        e.data.bitShort(e.small(group));
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

void writePolyline2d(Encoder &e)
{
    e.data.bitShort(e.small(70));
    e.data.bitShort(e.small(75));
    e.data.bitDouble(e.real(40));
    e.data.bitDouble(e.real(41));
    e.data.thickness(e.facts.version, e.real(39));
    e.data.bitDouble(e.point(10).z);
    e.data.extrusion(e.facts.version, e.point(210));
}

void polyline3d(Decoder &d)
{
    const unsigned smooth = d.in.data.rawChar();
    const unsigned flags = d.in.data.rawChar();
    d.hidden(kSmooth, std::int64_t(smooth));
    d.hidden(kFlags, std::int64_t(flags));
    d.integer(66, 1);
    d.add(10, AcGePoint3d());
    d.integer(70, 8 | (flags & 1) | (smooth & 3 ? 4 : 0));
    d.integer(75, smooth & 1 ? 5 : smooth & 2 ? 6 : 0);
}

void writePolyline3d(Encoder &e)
{
    const int curve = e.small(75);
    const auto smooth = unsigned(e.hiddenInteger(kSmooth)) & ~3u;
    e.data.rawChar(smooth | (curve == 5 ? 1u : curve == 6 ? 2u : 0u));
    e.data.rawChar((unsigned(e.hiddenInteger(kFlags)) & ~1u) | unsigned(e.integer(70) & 1));
}

void meshOf(Decoder &d, int flag, std::initializer_list<int> groups)
{
    d.integer(66, 1);
    d.add(10, AcGePoint3d());
    if (flag == 64)
        d.integer(70, flag);
    for (const int group : groups) {
        const int value = d.in.data.bitShort();
        d.integer(group, group == 70 ? value | flag : value);
        if (group == 70)
            d.hidden(kFlags, std::int64_t(value));
    }
}

void polyfaceMesh(Decoder &d)
{
    meshOf(d, 64, {71, 72});
}

void writePolyfaceMesh(Encoder &e)
{
    e.data.bitShort(e.small(71));
    e.data.bitShort(e.small(72));
}

void polygonMesh(Decoder &d)
{
    meshOf(d, 16, {70, 75, 71, 72, 73, 74});
}

void writePolygonMesh(Encoder &e)
{
    constexpr int kIsMesh = 16; // Stored or not.
    e.data.bitShort((e.small(70) & ~kIsMesh) | int(e.hiddenInteger(kFlags, kIsMesh) & kIsMesh));
    for (const int group : {75, 71, 72, 73, 74})
        e.data.bitShort(e.small(group));
}

void lwPolyline(Decoder &d)
{
    Bits &data = d.in.data;
    const int flags = data.bitShort();
    const double width = flags & 4 ? data.bitDouble() : 0.0;
    d.hidden(kFlags, std::int64_t(flags));
    d.hidden(kWidth, width);
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
    const std::size_t ids = flags & 1024 && d.since(r2010) ? d.count(data.bitLong(), 2) : 0;
    const std::size_t widths = flags & 32 ? d.count(data.bitLong(), 4) : 0;
    std::vector<AcGePoint2d> places(points);
    for (std::size_t i = 0; i < points; ++i) {
        if (i == 0 || !d.since(r2000)) {
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

struct LwVertices {
    std::vector<AcGePoint2d> places;
    std::vector<AcGePoint2d> widths;
    std::vector<double> bulges;
    std::vector<std::int32_t> ids;
    bool hasWidths = false, hasBulges = false, hasIds = false;
};

static LwVertices lwVertices(const ResbufList &groups)
{
    LwVertices all;
    for (const resbuf &group : groups) {
        if (group.restype == 10) {
            all.places.push_back({group.point().x, group.point().y});
            all.widths.emplace_back();
            all.bulges.push_back(0.0);
            all.ids.push_back(0);
        } else if (!all.places.empty() && (group.restype == 40 || group.restype == 41)) {
            (group.restype == 40 ? all.widths.back().x : all.widths.back().y) = group.real();
            all.hasWidths = true;
        } else if (!all.places.empty() && group.restype == 42) {
            all.bulges.back() = group.real();
            all.hasBulges = all.hasBulges || group.real() != 0.0;
        } else if (!all.places.empty() && group.restype == 91) {
            all.ids.back() = std::int32_t(group.integer());
            all.hasIds = true;
        }
    }
    return all;
}

void writeLwPolyline(Encoder &e)
{
    // What may be there and have its usual value, as long as the old record has it.
    constexpr int kMayBeUsual = 1 | 2 | 4 | 8 | 16;
    constexpr int kSettled = kMayBeUsual | 32 | 256 | 512 | 1024;
    const LwVertices all = lwVertices(e.rest);
    const auto old = int(e.hiddenInteger(kFlags));
    const auto shape = e.integer(70);
    const double width = all.hasWidths ? e.hiddenReal(kWidth) : e.real(43);
    const double elevation = e.real(38);
    const double thickness = e.real(39);
    const bool hasNormal = e.left(210) != 0;
    const AcGePoint3d normal = hasNormal ? e.point(210) : AcGePoint3d(0.0, 0.0, 1.0);
    const int flags = (old & ~kSettled) | (old & kMayBeUsual) | (normal == AcGePoint3d(0, 0, 1) ? 0 : 1) |
                      (thickness != 0.0 ? 2 : 0) | (width != 0.0 ? 4 : 0) | (elevation != 0.0 ? 8 : 0) |
                      (all.hasBulges ? 16 : 0) | (all.hasWidths ? 32 : 0) | (shape & 128 ? 256 : 0) |
                      (shape & 1 ? 512 : 0) | (all.hasIds && e.since(r2010) ? 1024 : 0);
    BitWriter &data = e.data;
    data.bitShort(flags);
    if (flags & 4)
        data.bitDouble(width);
    if (flags & 8)
        data.bitDouble(elevation);
    if (flags & 2)
        data.bitDouble(thickness);
    if (flags & 1)
        data.point3(normal);
    const auto count = std::int32_t(all.places.size());
    for (const int list : {0, 16, 1024, 32}) {
        if (list == 0 || flags & list)
            data.bitLong(count);
    }
    for (std::size_t i = 0; i < all.places.size(); ++i) {
        if (i == 0) {
            data.rawPoint2(all.places[0]);
            continue;
        }
        data.bitDoubleWithDefault(all.places[i].x, all.places[i - 1].x);
        data.bitDoubleWithDefault(all.places[i].y, all.places[i - 1].y);
    }
    for (std::size_t i = 0; flags & 16 && i < all.bulges.size(); ++i)
        data.bitDouble(all.bulges[i]);
    for (std::size_t i = 0; flags & 1024 && i < all.ids.size(); ++i)
        data.bitLong(all.ids[i]);
    for (std::size_t i = 0; flags & 32 && i < all.widths.size(); ++i)
        data.point2(all.widths[i]);
}

// Other curves -----------------------------------------------------------------------------------

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

void writeMline(Encoder &e)
{
    const std::int64_t vertices = e.integer(72);
    const std::int64_t lines = e.integer(73);
    e.data.bitDouble(e.real(40));
    e.data.rawChar(unsigned(e.integer(70)));
    e.data.point3(e.point(10));
    e.data.point3(e.point(210));
    e.data.bitShort(e.small(71));
    e.data.rawChar(unsigned(lines));
    e.data.bitShort(int(vertices));
    GroupCursor rest(e.rest);
    while (rest.isAt(11)) {
        for (int group = 11; group <= 13; ++group)
            e.data.point3(rest.take(group).point());
        for (std::int64_t line = 0; line < lines; ++line) {
            for (const auto &[countGroup, valueGroup] : {std::pair{74, 41}, std::pair{75, 42}}) {
                const auto values = rest.take(countGroup).integer();
                e.data.bitShort(int(values));
                for (std::int64_t v = 0; v < values && rest.isAt(valueGroup); ++v)
                    e.data.bitDouble(rest.take(valueGroup).real());
            }
        }
    }
    if (!rest.atEnd())
        e.fail(Host::tr("its groups contradict each other"));
    e.putHandle(Reference::hardPointer, e.handle(340));
}

void spline(Decoder &d)
{
    Bits &data = d.in.data;
    int scenario = data.bitLong();
    int flags1 = 0;
    int knotParameter = 0;
    d.hidden(kScenario, std::int64_t(scenario));
    if (d.since(r2013)) {
        flags1 = data.bitLong();
        knotParameter = data.bitLong();
        d.hidden(kSplineFlags, std::int64_t(flags1));
        d.hidden(kKnots, std::int64_t(knotParameter));
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

void writeSpline(Encoder &e)
{
    const auto flags = e.integer(70);
    const auto count = [&e](int code) { return std::ranges::count(e.rest, code, &resbuf::restype); };
    const auto controls = count(10);
    const auto fits = count(11);
    const bool isThroughPoints = controls == 0 && fits != 0;
    const bool isWeighted = count(41) != 0;
    BitWriter &data = e.data;
    data.bitLong(std::int32_t(e.hiddenInteger(kScenario, isThroughPoints ? 2 : 1)));
    if (e.since(r2013)) {
        constexpr int kClosed = 4;
        const auto more = e.hiddenInteger(kSplineFlags, isThroughPoints ? 1 : 0) & ~kClosed;
        data.bitLong(std::int32_t(more | (isThroughPoints && flags & 1 ? kClosed : 0) |
                                  (e.hiddenInteger(kSplineFlags) & (isThroughPoints ? 0 : kClosed))));
        data.bitLong(std::int32_t(e.hiddenInteger(kKnots, isThroughPoints ? 0 : 15)));
    }
    data.bitLong(e.small(71));
    const auto knots = std::int32_t(e.left(40));
    if (isThroughPoints) {
        data.bitDouble(e.real(44));
        data.point3(e.point(12));
        data.point3(e.point(13));
        data.bitLong(std::int32_t(fits));
    } else {
        data.bit(flags & 4);
        data.bit(flags & 1);
        data.bit(flags & 2);
        data.bitDouble(e.real(42));
        data.bitDouble(e.real(43));
        data.bitLong(knots);
        data.bitLong(std::int32_t(controls));
        data.bit(isWeighted);
        for (std::int32_t i = 0; i < knots; ++i)
            data.bitDouble(e.real(40));
    }
    // Points that the curve was drawn through have no place beside its control points.
    for (const resbuf &group : e.rest) {
        if (group.restype == (isThroughPoints ? 11 : 10))
            data.point3(group.point());
        else if (group.restype == 41 && isWeighted)
            data.bitDouble(group.real());
    }
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
        while (line.endsWith('\r') || line.endsWith(' '))
            line.chop(1);
        d.text(1 + 2 * kSubclass, QString::fromLatin1(line.left(kPiece)));
        for (qsizetype i = kPiece; i < line.size(); i += kPiece)
            d.text(3 + 2 * kSubclass, QString::fromLatin1(line.mid(i, kPiece)));
    }
    // What follows are lines to show of it, which DXF does not have.
}

} // namespace

std::span<const SpecialRow> curveSpecials()
{
    static constexpr SpecialRow kRows[] = {
        {"line", line, writeLine},
        {"face", face, writeFace},
        {"solid", solid, writeSolid},
        {"vertex2d", vertex2d, writeVertex2d},
        {"faceRecord", faceRecord, writeFaceRecord},
        {"polyline2d", polyline2d, writePolyline2d},
        {"polyline3d", polyline3d, writePolyline3d},
        {"polyfaceMesh", polyfaceMesh, writePolyfaceMesh},
        {"polygonMesh", polygonMesh, writePolygonMesh},
        {"lwPolyline", lwPolyline, writeLwPolyline},
        {"mline", mline, writeMline},
        {"spline", spline, writeSpline},
        {"acis", acis, nullptr},
    };
    return kRows;
}

} // namespace dwg
