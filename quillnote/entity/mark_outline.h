// The outlines of a mark: around its target and around its text box. An outline is computed first, as a
// value, and drawn afterwards; both need no open mark.
#pragma once

#include "quillnote/entity/mark_drawing_settings.h"
#include "quillnote/entity/wave.h"

#include <optional>

class QuillnoteObj3;
struct MarkAxes;

/// In the order of the record: 1 and 2 opposite, 4 from 1 along the x direction, 3 from 1 across it.
/// Outlines run 1, 4, 2, 3.
struct MarkCorners {
    AcGePoint3d corner1;
    AcGePoint3d corner2;
    AcGePoint3d corner3;
    AcGePoint3d corner4;

    double diagonal() const { return corner1.distanceTo(corner2); }
};
/// Completed where the record has not completed them yet.
MarkCorners targetCorners(const QuillnoteObj3 &mark);
MarkCorners textBoxCorners(const QuillnoteObj3 &mark);
/// The rectangle around points, flat and along the axes of a mark.
MarkCorners cornersAround(std::span<const AcGePoint3d> points, const MarkAxes &axes);
/// Need write access. That of the target makes all its corners valid.
void setTargetCorners(QuillnoteObj3 &mark, const MarkCorners &corners);
void setTextBoxCorners(QuillnoteObj3 &mark, const MarkCorners &corners);

/// What the outlines depend on. outlineRecord() takes it from a mark; a layout that changes corners, or a
/// jig that has no mark yet, changes or fills it.
struct OutlineRecord {
    MarkCorners target{};
    MarkCorners textBox{};
    AcGeVector3d xDirection = AcGeVector3d::kXAxis;
    std::span<const AcGePoint3d>
        vertices{}; ///< Of polygon and spline marks; the mark that has them outlives this.
    DisplayMode displayMode = DisplayMode::full;
    bool enlarged = false; ///< The mark's own outline number is negative: ellipses are a quarter larger.
    int color1 = 2;        ///< The mark's own colours.
    int color2 = 5;
    double textHeight = 0.0;
    bool gripEditing = false; ///< Waves are thin, whatever the style.
};
OutlineRecord outlineRecord(const QuillnoteObj3 &mark);

/// A fixed figure of an outline.
struct OutlinePiece {
    enum Kind : std::uint8_t { lines, closedLines, area };
    Kind kind = lines;
    std::uint8_t count = 0;  ///< Points.
    std::uint16_t first = 0; ///< Index of the first one in MarkOutline::points.
    int color = 0;           ///< Colour index.
    friend bool operator==(const OutlinePiece &, const OutlinePiece &) = default;
};

/// Pieces are drawn in their order, then the waves.
struct MarkOutline {
    std::vector<OutlinePiece> pieces;
    std::vector<AcGePoint3d> points; ///< Of all pieces.
    std::vector<WaveBump> bumps;
    bool thinWaves = false;
    int waveColor = 0;
    /// Least lineweight of waves, hundredths of a millimetre; 0: that of the mark. Thick waves are drawn
    /// along their inner edge as well.
    int waveWeight = 0;

    bool isEmpty() const { return pieces.empty() && bumps.empty(); }
    void clear(); ///< Keeps the memory.
    std::span<const AcGePoint3d> pointsOf(const OutlinePiece &piece) const
    {
        return std::span(points).subspan(piece.first, piece.count);
    }
};

/// The view and the settings that outlines are drawn for.
struct OutlineView {
    double drawUnit = 1.0; ///< World length of 15 pixels, or a thirtieth of the target's diagonal on plots.
    MarkDrawingSettings settings{};
};

/// `style` as drawnTargetStyle() gives it; numbers without outline and targets too small to show give an
/// empty one.
void targetOutline(const OutlineRecord &mark, const OutlineView &view, TargetStyle style,
                   MarkOutline &outline);
/// What programs that do not know marks will see: at most 14 bumps, in thick lines around the rectangle of a
/// target. It depends on no view.
void proxyOutline(const OutlineRecord &mark, TargetStyle style, const MarkDrawingSettings &settings,
                  MarkOutline &outline);
/// Empty unless the mark is shown in full.
void textBoxFrame(const OutlineRecord &mark, const OutlineView &view, FrameStyle style, MarkOutline &outline);

/// The closed spline of a spline mark through three vertices at least; nothing when there is none.
std::optional<AcGeFitSpline3d> closedSpline(std::span<const AcGePoint3d> vertices);

void drawOutline(const MarkOutline &outline, const AcGiCommonDraw &context);
