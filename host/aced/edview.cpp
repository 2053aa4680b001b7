#include "host/aced/edview.h"

#include "host/acap/docview.h"
#include "host/aced/edinput.h"
#include "host/aced/edpicture.h"
#include "host/aced/edspace.h"
#include "host/acgi/query/spatial_index.h"
#include "host/acgi/query/visibility.h"

#include <cmath>
#include <limits>
#include <optional>

// Pixels ------------------------------------------------------------------------------------------

AcGiViewport acedGiViewport(const AcGeView &view, bool paperSpace)
{
    AcGiViewport viewport(view);
    viewport.paperSpace = paperSpace;
    viewport.pixelsPerMillimetre = AcGiViewport::kUsualDensity * view.pixelRatio;
    return viewport;
}

AcGiViewport acedViewport(const AcApDocument &document)
{
    return acedGiViewport(acedShownView(document),
                          acedShownSpace(document) != document.database()->modelSpaceId());
}

/// World to pixels of a viewport; none for numbers that are not on the screen.
static std::optional<AcGeMatrix3d> worldToPixel(int number)
{
    const AcApDocument *const document = curDoc();
    if (!document)
        return std::nullopt;
    const AcGiViewport shown = acedViewport(*document);
    if (number == (shown.paperSpace ? 1 : 2))
        return shown.worldToPixel();
    if (!shown.paperSpace)
        return std::nullopt;
    for (const auto &[candidate, id] : acapSheetViewports(*document->database(), acedShownSpace(*document))) {
        const AcDbObjectPointer<AcDbEntity> entity(candidate == number ? id : AcDbObjectId(), AcDb::kForRead);
        if (const auto through = entity ? acapFloatingView(*entity) : std::nullopt)
            return shown.worldToPixel() * through->toSheet;
    }
    return std::nullopt;
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
    const auto matrix = worldToPixel(viewport);
    if (!matrix)
        return false;
    const AcGePoint3d place = *matrix * world;
    int x = 0;
    int y = 0;
    if (!toPixel(place.x, x) || !toPixel(place.y, y))
        return false;
    pixel = {x, y};
    return true;
}

bool acedCoordFromPixelToWorld(int viewport, const QPoint &pixel, AcGePoint3d &world)
{
    const auto matrix = worldToPixel(viewport);
    if (!matrix)
        return false;
    world = matrix->inverse() * AcGePoint3d(pixel.x(), pixel.y(), curDoc()->view().centre.z);
    return true;
}

// Zooming -----------------------------------------------------------------------------------------

static bool isFinite(const AcGePoint3d &point)
{
    return std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z);
}

Acad::ErrorStatus acedSetCurrentView(const AcEdViewRecord &record)
{
    AcApDocument *const document = curDoc();
    if (!document)
        return Acad::eNoDocument;
    const double height = document->view().heightFor(record.width, record.height);
    if (!(height > 0) || !std::isfinite(height) || !std::isfinite(record.twist) || !isFinite(record.centre))
        return Acad::eInvalidInput;
    if (!record.layout.isNull()) {
        const Acad::ErrorStatus status = acedMakeSpaceCurrent(*document, record.layout);
        if (status != Acad::eOk)
            return status;
    }
    AcGeView &view = document->view();
    view.twist = record.twist;
    view.centre = view.getEyeToWorldTransform() * record.centre;
    view.height = height;
    return Acad::eOk;
}

/// True when a visible entity reaches the side of the box that `strip` is.
static bool isReached(acgi::SpatialIndex &index, AcDbObjectId space, const AcDbExtents &strip)
{
    acgi::Visibility visibility;
    for (const AcDbObjectId id : index.query(space, strip)) {
        const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
        AcDbExtents box;
        if (entity && visibility.isVisible(*entity) && acgi::extentsOf(*entity, box) == Acad::eOk &&
            box.meetsInPlane(strip))
            return true;
    }
    return false;
}

static bool isReachedAllAround(acgi::SpatialIndex &index, AcDbObjectId space, const AcDbExtents &box)
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
    acgi::Visibility visibility;
    acgi::BlockExtents blocks;
    for (const std::uint32_t index : database.blockContents(space)->entities) {
        const AcDbObjectPointer<AcDbEntity> entity(AcDbObjectId(database.stub(index)), AcDb::kForRead);
        AcDbExtents box;
        if (entity && visibility.isVisible(*entity) && acgi::extentsOf(*entity, box, &blocks) == Acad::eOk)
            all.addExt(box);
    }
    return all;
}

AcDbExtents acedCurrentExtents(const AcApDocument &document)
{
    return acedShownExtents(*document.database(), document.database()->currentSpaceId(),
                            acedViewport(document));
}

AcDbExtents acedSpaceExtents(AcDbDatabase &database, AcDbObjectId space)
{
    acgi::SpatialIndex &index = acgi::spatialIndexOf(database);
    // The index also counts what is hidden; that matters only where nothing else reaches its edge.
    const AcDbExtents indexed = index.extents(space);
    if (!indexed.isValid() || isReachedAllAround(index, space, indexed))
        return indexed;
    return extentsOneByOne(database, space);
}

// What marks show beside their extents is larger the farther away it is seen from, so the box and the view
// that it is fitted into are found by turns; a few turns come near enough.
AcDbExtents acedShownExtents(AcDbDatabase &database, AcDbObjectId space, AcGiViewport view)
{
    const AcDbExtents plain = acedSpaceExtents(database, space);
    const std::vector<AcDbObjectId> custom = acgi::spatialIndexOf(database).customEntities(space);
    AcDbExtents all = plain;
    constexpr int kTurns = 3;
    for (int turn = 0; turn < kTurns && !custom.empty() && all.isValid(); ++turn) {
        view.height = 1e-9; // Stays where there is but a point.
        view.fit(all);
        all = plain;
        for (const AcDbObjectId id : custom)
            all.addExt(acgi::displayOf(database).shownBox(id, view));
    }
    return all;
}

void acedZoomWindow(AcApDocument &document, const AcGePoint3d &corner1, const AcGePoint3d &corner2)
{
    if (!isFinite(corner1) || !isFinite(corner2))
        return;
    AcGeView &view = document.view();
    const AcGeVector3d diagonal = view.getWorldToEyeTransform() * (corner2 - corner1);
    view.centre = corner1 + (corner2 - corner1) * 0.5;
    const double height = view.heightFor(std::abs(diagonal.x), std::abs(diagonal.y));
    if (height > 0 && std::isfinite(height))
        view.height = height;
}

/// Those of the space that is shown, or of the viewport in it that was entered.
static std::vector<AcGeView> &earlierViews(AcApDocument &document)
{
    const AcDbObjectId viewport = document.enteredViewport().viewport;
    return document.earlierViews()[viewport.isNull() ? document.database()->currentSpaceId() : viewport];
}

void acedRememberView(AcApDocument &document)
{
    constexpr std::size_t kMost = 10;
    std::vector<AcGeView> &earlier = earlierViews(document);
    earlier.push_back(document.view());
    if (earlier.size() > kMost)
        earlier.erase(earlier.begin());
}

bool acedPreviousView(AcApDocument &document)
{
    std::vector<AcGeView> &earlier = earlierViews(document);
    AcGeView &view = document.view();
    const AcGeView present = view;
    while (!earlier.empty() && view == present) {
        // The window may have another size by now.
        view = earlier.back().onRaster(view.pixelWidth, view.pixelHeight);
        earlier.pop_back();
    }
    return view != present;
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
        return document->view().getEyeToWorldTransform();
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
