#include "host/aced/edspace.h"

#include "host/acap/docview.h"
#include "host/acdb/dbsymtb.h"
#include "host/acdb/dbundo.h"
#include "host/aced/edview.h"

#include <algorithm>

bool acedIsModelSpaceCurrent(const AcApDocument &document)
{
    const AcDbDatabase &database = *document.database();
    return database.currentSpaceId() == database.modelSpaceId();
}

QString acedCurrentLayoutName(const AcApDocument &document)
{
    return acdbLayoutName(document.database()->currentSpaceId());
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
    return acedIsModelSpaceCurrent(document) ? 2 : 1;
}

/// Which space is shown is the user's affair, not an edit to be undone.
static void setTileMode(AcDbDatabase &database, bool model)
{
    AcDbUndo &undo = database.undo();
    const bool recording = undo.isRecording();
    undo.setRecording(false);
    database.setHeaderVariable("$TILEMODE", {{70, std::int64_t(model ? 1 : 0)}});
    undo.setRecording(recording);
}

static void enterSpace(AcApDocument &document, AcDbObjectId space)
{
    AcApView &view = document.view();
    const auto known = document.otherSpaces().find(space);
    if (known != document.otherSpaces().end()) {
        // The window may have another size by now.
        const int pixelWidth = view.pixelWidth;
        const int pixelHeight = view.pixelHeight;
        view = known->second.view;
        view.pixelWidth = pixelWidth;
        view.pixelHeight = pixelHeight;
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

Acad::ErrorStatus acedMakeSpaceCurrent(AcApDocument &document, AcDbObjectId blockRecord)
{
    AcDbDatabase &database = *document.database();
    const std::vector<AcDbObjectId> layouts = acdbLayoutBlocks(database);
    if (std::find(layouts.begin(), layouts.end(), blockRecord) == layouts.end())
        return Acad::eInvalidInput;
    const AcDbObjectId previous = database.currentSpaceId();
    if (previous == blockRecord)
        return Acad::eOk;
    document.otherSpaces()[previous] = {document.view(), document.ucs()};
    setTileMode(database, blockRecord == database.modelSpaceId());
    const bool byRule = blockRecord == database.modelSpaceId() || blockRecord == database.paperSpaceId();
    database.setCurrentSpace(byRule ? AcDbObjectId() : blockRecord);
    document.pickSet().clear();
    enterSpace(document, blockRecord);
    return Acad::eOk;
}
