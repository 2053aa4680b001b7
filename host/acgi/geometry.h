// AcGiGeometry: where entities draw to. Whoever wants the geometry of entities (extents, a pick, the
// screen, a file) derives from it; what an entity looks like is written once.
#pragma once

#include "host/acdb/dbid.h"
#include "host/acdb/dbnesting.h"
#include "host/acge/gematrix.h"
#include "host/acgi/traits.h"

#include <QString>

#include <optional>
#include <span>
#include <vector>

class AcDbEntity;
class AcGiViewport;

namespace acgi
{

class Font;

/// centre + u cos t + v sin t for t from `start` over `sweep` (radians, negative runs backward). Circles
/// and ellipses, whole or in part, and whatever an affine transform makes of them.
struct Arc {
    AcGePoint3d centre;
    AcGeVector3d u;
    AcGeVector3d v;
    double start = 0.0;
    double sweep = 2.0 * kGePi;

    AcGePoint3d at(double t) const { return centre + u * std::cos(t) + v * std::sin(t); }
    bool isWhole() const { return std::abs(sweep) >= 2.0 * kGePi - 1e-12; }
    /// True when the point of parameter `t` belongs to the arc.
    bool covers(double t) const;
    Arc transformed(const AcGeMatrix3d &matrix) const;
    /// Parameters along the arc, both ends and the extreme points of x and y included.
    std::vector<double> sampleParameters(int perTurn = 64) const;
    /// The points of those parameters.
    void appendSamples(std::vector<AcGePoint3d> &points, int perTurn = 64) const;
};

/// The arc from `from` to `to` in the XY plane with a bulge (tangent of a quarter of the angle).
Arc bulgeArc(const AcGePoint3d &from, const AcGePoint3d &to, double bulge);

/// The circular arc from the first through the second to the third point; nothing when they are in a row.
std::optional<Arc> arcThrough(const AcGePoint3d &start, const AcGePoint3d &through, const AcGePoint3d &end);

/// A vertex of a polyline in its plane; bulge and widths belong to the segment that begins here.
struct Vertex {
    AcGePoint3d point;
    double bulge = 0.0;
    double startWidth = 0.0;
    double endWidth = 0.0;
};

/// One line of text. The box is position + direction * (0 .. width) + up * (0 .. 1).
struct TextLine {
    QString text;               ///< Without control codes.
    AcGePoint3d position;       ///< Left end of the base line.
    AcGeVector3d direction;     ///< Along the base line; its length is text height times width factor.
    AcGeVector3d up;            ///< Its length is the text height; leans for oblique text.
    double width = 0.0;         ///< Length of the line in units of `direction`.
    const Font *font = nullptr; ///< Null: the default font. See findFont().
    double tracking = 1.0;      ///< Factor on the advance of each character; `width` includes it.
};

using Loop = std::vector<AcGePoint3d>;

/// How a block stands in its owner, with the repetition of a multiple insert.
struct BlockPlacement {
    AcDbObjectId record;
    AcGeMatrix3d placement; ///< Block coordinates to model coordinates, of the first instance.
    int columns = 1;
    int rows = 1;
    AcGeVector3d columnStep; ///< From one column to the next, in model coordinates.
    AcGeVector3d rowStep;

    AcGeMatrix3d instance(int column, int row) const;
};

/// A raster image: pixel (0, 0) is its upper left one.
struct Image {
    QString path;       ///< As the drawing names the file.
    AcGePoint3d origin; ///< Lower left corner of the image.
    AcGeVector3d u;     ///< Along the lower edge, its whole length.
    AcGeVector3d v;     ///< Along the left edge, its whole length.
    Loop clip;          ///< What shows of it, model coordinates; empty: all.
    double fade = 0.0;  ///< 0 to 1, towards the background.
};

/// What a viewport of a layout shows.
struct ViewportPicture {
    AcDbObjectId space; ///< Block record that is shown: model space.
    AcGePoint3d centre; ///< Of the viewport on the sheet.
    double width = 0.0; ///< On the sheet.
    double height = 0.0;
    Loop clip;              ///< Its boundary on the sheet when that is not the rectangle.
    AcGePoint3d target;     ///< Of the view, world coordinates.
    AcGePoint2d viewCentre; ///< In eye coordinates relative to the target.
    double viewHeight = 1.0;
    AcGeVector3d direction = AcGeVector3d::kZAxis;
    double twist = 0.0; ///< Radians, as AcGiViewport::twist.
    std::vector<AcDbObjectId> frozenLayers;
};

} // namespace acgi

/// Everything comes in model coordinates; modelToWorld() leads to the world. Each primitive has the traits
/// that the pen has at that moment.
class AcGiGeometry
{
public:
    virtual ~AcGiGeometry() = default;

    void pushModelTransform(const AcGeMatrix3d &matrix);
    void popModelTransform();
    const AcGeMatrix3d &modelToWorld() const { return m_toWorld; }
    AcGePoint3d toWorld(const AcGePoint3d &point) const { return m_isWorld ? point : m_toWorld * point; }
    acgi::Arc toWorld(const acgi::Arc &arc) const { return m_isWorld ? arc : arc.transformed(m_toWorld); }

    AcGiSubEntityTraits &subEntityTraits() { return m_traits; }

    // Primitives ---------------------------------------------------------------------------------
    /// A chain of lines; one point is a dot.
    virtual void polyline(std::uint32_t count, const AcGePoint3d *points) = 0;
    virtual void arc(const acgi::Arc &arc) = 0;
    /// Area between closed loops, by the even-odd rule.
    virtual void fill(std::span<const acgi::Loop> loops) = 0;
    virtual void text(const acgi::TextLine &line) = 0;
    /// A line without end: from `base` one way, or both ways.
    virtual void infiniteLine(const AcGePoint3d &base, const AcGeVector3d &direction, bool bothWays) = 0;
    /// Lines and arcs in one go; wide segments are areas.
    virtual void pline(std::span<const acgi::Vertex> vertices, bool closed);

    /// A POINT as PDMODE and PDSIZE want it shown: `size` above 0 in drawing units, else minus the
    /// percentage of the view's height (0: 5 percent). Unless overridden, a dot.
    virtual void marker(const AcGePoint3d &point, int mode, double size, double angle);
    /// Unless overridden, its frame.
    virtual void image(const acgi::Image &image);
    /// What a viewport shows; its frame is drawn beside this. Unless overridden, nothing.
    virtual void viewport(const acgi::ViewportPicture &) {}

    /// An area when the pen fills always, else the closed outline.
    void polygon(std::uint32_t count, const AcGePoint3d *points);
    /// A circular arc from the first through the second to the third point; lines when they are in a row.
    void circularArc(const AcGePoint3d &start, const AcGePoint3d &through, const AcGePoint3d &end);
    void circle(const AcGePoint3d &centre, double radius, const AcGeVector3d &normal);
    /// `startVector` points from the centre to the start; the arc turns counter-clockwise about `normal`.
    void circularArc(const AcGePoint3d &centre, double radius, const AcGeVector3d &normal,
                     const AcGeVector3d &startVector, double sweep);

    // Structure ----------------------------------------------------------------------------------
    /// Asked before each entity inside a block and each attribute; false leaves it out.
    virtual bool wants(const AcDbEntity & /*nested*/) { return true; }
    /// A sink that knows the block already returns true; otherwise its entities are drawn one by one.
    virtual bool blockReference(const acgi::BlockPlacement & /*reference*/) { return false; }
    /// Around the drawing of each entity, nested ones and attributes too. Sinks that show something take the
    /// entity's traits up here and go back to those of whoever shows it.
    virtual void beginEntity(const AcDbEntity & /*entity*/) {}
    virtual void endEntity() {}
    /// What follows shows only inside the loops (even-odd), or only outside when `inverted`; clips nest.
    virtual void pushClip(std::span<const acgi::Loop> /*loops*/, bool /*inverted*/) {}
    virtual void popClip() {}
    /// The view that is drawn for. Custom entities draw themselves only where there is one; other sinks get
    /// the box of their extents.
    virtual const AcGiViewport *view() const { return nullptr; }
    /// What the entity draws from here on looks different in each view.
    virtual void beginViewDependent() {}
    /// True for sinks that show what they get. The others measure: hatches come to them as the area that they
    /// cover, not as lines of a pattern, and drawing leaves no traces in custom entities.
    virtual bool isDisplay() const { return false; }
    /// True when nothing more is needed; drawing then ends early.
    virtual bool isDone() const { return false; }
    /// An entity, or a part of it, that cannot be drawn; `reason` starts with the kind ("3DSOLID: ...").
    virtual void noteUndrawn(const QString & /*reason*/) {}

    /// Blocks that are being drawn. False when the block is one of them already, or too deep.
    bool enterBlock(AcDbObjectId record);
    void leaveBlock() { m_nesting.leave(); }
    bool insideBlock() const { return m_nesting.isInside(); }

private:
    std::vector<AcGeMatrix3d> m_stack;
    AcGeMatrix3d m_toWorld;
    bool m_isWorld = true;
    AcGiSubEntityTraits m_traits;
    AcDbNesting m_nesting;
};

namespace acgi
{

/// A model transform for the life of a scope.
class ModelTransform
{
public:
    ModelTransform(AcGiGeometry &sink, const AcGeMatrix3d &matrix) : m_sink(sink)
    {
        m_sink.pushModelTransform(matrix);
    }
    ~ModelTransform() { m_sink.popModelTransform(); }
    ModelTransform(const ModelTransform &) = delete;
    ModelTransform &operator=(const ModelTransform &) = delete;

private:
    AcGiGeometry &m_sink;
};

} // namespace acgi
