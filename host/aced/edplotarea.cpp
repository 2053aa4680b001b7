// Plot settings of layouts, and the rectangles that plot areas stand for.
#include "host/aced/edplotarea.h"

#include "host/acap/docview.h"
#include "host/acdb/dbsymtb.h"
#include "host/acdb/owngroups.h"
#include "host/aced/edspace.h"
#include "host/aced/edview.h"
#include "host/base/host_text.h"

#include <cmath>

// Rectangles --------------------------------------------------------------------------------------

/// How the space is seen, or would be if it were current.
static AcGeView viewOf(const AcApDocument &document, AcDbObjectId space)
{
    if (space == acedShownSpace(document))
        return acedShownView(document);
    AcGeView view = document.view();
    view.twist = 0.0;
    const auto &others = document.otherSpaces();
    const auto known = others.find(space);
    if (known != others.end())
        return known->second.view;
    acapRestoreView(*document.database(), space, view);
    return view;
}

static base::Result<AcEdPlotRectangle, QString> around(AcDbExtents box, double twist)
{
    if (!box.isValid())
        return base::Failure{Host::tr("there is nothing to plot")};
    const AcGeMatrix3d frame = AcGeMatrix3d::rotation(twist, AcGeVector3d::kZAxis);
    box.transformBy(frame);
    const AcGeVector3d diagonal = box.maxPoint() - box.minPoint();
    AcEdPlotRectangle area;
    area.centre = frame.inverse() * (box.minPoint() + diagonal * 0.5);
    // What has no width or no height still has a place on the page.
    const double least = std::max({diagonal.x, diagonal.y, 1e-6}) * 1e-3;
    area.width = std::max(diagonal.x, least);
    area.height = std::max(diagonal.y, least);
    area.twist = twist;
    return area;
}

static AcDbExtents limitsOf(const AcDbDatabase &database, bool model)
{
    AcDbExtents box;
    const AcGePoint3d low = database.headerPoint(model ? "$LIMMIN" : "$PLIMMIN");
    const AcGePoint3d high = database.headerPoint(model ? "$LIMMAX" : "$PLIMMAX");
    if (high.x > low.x && high.y > low.y) {
        box.addPoint({low.x, low.y, 0});
        box.addPoint({high.x, high.y, 0});
    }
    return box;
}

static base::Result<AcEdPlotRectangle, QString> namedView(const AcDbDatabase &database, const QString &name)
{
    const auto view = acapNamedView(database, name);
    if (!view)
        return base::Failure{Host::tr("there is no view named \"%1\"").arg(name)};
    return AcEdPlotRectangle{view->centre, view->width, view->height, view->twist};
}

base::Result<AcEdPlotRectangle, QString> acedPlotRectangle(const AcApDocument &document, const AcEdPlot &plot)
{
    const AcDbDatabase &database = *document.database();
    const AcGeView view = viewOf(document, plot.space);
    switch (plot.area) {
    case AcEdPlotArea::display:
        return AcEdPlotRectangle{view.centre, view.width(), view.height, view.twist};
    case AcEdPlotArea::limits:
        return around(limitsOf(database, plot.space == database.modelSpaceId()), view.twist);
    case AcEdPlotArea::view:
        return namedView(database, plot.viewName);
    case AcEdPlotArea::window:
        return around(plot.window, view.twist);
    case AcEdPlotArea::layout:
    case AcEdPlotArea::extents:
        break;
    }
    AcGiViewport page;
    page.twist = view.twist;
    page.pixelWidth = plot.pageWidth * kPlotDotsPerMillimetre;
    page.pixelHeight = plot.pageHeight * kPlotDotsPerMillimetre;
    page.pixelsPerMillimetre = kPlotDotsPerMillimetre;
    page.paperSpace = plot.space != database.modelSpaceId();
    return around(acedShownExtents(*document.database(), plot.space, page), view.twist);
}

// Settings of layouts -----------------------------------------------------------------------------

namespace
{

enum PlotFlag { kCentred = 4, kStandardScale = 16, kLineWeights = 128 };

} // namespace

/// The margins are those of the upright sheet; a quarter turn brings its left edge to the bottom of what is
/// read.
static AcEdPlotMargins readMargins(const OwnGroups &settings)
{
    const double left = settings.real(40);
    const double bottom = settings.real(41);
    const double right = settings.real(42);
    const double top = settings.real(43);
    switch (settings.integer(73)) {
    case 1:
        return {top, left, bottom, right};
    case 2:
        return {right, top, left, bottom};
    case 3:
        return {bottom, right, top, left};
    default:
        return {left, bottom, right, top};
    }
}

static void readPage(AcEdPlot &plot, const OwnGroups &settings)
{
    const double width = settings.real(44);
    const double height = settings.real(45);
    if (!(width > 1) || !(height > 1))
        return;
    const bool turned = settings.integer(73) % 2 == 1;
    plot.pageWidth = turned ? height : width;
    plot.pageHeight = turned ? width : height;
    plot.margins = readMargins(settings);
}

static void readScale(AcEdPlot &plot, const OwnGroups &settings)
{
    const bool fits = settings.integer(70) & kStandardScale && settings.integer(75) == 0;
    const double paperUnits = settings.real(142);
    const double drawingUnits = settings.real(143);
    if (!fits && paperUnits > 0 && drawingUnits > 0)
        plot.scale = paperUnits / drawingUnits * (settings.integer(72) == 0 ? 25.4 : 1.0);
}

static void readArea(AcEdPlot &plot, const OwnGroups &settings, bool model)
{
    constexpr AcEdPlotArea kAreas[] = {AcEdPlotArea::display, AcEdPlotArea::extents, AcEdPlotArea::limits,
                                       AcEdPlotArea::view,    AcEdPlotArea::window,  AcEdPlotArea::layout};
    const std::int64_t kind = settings.integer(74, 5);
    plot.area = kind >= 0 && kind < 6 ? kAreas[kind] : AcEdPlotArea::layout;
    if (model && plot.area == AcEdPlotArea::layout) {
        // Model space has no layout area: nobody has set up this plot.
        plot.area = AcEdPlotArea::extents;
        plot.scale.reset();
        return;
    }
    plot.viewName = settings.text(6);
    plot.window = AcDbExtents();
    plot.window.addPoint({settings.real(48), settings.real(49), 0});
    plot.window.addPoint({settings.real(140), settings.real(141), 0});
    plot.centred = settings.integer(70) & kCentred;
    plot.offset = {settings.real(46), settings.real(47)};
}

AcEdPlot acedLayoutPlot(const AcDbDatabase &database, AcDbObjectId space)
{
    AcEdPlot plot;
    plot.space = space;
    const AcDbObjectPointer<AcDbBlockTableRecord> block(space, AcDb::kForRead);
    const AcDbObjectPointer<AcDbObject> layout(block ? block->layoutId() : AcDbObjectId(), AcDb::kForRead);
    if (!layout)
        return plot;
    // At the front of a LAYOUT object; their group codes come again behind, with other meanings.
    const OwnGroups settings(*layout, u"AcDbPlotSettings");
    readPage(plot, settings);
    readScale(plot, settings);
    readArea(plot, settings, space == database.modelSpaceId());
    plot.lineWeights = settings.integer(70, kLineWeights) & kLineWeights;
    plot.monochrome = settings.text(7).startsWith(QLatin1String("monochrome"), Qt::CaseInsensitive);
    return plot;
}
