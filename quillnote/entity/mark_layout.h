// MarkLayout: everything that a pass draws of a mark, computed as a value from the record, the settings and
// the view. Drawing, grips and conversion use the same value; what a pass finds out about the record itself
// stands in `writeBack` and is applied while the mark is open for write.
#pragma once

#include "quillnote/entity/field_table.h"
#include "quillnote/entity/mark_drawing_settings.h"
#include "quillnote/entity/mark_flag.h"
#include "quillnote/entity/mark_outline.h"
#include "quillnote/entity/mark_text_layout.h"
#include "quillnote/entity/sketch.h"

#include "host/acgi/viewport.h"

class AcDbDatabase;
class QuillnoteObj3;

/// The view that a mark is seen in, and what the process says of drawing at that moment.
struct MarkView {
    AcGiViewport viewport;
    bool plotting = false;       ///< A plot or its preview is being made.
    bool textSuppressed = false; ///< Grips are shown: marks leave their text out.
    double flagScale = 1.0;
    bool flagRefreshRunning = false;
};
/// `viewport` with what the process says. Prints when the running command cannot be read.
MarkView markViewOf(const AcGiViewport &viewport);
/// How the drawing is seen now: in its document's view, or without a document in the view saved with it. With
/// the text of marks, also while grips hide it on the screen: what is kept of a mark does not depend on that.
MarkView currentMarkView(const AcDbDatabase *database);

/// Who the picture is for.
enum class MarkPicture {
    view,  ///< Whoever looks at the drawing in this program.
    proxy, ///< Programs that do not know marks: simpler outlines, and the number always.
};

struct MarkLeader {
    AcGePoint3d start; ///< On the text box.
    AcGePoint3d end;   ///< On the target.
};

/// The freehand strokes and how they lie in the target.
struct MarkSketch {
    sketch::Sketch strokes;
    sketch::Placement placement;
    AcDbExtents extents;
};

/// What the record should say after a pass.
struct MarkWriteBack {
    AcGePoint3d targetCorner3;
    AcGePoint3d targetCorner4;
    MarkCorners textBox;
    AcGePoint3d flagPoint;
    fields::PointArray leaderEnds{};
    fields::FlagArray leaderUsed{};
    AcGePoint3d textAnchor;
    std::optional<AcGePoint3d> textEndPoint; ///< None when the text was not laid out.
};

struct MarkLayout {
    MarkAxes axes;
    double drawUnit = 0.0; ///< World units: 15 pixels, or a thirtieth of the target's diagonal on paper.
    bool plotting = false;
    MarkCorners target;
    MarkCorners textBox; ///< As wide as its text wants it.

    // What is drawn, in this order; what is missing is not.
    std::optional<MarkTextLayout> text;
    MarkOutline outline;
    WaveMiddles waveMiddles; ///< Of the outline.
    std::vector<MarkLeader> leaders;
    int leaderColor = 256;
    MarkOutline frame; ///< Of the text box.
    std::optional<MarkFlag> flag;
    std::optional<MarkSketch> sketch;

    MarkWriteBack writeBack;
};

/// A hidden mark has nothing to draw; its corners and points are computed all the same.
MarkLayout layOutMark(const QuillnoteObj3 &mark, const MarkDrawingSettings &settings, const MarkView &view,
                      MarkPicture picture = MarkPicture::view);

/// Needs write access.
void applyWriteBack(QuillnoteObj3 &mark, const MarkWriteBack &found);
/// Lays the mark out as `database` is seen now and applies what that finds. Needs write access; whoever makes
/// a mark or changes where it stands calls this before closing it.
void settleMark(QuillnoteObj3 &mark, const AcDbDatabase &database);
