// The view and the coordinate system that a drawing was saved with, and the frame that a view sees it in.
#pragma once

#include "host/acap/docman.h"
#include "host/acdb/dbentity.h"
#include "host/acge/gematrix.h"

#include <optional>

/// Puts the saved view of a space (block record) into `view`, whose pixels stay: the active viewport of model
/// space, or a sheet's own viewport. False, and nothing changed, when the drawing has none.
bool acapRestoreView(const AcDbDatabase &database, AcDbObjectId space, AcGeView &view);
/// Notes the shown space (model space or the block record of a layout) for the next opening. Shown is no
/// edit: no undo step, and the drawing is as saved as it was. A drawing that does not say which space it was
/// saved in stays so.
void acapKeepLayout(AcDbDatabase &database, AcDbObjectId space);
/// Makes the noted layout current. Files by themselves name one sheet only, "*Paper_Space".
void acapRestoreLayout(AcDbDatabase &database);
/// What a viewport of a sheet shows, and where.
struct AcApFloatingView {
    AcGeMatrix3d toSheet; ///< World to the sheet's coordinates.
    double scale = 1.0;   ///< Sheet units for a world unit.
    double twist = 0.0;   ///< Radians.
    bool isPlan = true;   ///< Seen from above.
    bool isOn = true;
};
/// From a VIEWPORT entity; none when its numbers make no view.
std::optional<AcApFloatingView> acapFloatingView(const AcDbEntity &viewport);
/// Numbers (CVPORT, from 2 on) and entities of the viewports of a sheet, without the sheet's own.
std::vector<std::pair<int, AcDbObjectId>> acapSheetViewports(const AcDbDatabase &database,
                                                             AcDbObjectId sheet);
/// A record of the VIEW table.
struct AcApNamedView {
    AcGePoint3d centre; ///< World.
    double height = 1.0;
    double width = 1.0;
    double twist = 0.0;
    bool paperSpace = false; ///< Of a sheet.
};
/// None when there is no such view or its numbers make none.
std::optional<AcApNamedView> acapNamedView(const AcDbDatabase &database, const QString &name);
/// The saved coordinate system of model space or of the sheets; the world's when it has none or a bad one.
AcApUcs acapSavedUcs(const AcDbDatabase &database, AcDbObjectId space);
