// Aligning the text boxes of leader marks with that of one of them.
#pragma once

#include "quillnote/entity/mark_outline.h"

enum class BoxAlignment {
    sides,   ///< The left and the right side stand where the reference's stand.
    left,    ///< The whole box moves until its left side does.
    heights, ///< The lower and the upper side lie where the reference's lie.
};

/// The box aligned with the reference, as it is seen in a view (the matrix turns the world into the view's
/// frame). It stays a rectangle along `xDirection`.
MarkCorners alignedTextBox(const MarkCorners &box, const MarkCorners &reference, BoxAlignment alignment,
                           const AcGeVector3d &xDirection, const AcGeMatrix3d &worldToView);

/// Commands: choose the reference, then the marks. Flag marks among them are passed over.
void qn8_align0(); ///< sides
void qn8_align1(); ///< left
void qn8_align2(); ///< heights
