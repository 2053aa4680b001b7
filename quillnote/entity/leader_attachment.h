// Where leaders end on the target of a mark: the first one at a favoured place of the outline, all of them
// on the bumps of a wave.
#pragma once

#include "quillnote/entity/mark_outline.h"

/// Where leader slot 0 of a leader mark belongs, seen from a reference point on its text box. Nothing when
/// the mark has no target outline or no used leader, or its polygon or spline lies beside the line to the
/// reference point. The code that sets the slot marks it used.
///
/// Rectangles offer twelve points of their sides, ellipses the middles of the sides around them; the nearest
/// one is taken, the first one of equals. Polygons and splines offer the first point of the outline that is
/// met on the way from the middle of the vertices to the reference point.
std::optional<AcGePoint3d> attachLeaders(TargetStyle targetStyle, TargetStyle drawnStyle,
                                         const OutlineRecord &mark, bool hasUsedLeader,
                                         const AcGePoint3d &reference);

/// The end of a leader on a wave: on the first bump whose middle is closer than the chord, or on the next
/// bump when that is nearer still. Unchanged when no bump is close; the last one is not asked.
AcGePoint3d snapLeaderEnd(const AcGePoint3d &end, const WaveMiddles &middles);
