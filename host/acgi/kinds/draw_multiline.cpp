// Drawing of multilines: parallel elements with the look that their style gives them.
#include "host/acgi/kinds/draw_tools.h"
#include "host/acgi/kinds/kinds.h"

#include <algorithm>

namespace acgi
{

namespace
{

struct ElementStyle {
    AcCmEntityColor color = AcCmEntityColor::byBlock();
    QString linetype;
};

struct MultilineStyle {
    enum Flag : std::int64_t {
        kFilled = 1,
        kShowJoints = 2,
        kStartLine = 16,
        kStartInnerArcs = 32,
        kStartArc = 64,
        kEndLine = 256,
        kEndInnerArcs = 512,
        kEndArc = 1024
    };
    std::int64_t flags = 0;
    AcCmEntityColor fill = AcCmEntityColor::byBlock();
    std::vector<ElementStyle> elements;
};

/// A corner of the multiline. Each element has its distance along the miter direction, then where it starts
/// along the segment and where it is cut: start, stop, start, stop ...
struct MultilineVertex {
    AcGePoint3d point;
    AcGeVector3d along;
    AcGeVector3d miter;
    std::vector<std::vector<double>> elements;

    AcGePoint3d at(std::size_t element) const
    {
        const bool has = element < elements.size() && !elements[element].empty();
        return has ? point + miter * elements[element].front() : point;
    }
};

} // namespace

static MultilineStyle readStyle(const AcDbEntity &entity, const EntityGroups &multiline)
{
    MultilineStyle style;
    const resbuf *const handle = multiline.find(340);
    readObject(handle ? objectOf(entity, handle->handle()) : AcDbObjectId(), [&](const AcDbObject &object) {
        const EntityGroups groups(object, u"AcDbMlineStyle");
        style.flags = groups.integer(70);
        for (const resbuf &group : groups) {
            AcCmEntityColor &color = style.elements.empty() ? style.fill : style.elements.back().color;
            if (group.restype == 49)
                style.elements.emplace_back();
            else if (group.restype == 62)
                color = AcCmEntityColor::fromIndex(int(std::clamp<std::int64_t>(group.integer(), -256, 256)));
            else if (group.restype == 420)
                color = AcCmEntityColor::fromRgb(std::uint32_t(group.integer()));
            else if (group.restype == 6 && !style.elements.empty())
                style.elements.back().linetype = group.text();
        }
    });
    return style;
}

static std::vector<MultilineVertex> readVertices(const EntityGroups &groups)
{
    std::vector<MultilineVertex> vertices;
    for (const resbuf &group : groups) {
        if (group.restype == 11)
            vertices.push_back({group.point(), {}, {}, {}});
        if (vertices.empty())
            continue;
        MultilineVertex &vertex = vertices.back();
        if (group.restype == 12)
            vertex.along = group.point().asVector();
        else if (group.restype == 13)
            vertex.miter = group.point().asVector();
        else if (group.restype == 74)
            vertex.elements.emplace_back();
        else if (group.restype == 41 && !vertex.elements.empty())
            vertex.elements.back().push_back(group.real());
    }
    return vertices;
}

namespace
{

class MultilineDrawing
{
public:
    MultilineDrawing(const AcDbEntity &entity, AcGiGeometry &sink)
        : m_entity(entity), m_sink(sink), m_groups(entity, u"AcDbMline"),
          m_style(readStyle(entity, m_groups)), m_vertices(readVertices(m_groups)),
          m_closed(m_groups.integer(71) & 2)
    {
        m_elementCount = m_vertices.empty() ? 0 : m_vertices.front().elements.size();
        for (std::size_t i = 1; i < m_elementCount; ++i) {
            if (offset(i) < offset(m_lowest))
                m_lowest = i;
            if (offset(i) > offset(m_highest))
                m_highest = i;
        }
    }

    void draw()
    {
        if (m_vertices.empty())
            return;
        if (m_style.flags & MultilineStyle::kFilled)
            drawFill();
        for (std::size_t element = 0; element < m_elementCount; ++element)
            drawElement(element);
        if (m_style.flags & MultilineStyle::kShowJoints)
            drawJoints();
        if (!m_closed)
            drawCaps();
        if (m_elementCount == 0)
            drawCentre();
    }

private:
    double offset(std::size_t element) const
    {
        const std::vector<double> &values = m_vertices.front().elements[element];
        return values.empty() ? 0.0 : values.front();
    }

    void takePen(PenScope &pen, std::size_t element) const
    {
        if (element >= m_style.elements.size())
            return;
        const ElementStyle &style = m_style.elements[element];
        // By layer, as every new style has it, is how the multiline itself is stated.
        if (style.color.colorMethod() != AcCmEntityColor::kByLayer)
            pen.setColor(style.color);
        const bool own = !style.linetype.isEmpty() &&
                         style.linetype.compare(QLatin1String("BYLAYER"), Qt::CaseInsensitive) != 0 &&
                         style.linetype.compare(QLatin1String("BYBLOCK"), Qt::CaseInsensitive) != 0;
        if (own && m_entity.database())
            pen.pen().setLineType(m_entity.database()->tableRecord(SymbolTable::linetype, style.linetype));
    }

    std::size_t segmentCount() const { return m_closed ? m_vertices.size() : m_vertices.size() - 1; }

    void drawElement(std::size_t element)
    {
        PenScope pen(m_sink);
        takePen(pen, element);
        Loop chain;
        for (std::size_t i = 0; i < segmentCount(); ++i)
            addSegment(i, element, chain);
        flush(chain);
    }

    /// Adds the pieces of a segment: the chain goes on where nothing is cut off.
    void addSegment(std::size_t segment, std::size_t element, Loop &chain)
    {
        const MultilineVertex &from = m_vertices[segment];
        const AcGePoint3d start = from.at(element);
        const AcGePoint3d stop = m_vertices[(segment + 1) % m_vertices.size()].at(element);
        static const std::vector<double> kWhole{0.0, 0.0};
        const bool has = element < from.elements.size() && from.elements[element].size() >= 2;
        const std::vector<double> &values = has ? from.elements[element] : kWhole;
        for (std::size_t i = 1; i < values.size(); i += 2) {
            const bool toEnd = i + 1 == values.size();
            const AcGePoint3d first = start + from.along * values[i];
            if (chain.empty() || !chain.back().isEqualTo(first, 1e-9 * (1.0 + start.distanceTo(stop)))) {
                flush(chain);
                chain.push_back(first);
            }
            chain.push_back(toEnd ? stop : start + from.along * values[i + 1]);
        }
    }

    void flush(Loop &chain)
    {
        if (!chain.empty())
            m_sink.polyline(std::uint32_t(chain.size()), chain.data());
        chain.clear();
    }

    void drawFill()
    {
        if (m_elementCount < 2 || !isFillOn(m_entity))
            return;
        PenScope pen(m_sink);
        if (m_style.fill.colorMethod() != AcCmEntityColor::kByLayer)
            pen.setColor(m_style.fill);
        std::vector<Loop> loops(m_closed ? 2 : 1);
        for (const MultilineVertex &vertex : m_vertices)
            loops.front().push_back(vertex.at(m_lowest));
        if (!m_closed)
            addArcTo(loops.front(), MultilineStyle::kEndArc, m_vertices.back(), m_lowest, m_highest, 1.0);
        for (auto vertex = m_vertices.rbegin(); vertex != m_vertices.rend(); ++vertex)
            loops.back().push_back(vertex->at(m_highest));
        if (!m_closed)
            addArcTo(loops.front(), MultilineStyle::kStartArc, m_vertices.front(), m_highest, m_lowest, -1.0);
        m_sink.fill(loops);
    }

    void addArcTo(Loop &loop, MultilineStyle::Flag flag, const MultilineVertex &vertex, std::size_t from,
                  std::size_t to, double outward) const
    {
        if (!(m_style.flags & flag))
            return;
        if (const auto arc = capArc(vertex.at(from), vertex.at(to), outward))
            arc->appendSamples(loop);
    }

    /// Half a circle over the end of the multiline.
    std::optional<Arc> capArc(const AcGePoint3d &from, const AcGePoint3d &to, double outward) const
    {
        const MultilineVertex &last = m_vertices[m_vertices.size() > 1 ? m_vertices.size() - 2 : 0];
        const AcGeVector3d along = outward < 0.0 ? m_vertices.front().along : last.along;
        const AcGeVector3d half = (to - from) * 0.5;
        const AcGeVector3d across = half.normal();
        // At right angles to the cap, on the side that the multiline does not come from.
        const AcGeVector3d away = (along - across * along.dotProduct(across)).normal() * outward;
        return arcThrough(from, from + half + away * half.length(), to);
    }

    void drawCapArc(const MultilineVertex &vertex, std::size_t from, std::size_t to, double outward)
    {
        PenScope pen(m_sink);
        takePen(pen, from);
        if (const auto arc = capArc(vertex.at(from), vertex.at(to), outward))
            m_sink.arc(*arc);
    }

    void drawAcross(const MultilineVertex &vertex)
    {
        PenScope pen(m_sink);
        takePen(pen, m_lowest);
        const AcGePoint3d line[] = {vertex.at(m_lowest), vertex.at(m_highest)};
        m_sink.polyline(2, line);
    }

    void drawJoints()
    {
        const std::size_t skipped = m_closed ? 0 : 1;
        for (std::size_t i = skipped; i + skipped < m_vertices.size(); ++i)
            drawAcross(m_vertices[i]);
    }

    void drawCap(const MultilineVertex &vertex, std::int64_t line, std::int64_t innerArcs, std::int64_t arc,
                 double outward)
    {
        if (m_style.flags & line)
            drawAcross(vertex);
        if (m_style.flags & arc)
            drawCapArc(vertex, m_lowest, m_highest, outward);
        if (!(m_style.flags & innerArcs))
            return;
        // The second outermost with its counterpart, and so on inward.
        std::vector<std::size_t> order(m_elementCount);
        for (std::size_t i = 0; i < order.size(); ++i)
            order[i] = i;
        std::ranges::sort(order, {}, [&](std::size_t element) { return offset(element); });
        for (std::size_t i = 1; i + 1 < order.size() - i; ++i)
            drawCapArc(vertex, order[i], order[order.size() - 1 - i], outward);
    }

    void drawCaps()
    {
        constexpr std::int64_t kNoStartCap = 4;
        constexpr std::int64_t kNoEndCap = 8;
        const std::int64_t flags = m_groups.integer(71);
        if (m_elementCount < 2)
            return;
        if (!(flags & kNoStartCap))
            drawCap(m_vertices.front(), MultilineStyle::kStartLine, MultilineStyle::kStartInnerArcs,
                    MultilineStyle::kStartArc, -1.0);
        if (!(flags & kNoEndCap))
            drawCap(m_vertices.back(), MultilineStyle::kEndLine, MultilineStyle::kEndInnerArcs,
                    MultilineStyle::kEndArc, 1.0);
    }

    void drawCentre()
    {
        Loop chain;
        for (const MultilineVertex &vertex : m_vertices)
            chain.push_back(vertex.point);
        if (m_closed)
            chain.push_back(chain.front());
        flush(chain);
    }

    const AcDbEntity &m_entity;
    AcGiGeometry &m_sink;
    EntityGroups m_groups;
    MultilineStyle m_style;
    std::vector<MultilineVertex> m_vertices;
    bool m_closed;
    std::size_t m_elementCount = 0;
    std::size_t m_lowest = 0;
    std::size_t m_highest = 0;
};

} // namespace

void drawMultiline(const AcDbEntity &entity, AcGiGeometry &sink)
{
    MultilineDrawing(entity, sink).draw();
}

} // namespace acgi
