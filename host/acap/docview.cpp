#include "host/acap/docview.h"

#include "host/acdb/dbsymtb.h"

#include <cmath>

AcGeMatrix3d acapViewFrame(double twist)
{
    return AcGeMatrix3d::rotation(twist, AcGeVector3d::kZAxis);
}

static bool isUsableHeight(double height)
{
    return std::isfinite(height) && height > 1e-9 && height < 1e18;
}

static bool setView(AcApView &view, const AcGePoint3d &target, const AcGePoint3d &centre, double height,
                    double twist)
{
    if (!isUsableHeight(height) || !std::isfinite(twist))
        return false;
    const AcGeVector3d offset = acapViewFrame(twist).inverse() * centre.asVector();
    view.centre = target + offset;
    view.height = height;
    view.twist = twist;
    return true;
}

static double realOf(const ResbufList &groups, int code)
{
    const resbuf *group = findGroup(groups, code);
    return group ? group->real() : 0.0;
}

static AcGePoint3d pointOf(const ResbufList &groups, int code)
{
    const resbuf *group = findGroup(groups, code);
    return group ? group->point() : AcGePoint3d();
}

/// The active viewport is the first record named *Active; when the screen is split there are several.
static bool restoreModelView(const AcDbDatabase &database, AcApView &view)
{
    for (const std::uint32_t index : database.tableRecords(SymbolTable::viewport)) {
        const AcDbObjectPointer<AcDbSymbolTableRecord> record(AcDbObjectId(database.stub(index)),
                                                              AcDb::kForRead);
        if (!record || record->getName().compare(QLatin1String("*Active"), Qt::CaseInsensitive) != 0)
            continue;
        const ResbufList &groups = record->groups();
        // Group 51 is in degrees, as angles are in files.
        return setView(view, pointOf(groups, 17), pointOf(groups, 12), realOf(groups, 40),
                       realOf(groups, 51) * kGePi / 180.0);
    }
    return false;
}

/// The sheet itself is shown through the viewport entity whose number (69) is 1.
static bool restoreSheetView(const AcDbDatabase &database, AcDbObjectId space, AcApView &view)
{
    const BlockContents *sheet = database.blockContents(space);
    if (!sheet)
        return false;
    static const AcDbKind viewportKind = acdbKind("VIEWPORT");
    for (const std::uint32_t index : sheet->entities) {
        if (database.stub(index)->kind != viewportKind)
            continue;
        const AcDbObjectPointer<AcDbEntity> viewport(AcDbObjectId(database.stub(index)), AcDb::kForRead);
        const resbuf *number = viewport ? findGroup(viewport->groups(), 69) : nullptr;
        if (!number || number->integer() != 1)
            continue;
        return setView(view, {}, pointOf(viewport->groups(), 12), realOf(viewport->groups(), 45), 0.0);
    }
    return false;
}

bool acapRestoreView(const AcDbDatabase &database, AcDbObjectId space, AcApView &view)
{
    if (space != database.modelSpaceId())
        return restoreSheetView(database, space, view);
    if (restoreModelView(database, view))
        return true;
    return database.headerVariable("$VIEWCTR") &&
           setView(view, {}, database.headerPoint("$VIEWCTR"), database.headerReal("$VIEWSIZE"), 0.0);
}

AcApUcs acapSavedUcs(const AcDbDatabase &database, AcDbObjectId space)
{
    const QByteArray prefix = space == database.modelSpaceId() ? "$UCS" : "$PUCS";
    AcApUcs ucs;
    ucs.origin = database.headerPoint(prefix + "ORG");
    ucs.xAxis = database.headerPoint(prefix + "XDIR", {1, 0, 0}).asVector().normal();
    ucs.yAxis = database.headerPoint(prefix + "YDIR", {0, 1, 0}).asVector().normal();
    const bool usable = ucs.xAxis.length() > 0.5 && ucs.yAxis.length() > 0.5 &&
                        std::abs(ucs.xAxis.dotProduct(ucs.yAxis)) < 1e-6;
    return usable ? ucs : AcApUcs();
}
