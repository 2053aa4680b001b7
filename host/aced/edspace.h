// Model space, paper space and layouts: which one is current.
#pragma once

#include "host/acap/docman.h"

bool acedIsModelSpaceCurrent(const AcApDocument &document);
/// "Model", "Layout1" (CTAB): the shown one.
QString acedCurrentLayoutName(const AcApDocument &document);
/// The layout's block record by name, ignoring letter case; null when there is none.
AcDbObjectId acedFindLayout(const AcDbDatabase &database, const QString &name);
/// The number of the viewport that takes input (CVPORT): 1 on a sheet, 2 in model space, the entered
/// viewport's own number.
int acedCurrentViewport(const AcApDocument &document);
/// What is on the screen: the sheet while one of its viewports is entered, otherwise the current space.
AcDbObjectId acedShownSpace(const AcApDocument &document);
/// The view of the shown space.
AcGeView acedShownView(const AcApDocument &document);
/// Makes a viewport of the shown sheet current, and with it model space; 1 goes back to the sheet. Views of
/// entered viewports count as locked: zooming moves the sheet, the drawing does not change. eKeyNotFound for
/// numbers that the sheet does not have, eInvalidInput for viewports that are off or not seen from above.
Acad::ErrorStatus acedEnterViewport(AcApDocument &document, int number);

/// Makes a space current: where new entities go and what the view shows. The view and UCS of the space left
/// are kept for coming back. Makes no undo step. eInvalidInput for block records that are no layout.
Acad::ErrorStatus acedMakeSpaceCurrent(AcApDocument &document, AcDbObjectId blockRecord);
