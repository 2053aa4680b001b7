// HATCH: boundary, pattern, colour run.
#include "host/base/host_text.h"
#include "host/formats/dwg/dwgspecials.h"

#include <algorithm>
#include <utility>

namespace dwg
{
namespace
{

using enum DrawingVersion;

enum Hidden : int { kGradientColor = kFirstHidden };

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
            if (d.since(r2010)) {
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
    if (!d.since(r2004))
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
        const int number = kGradientColor + 3 * int(i);
        d.hidden(number, std::int64_t(data.bitShort()));
        const std::uint32_t rgb = std::uint32_t(data.bitLong());
        d.hidden(number + 1, std::int64_t(rgb >> 24));
        d.hidden(number + 2, std::int64_t(data.rawChar()));
        add(63, std::int64_t(nearestColorIndex(rgb & 0xFFFFFF)));
        add(421, std::int64_t(rgb & 0xFFFFFF));
    }
    add(470, d.in.text());
    if (isGradient == 0)
        d.withhold(std::exchange(groups, {}));
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

/// Writes what the groups say, one after the other.
class HatchWriter
{
public:
    explicit HatchWriter(Encoder &encoder) : e(encoder), m_groups(encoder.rest) {}
    void write();

private:
    std::int64_t integer(int code) { return m_groups.take(code).integer(); }
    double real(int code) { return m_groups.take(code).real(); }
    double radians(int code) { return e.radians(real(code)); }
    AcGePoint2d plane(int code)
    {
        const AcGePoint3d point = m_groups.take(code).point();
        return {point.x, point.y};
    }
    std::int64_t count(int code)
    {
        const std::int64_t value = integer(code);
        e.data.bitLong(std::int32_t(value));
        return value;
    }
    void gradient();
    void path();
    void polyline();
    void edges();
    void splineEdge();
    void lines();

    Encoder &e;
    GroupCursor m_groups;
};

void HatchWriter::gradient()
{
    const auto begin = std::ranges::find(e.rest, 450, &resbuf::restype);
    const ResbufList shown(begin, e.rest.end());
    GroupCursor at(shown.empty() ? e.old.kept.withheld : shown);
    const auto integer = [&at](int code) { return std::int32_t(at.take(code).integer()); };
    const auto real = [&at](int code) { return at.take(code).real(); };
    BitWriter &data = e.data;
    data.bitLong(integer(450));
    data.bitLong(integer(451));
    data.bitDouble(real(460));
    data.bitDouble(real(461));
    data.bitLong(integer(452));
    data.bitDouble(real(462));
    const int colors = integer(453);
    data.bitLong(colors);
    for (int i = 0; i < colors && at.isAt(463); ++i) {
        data.bitDouble(real(463));
        data.bitShort(int(e.hiddenInteger(kGradientColor + 3 * i)));
        at.take(63);
        const auto kind = std::uint32_t(e.hiddenInteger(kGradientColor + 3 * i + 1, 0xC2));
        data.bitLong(std::int32_t(kind << 24 | std::uint32_t(integer(421))));
        data.rawChar(unsigned(e.hiddenInteger(kGradientColor + 3 * i + 2)));
    }
    e.putText(at.take(470).text());
}

void HatchWriter::polyline()
{
    const bool hasBulges = integer(72) != 0;
    e.data.bit(hasBulges);
    e.data.bit(integer(73) != 0);
    for (std::int64_t i = count(93); i > 0 && m_groups.isAt(10); --i) {
        e.data.rawPoint2(plane(10));
        if (hasBulges)
            e.data.bitDouble(real(42));
    }
}

void HatchWriter::splineEdge()
{
    BitWriter &data = e.data;
    count(94);
    const bool isRational = integer(73) != 0;
    data.bit(isRational);
    data.bit(integer(74) != 0);
    const auto knots = count(95);
    const auto controls = count(96);
    for (std::int64_t i = 0; i < knots && m_groups.isAt(40); ++i)
        data.bitDouble(real(40));
    for (std::int64_t i = 0; i < controls && m_groups.isAt(10); ++i) {
        data.rawPoint2(plane(10));
        if (isRational)
            data.bitDouble(real(42));
    }
    if (!e.since(r2010))
        return;
    const auto fits = count(97);
    for (std::int64_t i = 0; i < fits && m_groups.isAt(11); ++i)
        data.rawPoint2(plane(11));
    if (fits != 0) {
        data.rawPoint2(plane(12));
        data.rawPoint2(plane(13));
    }
}

void HatchWriter::edges()
{
    for (std::int64_t i = count(93); i > 0 && m_groups.isAt(72); --i) {
        const std::int64_t type = integer(72);
        e.data.rawChar(unsigned(type));
        if (type == 4) {
            splineEdge();
            continue;
        }
        e.data.rawPoint2(plane(10));
        if (type != 2)
            e.data.rawPoint2(plane(11));
        if (type == 1)
            continue;
        e.data.bitDouble(real(40));
        e.data.bitDouble(radians(50));
        e.data.bitDouble(radians(51));
        e.data.bit(integer(73) != 0);
    }
}

void HatchWriter::path()
{
    const std::int64_t flags = integer(92);
    e.data.bitLong(std::int32_t(flags));
    if (flags & 2)
        polyline();
    else
        edges();
    const std::int64_t sources = count(97);
    for (std::int64_t i = 0; i < sources && m_groups.isAt(330); ++i)
        e.putHandle(Reference::softPointer, m_groups.take(330).handle().value);
}

void HatchWriter::lines()
{
    BitWriter &data = e.data;
    data.bitDouble(radians(52));
    data.bitDouble(real(41));
    data.bit(integer(77) != 0);
    const std::int64_t lines = integer(78);
    data.bitShort(int(lines));
    for (std::int64_t i = 0; i < lines && m_groups.isAt(53); ++i) {
        data.bitDouble(radians(53));
        for (int group = 43; group <= 46; ++group)
            data.bitDouble(real(group));
        const std::int64_t dashes = integer(79);
        data.bitShort(int(dashes));
        for (std::int64_t k = 0; k < dashes && m_groups.isAt(49); ++k)
            data.bitDouble(real(49));
    }
}

void HatchWriter::write()
{
    BitWriter &data = e.data;
    if (e.since(r2004))
        gradient();
    data.bitDouble(m_groups.take(10).point().z);
    data.point3(m_groups.take(210).point());
    e.putText(m_groups.take(2).text());
    const bool isSolid = integer(70) != 0;
    data.bit(isSolid);
    data.bit(integer(71) != 0);
    for (std::int64_t i = count(91); i > 0 && m_groups.isAt(92); --i)
        path();
    data.bitShort(int(integer(75)));
    data.bitShort(int(integer(76)));
    if (!isSolid)
        lines();
    if (m_groups.isAt(47))
        data.bitDouble(real(47));
    for (std::int64_t i = count(98); i > 0 && m_groups.isAt(10); --i)
        data.rawPoint2(plane(10));
    if (!m_groups.atEnd() && !m_groups.isAt(450))
        e.fail(Host::tr("its groups contradict each other"));
}

void writeHatch(Encoder &e)
{
    HatchWriter(e).write();
}

} // namespace

std::span<const SpecialRow> hatchSpecials()
{
    static constexpr SpecialRow kRows[] = {{"hatch", hatch, writeHatch}};
    return kRows;
}

} // namespace dwg
