// Drawing of polylines, meshes, multilines and leaders.
#include "host/acgi/gikinds.h"
#include "host/acgi/giread.h"

#include <algorithm>
#include <optional>

namespace acgi
{

static void drawInPlane(const AcGeVector3d &normal, std::span<const AcGiVertex> vertices, bool closed,
                        AcGiGeometry &sink)
{
    if (isZAxis(normal)) {
        sink.pline(vertices, closed);
        return;
    }
    const AcGiModelTransform plane(sink, AcGeMatrix3d::planeToWorld(normal));
    sink.pline(vertices, closed);
}

void drawLightPolyline(const AcDbEntity &entity, AcGiGeometry &sink)
{
    const EntityGroups groups(entity);
    const double width = groups.real(43);
    const double elevation = groups.real(38);
    std::vector<AcGiVertex> vertices;
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
        drawInPlane(groups.normal(), vertices, groups.integer(70) & 1, sink);
}

namespace
{

enum PolylineFlag : std::int64_t {
    kClosed = 1,
    kCurveFit = 2,
    kSplineFit = 4,
    k3d = 8,
    kMesh = 16,
    kMeshClosedN = 32,
    kPolyface = 64
};
enum VertexFlag : std::int64_t { kFrameControlPoint = 16, kFaceVertexPosition = 64, kFaceRecord = 128 };

struct PolylineVertex {
    AcGiVertex vertex;
    std::int64_t flags = 0;
    std::array<std::int64_t, 4> face{}; ///< Positions from 1, negative: invisible edge, 0: none.
};

} // namespace

static PolylineVertex readVertex(const AcDbEntity &entity, const EntityGroups &polyline)
{
    const EntityGroups groups(entity);
    PolylineVertex read;
    read.flags = groups.integer(70);
    read.vertex = {groups.point(10), groups.real(42), groups.real(40, polyline.real(40)),
                   groups.real(41, polyline.real(41))};
    for (int i = 0; i < 4; ++i)
        read.face[std::size_t(i)] = groups.integer(71 + i);
    return read;
}

static void drawMesh(const EntityGroups &groups, const std::vector<PolylineVertex> &vertices,
                     AcGiGeometry &sink)
{
    const bool smooth = groups.integer(75) != 0;
    const auto m = std::size_t(std::max<std::int64_t>(0, groups.integer(smooth ? 73 : 71)));
    const auto n = std::size_t(std::max<std::int64_t>(0, groups.integer(smooth ? 74 : 72)));
    if (m == 0 || n == 0 || vertices.size() < m * n)
        return;
    const bool closedM = groups.integer(70) & kClosed;
    const bool closedN = groups.integer(70) & kMeshClosedN;
    const auto drawRow = [&](std::size_t first, std::size_t step, std::size_t count, bool closed) {
        std::vector<AcGePoint3d> row;
        for (std::size_t i = 0; i < count + (closed ? 1 : 0); ++i)
            row.push_back(vertices[first + (i % count) * step].vertex.point);
        sink.polyline(std::uint32_t(row.size()), row.data());
    };
    for (std::size_t i = 0; i < m; ++i)
        drawRow(i * n, 1, n, closedN);
    for (std::size_t j = 0; j < n; ++j)
        drawRow(j, n, m, closedM);
}

static void drawPolyface(const std::vector<PolylineVertex> &vertices, AcGiGeometry &sink)
{
    for (const PolylineVertex &record : vertices) {
        if (!(record.flags & kFaceRecord) || record.flags & kFaceVertexPosition)
            continue;
        std::vector<AcGePoint3d> corners;
        for (const std::int64_t position : record.face) {
            const auto index = std::size_t(position < 0 ? -position : position);
            if (index >= 1 && index <= vertices.size() && vertices[index - 1].flags & kFaceVertexPosition)
                corners.push_back(vertices[index - 1].vertex.point);
        }
        if (corners.empty())
            continue;
        corners.push_back(corners.front());
        sink.polyline(std::uint32_t(corners.size()), corners.data());
    }
}

void drawPolyline(const AcDbEntity &entity, AcGiGeometry &sink)
{
    const EntityGroups groups(entity);
    const std::int64_t flags = groups.integer(70);
    const bool fitted = flags & kSplineFit || (flags & kMesh && groups.integer(75) != 0);
    std::vector<PolylineVertex> vertices;
    for (const AcDbObjectId id : acdbSubEntities(entity.objectId())) {
        readEntity(id, [&](const AcDbEntity &part) {
            if (part.dxfName() != "VERTEX")
                return;
            const PolylineVertex vertex = readVertex(part, groups);
            if (!(fitted && vertex.flags & kFrameControlPoint))
                vertices.push_back(vertex);
        });
    }
    if (flags & kMesh)
        return drawMesh(groups, vertices, sink);
    if (flags & kPolyface)
        return drawPolyface(vertices, sink);
    std::vector<AcGiVertex> chain;
    const double elevation = groups.point(10).z;
    for (PolylineVertex &read : vertices) {
        if (flags & k3d)
            read.vertex = {read.vertex.point};
        else
            read.vertex.point.z = elevation;
        chain.push_back(read.vertex);
    }
    if (!chain.empty())
        drawInPlane(flags & k3d ? AcGeVector3d::kZAxis : groups.normal(), chain, flags & kClosed, sink);
}

// Each vertex has a miter direction, and for each element of the style the distance along it.
void drawMultiline(const AcDbEntity &entity, AcGiGeometry &sink)
{
    const EntityGroups groups(entity, u"AcDbMline");
    std::vector<AcGiLoop> lines;
    AcGePoint3d vertex;
    AcGeVector3d miter;
    std::size_t element = 0;
    bool first = false; // The next 41 is the distance; others are breaks along the line.
    for (const resbuf &group : groups) {
        if (group.restype == 11) {
            vertex = group.point();
            element = 0;
        } else if (group.restype == 13) {
            miter = group.point().asVector();
        } else if (group.restype == 74) {
            first = group.integer() > 0;
        } else if (group.restype == 41 && first) {
            first = false;
            lines.resize(std::max(lines.size(), element + 1));
            lines[element++].push_back(vertex + miter * group.real());
        }
    }
    if (lines.empty())
        lines.push_back(groups.points(11));
    for (AcGiLoop &line : lines) {
        if (groups.integer(71) & 2 && !line.empty())
            line.push_back(line.front());
        if (!line.empty())
            sink.polyline(std::uint32_t(line.size()), line.data());
    }
}

void drawLeader(const AcDbEntity &entity, AcGiGeometry &sink)
{
    const std::vector<AcGePoint3d> points = EntityGroups(entity).points(10);
    if (!points.empty())
        sink.polyline(std::uint32_t(points.size()), points.data());
}

} // namespace acgi
