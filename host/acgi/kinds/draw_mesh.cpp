// Drawing of meshes: grids, polyfaces, subdivision meshes at their coarsest level.
#include "host/acgi/kinds/draw_mesh.h"

#include "host/acgi/kinds/draw_tools.h"
#include "host/acgi/kinds/kinds.h"

#include <algorithm>

namespace acgi
{

void drawMeshGrid(const MeshGrid &grid, AcGiGeometry &sink)
{
    // Divided, because the product of two hostile counts may wrap around.
    if (grid.m == 0 || grid.n == 0 || grid.m > grid.points.size() / grid.n)
        return;
    const auto drawRow = [&](std::size_t first, std::size_t step, std::size_t count, bool closed) {
        Loop row;
        for (std::size_t i = 0; i < count + (closed ? 1 : 0); ++i)
            row.push_back(grid.points[first + (i % count) * step]);
        sink.polyline(std::uint32_t(row.size()), row.data());
    };
    for (std::size_t i = 0; i < grid.m; ++i)
        drawRow(i * grid.n, 1, grid.n, grid.closedN);
    for (std::size_t j = 0; j < grid.n; ++j)
        drawRow(j, grid.n, grid.m, grid.closedM);
}

static void drawPolyfaceFace(std::span<const Vertex> positions, const PolyfaceFace &face, AcGiGeometry &sink)
{
    Loop corners;
    std::array<bool, 4> hidden{};
    for (const std::int64_t position : face.positions) {
        const std::uint64_t index = position < 0 ? 0 - std::uint64_t(position) : std::uint64_t(position);
        if (index < 1 || index > positions.size())
            continue;
        hidden[corners.size()] = position < 0;
        corners.push_back(positions[index - 1].point);
    }
    if (std::ranges::find(hidden, true) == hidden.end())
        return drawClosed(std::move(corners), sink);
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const AcGePoint3d edge[] = {corners[i], corners[(i + 1) % corners.size()]};
        if (!hidden[i])
            sink.polyline(2, edge);
    }
}

void drawPolyface(std::span<const Vertex> positions, std::span<const PolyfaceFace> faces, AcGiGeometry &sink)
{
    for (const PolyfaceFace &face : faces) {
        PenScope pen(sink);
        if (face.color)
            pen.setColor(*face.color);
        drawPolyfaceFace(positions, face, sink);
    }
}

// Vertices (92, 10), faces (93, 90: count and corners of each), edges (94, 90: pairs).
void drawSubdivisionMesh(const AcDbEntity &entity, AcGiGeometry &sink)
{
    Loop vertices;
    std::vector<std::int64_t> faces;
    std::vector<std::int64_t> edges;
    std::vector<std::int64_t> *list = nullptr;
    for (const resbuf &group : EntityGroups(entity, u"AcDbSubDMesh")) {
        if (group.restype == 10 && !list)
            vertices.push_back(group.point());
        else if (group.restype >= 93 && group.restype <= 95)
            list = group.restype == 93 ? &faces : group.restype == 94 ? &edges : nullptr;
        else if (group.restype == 90 && list)
            list->push_back(group.integer());
    }
    const auto vertex = [&](std::int64_t index) -> const AcGePoint3d * {
        return index >= 0 && std::uint64_t(index) < vertices.size() ? &vertices[std::size_t(index)] : nullptr;
    };
    for (std::size_t i = 0; i + 1 < edges.size(); i += 2) {
        const AcGePoint3d *const from = vertex(edges[i]);
        const AcGePoint3d *const to = vertex(edges[i + 1]);
        if (!from || !to)
            continue;
        const AcGePoint3d edge[] = {*from, *to};
        sink.polyline(2, edge);
    }
    if (!edges.empty())
        return;
    for (std::size_t i = 0; i < faces.size();) {
        const std::int64_t left = std::int64_t(faces.size() - i - 1);
        const auto count = std::size_t(std::clamp<std::int64_t>(faces[i++], 0, left));
        Loop corners;
        for (const std::int64_t index : std::span(faces).subspan(i, count)) {
            if (const AcGePoint3d *const corner = vertex(index))
                corners.push_back(*corner);
        }
        drawClosed(std::move(corners), sink);
        i += count;
    }
}

} // namespace acgi
