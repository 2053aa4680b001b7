// Where the text box of a new leader mark stands: beside the end of the leader, away from its start.
#pragma once

#include "host/acge/gematrix.h"

#include <QString>

/// Two opposite corners in world coordinates: the lower left and the upper right one as the user sees them.
struct LeaderTextBox {
    AcGePoint3d corner1;
    AcGePoint3d corner2;
};

/// `start` is on the target, `end` where the text goes. The box holds `lines` lines of the given width and
/// height with a margin. The matrix turns the world into the view's frame (AcGeView::getWorldToEyeTransform).
LeaderTextBox leaderTextBox(const AcGePoint3d &start, const AcGePoint3d &end, double textHeight, int lines,
                            double width, const AcGeMatrix3d &worldToView);

/// Lines that a text is taken for until it is laid out: one for each full 40 characters, and one.
int leaderTextLines(const QString &text);
/// Width of the first 40 characters in the font of the marks.
double leaderTextWidth(const QString &text, double textHeight);
