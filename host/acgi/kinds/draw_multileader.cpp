// Drawing of multileaders: lines with arrowheads, and the text or block that they point from.
#include "host/acgi/kinds/arrowhead.h"
#include "host/acgi/kinds/draw_blocks.h"
#include "host/acgi/kinds/draw_entity.h"
#include "host/acgi/kinds/draw_spline.h"
#include "host/acgi/kinds/kinds.h"
#include "host/acgi/kinds/multileader.h"
#include "host/acgi/text/mtext.h"

#include <algorithm>

namespace acgi
{

namespace
{

enum LineType : std::int64_t { kNoLines = 0, kSplineLines = 2 };

class MultileaderDrawing
{
public:
    MultileaderDrawing(const AcDbEntity &entity, AcGiGeometry &sink)
        : m_entity(entity), m_sink(sink), m_leader(entity)
    {
    }

    void draw()
    {
        if (m_leader.hasText)
            drawText();
        else if (m_leader.hasBlock)
            drawBlock();
        for (const MultileaderRoot &root : m_leader.roots)
            drawRoot(root);
    }

private:
    // By block means the same as the leader itself.
    void takePen(PenScope &pen, std::int64_t color, AcDbHandle linetype, std::int64_t weight) const
    {
        pen.setColor(colorOfRaw(color));
        const Traits before = pen.pen().traits();
        const AcDbObjectId record = objectOf(m_entity, linetype);
        if (record.isValid())
            pen.pen().setLineType(record);
        if (pen.pen().traits().linetypeBy == Stated::byBlock)
            pen.pen().setTraits(before);
        if (weight != -2)
            pen.pen().setLineWeight(int(std::clamp<std::int64_t>(weight, -3, 211)));
    }

    Arrowhead arrowOf(const MultileaderLine &line) const
    {
        AcDbHandle block = m_leader.arrow;
        const auto own =
            std::ranges::find(m_leader.arrows, line.index, &std::pair<std::int64_t, AcDbHandle>::first);
        if (own != m_leader.arrows.end())
            block = own->second;
        if (line.overrides & MultileaderLine::kArrow)
            block = line.arrow;
        const bool sized = line.overrides & MultileaderLine::kSize;
        return {objectOf(m_entity, block), sized ? line.arrowSize : m_leader.arrowSize};
    }

    AcGeVector3d doglegOf(const MultileaderRoot &root) const
    {
        return root.isVertical ? AcGeVector3d() : root.dogleg.normal() * root.doglegLength;
    }

    void drawLine(const MultileaderRoot &root, const MultileaderLine &line)
    {
        using Line = MultileaderLine;
        const std::int64_t type = line.overrides & Line::kType ? line.type : m_leader.type;
        Loop path = line.points;
        if (type == kNoLines || path.empty())
            return;
        const bool curved = type == kSplineLines;
        const AcGeVector3d dogleg = doglegOf(root);
        if (root.isVertical || (m_leader.hasDogleg && !curved))
            path.push_back(root.landing);
        if (!dogleg.isZeroLength())
            path.push_back(root.landing + dogleg);
        if (path.size() < 2)
            return;
        PenScope pen(m_sink);
        takePen(pen, line.overrides & Line::kColor ? line.color : m_leader.color,
                line.overrides & Line::kLinetype ? line.linetype : m_leader.linetype,
                line.overrides & Line::kWeight ? line.weight : m_leader.weight);
        const AcGeVector3d direction = (path[0] - path[1]).normal();
        const Arrowhead arrow = arrowOf(line);
        if (arrow.size > 0.0 && path[0].distanceTo(path[1]) >= arrow.size) {
            drawArrowhead(arrow, path.front(), direction, planeNormal(), m_entity, m_sink);
            path.front() = path.front() - direction * arrow.inset();
        }
        if (curved)
            path = fitSplineSamples(path, -direction,
                                    dogleg.isZeroLength() ? path.back() - path[path.size() - 2] : dogleg);
        m_sink.polyline(std::uint32_t(path.size()), path.data());
    }

    void drawRoot(const MultileaderRoot &root)
    {
        for (const MultileaderLine &line : root.lines)
            drawLine(root, line);
        if (m_leader.hasText && !root.isVertical && m_leader.type != kNoLines && !root.lines.empty())
            drawUnderline(root);
    }

    /// Some attachments carry the landing on under the text.
    void drawUnderline(const MultileaderRoot &root)
    {
        const AcGeVector3d dogleg = doglegOf(root);
        const MText text = textOf();
        const bool fromLeft = dogleg.dotProduct(text.along) >= 0.0;
        const std::int64_t attachment = fromLeft ? m_leader.leftAttachment : m_leader.rightAttachment;
        if (m_leader.hasFrame || (attachment != 5 && attachment != 6 && attachment != 8))
            return;
        const MTextBox box = mtextBox(text);
        const double length = m_leader.gap + box.high.x - box.low.x;
        const AcGePoint3d start = root.landing + dogleg;
        const AcGePoint3d line[] = {start, start + text.along * (fromLeft ? length : -length)};
        PenScope pen(m_sink);
        takePen(pen, m_leader.color, m_leader.linetype, m_leader.weight);
        m_sink.polyline(2, line);
    }

    AcGeVector3d planeNormal() const
    {
        const AcGeVector3d normal = m_leader.hasBlock ? m_leader.block.normal : m_leader.text.normal;
        return normal.isZeroLength() ? AcGeVector3d::kZAxis : normal.normal();
    }

    AcGiTextStyle styleOf(const QString &name) const
    {
        return m_entity.database() ? namedTextStyle(*m_entity.database(), name) : AcGiTextStyle();
    }

    MText textOf() const
    {
        const MultileaderText &from = m_leader.text;
        QString styleName;
        readObject(objectOf(m_entity, from.style),
                   [&](const AcDbObject &record) { styleName = EntityGroups(record).text(2); });
        MText text;
        text.coded = from.coded;
        text.style = styleOf(styleName);
        text.height = from.height;
        text.position = from.position;
        text.along = from.along.isZeroLength() ? AcGeVector3d::kXAxis : from.along.normal();
        text.normal = planeNormal();
        text.attachment = int(std::clamp<std::int64_t>(from.alignment, 1, 3));
        constexpr std::int64_t kTopToBottom = 3;
        text.vertical = from.direction == kTopToBottom;
        text.wrapWidth = from.width * m_leader.scale;
        text.spacingFactor = from.spacing > 0.0 ? from.spacing : 1.0;
        text.exactSpacing = from.spacingStyle == 2;
        if (from.masked) {
            text.maskFactor = from.maskFactor > 0.0 ? from.maskFactor : 1.5;
            text.maskColor = from.maskIsWindow ? AcCmEntityColor::background() : colorOfRaw(from.maskColor);
        }
        return text;
    }

    void drawText()
    {
        const MText text = textOf();
        if (!(text.height > 0.0) || text.coded.isEmpty())
            return;
        {
            PenScope pen(m_sink);
            pen.setColor(colorOfRaw(m_leader.text.color));
            drawMText(text, m_sink);
        }
        if (m_leader.hasFrame)
            drawFrame(text);
    }

    void drawFrame(const MText &text)
    {
        const MTextBox box = mtextBox(text);
        const AcGeVector3d up = text.normal.crossProduct(text.along);
        const auto corner = [&](double x, double y) { return text.position + text.along * x + up * y; };
        const double gap = m_leader.gap;
        PenScope pen(m_sink);
        pen.setColor(colorOfRaw(m_leader.color));
        drawClosed({corner(box.low.x - gap, box.low.y - gap), corner(box.high.x + gap, box.low.y - gap),
                    corner(box.high.x + gap, box.high.y + gap), corner(box.low.x - gap, box.high.y + gap)},
                   m_sink);
    }

    void drawBlock()
    {
        const MultileaderBlock &block = m_leader.block;
        BlockPlacement reference;
        reference.record = objectOf(m_entity, block.record);
        if (reference.record.isNull())
            return;
        const AcGeMatrix3d plane = AcGeMatrix3d::planeToWorld(planeNormal());
        reference.placement = AcGeMatrix3d::translation(block.position.asVector()) * plane *
                              AcGeMatrix3d::rotation(block.rotation, AcGeVector3d::kZAxis) *
                              AcGeMatrix3d::scaling(block.scale.x, block.scale.y, block.scale.z) *
                              AcGeMatrix3d::translation(-blockOrigin(reference.record).asVector());
        PenScope pen(m_sink);
        pen.setColor(colorOfRaw(block.color));
        drawReference(reference, m_sink);
        const ModelTransform placed(m_sink, reference.placement);
        for (const MultileaderAttribute &attribute : m_leader.attributes)
            readEntity(objectOf(m_entity, attribute.definition), [&](const AcDbEntity &definition) {
                if (definition.dxfName() == "ATTDEF")
                    drawAttributeText(EntityGroups(definition), attribute.text);
            });
    }

    /// The text of an attribute where the block defines it.
    void drawAttributeText(const EntityGroups &definition, const QString &words)
    {
        constexpr std::int64_t kMiddle = 4;
        const std::int64_t horizontal = definition.integer(72);
        const std::int64_t vertical = definition.integer(74);
        MText text;
        text.style = styleOf(definition.text(7));
        text.coded = words;
        text.height = definition.real(40, 1.0);
        text.along = AcGeVector3d::kXAxis.rotateBy(radians(definition.real(50)), AcGeVector3d::kZAxis);
        const bool middle = horizontal == kMiddle;
        const int column = middle ? 1 : int(std::clamp<std::int64_t>(horizontal, 0, 2));
        const int row = middle || vertical == 2 ? 1 : vertical == 3 ? 0 : 2;
        text.attachment = row * 3 + column + 1;
        const bool aligned = horizontal != 0 || vertical != 0;
        text.position = definition.point(aligned ? 11 : 10, definition.point(10));
        drawMText(text, m_sink);
    }

    const AcDbEntity &m_entity;
    AcGiGeometry &m_sink;
    Multileader m_leader;
};

} // namespace

void drawMultileader(const AcDbEntity &entity, AcGiGeometry &sink)
{
    MultileaderDrawing(entity, sink).draw();
}

} // namespace acgi
