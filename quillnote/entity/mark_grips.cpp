#include "quillnote/entity/mark_grips.h"

#include "quillnote/entity/leader_attachment.h"
#include "quillnote/entity/mark_geometry.h"
#include "quillnote/entity/mark_record.h"
#include "quillnote/entity/mark_state.h"
#include "quillnote/entity/password.h"

#include "host/acdb/dbtransient.h"

#include <algorithm>
#include <cmath>
#include <utility>

static constexpr double kLeastReach = 5.0;    ///< How near the flag must be to its text, drawing units.
static constexpr double kLeastOffset = 0.001; ///< Shorter drags are none.
static constexpr double kSameCorner = 1e-6;   ///< Corners closer than this are one.
static constexpr qsizetype kMostLetters = 20; ///< That the box of a new leader mark has room for.
static constexpr double kLetterWidth = 0.75;  ///< In text heights.

// Shapes ------------------------------------------------------------------------------------------

MarkShape markShape(const QuillnoteObj3 &mark, const MarkWriteBack &found)
{
    MarkShape shape{.targetStyle = mark.targetStyle,
                    .leaderMode = mark.leaderMode,
                    .flagStyle = mark.flagStyle,
                    .hasSketch = !mark.sketchData.isEmpty(),
                    .normal = mark.normal,
                    .xDirection = mark.xDirection,
                    .target = targetCorners(mark),
                    .textBox = textBoxCorners(mark),
                    .flagPoint = found.flagPoint,
                    .vertexCount = outlineRecord(mark).vertices.size(),
                    .vertices = mark.vertices,
                    .leaderEnds = found.leaderEnds,
                    .leaderUsed = found.leaderUsed,
                    .textHeight = mark.textHeight,
                    .textLength = mark.suggestionContent.size()};
    shape.target.corner3 = found.targetCorner3;
    shape.target.corner4 = found.targetCorner4;
    if (hasTextBox(mark.leaderMode))
        shape.textBox = found.textBox;
    return shape;
}

void applyMarkShape(QuillnoteObj3 &mark, const MarkShape &shape)
{
    mark.assertWriteEnabled();
    mark.targetStyle = shape.targetStyle;
    mark.leaderMode = shape.leaderMode;
    mark.flagStyle = shape.flagStyle;
    mark.xDirection = shape.xDirection;
    setTargetCorners(mark, shape.target);
    setTextBoxCorners(mark, shape.textBox);
    mark.flagPoint = shape.flagPoint;
    mark.vertices = shape.vertices;
    mark.leaderEnds = shape.leaderEnds;
    mark.leaderUsed = shape.leaderUsed;
}

static bool isOnlySketch(const MarkShape &shape)
{
    return shape.targetStyle == TargetStyle::none && shape.hasSketch;
}

std::vector<MarkGrip> markGrips(const MarkShape &shape)
{
    const MarkCorners &target = shape.target;
    if (isOnlySketch(shape))
        return {{MarkGrip::sketch, 0, target.corner3}};
    std::vector<MarkGrip> grips;
    if (hasVertices(shape.targetStyle) && shape.vertexCount > 1) {
        for (std::size_t i = 0; i < shape.vertexCount; ++i)
            grips.push_back({MarkGrip::vertex, i, shape.vertices[i]});
    } else if (fillsRectangle(shape.targetStyle)) {
        AcGePoint3d centre = target.corner1 + (target.corner2 - target.corner1) * 0.5;
        centre.z = 0.0;
        grips.push_back({MarkGrip::targetCentre, 0, centre});
        std::size_t number = 0;
        for (const AcGePoint3d &corner : {target.corner1, target.corner2, target.corner3, target.corner4})
            grips.push_back({MarkGrip::targetCorner, number++, corner});
    }
    if (!hasTextBox(shape.leaderMode)) {
        grips.push_back({MarkGrip::flag, 0, shape.flagPoint});
        return grips;
    }
    grips.push_back({MarkGrip::box, 0, shape.textBox.corner3});
    grips.push_back({MarkGrip::boxWidth, 0, shape.textBox.corner2});
    for (std::size_t i = 0; i < QuillnoteObj3::kSlots; ++i) {
        if (shape.leaderUsed[i])
            grips.push_back({MarkGrip::leaderEnd, i, shape.leaderEnds[i]});
    }
    return grips;
}

// Dragging ----------------------------------------------------------------------------------------

namespace
{

class Drag
{
public:
    Drag(MarkShape &shape, const AcGeVector3d &offset, const MarkDrawingSettings &settings,
         const MarkView &view)
        : m_shape(shape), m_offset(offset), m_settings(settings), m_view(view),
          m_toView(view.viewport.getWorldToEyeTransform()), m_toWorld(view.viewport.getEyeToWorldTransform())
    {
    }

    void turnToView();
    /// Everything that moves the target: its centre, its corners, the sketch.
    void moveTarget(const std::vector<MarkGrip> &grips);
    void move(const MarkGrip &grip, bool withBox);
    /// The target of a polygon or spline is the rectangle around its vertices.
    void encloseVertices();

private:
    void moveSides(const std::array<bool, 4> &dragged);
    void moveFlag();
    void makeLeaderMark();
    void moveBox();
    void moveLeaderEnd(std::size_t slot);
    /// The first leader to its place on the target, as seen from the text box.
    void attachFirstLeader();
    void shift(MarkCorners &corners, const AcGeVector3d &offset) const
    {
        for (AcGePoint3d *corner : {&corners.corner1, &corners.corner2, &corners.corner3, &corners.corner4})
            *corner = *corner + offset;
    }
    double reach() const { return std::max(m_shape.textHeight, kLeastReach); }
    AcGePoint3d flagAnchor() const;

    MarkShape &m_shape;
    AcGeVector3d m_offset;
    const MarkDrawingSettings &m_settings;
    const MarkView &m_view;
    AcGeMatrix3d m_toView;
    AcGeMatrix3d m_toWorld;
};

/// Where the text of a flag mark hangs on this target.
AcGePoint3d Drag::flagAnchor() const
{
    const MarkAxes axes = markAxes(m_shape.normal, m_shape.xDirection);
    const MarkCorners &target = m_shape.target;
    const MarkTextFrame frame = markTextFrame(target.corner1, target.corner2, target.corner3, axes);
    return markTextStart(false, frame, axes, 0.0);
}

// The text box turns about the corner that its text hangs on.
void Drag::turnToView()
{
    if (m_view.plotting)
        return;
    const AcGeVector3d seen = m_toWorld * AcGeVector3d::kXAxis;
    const AcGeVector3d before = m_shape.xDirection;
    m_shape.xDirection = seen;
    const double angle = std::atan2(before.crossProduct(seen).dotProduct(m_toWorld * AcGeVector3d::kZAxis),
                                    before.dotProduct(seen));
    if (!hasTextBox(m_shape.leaderMode) || std::abs(angle) < kGeTolerance)
        return;
    MarkCorners &box = m_shape.textBox;
    const AcGeMatrix3d turn = AcGeMatrix3d::rotation(angle, m_toWorld * AcGeVector3d::kZAxis, box.corner3);
    for (AcGePoint3d *corner : {&box.corner1, &box.corner2, &box.corner4})
        *corner = turn * *corner;
}

void Drag::moveTarget(const std::vector<MarkGrip> &grips)
{
    const auto has = [&](MarkGrip::Kind kind) {
        return std::ranges::find(grips, kind, &MarkGrip::kind) != grips.end();
    };
    if (has(MarkGrip::sketch)) {
        MarkCorners &target = m_shape.target;
        for (AcGePoint3d *corner : {&target.corner1, &target.corner2, &target.corner3})
            *corner = *corner + m_offset;
        return;
    }
    const bool whole = has(MarkGrip::targetCentre);
    if (!whole && !has(MarkGrip::targetCorner))
        return;
    std::array<bool, 4> dragged{};
    for (const MarkGrip &grip : grips) {
        if (grip.kind == MarkGrip::targetCorner)
            dragged[grip.number] = true;
    }
    if (whole || (dragged[0] && dragged[1]) || (dragged[2] && dragged[3]))
        shift(m_shape.target, m_offset);
    else
        moveSides(dragged);
    if (!whole && hasTextBox(m_shape.leaderMode) &&
        m_shape.target.corner1.isEqualTo(m_shape.target.corner2, kSameCorner))
        m_shape.targetStyle = TargetStyle::none;
    attachFirstLeader();
}

// The corner opposite to the dragged one stays; of a target that is askew in the view the others follow.
void Drag::moveSides(const std::array<bool, 4> &dragged)
{
    const auto [first, second, third, fourth] = dragged;
    MarkCorners &target = m_shape.target;
    const AcGePoint3d a = m_toView * target.corner1;
    const AcGePoint3d b = m_toView * target.corner2;
    const AcGePoint3d c = m_toView * target.corner3;
    const AcGePoint3d d = m_toView * target.corner4;
    const bool byOthers = third || fourth;
    const AcGeVector3d moved = m_toView * m_offset;
    double left = (byOthers ? c.x : a.x) + (first || third ? moved.x : 0.0);
    double right = (byOthers ? d.x : b.x) + (second || fourth ? moved.x : 0.0);
    double bottom = (byOthers ? d.y : a.y) + (first || fourth ? moved.y : 0.0);
    double top = (byOthers ? c.y : b.y) + (second || third ? moved.y : 0.0);
    if (left > right)
        std::swap(left, right);
    if (bottom > top)
        std::swap(bottom, top);
    target = {m_toWorld * AcGePoint3d(left, bottom, a.z), m_toWorld * AcGePoint3d(right, top, a.z),
              m_toWorld * AcGePoint3d(left, top, a.z), m_toWorld * AcGePoint3d(right, bottom, a.z)};
}

void Drag::move(const MarkGrip &grip, bool withBox)
{
    switch (grip.kind) {
    case MarkGrip::vertex:
        m_shape.vertices[grip.number] = m_shape.vertices[grip.number] + m_offset;
        break;
    case MarkGrip::flag:
        moveFlag();
        break;
    case MarkGrip::box:
        moveBox();
        break;
    case MarkGrip::boxWidth: {
        const AcGeVector3d wider = m_shape.xDirection * m_shape.xDirection.dotProduct(m_offset);
        if (withBox)
            break;
        MarkCorners &box = m_shape.textBox;
        box.corner2 = box.corner2 + wider;
        box.corner4 = box.corner4 + wider;
        // Sides that pass each other change roles.
        if ((box.corner2 - box.corner3).dotProduct(m_shape.xDirection) < 0.0) {
            std::swap(box.corner2, box.corner3);
            std::swap(box.corner1, box.corner4);
        }
        break;
    }
    case MarkGrip::leaderEnd:
        moveLeaderEnd(grip.number);
        break;
    case MarkGrip::sketch:
    case MarkGrip::targetCentre:
    case MarkGrip::targetCorner:
        break; // moveTarget()
    }
}

void Drag::encloseVertices()
{
    const MarkAxes axes = markAxes(m_shape.normal, m_shape.xDirection);
    m_shape.target = cornersAround(std::span(m_shape.vertices).first(m_shape.vertexCount), axes);
    attachFirstLeader();
}

void Drag::moveFlag()
{
    m_shape.flagPoint = m_shape.flagPoint + m_offset;
    if (m_shape.flagPoint.distanceTo(flagAnchor()) > reach())
        makeLeaderMark();
}

void Drag::makeLeaderMark()
{
    m_shape.leaderMode = LeaderMode::leader;
    m_shape.flagStyle = orBevel(m_settings.BKstyle);
    // Where no height is set for all marks, the box begins with that of its own text, which it is fitted to.
    const int configured = m_view.viewport.paperSpace ? m_settings.textHeightPS : m_settings.textHeight;
    const double height = configured > 0 ? double(configured) : m_shape.textHeight;
    const double letters = double(std::min(m_shape.textLength + 1, kMostLetters));
    const AcGePoint3d place = m_toView * m_shape.flagPoint;
    MarkCorners &box = m_shape.textBox;
    box.corner1 = m_toWorld * AcGePoint3d(place.x, place.y - height, place.z);
    box.corner2 = m_toWorld * AcGePoint3d(place.x + kLetterWidth * height * letters, place.y, place.z);
    const CompletedCorners others =
        completeCorners(box.corner1, box.corner2, m_shape.normal, m_shape.xDirection);
    box.corner3 = others.corner3;
    box.corner4 = others.corner4;
    // A polygon whose line to the box meets nothing has its leader end in its middle.
    m_shape.leaderUsed[0] = true;
    m_shape.leaderEnds[0] = m_shape.target.corner1 + (m_shape.target.corner2 - m_shape.target.corner1) * 0.5;
    attachFirstLeader();
}

void Drag::moveBox()
{
    shift(m_shape.textBox, m_offset);
    attachFirstLeader();
    const AcGePoint3d &corner = m_shape.textBox.corner3;
    const bool isBack =
        corner.distanceTo(flagAnchor()) < reach() || corner.distanceTo(m_shape.target.corner1) < reach();
    if (!fillsRectangle(m_shape.targetStyle) || !isBack)
        return;
    m_shape.leaderMode = LeaderMode::flag;
    m_shape.leaderUsed[0] = false;
}

// A leader that is dragged into the text box goes away.
void Drag::moveLeaderEnd(std::size_t slot)
{
    m_shape.leaderEnds[slot] = m_shape.leaderEnds[slot] + m_offset;
    const AcGePoint3d a = m_toView * m_shape.textBox.corner1;
    const AcGePoint3d b = m_toView * m_shape.textBox.corner2;
    const auto between = [](double at, double from, double to) {
        return at >= std::min(from, to) && at <= std::max(from, to);
    };
    for (std::size_t i = 0; i < QuillnoteObj3::kSlots; ++i) {
        const AcGePoint3d end = m_toView * m_shape.leaderEnds[i];
        if (between(end.x, a.x, b.x) && between(end.y, a.y, b.y))
            m_shape.leaderUsed[i] = false;
    }
}

void Drag::attachFirstLeader()
{
    const bool hasUsed = std::ranges::find(m_shape.leaderUsed, true) != m_shape.leaderUsed.end();
    if (!hasTextBox(m_shape.leaderMode))
        return;
    const OutlineRecord record{.target = m_shape.target,
                               .textBox = m_shape.textBox,
                               .vertices = std::span(m_shape.vertices).first(m_shape.vertexCount)};
    const auto end = attachLeaders(m_shape.targetStyle, drawnTargetStyle(m_shape.targetStyle, m_settings),
                                   record, hasUsed, m_shape.textBox.corner3);
    if (!end)
        return;
    m_shape.leaderEnds[0] = *end;
    m_shape.leaderUsed[0] = true;
}

} // namespace

std::optional<MarkShape> moveMarkGrips(MarkShape shape, std::span<const int> grips,
                                       const AcGeVector3d &offset, const MarkDrawingSettings &settings,
                                       const MarkView &view)
{
    const std::vector<MarkGrip> known = markGrips(shape);
    std::vector<MarkGrip> dragged;
    bool withBox = false;
    for (const int index : grips) {
        if (index < 0 || index >= int(known.size()))
            return std::nullopt;
        dragged.push_back(known[std::size_t(index)]);
        withBox = withBox || dragged.back().kind == MarkGrip::box;
    }
    Drag drag(shape, offset, settings, view);
    drag.turnToView();
    drag.moveTarget(dragged);
    for (const MarkGrip &grip : dragged)
        drag.move(grip, withBox);
    if (std::ranges::find(dragged, MarkGrip::vertex, &MarkGrip::kind) != dragged.end())
        drag.encloseVertices();
    return shape;
}

// The entity --------------------------------------------------------------------------------------

static TargetReshaped s_targetReshaped = nullptr;

TargetReshaped setTargetReshaped(TargetReshaped hearer)
{
    return std::exchange(s_targetReshaped, hearer);
}

/// Grips stand where drawing shows them, also while the text is left out for their sake.
static MarkView gripView(const QuillnoteObj3 &mark)
{
    MarkView view = currentMarkView(mark.database());
    view.textSuppressed = false;
    return view;
}

static MarkShape shownShape(const QuillnoteObj3 &mark, const MarkDrawingSettings &settings,
                            const MarkView &view)
{
    return markShape(mark, layOutMark(mark, settings, view).writeBack);
}

std::vector<AcGePoint3d> QuillnoteObj3::subGetGripPoints() const
{
    markDrawingState().textSuppressed = true;
    std::vector<AcGePoint3d> places;
    for (const MarkGrip &grip : markGrips(shownShape(*this, markDrawingSettings(), gripView(*this))))
        places.push_back(grip.place);
    return places;
}

Acad::ErrorStatus QuillnoteObj3::subMoveGripPointsAt(std::span<const int> grips, const AcGeVector3d &offset)
{
    if (grips.empty())
        return Acad::eInvalidInput;
    if (std::max({std::abs(offset.x), std::abs(offset.y), std::abs(offset.z)}) < kLeastOffset)
        return Acad::eOk;
    const MarkDrawingSettings settings = markDrawingSettings();
    const MarkView view = gripView(*this);
    const auto moved = moveMarkGrips(shownShape(*this, settings, view), grips, offset, settings, view);
    if (!moved)
        return Acad::eInvalidIndex;
    // Copies show what would come of a drag; the drag itself asks.
    if (!AcDbTransient::isCopy(*this) && !mayDragProtected(chPwMD5))
        return Acad::eInvalidInput;
    const bool isReshaped = moved->vertices != vertices;
    applyMarkShape(*this, *moved);
    if (isReshaped && !AcDbTransient::isCopy(*this) && s_targetReshaped)
        s_targetReshaped(*this);
    applyWriteBack(*this, layOutMark(*this, settings, view).writeBack);
    gripEditing = true;
    return Acad::eOk;
}
