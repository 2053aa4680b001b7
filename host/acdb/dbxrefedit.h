// Changing the external references of a drawing. What is changed is the block, and the layers and linetypes
// "name|layer" that the drawing keeps of a reference; the other drawing never is. All of it can be undone.
#pragma once

#include "host/acdb/dbid.h"
#include "host/acdb/errorstatus.h"

#include <QString>

class AcDbDatabase;
struct AcDbXref;

/// A block that shows the drawing of that path; null when the name is taken, or the drawing can have none.
AcDbObjectId acdbAttachXref(AcDbDatabase &database, const QString &name, const QString &path, bool isOverlay);
/// Gives the drawing the layers and linetypes of what a loaded reference shows, nested ones too. Those that
/// it has keep how they are shown, unless $VISRETAIN is 0.
void acdbTakeXrefRecords(AcDbDatabase &database, const AcDbXref &xref);
/// Erases the block, its references wherever they stand, and its layers and linetypes. eOnLockedLayer and the
/// like leave everything as it was, within an open undo group.
Acad::ErrorStatus acdbDetachXref(AcDbDatabase &database, AcDbObjectId block);
Acad::ErrorStatus acdbSetXrefUnloaded(AcDbObjectId block, bool unloaded);
Acad::ErrorStatus acdbSetXrefPath(AcDbObjectId block, const QString &path);
Acad::ErrorStatus acdbSetXrefOverlay(AcDbObjectId block, bool isOverlay);
