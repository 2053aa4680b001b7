// Drawing of dimensions: the block that the file keeps of one, else a plain picture of what it measures.
#include "host/acgi/kinds/dimension_style.h"
#include "host/acgi/kinds/draw_blocks.h"
#include "host/acgi/kinds/kinds.h"
#include "host/acgi/text/mtext.h"

#include <algorithm>

namespace acgi
{

namespace
{

enum DimensionType : std::int64_t {
    kRotated = 0,
    kAligned = 1,
    kAngular = 2,
    kDiameter = 3,
    kRadius = 4,
    kAngularThreePoint = 5,
    kOrdinate = 6
};
constexpr std::int64_t kOrdinateOfX = 64;
/// Group codes of the style.
enum StyleColor { kLineColor = 176, kExtensionColor = 177, kTextColor = 178 };

struct Circle {
    AcGePoint3d centre;
    double radius = 0.0;

    AcGePoint3d at(double angle) const { return polarOffset(centre, angle, radius); }
};

/// The picture of a dimension without a block, in the plane of the dimension.
class DimensionPicture
{
public:
    DimensionPicture(const AcDbEntity &entity, AcGiGeometry &sink)
        : m_entity(entity), m_sink(sink), m_groups(entity), m_style(entity, m_groups.text(3)),
          m_toPlane(AcGeMatrix3d::planeToWorld(m_groups.normal()).inverse())
    {
    }

    void draw()
    {
        const QByteArray kind = m_entity.dxfName();
        const std::int64_t type = m_groups.integer(70) & 7;
        if (kind == "ARC_DIMENSION")
            drawArcLength();
        else if (kind == "LARGE_RADIAL_DIMENSION")
            drawJogged();
        else if (type == kRotated || type == kAligned)
            drawLinear(type == kAligned);
        else if (type == kAngular)
            drawAngularOfLines();
        else if (type == kAngularThreePoint)
            drawAngular(point(15), point(13), point(14), point(10));
        else if (type == kDiameter)
            drawRound(QStringLiteral("\u00D8"), point(10), point(15));
        else if (type == kRadius)
            drawRound(QStringLiteral("R"), point(10), point(15));
        else if (type == kOrdinate)
            drawOrdinate();
    }

private:
    template <class Draw>
    void withColor(int code, Draw draw)
    {
        PenScope pen(m_sink);
        pen.setColor(m_style.integer(code, 0));
        draw();
    }

    AcGePoint3d point(int code) const { return m_toPlane * m_groups.point(code); }

    void line(const AcGePoint3d &from, const AcGePoint3d &to)
    {
        const AcGePoint3d ends[] = {from, to};
        m_sink.polyline(2, ends);
    }

    /// From near the measured point to a little beyond the dimension line.
    void extensionLine(const AcGePoint3d &from, const AcGePoint3d &to, int suppressCode)
    {
        const AcGeVector3d along = (to - from).normal();
        const double offset = m_style.scale() * m_style.real(42, 0.0625);
        if (m_style.integer(suppressCode, 0) != 0 || from.distanceTo(to) <= offset)
            return;
        const AcGePoint3d end = to + along * (m_style.scale() * m_style.real(44, 0.18));
        withColor(kExtensionColor, [&] { line(from + along * offset, end); });
    }

    void arrowhead(int end, const AcGePoint3d &tip, const AcGeVector3d &direction)
    {
        drawArrowhead(m_style.arrow(end), tip, direction, AcGeVector3d::kZAxis, m_entity, m_sink);
    }

    /// Arrowheads inside when they fit, else outside with a tail.
    void dimensionLine(const AcGePoint3d &from, const AcGePoint3d &to)
    {
        PenScope pen(m_sink);
        pen.setColor(m_style.integer(kLineColor, 0));
        const AcGeVector3d along = (to - from).normal();
        const double size = m_style.arrowSize();
        if (from.distanceTo(to) > 2.0 * size) {
            line(from + along * m_style.arrow(0).inset(), to - along * m_style.arrow(1).inset());
            arrowhead(0, from, -along);
            arrowhead(1, to, along);
            return;
        }
        line(from - along * (2.0 * size), from - along * m_style.arrow(0).inset());
        line(to + along * m_style.arrow(1).inset(), to + along * (2.0 * size));
        arrowhead(0, from, along);
        arrowhead(1, to, -along);
    }

    void drawLinear(bool aligned)
    {
        const AcGePoint3d first = point(13);
        const AcGePoint3d second = point(14);
        const double angle = aligned ? directionAngle(first, second) : radians(m_groups.real(50));
        const AcGeVector3d along(std::cos(angle), std::sin(angle), 0.0);
        const AcGePoint3d end = point(10);
        const auto onLine = [&](const AcGePoint3d &measured) {
            return end + along * (measured - end).dotProduct(along);
        };
        const AcGePoint3d from = onLine(first);
        const AcGePoint3d to = onLine(second);
        extensionLine(first, from, 75);
        extensionLine(second, to, 76);
        dimensionLine(from, to);
        const double length = std::abs((second - first).dotProduct(along));
        text(lengthText(length), from + (to - from) * 0.5, along);
    }

    void drawRound(const QString &prefix, const AcGePoint3d &from, const AcGePoint3d &to)
    {
        const AcGeVector3d along = (to - from).normal();
        const bool across = (m_groups.integer(70) & 7) == kDiameter;
        withColor(kLineColor, [&] {
            line(across ? from + along * m_style.arrow(0).inset() : from,
                 to - along * m_style.arrow(1).inset());
            if (across)
                arrowhead(0, from, -along);
            arrowhead(1, to, along);
        });
        text(prefix + lengthText(from.distanceTo(to)), from + (to - from) * 0.5, along);
    }

    // From a stand-in for the far centre, with a jog, to the arc.
    void drawJogged()
    {
        const AcGePoint3d centre = point(10);
        const AcGePoint3d arc = point(15);
        const AcGePoint3d start = point(13);
        const AcGePoint3d jog = point(14);
        const AcGeVector3d along = (arc - centre).normal();
        const AcGePoint3d first = start + along * (jog - start).dotProduct(along);
        const AcGePoint3d second = arc + along * (jog - arc).dotProduct(along);
        const AcGePoint3d chain[] = {start, first, second, arc - along * m_style.arrow(1).inset()};
        withColor(kLineColor, [&] {
            m_sink.polyline(4, chain);
            arrowhead(1, arc, along);
        });
        text(QStringLiteral("R") + lengthText(centre.distanceTo(arc)), second, along);
    }

    void drawOrdinate()
    {
        const AcGePoint3d origin = point(10);
        const AcGePoint3d feature = point(13);
        const AcGePoint3d end = point(14);
        const bool ofX = m_groups.integer(70) & kOrdinateOfX;
        // Leaves the feature along its axis; the last piece is as long as two arrowheads.
        const AcGeVector3d axis = ofX ? AcGeVector3d::kYAxis : AcGeVector3d::kXAxis;
        const double reach = (end - feature).dotProduct(axis);
        const double last = std::min(std::abs(reach) / 2.0, 2.0 * m_style.arrowSize());
        const AcGeVector3d step = axis * (reach < 0.0 ? -last : last);
        const AcGePoint3d before = end - step;
        const AcGePoint3d knee =
            feature + axis * ((before - feature).dotProduct(axis) - step.dotProduct(axis));
        const AcGePoint3d straight[] = {feature, end};
        const AcGePoint3d chain[] = {feature, knee, before, end};
        const bool inLine = std::abs((end - feature).crossProduct(axis).length()) < 1e-9 * std::abs(reach);
        withColor(kExtensionColor, [&] { m_sink.polyline(inLine ? 2 : 4, inLine ? straight : chain); });
        const AcGeVector3d apart = feature - origin;
        text(lengthText(std::abs(ofX ? apart.x : apart.y)), end, axis);
    }

    // Between the lines 13-14 and 15-10, on the arc through 16.
    void drawAngularOfLines()
    {
        const AcGePoint3d a = point(13);
        const AcGePoint3d b = point(15);
        const AcGeVector3d u = point(14) - a;
        const AcGeVector3d v = point(10) - b;
        const double cross = u.x * v.y - u.y * v.x;
        const AcGePoint3d onArc = m_groups.point(16);
        if (std::abs(cross) <= 1e-12 * u.length() * v.length())
            return;
        const AcGeVector3d apart = b - a;
        const AcGePoint3d vertex = a + u * ((apart.x * v.y - apart.y * v.x) / cross);
        // Of the four sectors the one that holds the arc's point: its sides are turned towards that point.
        const AcGeVector3d toArc = onArc - vertex;
        const double alongU = (toArc.x * v.y - toArc.y * v.x) / cross;
        const double alongV = (u.x * toArc.y - u.y * toArc.x) / cross;
        drawAngular(vertex, vertex + (alongU < 0.0 ? -u : u), vertex + (alongV < 0.0 ? -v : v), onArc);
    }

    void drawAngular(const AcGePoint3d &vertex, const AcGePoint3d &first, const AcGePoint3d &second,
                     const AcGePoint3d &onArc)
    {
        const std::optional<Arc> arc = dimensionArc(vertex, first, second, onArc);
        if (!arc)
            return;
        constexpr double kDegrees = 180.0 / kGePi;
        const int decimals = int(std::clamp<std::int64_t>(m_style.integer(179, 0), 0, 8));
        const double middle = arc->start + arc->sweep / 2.0;
        text(QString::number(std::abs(arc->sweep) * kDegrees, 'f', decimals) + QChar(0xB0), arc->at(middle),
             {-std::sin(middle), std::cos(middle), 0.0});
    }

    void drawArcLength()
    {
        const AcGePoint3d centre = point(15);
        const std::optional<Arc> arc = dimensionArc(centre, point(13), point(14), point(10));
        if (!arc)
            return;
        const double middle = arc->start + arc->sweep / 2.0;
        const double length = std::abs(arc->sweep) * centre.distanceTo(point(13));
        text(QChar(0x2312) + lengthText(length), arc->at(middle), {-std::sin(middle), std::cos(middle), 0.0});
    }

    /// The arc from the direction of `first` to that of `second`, the way round that meets `onArc`.
    std::optional<Arc> dimensionArc(const AcGePoint3d &vertex, const AcGePoint3d &first,
                                    const AcGePoint3d &second, const AcGePoint3d &onArc)
    {
        const Circle circle{vertex, vertex.distanceTo(onArc)};
        if (!(circle.radius > 0.0) || !std::isfinite(circle.radius))
            return std::nullopt;
        const double start = directionAngle(vertex, first);
        const double end = directionAngle(vertex, second);
        const double sweep = end < start ? end - start + 2.0 * kGePi : end - start;
        Arc arc{vertex, {circle.radius, 0.0, 0.0}, {0.0, circle.radius, 0.0}, start, sweep};
        if (!arc.covers(directionAngle(vertex, onArc)))
            arc.sweep = sweep - 2.0 * kGePi;
        extensionLine(first, circle.at(start), 75);
        extensionLine(second, circle.at(end), 76);
        const double side = arc.sweep < 0.0 ? -1.0 : 1.0;
        const auto tangent = [](double angle) {
            return AcGeVector3d(-std::sin(angle), std::cos(angle), 0.0);
        };
        withColor(kLineColor, [&] {
            m_sink.arc(arc);
            arrowhead(0, circle.at(start), tangent(start) * -side);
            arrowhead(1, circle.at(end), tangent(end) * side);
        });
        return arc;
    }

    QString lengthText(double length) const
    {
        const double measured = length * m_style.real(144, 1.0);
        const double rounding = m_style.real(45, 0.0);
        const double rounded = rounding > 0.0 ? std::round(measured / rounding) * rounding : measured;
        constexpr std::int64_t kNoTrailingZeros = 8;
        const int decimals = int(std::clamp<std::int64_t>(m_style.integer(271, 4), 0, 8));
        QString number = QString::number(rounded, 'f', decimals);
        if (m_style.integer(78, 0) & kNoTrailingZeros && number.contains(u'.')) {
            while (number.endsWith(u'0'))
                number.chop(1);
            if (number.endsWith(u'.'))
                number.chop(1);
        }
        const std::int64_t separator = m_style.integer(278, '.');
        return number.replace(u'.', QChar(separator > 0 && separator < 0xFFFF ? char16_t(separator) : u'.'));
    }

    /// The words of the dimension, "<>" standing for what is measured; above the line unless the file says
    /// where their middle is.
    void text(const QString &measured, const AcGePoint3d &onLine, AcGeVector3d along)
    {
        QString words = m_groups.text(1);
        if (words == QLatin1String(" "))
            return; // Suppressed.
        words = words.isEmpty() ? measured : words.replace(QLatin1String("<>"), measured);
        MText mtext;
        mtext.style = m_style.textStyle();
        mtext.height = mtext.style.textSize();
        mtext.coded = words;
        mtext.attachment = 5;
        if (along.x < -1e-9 || (std::abs(along.x) <= 1e-9 && along.y < 0.0))
            along = -along; // Readable from below or from the right.
        if (m_groups.has(53))
            along = AcGeVector3d::kXAxis.rotateBy(radians(m_groups.real(53)), AcGeVector3d::kZAxis);
        mtext.along = along;
        const AcGeVector3d up(-along.y, along.x, 0.0);
        mtext.position =
            m_groups.has(11) ? m_groups.point(11) : onLine + up * (m_style.gap() + mtext.height / 2.0);
        withColor(kTextColor, [&] { drawMText(mtext, m_sink); });
    }

    const AcDbEntity &m_entity;
    AcGiGeometry &m_sink;
    EntityGroups m_groups;
    DimensionStyle m_style;
    AcGeMatrix3d m_toPlane;
};

} // namespace

// The block stands in world coordinates. The file may keep none, or an empty one.
void drawDimension(const AcDbEntity &entity, AcGiGeometry &sink)
{
    const EntityGroups groups(entity);
    const AcGeMatrix3d plane = AcGeMatrix3d::planeToWorld(groups.normal());
    BlockPlacement reference;
    reference.record = namedBlock(entity, groups);
    const BlockContents *const contents =
        reference.record.isValid() ? entity.database()->blockContents(reference.record) : nullptr;
    if (contents && !contents->entities.empty()) {
        reference.placement = AcGeMatrix3d::translation(plane * groups.vector(12));
        return drawReference(reference, sink);
    }
    const ModelTransform placed(sink, plane);
    DimensionPicture(entity, sink).draw();
}

} // namespace acgi
