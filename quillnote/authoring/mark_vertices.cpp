#include "quillnote/authoring/mark_vertices.h"

#include "quillnote/authoring/one_mark.h"
#include "quillnote/entity/mark_layout.h"

#include "host/acap/docman.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edinput.h"

#include <algorithm>

static constexpr double kSameVertex = 0.001;

static bool areSame(const AcGePoint3d &a, const AcGePoint3d &b)
{
    return a.distanceTo(b) <= kSameVertex;
}

static AcGePoint3d onPlane(const AcGePoint3d &point)
{
    return {point.x, point.y, 0.0};
}

std::vector<AcGePoint3d> distinctVertices(std::span<const AcGePoint3d> points)
{
    std::vector<AcGePoint3d> kept;
    for (const AcGePoint3d &point : points) {
        if (kept.empty() || !areSame(point, kept.back()))
            kept.push_back(point);
    }
    if (kept.size() > 1 && areSame(kept.back(), kept.front()))
        kept.pop_back();
    return kept;
}

void tellLastVertex(std::span<const AcGePoint3d> points)
{
    const auto count = [](std::span<const AcGePoint3d> some) { return distinctVertices(some).size(); };
    if (count(points) == QuillnoteObj3::kSlots &&
        count(points.first(points.size() - 1)) < QuillnoteObj3::kSlots)
        acutPrintf(QStringLiteral("\n已指定16个顶点，靶框最多只能有16个顶点！"));
}

void setOutlineVertices(QuillnoteObj3 &mark, std::span<const AcGePoint3d> points)
{
    const std::size_t count = std::min(points.size(), QuillnoteObj3::kSlots);
    mark.vertexCount = static_cast<std::int16_t>(count);
    std::ranges::transform(points.first(count), mark.vertices.begin(), onPlane);
    setTargetCorners(mark, cornersAround(std::span(mark.vertices).first(count), markAxes(mark)));
}

std::optional<std::size_t> edgeAt(std::span<const AcGePoint3d> vertices, bool isSpline,
                                  const AcGePoint3d &point)
{
    const double least = (isSpline ? 100.0 : 160.0) * kGePi / 180.0;
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        const AcGeVector3d toStart = vertices[i] - point;
        const AcGeVector3d toEnd = vertices[(i + 1) % vertices.size()] - point;
        if (toStart.angleTo(toEnd) > least)
            return i;
    }
    return std::nullopt;
}

/// The vertices of what can take one more; none for other targets. In the order in which outlines run.
static std::optional<std::vector<AcGePoint3d>> outlineOf(const QuillnoteObj3 &mark)
{
    const OutlineRecord record = outlineRecord(mark);
    if (hasVertices(mark.targetStyle))
        return std::vector(record.vertices.begin(), record.vertices.end());
    const TargetStyle style = withoutSign(mark.targetStyle);
    if (!isWaveRectangle(style) && style != TargetStyle::bevel)
        return std::nullopt;
    const MarkCorners &corners = record.target;
    return std::vector{corners.corner1, corners.corner4, corners.corner2, corners.corner3};
}

VertexPlace vertexPlace(const QuillnoteObj3 &mark, const AcGePoint3d &point)
{
    const std::optional<std::vector<AcGePoint3d>> vertices = outlineOf(mark);
    if (!vertices)
        return {VertexPlace::noOutline};
    const std::optional<std::size_t> edge = edgeAt(*vertices, isSpline(mark.targetStyle), onPlane(point));
    if (!edge)
        return {VertexPlace::offOutline};
    return {vertices->size() < QuillnoteObj3::kSlots ? VertexPlace::onEdge : VertexPlace::full, *edge};
}

bool insertVertex(QuillnoteObj3 &mark, const AcGePoint3d &point)
{
    const VertexPlace place = vertexPlace(mark, point);
    if (place.kind != VertexPlace::onEdge)
        return false;
    mark.assertWriteEnabled();
    std::vector<AcGePoint3d> vertices = *outlineOf(mark);
    vertices.insert(vertices.begin() + std::ptrdiff_t(place.edge) + 1, onPlane(point));
    std::ranges::copy(vertices, mark.vertices.begin());
    mark.vertexCount = static_cast<std::int16_t>(vertices.size());
    if (!hasVertices(mark.targetStyle))
        mark.targetStyle = TargetStyle::thickPolygon;
    return true;
}

// The command -------------------------------------------------------------------------------------

static QString placeText(const VertexPlace &place)
{
    switch (place.kind) {
    case VertexPlace::onEdge:
        return QStringLiteral("已在第%1顶点之后增加了新顶点。").arg(place.edge + 1);
    case VertexPlace::noOutline:
        return QStringLiteral("只能在矩形或多边形靶框上增加顶点。");
    case VertexPlace::offOutline:
        return QStringLiteral("请拾取靶框上，而不是拾取标注文本或文本框。");
    case VertexPlace::full:
        return QStringLiteral("靶框最多只能有16个顶点！");
    }
    return {};
}

/// A mark that takes no vertex there is not opened for write: nothing would be to be undone.
static void addVertex(AcDbObjectId id, const AcGePoint3d &point)
{
    const VertexPlace place = vertexPlace(*AcDbObjectPointer<QuillnoteObj3>(id, AcDb::kForRead), point);
    if (place.kind != VertexPlace::onEdge)
        return acedRefuse(placeText(place));
    const auto mark = openToChange(id);
    if (!mark)
        return;
    insertVertex(*mark, point);
    settleMark(*mark, *mark->database());
    acutPrintf(u'\n' + placeText(place));
}

void QN3_addVertext()
{
    AcDbObjectId picked;
    AcGePoint3d pickPoint;
    if (acedEntSel(QStringLiteral("\n请在需要增加顶点的位置选择评图标签： "), picked, pickPoint) != RTNORM)
        acutPrintf(QStringLiteral("\n未选中评图标签。"));
    else if (mayUserChange(picked))
        addVertex(picked, acedTrans(pickPoint, AcEdSpace::ucs, AcEdSpace::world));
}
