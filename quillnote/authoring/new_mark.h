// New marks: createMark() builds one, numbers it and puts it into the drawing. Marks that are drawn point by
// point share with it what the settings and the view say, the layer, and the way into the drawing.
#pragma once

#include "host/acdb/dbid.h"
#include "host/acge/gematrix.h"

#include <QString>

#include <memory>

class AcDbDatabase;
class AcDbExtents;
class QuillnoteObj3;

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

// What new marks have in common, however their target was drawn ---------------------------------------

/// What the user sees as "to the right" in the current view, in the world.
AcGeVector3d viewRight();
/// Text height (that of sheets while a sheet is current), axes along the current view, colours and password.
void fillMarkFromSettings(QuillnoteObj3 &mark);

/// Puts the mark on the mark layer when the settings ask for one, else on layer "0", lays it out and appends
/// it.
AcDbObjectId appendNewMark(AcDbDatabase &database, std::unique_ptr<QuillnoteObj3> mark);
/// Appends a settled mark to a block record, the current space when it is null. A null id when the drawing
/// refuses it.
AcDbObjectId appendMark(AcDbDatabase &database, std::unique_ptr<QuillnoteObj3> mark, AcDbObjectId space = {});

// Sizes ------------------------------------------------------------------------------------------------

/// A text height (world units, two digits) for a view and for the box around what the drawing shows, which
/// may be invalid: about a fiftieth of the view, within what can be read on the whole drawing.
double suitingTextHeight(double viewHeight, const AcDbExtents &drawing);

/// Two opposite corners in world coordinates: the lower left and the upper right one as the user sees them.
struct LeaderTextBox {
    AcGePoint3d corner1;
    AcGePoint3d corner2;
};
/// The box for the text of a leader that runs from `start` on the target to `end`: beside the end, away from
/// the start, as wide as the first 40 characters in the font of the marks, with a line for each full 40
/// characters and one more, and a margin. The matrix turns the world into the view's frame
/// (AcGeView::getWorldToEyeTransform).
LeaderTextBox leaderTextBox(const AcGePoint3d &start, const AcGePoint3d &end, double textHeight,
                            const QString &text, const AcGeMatrix3d &worldToView);
