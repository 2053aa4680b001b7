// Where reports go: beside the drawing, named after it.
#pragma once

#include <QString>

/// Full path of the current drawing; empty when it was never saved.
QString drawingPath();

/// The path with every ".dwg" and ".dxf" of the file's own name, in any letter case, turned into "_dwg" and
/// "_dxf". Folders keep their names.
QString withoutDrawingEnding(const QString &path);

/// "/p/a.dwg" gives "/p/a_dwg.txt".
QString textReportPath(const QString &drawing);

// Pages are opened by browsers, for which "#" in a name begins something else: it becomes "_".

/// "/p/a#1.dwg" gives "/p/a_1_dwg.html".
QString webReportPath(const QString &drawing);
/// "/p/a#1.dwg" gives "/p/a_1_dwgN.html".
QString sheetPath(const QString &drawing);
/// "/p/a#1.dwg" gives "/p/a_1_dwg-review.html".
QString reviewPagePath(const QString &drawing);

/// The path with every "#" of the file's own name turned into "_".
QString withoutHash(const QString &path);
