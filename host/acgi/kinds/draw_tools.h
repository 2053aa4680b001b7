// What the drawing functions of the entity kinds share: the pen for a while, areas under FILLMODE, planes and
// walls, colours as objects store them, named objects.
#pragma once

#include "host/acdb/dbentity.h"
#include "host/acdb/owngroups.h"
#include "host/acgi/geometry.h"

namespace acgi
{

/// Gives the pen back as it was.
class PenScope
{
public:
    explicit PenScope(AcGiGeometry &sink) : m_pen(sink.subEntityTraits()), m_before(m_pen.traits()) {}
    ~PenScope() { m_pen.setTraits(m_before); }
    PenScope(const PenScope &) = delete;
    PenScope &operator=(const PenScope &) = delete;

    AcGiSubEntityTraits &pen() { return m_pen; }
    /// Colour index; 0 leaves the colour as it is: that of the entity.
    void setColor(std::int64_t index)
    {
        if (index != 0)
            m_pen.setColor(int(std::clamp<std::int64_t>(index, -256, 256)));
    }
    /// The same for a colour as stated.
    void setColor(const AcCmEntityColor &color)
    {
        if (color.colorMethod() != AcCmEntityColor::kByBlock)
            m_pen.setTrueColor(color);
    }

private:
    AcGiSubEntityTraits &m_pen;
    Traits m_before;
};

/// False when $FILLMODE says that solids, wide lines and arrowheads show their outlines only.
bool isFillOn(const AcDbEntity &entity);
/// Fills, or draws the outlines when filling is off.
void drawArea(const AcDbEntity &entity, const Loop &loop, AcGiGeometry &sink);
void drawClosed(Loop loop, AcGiGeometry &sink);
/// Of the entity's text more than kMostShownCharacters are there.
void noteCutText(const AcDbEntity &entity, AcGiGeometry &sink);

/// Calls `draw`; with a thickness (39) a second time at the other end, and joins the two at `corners` (world
/// coordinates).
template <class Draw>
void drawExtruded(const OwnGroups &groups, std::span<const AcGePoint3d> corners, AcGiGeometry &sink,
                  Draw draw)
{
    draw();
    const double thickness = groups.real(39);
    if (thickness == 0.0 || !std::isfinite(thickness))
        return;
    const AcGeVector3d up = groups.normal().normal() * thickness;
    {
        const ModelTransform raised(sink, AcGeMatrix3d::translation(up));
        draw();
    }
    for (const AcGePoint3d &corner : corners) {
        const AcGePoint3d edge[] = {corner, corner + up};
        sink.polyline(2, edge);
    }
}

/// A colour as leaders and their styles store it: the top byte says how it is stated.
AcCmEntityColor colorOfRaw(std::int64_t raw);
/// Groups 62 and 420; nothing when there are none.
std::optional<AcCmEntityColor> statedColor(const OwnGroups &groups, int indexCode = 62, int rgbCode = 420);

/// The entry of a dictionary inside the dictionary `parent`.
AcDbObjectId dictionaryEntry(AcDbObjectId parent, const QString &dictionary, const QString &key);
/// The entry `key` of a dictionary.
AcDbObjectId dictionaryEntry(AcDbObjectId dictionary, const QString &key);
/// Group 70 of the variables object that the named-object dictionary keeps under `name`.
std::int64_t frameVariable(const AcDbEntity &entity, const QString &name, std::int64_t fallback);

/// Points of an entity's outline in its owner's coordinates, in one chain.
Loop outlineOf(const AcDbEntity &entity);

} // namespace acgi
