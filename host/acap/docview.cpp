#include "host/acap/docview.h"

#include "host/acdb/dbdict.h"
#include "host/acdb/dbsymtb.h"
#include "host/acdb/dbundo.h"
#include "host/acdb/dbviewport.h"

#include <algorithm>
#include <cmath>

static bool isUsableHeight(double height)
{
    return std::isfinite(height) && height > 1e-9 && height < 1e18;
}

static bool setView(AcGeView &view, const AcGePoint3d &target, const AcGePoint3d &centre, double height,
                    double twist)
{
    if (!isUsableHeight(height) || !std::isfinite(twist))
        return false;
    const AcGeVector3d offset =
        AcGeMatrix3d::rotation(twist, AcGeVector3d::kZAxis).inverse() * centre.asVector();
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
static bool restoreModelView(const AcDbDatabase &database, AcGeView &view)
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

// Viewports of sheets -----------------------------------------------------------------------------

std::vector<std::pair<int, AcDbObjectId>> acapSheetViewports(const AcDbDatabase &database, AcDbObjectId sheet)
{
    auto viewports = acdbSheetViewports(database, sheet);
    std::erase_if(viewports, [](const auto &each) { return each.first == 1; });
    return viewports;
}

std::optional<AcApFloatingView> acapFloatingView(const AcDbEntity &viewport)
{
    const AcDbViewportData data = acdbViewportData(viewport);
    if (!isUsableHeight(data.height) || !isUsableHeight(data.viewHeight))
        return std::nullopt;
    AcApFloatingView view;
    view.scale = data.height / data.viewHeight;
    view.twist = data.twist;
    view.isPlan = data.isPlan();
    view.isOn = data.isOn;
    const AcGeMatrix3d upright =
        view.isPlan ? AcGeMatrix3d() : AcGeMatrix3d::planeToWorld(data.direction.normal()).inverse();
    view.toSheet = AcGeMatrix3d::translation(data.centre.asVector()) *
                   AcGeMatrix3d::scaling(view.scale, view.scale, view.scale) *
                   AcGeMatrix3d::translation({-data.viewCentre.x, -data.viewCentre.y, 0.0}) *
                   AcGeMatrix3d::rotation(data.twist, AcGeVector3d::kZAxis) * upright *
                   AcGeMatrix3d::translation(-data.target.asVector());
    return view;
}

/// The sheet itself is shown through the viewport entity that stands for it.
static bool restoreSheetView(const AcDbDatabase &database, AcDbObjectId space, AcGeView &view)
{
    for (const auto &[number, id] : acdbSheetViewports(database, space)) {
        if (number != 1)
            continue;
        const AcDbObjectPointer<AcDbEntity> viewport(id, AcDb::kForRead);
        const AcDbViewportData data = acdbViewportData(*viewport);
        return setView(view, {}, {data.viewCentre.x, data.viewCentre.y, 0.0}, data.viewHeight, 0.0);
    }
    return false;
}

bool acapRestoreView(const AcDbDatabase &database, AcDbObjectId space, AcGeView &view)
{
    if (space != database.modelSpaceId())
        return restoreSheetView(database, space, view);
    if (restoreModelView(database, view))
        return true;
    return database.headerVariable("$VIEWCTR") &&
           setView(view, {}, database.headerPoint("$VIEWCTR"), database.headerReal("$VIEWSIZE"), 0.0);
}

std::optional<AcApNamedView> acapNamedView(const AcDbDatabase &database, const QString &name)
{
    const AcDbObjectPointer<AcDbSymbolTableRecord> record(database.tableRecord(SymbolTable::view, name),
                                                          AcDb::kForRead);
    AcGeView view;
    // Its twist is in group 50, degrees; the width is in 41.
    if (!record || !setView(view, pointOf(record->groups(), 12), pointOf(record->groups(), 10),
                            realOf(record->groups(), 40), realOf(record->groups(), 50) * kGePi / 180.0))
        return std::nullopt;
    const double width = realOf(record->groups(), 41);
    return AcApNamedView{view.centre, view.height, isUsableHeight(width) ? width : view.height, view.twist,
                         (record->flags() & 1) != 0};
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

// The shown layout ---------------------------------------------------------------------------------

/// An xrecord of the named-object dictionary; its one group is the block record.
static const QString kLayoutRecord = QStringLiteral("QUILL_LAYOUT");

static AcDbObjectId layoutRecord(const AcDbDatabase &database)
{
    const AcDbObjectPointer<AcDbDictionary> root(database.namedObjectsDictionaryId(), AcDb::kForRead);
    return root ? root->getAt(kLayoutRecord) : AcDbObjectId();
}

static AcDbObjectId notedLayout(const AcDbDatabase &database)
{
    const AcDbObjectPointer<AcDbXrecord> record(layoutRecord(database), AcDb::kForRead);
    const ResbufList chain = record ? record->rbChain() : ResbufList();
    return chain.empty() ? AcDbObjectId() : database.getAcDbObjectId(chain.front().handle());
}

static AcDbObjectId addLayoutRecord(AcDbDatabase &database)
{
    AcDbObjectPointer<AcDbDictionary> root(acdbEnsureNamedObjects(database), AcDb::kForWrite);
    auto record = std::make_unique<AcDbXrecord>();
    AcDbObjectId id;
    if (!root || root->setAt(kLayoutRecord, record.get(), id) != Acad::eOk)
        return {};
    const AcDbObjectPointer<AcDbXrecord> added(record.release()); // Closes it.
    return id;
}

static void noteLayout(AcDbDatabase &database, AcDbObjectId layout)
{
    AcDbObjectId id = layoutRecord(database);
    if (id.isNull() && layout == database.paperSpaceId())
        return; // What the file says without a record.
    if (id.isNull())
        id = addLayoutRecord(database);
    if (layout == notedLayout(database))
        return;
    AcDbObjectPointer<AcDbXrecord> record(id, AcDb::kForWrite);
    if (record)
        record->setFromRbChain({{330, layout.handle()}});
}

void acapKeepLayout(AcDbDatabase &database, AcDbObjectId space)
{
    if (!database.headerVariable("$TILEMODE"))
        return;
    const bool isModel = space == database.modelSpaceId();
    AcDbUndo &undo = database.undo();
    const bool recording = undo.isRecording();
    undo.setRecording(false);
    database.setHeaderVariable("$TILEMODE", {{70, std::int64_t(isModel ? 1 : 0)}});
    if (!isModel)
        noteLayout(database, space);
    undo.setRecording(recording);
}

void acapRestoreLayout(AcDbDatabase &database)
{
    const AcDbObjectId noted = notedLayout(database);
    const std::vector<AcDbObjectId> layouts = acdbLayoutBlocks(database);
    if (database.headerInteger("$TILEMODE", 1) == 0 && noted != database.modelSpaceId() &&
        std::ranges::find(layouts, noted) != layouts.end())
        database.setCurrentSpace(noted);
}
