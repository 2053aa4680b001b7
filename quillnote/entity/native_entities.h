// The picture of a mark as plain entities, which any program shows: lines and waves as light polylines, bands
// as solids, other areas as hatches, the opinion as a multi-line text, numbers as texts. R12 drawings get
// lines, arcs, solids and texts of one line instead.
#pragma once

#include "quillnote/entity/mark_layout.h"

#include "host/acdb/dbentity.h"
#include "host/acgi/geometry.h"

#include <functional>

using NativeEntities = std::vector<std::unique_ptr<AcDbEntity>>;

/// The text styles of the drawing that the entities are for.
struct NativeTextStyles {
    QString current; ///< Of multi-line text, which says its fonts itself.
    /// A style with just this font, made when there is none.
    std::function<QString(const acgi::FontRequest &)> withFont;
};

/// Collects what is drawn as entities that stand in no drawing, in drawing order. They are on the layer of
/// the entity they are like, and have its linetype; its colour and weight are those of the pen at first.
class NativeEntityBuilder : public AcGiGeometry
{
public:
    NativeEntityBuilder(const AcDbEntity &like, DrawingVersion version, NativeTextStyles styles);

    NativeEntities take() { return std::move(m_entities); }
    bool isR12() const { return m_version <= DrawingVersion::r12; }

    void polyline(std::uint32_t count, const AcGePoint3d *points) override;
    void arc(const acgi::Arc &arc) override;
    void fill(std::span<const acgi::Loop> loops) override;
    void text(const acgi::TextLine &line) override;
    void infiniteLine(const AcGePoint3d &, const AcGeVector3d &, bool) override {} ///< Marks have none.
    void pline(std::span<const acgi::Vertex> vertices, bool closed) override;

    /// Lines below each other, in the font of the layout.
    void multilineText(std::span<const MarkTextLine> lines, const AcGiTextStyle &style, const MarkAxes &axes);

private:
    void add(const char *kind, ResbufList groups);
    void line(const AcGePoint3d &from, const AcGePoint3d &to);
    void solids(std::span<const AcGePoint3d> area);
    void hatch(std::span<const AcGePoint3d> area);

    ResbufList m_common; ///< Layer, linetype and the like, of every entity.
    ResbufList m_color;  ///< The colour of the entity they are like.
    AcCmEntityColor m_ownColor;
    DrawingVersion m_version;
    NativeTextStyles m_styles;
    NativeEntities m_entities;
};

/// Quadrilaterals and triangles (third and fourth corner the same) that fill an area without holes, corners
/// running around. Nothing when it cannot be cut like that.
std::vector<std::array<AcGePoint3d, 4>> solidPieces(std::span<const AcGePoint3d> area);

/// All that a pass would draw of the layout.
void buildNativeEntities(const MarkLayout &layout, NativeEntityBuilder &builder);
