// Raster images with their clips, frames of other programs' objects, and clips of external references.
#include "host/formats/dwg/dwgspecials.h"

#include <algorithm>

namespace dwg
{
namespace
{

using enum DrawingVersion;

enum Hidden : int { kPoints = kFirstHidden };

void imageClip(Decoder &d)
{
    Bits &data = d.in.data;
    if (d.since(r2010))
        d.integer(290, data.bit());
    const int type = data.bitShort();
    const std::size_t points = type == 1 ? 2 : d.count(data.bitLong(), 128);
    d.hidden(kPoints, std::int64_t(points));
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

void writeImageClip(Encoder &e)
{
    constexpr int kRectangle = 1;
    if (e.since(r2010))
        e.data.bit(e.integer(290) != 0);
    const int type = e.small(71);
    e.data.bitShort(type);
    std::vector<AcGePoint2d> points;
    while (e.left(14) != 0)
        points.push_back(e.plane(14));
    const bool isClosed = points.size() > 2 && points.front() == points.back();
    const bool isKept = std::size_t(e.hiddenInteger(kPoints)) == points.size();
    if (type != kRectangle && isClosed && !isKept)
        points.pop_back();
    if (type != kRectangle)
        e.data.bitLong(std::int32_t(points.size()));
    for (const AcGePoint2d &point : points)
        e.data.rawPoint2(point);
    e.putHandleGroup(340);
    e.putHandleGroup(360);
}

void oleFrame(Decoder &d)
{
    Bits &data = d.in.data;
    d.integer(70, data.bitShort());
    const int mode = d.since(r2000) ? data.bitShort() : 0;
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

void spatialFilter(Decoder &d)
{
    Bits &data = d.in.data;
    const std::size_t points = d.count(data.bitShort(), 128);
    d.integer(70, std::int64_t(points));
    for (std::size_t i = 0; i < points; ++i)
        d.add(10, data.rawPoint2());
    d.add(210, data.point3());
    d.add(11, data.point3());
    d.integer(71, data.bitShort());
    for (const auto &[flag, distance] : {std::pair{72, 40}, std::pair{73, 41}}) {
        const int isOn = data.bitShort();
        d.integer(flag, isOn);
        if (isOn == 1)
            d.real(distance, data.bitDouble());
    }
    for (int i = 0; i < 24; ++i)
        d.real(40, data.bitDouble());
}

void writeSpatialFilter(Encoder &e)
{
    BitWriter &data = e.data;
    data.bitShort(int(e.left(10)));
    while (e.left(10) != 0)
        data.rawPoint2(e.plane(10));
    data.point3(e.point(210));
    data.point3(e.point(11));
    data.bitShort(e.small(71));
    for (const auto &[flag, distance] : {std::pair{72, 40}, std::pair{73, 41}}) {
        const int isOn = e.small(flag);
        data.bitShort(isOn);
        if (isOn == 1)
            data.bitDouble(e.real(distance));
    }
    for (int i = 0; i < 24; ++i)
        data.bitDouble(e.real(40));
}

void owner(Decoder &d)
{
    d.handle(330 + kSubclass, d.common.owner.handle);
}

/// The owner stands among what all objects have.
void writeOwner(Encoder &) {}

} // namespace

std::span<const SpecialRow> pictureSpecials()
{
    static constexpr SpecialRow kRows[] = {
        {"imageClip", imageClip, writeImageClip},
        {"oleFrame", oleFrame, nullptr},
        {"spatialFilter", spatialFilter, writeSpatialFilter},
        {"owner", owner, writeOwner},
    };
    return kRows;
}

} // namespace dwg
