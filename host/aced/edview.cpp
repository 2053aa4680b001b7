#include "host/aced/edview.h"

#include "host/acap/docview.h"
#include "host/aced/edinput.h"
#include "host/aced/edspace.h"
#include "host/acgi/gispatialindex.h"
#include "host/acgi/givisibility.h"

#include <cmath>
#include <limits>

AcGeMatrix3d acedViewFrame(const AcApView &view)
{
    return acapViewFrame(view.twist);
}

// Pixels ------------------------------------------------------------------------------------------

static const AcApDocument *shown(int viewport)
{
    const AcApDocument *const document = curDoc();
    return document && viewport == acedCurrentViewport(*document) ? document : nullptr;
}

static bool toPixel(double value, int &pixel)
{
    constexpr double kLimit = std::numeric_limits<int>::max() / 2.0;
    if (!(std::abs(value) < kLimit))
        return false;
    pixel = int(std::lround(value));
    return true;
}

bool acedCoordFromWorldToPixel(int viewport, const AcGePoint3d &world, QPoint &pixel)
{
    const AcApDocument *const document = shown(viewport);
    if (!document)
        return false;
    const AcApView &view = document->view();
    const AcGeVector3d offset = acedViewFrame(view) * (world - view.centre);
    int x = 0;
    int y = 0;
    if (!toPixel(view.pixelWidth / 2.0 + offset.x / view.pixelSize(), x) ||
        !toPixel(view.pixelHeight / 2.0 - offset.y / view.pixelSize(), y))
        return false;
    pixel = {x, y};
    return true;
}

bool acedCoordFromPixelToWorld(int viewport, const QPoint &pixel, AcGePoint3d &world)
{
    const AcApDocument *const document = shown(viewport);
    if (!document)
        return false;
    const AcApView &view = document->view();
    const AcGeVector3d offset((pixel.x() - view.pixelWidth / 2.0) * view.pixelSize(),
                              (view.pixelHeight / 2.0 - pixel.y()) * view.pixelSize(), 0);
    world = view.centre + acedViewFrame(view).inverse() * offset;
    return true;
}

// Zooming -----------------------------------------------------------------------------------------

/// The height at which a rectangle of this size is just inside the view.
static double heightFor(const AcApView &view, double width, double height)
{
    return std::max(height, width * view.pixelHeight / view.pixelWidth);
}

static bool isFinite(const AcGePoint3d &point)
{
    return std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z);
}

Acad::ErrorStatus acedSetCurrentView(const AcEdViewRecord &record)
{
    AcApDocument *const document = curDoc();
    if (!document)
        return Acad::eNoDocument;
    const double height = heightFor(document->view(), record.width, record.height);
    if (!(height > 0) || !std::isfinite(height) || !std::isfinite(record.twist) || !isFinite(record.centre))
        return Acad::eInvalidInput;
    if (!record.layout.isNull()) {
        const Acad::ErrorStatus status = acedMakeSpaceCurrent(*document, record.layout);
        if (status != Acad::eOk)
            return status;
    }
    AcApView &view = document->view();
    view.twist = record.twist;
    view.centre = acedViewFrame(view).inverse() * record.centre;
    view.height = height;
    return Acad::eOk;
}

/// True when a visible entity reaches the side of the box that `strip` is.
static bool isReached(AcGiSpatialIndex &index, AcDbObjectId space, const AcDbExtents &strip)
{
    AcGiVisibility visibility;
    for (const AcDbObjectId id : index.query(space, strip)) {
        const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
        AcDbExtents box;
        if (entity && visibility.isVisible(*entity) && acgiExtents(*entity, box) == Acad::eOk &&
            box.meetsInPlane(strip))
            return true;
    }
    return false;
}

static bool isReachedAllAround(AcGiSpatialIndex &index, AcDbObjectId space, const AcDbExtents &box)
{
    const AcGePoint3d low = box.minPoint();
    const AcGePoint3d high = box.maxPoint();
    return isReached(index, space, {low, {low.x, high.y, 0}}) &&
           isReached(index, space, {{high.x, low.y, 0}, high}) &&
           isReached(index, space, {low, {high.x, low.y, 0}}) &&
           isReached(index, space, {{low.x, high.y, 0}, high});
}

static AcDbExtents extentsOneByOne(const AcDbDatabase &database, AcDbObjectId space)
{
    AcDbExtents all;
    AcGiVisibility visibility;
    AcGiBlockExtents blocks;
    for (const std::uint32_t index : database.blockContents(space)->entities) {
        const AcDbObjectPointer<AcDbEntity> entity(AcDbObjectId(database.stub(index)), AcDb::kForRead);
        AcDbExtents box;
        if (entity && visibility.isVisible(*entity) && acgiExtents(*entity, box, &blocks) == Acad::eOk)
            all.addExt(box);
    }
    return all;
}

AcDbExtents acedCurrentExtents(const AcApDocument &document)
{
    AcDbDatabase &database = *document.database();
    const AcDbObjectId space = database.currentSpaceId();
    AcGiSpatialIndex &index = acgiSpatialIndex(database);
    // The index also counts what is hidden; that matters only where nothing else reaches its edge.
    const AcDbExtents indexed = index.extents(space);
    if (!indexed.isValid() || isReachedAllAround(index, space, indexed))
        return indexed;
    return extentsOneByOne(database, space);
}

void acedZoomWindow(AcApDocument &document, const AcGePoint3d &corner1, const AcGePoint3d &corner2)
{
    if (!isFinite(corner1) || !isFinite(corner2))
        return;
    AcApView &view = document.view();
    const AcGeVector3d diagonal = acedViewFrame(view) * (corner2 - corner1);
    view.centre = corner1 + (corner2 - corner1) * 0.5;
    const double height = heightFor(view, std::abs(diagonal.x), std::abs(diagonal.y));
    if (height > 0 && std::isfinite(height))
        view.height = height;
}

void acedRestoreSavedView(AcApDocument &document)
{
    acapRestoreView(*document.database(), document.database()->currentSpaceId(), document.view());
}

// Coordinate systems ------------------------------------------------------------------------------

static AcGeMatrix3d toWorld(AcEdSpace from)
{
    const AcApDocument *const document = curDoc();
    if (!document)
        return {};
    switch (from) {
    case AcEdSpace::world:
        break;
    case AcEdSpace::ucs: {
        const AcApUcs &ucs = document->ucs();
        return AcGeMatrix3d::fromAxes(ucs.origin, ucs.xAxis, ucs.yAxis, ucs.xAxis.crossProduct(ucs.yAxis));
    }
    case AcEdSpace::display:
        return acedViewFrame(document->view()).inverse();
    }
    return {};
}

AcGePoint3d acedTrans(const AcGePoint3d &point, AcEdSpace from, AcEdSpace to)
{
    return from == to ? point : toWorld(to).inverse() * (toWorld(from) * point);
}

AcGeVector3d acedTrans(const AcGeVector3d &vector, AcEdSpace from, AcEdSpace to)
{
    return from == to ? vector : toWorld(to).inverse() * (toWorld(from) * vector);
}
