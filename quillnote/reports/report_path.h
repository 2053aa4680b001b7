// Where reports go: beside the drawing, named after it.
#pragma once

#include <QString>

/// Full path of the current drawing; empty when it was never saved.
QString drawingPath();

/// The path with ".dwg" (and ".dxf") turned into "_dwg" ("_dxf"), in either letter case.
QString withoutDrawingEnding(QString path);

/// "/p/a.dwg" gives "/p/a_dwg.txt".
QString textReportPath(const QString &drawing);
