// Drawing of polylines: light ones, and those that own their vertices.
#include "host/acgi/kinds/draw_mesh.h"
#include "host/acgi/kinds/draw_tools.h"
#include "host/acgi/kinds/kinds.h"
#include "host/acgi/wide_line.h"

#include <algorithm>

namespace acgi
{

static bool isWide(std::span<const Vertex> vertices)
{
    return std::ranges::any_of(
        vertices, [](const Vertex &vertex) { return vertex.startWidth > 0.0 || vertex.endWidth > 0.0; });
}

/// With filling off wide segments show their borders.
static void drawWithoutFill(std::span<const Vertex> vertices, bool closed, AcGiGeometry &sink)
{
    const std::size_t segments = vertices.size() - (closed ? 0 : 1);
    for (std::size_t i = 0; i < segments; ++i) {
        const Vertex &from = vertices[i];
        if (from.startWidth > 0.0 || from.endWidth > 0.0) {
            drawClosed(wideSegmentOutline(vertices, i, closed), sink);
            continue;
        }
        const Vertex segment[] = {from, vertices[(i + 1) % vertices.size()]};
        sink.pline(segment, false);
    }
}

static void drawInPlane(const AcDbEntity &entity, const EntityGroups &groups,
                        std::span<const Vertex> vertices, bool closed, AcGiGeometry &sink)
{
    const AcGeVector3d normal = groups.normal();
    const bool flat = isZAxis(normal);
    const AcGeMatrix3d plane = flat ? AcGeMatrix3d() : AcGeMatrix3d::planeToWorld(normal);
    std::vector<AcGePoint3d> corners;
    if (groups.has(39)) {
        for (const Vertex &vertex : vertices)
            corners.push_back(plane * vertex.point);
    }
    const bool outlined = vertices.size() > 1 && isWide(vertices) && !isFillOn(entity);
    const auto draw = [&] {
        if (outlined)
            drawWithoutFill(vertices, closed, sink);
        else
            sink.pline(vertices, closed);
    };
    drawExtruded(groups, corners, sink, [&] {
        if (flat)
            return draw();
        const ModelTransform placed(sink, plane);
        draw();
    });
}

void drawLightPolyline(const AcDbEntity &entity, AcGiGeometry &sink)
{
    const EntityGroups groups(entity);
    const double width = groups.real(43);
    const double elevation = groups.real(38);
    std::vector<Vertex> vertices;
    for (const resbuf &group : groups) {
        if (group.restype == 10) {
            const AcGePoint3d point = group.point();
            vertices.push_back({{point.x, point.y, elevation}, 0.0, width, width});
        } else if (!vertices.empty() && group.restype == 40) {
            vertices.back().startWidth = group.real();
        } else if (!vertices.empty() && group.restype == 41) {
            vertices.back().endWidth = group.real();
        } else if (!vertices.empty() && group.restype == 42) {
            vertices.back().bulge = group.real();
        }
    }
    if (!vertices.empty())
        drawInPlane(entity, groups, vertices, groups.integer(70) & 1, sink);
}

namespace
{

enum PolylineFlag : std::int64_t {
    kClosed = 1,
    kSplineFit = 4,
    k3d = 8,
    kMesh = 16,
    kMeshClosedN = 32,
    kPolyface = 64
};
enum VertexFlag : std::int64_t { kFrameControlPoint = 16, kFaceVertexPosition = 64, kFaceRecord = 128 };

/// What a POLYLINE and its VERTEX entities say, sorted by what it is for.
struct PolylineData {
    std::vector<Vertex> vertices; ///< Of the line or mesh; for a polyface the positions.
    std::vector<PolyfaceFace> faces;
};

} // namespace

static PolyfaceFace readFace(const EntityGroups &groups)
{
    PolyfaceFace face;
    for (int i = 0; i < 4; ++i)
        face.positions[std::size_t(i)] = groups.integer(71 + i);
    face.color = statedColor(groups);
    return face;
}

static PolylineData readVertices(const AcDbEntity &entity, const EntityGroups &polyline, std::int64_t flags)
{
    PolylineData read;
    const bool fitted = flags & kSplineFit || (flags & kMesh && polyline.integer(75) != 0);
    const double startWidth = polyline.real(40);
    const double endWidth = polyline.real(41);
    for (const AcDbObjectId id : acdbSubEntities(entity.objectId())) {
        readEntity(id, [&](const AcDbEntity &part) {
            if (part.dxfName() != "VERTEX")
                return;
            const EntityGroups groups(part);
            const std::int64_t own = groups.integer(70);
            if (flags & kPolyface && own & kFaceRecord && !(own & kFaceVertexPosition))
                read.faces.push_back(readFace(groups));
            else if (!(fitted && own & kFrameControlPoint))
                read.vertices.push_back({groups.point(10), groups.real(42), groups.real(40, startWidth),
                                         groups.real(41, endWidth)});
        });
    }
    return read;
}

static MeshGrid gridOf(const EntityGroups &groups, const std::vector<Vertex> &vertices)
{
    const bool smooth = groups.integer(75) != 0;
    const std::int64_t flags = groups.integer(70);
    MeshGrid grid;
    grid.m = std::size_t(std::max<std::int64_t>(0, groups.integer(smooth ? 73 : 71)));
    grid.n = std::size_t(std::max<std::int64_t>(0, groups.integer(smooth ? 74 : 72)));
    grid.closedM = flags & kClosed;
    grid.closedN = flags & kMeshClosedN;
    for (const Vertex &vertex : vertices)
        grid.points.push_back(vertex.point);
    return grid;
}

void drawPolyline(const AcDbEntity &entity, AcGiGeometry &sink)
{
    const EntityGroups groups(entity);
    const std::int64_t flags = groups.integer(70);
    PolylineData data = readVertices(entity, groups, flags);
    if (data.vertices.empty())
        return;
    if (flags & kMesh)
        return drawMeshGrid(gridOf(groups, data.vertices), sink);
    if (flags & kPolyface)
        return drawPolyface(data.vertices, data.faces, sink);
    if (flags & k3d) {
        for (Vertex &vertex : data.vertices)
            vertex = {vertex.point};
        return sink.pline(data.vertices, flags & kClosed);
    }
    const double elevation = groups.point(10).z;
    for (Vertex &vertex : data.vertices)
        vertex.point.z = elevation;
    drawInPlane(entity, groups, data.vertices, flags & kClosed, sink);
}

} // namespace acgi
