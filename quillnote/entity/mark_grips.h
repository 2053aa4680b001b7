// Grips of marks: what can be dragged, and what a drag makes of a mark. Both are computed from a value, so
// that the drag that is shown and the one that is done are the same.
#pragma once

#include "quillnote/entity/mark_layout.h"

/// What dragging grips may change of a mark, and what it depends on.
struct MarkShape {
    TargetStyle targetStyle = TargetStyle::thinWaves;
    LeaderMode leaderMode = LeaderMode::flag;
    FrameStyle flagStyle = FrameStyle::bevel;
    bool hasSketch = false;
    AcGeVector3d normal = AcGeVector3d::kZAxis;
    AcGeVector3d xDirection = AcGeVector3d::kXAxis;
    MarkCorners target{};
    MarkCorners textBox{};
    AcGePoint3d flagPoint{};
    std::size_t vertexCount = 0;
    fields::PointArray vertices{};
    fields::PointArray leaderEnds{};
    fields::FlagArray leaderUsed{};
    double textHeight = 0.0;
    qsizetype textLength = 0; ///< Of the opinion.
};
/// The mark as drawing finds it.
MarkShape markShape(const QuillnoteObj3 &mark, const MarkWriteBack &found);
/// Needs write access.
void applyMarkShape(QuillnoteObj3 &mark, const MarkShape &shape);

struct MarkGrip {
    enum Kind : std::uint8_t {
        sketch, ///< Moves a mark that is only a sketch.
        vertex,
        targetCentre,
        targetCorner,
        flag, ///< Far from the text it turns a flag mark into a leader mark.
        box,  ///< Moves the text box; back at the target it turns the mark into a flag mark.
        boxWidth,
        leaderEnd
    };
    Kind kind;
    std::size_t number; ///< Index of the vertex, the corner (0 to 3) or the leader slot.
    AcGePoint3d place;  ///< World.
};
/// The sketch's; else vertices, or centre and corners of the target; then the flag's, or those of the text
/// box and of every used leader in the order of the slots.
std::vector<MarkGrip> markGrips(const MarkShape &shape);

/// Drags grips, named by their places in markGrips(), by an offset (world). The target stays, or becomes, a
/// rectangle in the view: each of its sides moves once, whatever corners are dragged, and sides that pass
/// each other change roles. Nothing when the mark has no such grip.
std::optional<MarkShape> moveMarkGrips(MarkShape shape, std::span<const int> grips,
                                       const AcGeVector3d &offset, const MarkDrawingSettings &settings,
                                       const MarkView &view);

/// Called, with the mark open for write, when a drag has given a polygon or spline mark another target: its
/// picture and fingerprint are of another place now. Returns the function that was set before.
using TargetReshaped = void (*)(QuillnoteObj3 &mark);
TargetReshaped setTargetReshaped(TargetReshaped hearer);
