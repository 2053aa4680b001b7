// Meshes as edges: grids and face lists of POLYLINE entities.
#pragma once

#include "host/acgi/geometry.h"

#include <array>

namespace acgi
{

/// Rows of points: point (i, j) is points[i * n + j].
struct MeshGrid {
    std::size_t m = 0;
    std::size_t n = 0;
    bool closedM = false;
    bool closedN = false;
    std::vector<AcGePoint3d> points;
};

struct PolyfaceFace {
    std::array<std::int64_t, 4> positions{}; ///< From 1; negative: the edge from here is hidden; 0: none.
    std::optional<AcCmEntityColor> color;
};

/// Nothing when there are fewer points than the grid needs.
void drawMeshGrid(const MeshGrid &grid, AcGiGeometry &sink);
/// Faces with positions that do not exist lose those corners.
void drawPolyface(std::span<const Vertex> positions, std::span<const PolyfaceFace> faces, AcGiGeometry &sink);

} // namespace acgi
