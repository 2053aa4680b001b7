// createMark: the one place where a new mark is built, numbered and put into the drawing.
#pragma once

#include "host/acdb/dbid.h"
#include "host/acge/gepoint.h"

#include <QString>

class AcDbDatabase;

struct NewMark {
    /// World coordinates, z 0: the lower-left and the upper-right corner as the user sees them; of a leader
    /// mark the leader's start on the target and its end, where the text goes.
    AcGePoint3d corner1;
    AcGePoint3d corner2;
    bool isLeader = false; ///< The text stands in a box at the end of a leader; no outline, no snapshot.
    QString reviewerName;
    QString opinionText;
    QString sketchFile;      ///< File of a freehand sketch; empty: none.
    bool isFreehand = false; ///< The sketch is the mark: no outline is drawn around it.
    int weight = 5;
    QString bigCategory;
    QString smallCategory;
};

/// Builds the mark from the request, the settings and the current view, appends it to the current space of
/// the database, and keeps its number as the drawing's last. A null id when the drawing refuses it.
AcDbObjectId createMark(AcDbDatabase &database, const NewMark &request);
