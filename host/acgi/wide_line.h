// Wide lines: the areas that the segments of a polyline with widths cover.
#pragma once

#include "host/acgi/geometry.h"

namespace acgi
{

/// The area of the segment that begins at vertex `segment`; empty for one without width or length. Where it
/// meets a wide segment of the same width both areas reach into the corner, up to a limit for sharp ones.
/// Widths grow evenly along a segment, also along an arc.
Loop wideSegmentArea(std::span<const Vertex> vertices, std::size_t segment, bool closed);
/// The same as an outline to be seen: corners are cut where the borders meet.
Loop wideSegmentOutline(std::span<const Vertex> vertices, std::size_t segment, bool closed);

} // namespace acgi
