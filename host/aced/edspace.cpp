#include "host/aced/edspace.h"

#include "host/acap/docview.h"
#include "host/acdb/dbsymtb.h"
#include "host/aced/edview.h"

#include <algorithm>

bool acedIsModelSpaceCurrent(const AcApDocument &document)
{
    const AcDbDatabase &database = *document.database();
    return database.currentSpaceId() == database.modelSpaceId();
}

QString acedCurrentLayoutName(const AcApDocument &document)
{
    return acdbLayoutName(acedShownSpace(document));
}

AcDbObjectId acedShownSpace(const AcApDocument &document)
{
    const AcDbObjectId sheet = document.enteredViewport().sheet;
    return sheet.isNull() ? document.database()->currentSpaceId() : sheet;
}

AcDbObjectId acedFindLayout(const AcDbDatabase &database, const QString &name)
{
    for (const AcDbObjectId block : acdbLayoutBlocks(database)) {
        if (acdbLayoutName(block).compare(name, Qt::CaseInsensitive) == 0)
            return block;
    }
    return {};
}

int acedCurrentViewport(const AcApDocument &document)
{
    if (document.enteredViewport().number != 0)
        return document.enteredViewport().number;
    return acedIsModelSpaceCurrent(document) ? 2 : 1;
}

static void enterSpace(AcApDocument &document, AcDbObjectId space)
{
    AcGeView &view = document.view();
    const auto known = document.otherSpaces().find(space);
    if (known != document.otherSpaces().end()) {
        // The window may have another size by now.
        view = known->second.view.onRaster(view.pixelWidth, view.pixelHeight);
        document.ucs() = known->second.ucs;
        return;
    }
    document.ucs() = acapSavedUcs(*document.database(), space);
    if (acapRestoreView(*document.database(), space, view))
        return;
    view.twist = 0;
    const AcDbExtents extents = acedCurrentExtents(document);
    if (extents.isValid())
        acedZoomWindow(document, extents.minPoint(), extents.maxPoint());
}

// Viewports of sheets -----------------------------------------------------------------------------

/// Model space as it lies on the screen through the viewport, in the place of the sheet.
static void seeThrough(AcGeView &sheet, const AcApFloatingView &through)
{
    sheet.centre = through.toSheet.inverse() * sheet.centre;
    sheet.height /= through.scale;
    sheet.twist += through.twist;
}

AcGeView acedShownView(const AcApDocument &document)
{
    AcGeView view = document.view();
    const AcDbObjectPointer<AcDbEntity> viewport(document.enteredViewport().viewport, AcDb::kForRead);
    // Somebody may have erased the viewport since it was entered.
    const auto through = viewport ? acapFloatingView(*viewport) : std::nullopt;
    if (through) {
        view.centre = through->toSheet * view.centre;
        view.height *= through->scale;
        view.twist -= through->twist;
    }
    return view;
}

static void leaveViewport(AcApDocument &document)
{
    if (document.enteredViewport().sheet.isNull())
        return;
    AcDbDatabase &database = *document.database();
    const AcDbObjectId sheet = document.enteredViewport().sheet;
    document.view() = acedShownView(document);
    // The model's own view is that of the Model tab; its coordinate system is one and the same.
    const auto model = document.otherSpaces().find(database.modelSpaceId());
    if (model != document.otherSpaces().end())
        model->second.ucs = document.ucs();
    document.ucs() = document.otherSpaces()[sheet].ucs;
    document.enteredViewport() = {};
    document.pickSet().clear();
    database.setCurrentSpace(sheet);
}

static AcApUcs modelUcs(AcApDocument &document)
{
    const AcDbDatabase &database = *document.database();
    const auto known = document.otherSpaces().find(database.modelSpaceId());
    return known == document.otherSpaces().end() ? acapSavedUcs(database, database.modelSpaceId())
                                                 : known->second.ucs;
}

static Acad::ErrorStatus enterViewport(AcApDocument &document, int number, AcDbObjectId id)
{
    const AcDbObjectPointer<AcDbEntity> viewport(id, AcDb::kForRead);
    const auto through = viewport ? acapFloatingView(*viewport) : std::nullopt;
    if (!through || !through->isPlan || !through->isOn)
        return Acad::eInvalidInput;
    leaveViewport(document);
    AcDbDatabase &database = *document.database();
    const AcDbObjectId sheet = database.currentSpaceId();
    document.otherSpaces()[sheet] = {document.view(), document.ucs()};
    seeThrough(document.view(), *through);
    document.ucs() = modelUcs(document);
    document.enteredViewport() = {sheet, id, number};
    document.pickSet().clear();
    database.setCurrentSpace(database.modelSpaceId());
    return Acad::eOk;
}

Acad::ErrorStatus acedEnterViewport(AcApDocument &document, int number)
{
    if (number == acedCurrentViewport(document))
        return Acad::eOk;
    const AcDbObjectId sheet = acedShownSpace(document);
    if (sheet == document.database()->modelSpaceId())
        return Acad::eKeyNotFound;
    if (number == 1) {
        leaveViewport(document);
        return Acad::eOk;
    }
    for (const auto &[candidate, id] : acapSheetViewports(*document.database(), sheet)) {
        if (candidate == number)
            return enterViewport(document, number, id);
    }
    return Acad::eKeyNotFound;
}

// Spaces ------------------------------------------------------------------------------------------

Acad::ErrorStatus acedMakeSpaceCurrent(AcApDocument &document, AcDbObjectId blockRecord)
{
    AcDbDatabase &database = *document.database();
    const std::vector<AcDbObjectId> layouts = acdbLayoutBlocks(database);
    if (std::find(layouts.begin(), layouts.end(), blockRecord) == layouts.end())
        return Acad::eInvalidInput;
    leaveViewport(document);
    const AcDbObjectId previous = database.currentSpaceId();
    if (previous == blockRecord)
        return Acad::eOk;
    document.otherSpaces()[previous] = {document.view(), document.ucs()};
    acapKeepLayout(database, blockRecord);
    database.setCurrentSpace(blockRecord);
    document.pickSet().clear();
    enterSpace(document, blockRecord);
    return Acad::eOk;
}
