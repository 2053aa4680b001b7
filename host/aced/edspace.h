// Model space, paper space and layouts: which one is current.
#pragma once

#include "host/acap/docman.h"

bool acedIsModelSpaceCurrent(const AcApDocument &document);
/// "Model", "Layout1" (CTAB).
QString acedCurrentLayoutName(const AcApDocument &document);
/// The layout's block record by name, ignoring letter case; null when there is none.
AcDbObjectId acedFindLayout(const AcDbDatabase &database, const QString &name);
/// The number of the viewport that takes input (CVPORT): 1 on a sheet, 2 in model space.
int acedCurrentViewport(const AcApDocument &document);

/// Makes a space current: where new entities go and what the view shows. The view and UCS of the space left
/// are kept for coming back. Makes no undo step. eInvalidInput for block records that are no layout.
Acad::ErrorStatus acedMakeSpaceCurrent(AcApDocument &document, AcDbObjectId blockRecord);
