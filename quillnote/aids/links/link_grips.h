// Grips of hot links: centre, then the corners 1 to 4.
#pragma once

#include "quillnote/entity/mark_outline.h"

#include <span>

/// What dragging grips, named by their places, by an offset (world) makes of a link's area, which is a
/// rectangle of the view afterwards; the corner opposite to a dragged one stays. Nothing when there is no
/// such grip. The matrix turns the world into the view's frame.
std::optional<MarkCorners> dragLinkGrips(MarkCorners corners, std::span<const int> grips,
                                         const AcGeVector3d &offset, const AcGeMatrix3d &worldToView);
