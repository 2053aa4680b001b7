// Drawing of images and wipeouts, and the frames of what is shown by other programs.
#include "host/acdb/dbxref.h"
#include "host/acgi/kinds/draw_tools.h"
#include "host/acgi/kinds/kinds.h"
#include "host/base/host_text.h"

#include <QDir>
#include <QFileInfo>

namespace acgi
{

namespace
{

/// An image or wipeout: where its pixels are, and the part of them that shows.
struct Raster {
    AcGePoint3d origin;
    AcGeVector3d u; ///< Along the lower edge, the whole image.
    AcGeVector3d v;
    Loop clip; ///< Empty: all.
    bool clipInverted = false;

    Loop whole() const { return {origin, origin + u, origin + u + v, origin + v}; }
    Loop frame() const { return clip.empty() || clipInverted ? whole() : clip; }
};

} // namespace

// Pixel coordinates run down from the upper left corner; the middle of the first pixel is (0 0).
static Raster readRaster(const OwnGroups &groups)
{
    const AcGeVector3d u = groups.vector(11);
    const AcGeVector3d v = groups.vector(12);
    const AcGePoint3d size = groups.point(13, {1.0, 1.0, 0.0});
    Raster raster{groups.point(10), u * size.x, v * size.y, {}};
    if (groups.integer(280, 1) == 0)
        return raster;
    raster.clip = groups.points(14);
    if (raster.clip.size() < 2)
        raster.clip.clear();
    if (raster.clip.size() == 2) {
        const AcGePoint3d a = raster.clip[0];
        const AcGePoint3d b = raster.clip[1];
        raster.clip = {a, {b.x, a.y, 0.0}, b, {a.x, b.y, 0.0}};
    }
    for (AcGePoint3d &corner : raster.clip)
        corner = raster.origin + u * (corner.x + 0.5) + v * (size.y - corner.y - 0.5);
    raster.clipInverted = !raster.clip.empty() && groups.integer(290) != 0;
    return raster;
}

/// Names count from the folder of the drawing that has the image, which may be another one than is shown.
static QString fromItsFolder(const QString &path, const AcDbDatabase *database)
{
    if (path.isEmpty() || !database || !database->xrefs().isReference())
        return path;
    const QString plain = QString(path).replace(u'\\', u'/');
    const QDir folder(database->folder());
    for (const QString &place : {folder.filePath(plain), folder.filePath(plain.section(u'/', -1))}) {
        if (QFileInfo(place).isFile())
            return place;
    }
    return path;
}

static QString imagePath(const AcDbEntity &entity, const OwnGroups &groups)
{
    QString path;
    if (const resbuf *const definition = groups.find(340))
        readObject(objectOf(entity, definition->handle()),
                   [&](const AcDbObject &object) { path = OwnGroups(object).text(1); });
    return fromItsFolder(path, entity.database());
}

void drawImage(const AcDbEntity &entity, AcGiGeometry &sink)
{
    constexpr std::int64_t kShow = 1;
    const OwnGroups groups(entity);
    const Raster raster = readRaster(groups);
    if (groups.integer(70, kShow) & kShow) {
        Image image{imagePath(entity, groups),
                    raster.origin,
                    raster.u,
                    raster.v,
                    raster.clip,
                    double(std::clamp<std::int64_t>(groups.integer(283), 0, 100)) / 100.0};
        if (raster.clipInverted) {
            image.clip.clear();
            sink.pushClip(std::span(&raster.clip, 1), true);
        }
        sink.image(image);
        if (raster.clipInverted)
            sink.popClip();
    }
    if (frameVariable(entity, QStringLiteral("ACAD_IMAGE_VARS"), 1) != 0)
        drawClosed(raster.frame(), sink);
    if (raster.clipInverted)
        drawClosed(raster.clip, sink);
}

void drawWipeout(const AcDbEntity &entity, AcGiGeometry &sink)
{
    const Raster raster = readRaster(OwnGroups(entity));
    std::vector<Loop> loops{raster.frame()};
    if (raster.clipInverted)
        loops.push_back(raster.clip);
    {
        const PenScope pen(sink);
        sink.subEntityTraits().setTrueColor(AcCmEntityColor::background());
        sink.fill(loops);
    }
    if (frameVariable(entity, QStringLiteral("ACAD_WIPEOUT_VARS"), 1) != 0) {
        for (Loop &loop : loops)
            drawClosed(std::move(loop), sink);
    }
}

void drawOleFrame(const AcDbEntity &entity, AcGiGeometry &sink)
{
    const OwnGroups groups(entity);
    const AcGePoint3d low = groups.point(10);
    const AcGePoint3d high = groups.point(11);
    drawClosed({low, {high.x, low.y, low.z}, {high.x, high.y, low.z}, {low.x, high.y, low.z}}, sink);
    sink.noteUndrawn(Host::tr("%1: only its frame").arg(QLatin1String(entity.dxfName())));
}

// How large the page is stands in a file of another format: only a clipped underlay has a frame.
void drawUnderlay(const AcDbEntity &entity, AcGiGeometry &sink)
{
    constexpr std::int64_t kOn = 2;
    const OwnGroups groups(entity);
    if (!(groups.integer(280, kOn) & kOn))
        return;
    Loop clip = groups.points(11);
    if (clip.size() == 2)
        clip = {clip[0], {clip[1].x, clip[0].y, 0.0}, clip[1], {clip[0].x, clip[1].y, 0.0}};
    const ModelTransform placed(
        sink, AcGeMatrix3d::planeToWorld(groups.normal()) * AcGeMatrix3d::translation(groups.vector(10)) *
                  AcGeMatrix3d::rotation(radians(groups.real(50)), AcGeVector3d::kZAxis) *
                  AcGeMatrix3d::scaling(groups.real(41, 1.0), groups.real(42, 1.0), groups.real(43, 1.0)));
    drawClosed(std::move(clip), sink);
    sink.noteUndrawn(
        Host::tr("%1: %2 not shown").arg(QLatin1String(entity.dxfName()), imagePath(entity, groups)));
}

} // namespace acgi
