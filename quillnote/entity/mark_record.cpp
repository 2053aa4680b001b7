#include "quillnote/entity/mark_record.h"

#include "quillnote/entity/mark_class.h"
#include "quillnote/entity/mark_draw.h"
#include "quillnote/entity/mark_geometry.h"
#include "quillnote/entity/mark_state.h"
#include "quillnote/entity/mark_values.h"
#include "quillnote/entity/password.h"

#include "host/acap/docman.h"
#include "host/aced/edfrontend.h"
#include "host/base/assert.h"
#include "host/os/clock.h"

#include <algorithm>
#include <cmath>

QuillnoteObj3::QuillnoteObj3(PlainDefaults) : AcDbEntity(kMarkDxfName) {}

QuillnoteObj3::QuillnoteObj3() : QuillnoteObj3(PlainDefaults{})
{
    color1 = firstColorOfNewMarks();
    color2 = secondColorOfNewMarks();
    createTime = os::julianNow();
}

std::unique_ptr<QuillnoteObj3> QuillnoteObj3::forReading()
{
    return std::unique_ptr<QuillnoteObj3>(new QuillnoteObj3(PlainDefaults{}));
}

AcRxClass *QuillnoteObj3::desc()
{
    return markClass();
}

AcRxClass *QuillnoteObj3::isA() const
{
    AcRxClass *registered = desc();
    QUILL_ASSERT(registered != nullptr);
    return registered;
}

Acad::ErrorStatus QuillnoteObj3::subClose()
{
    gripEditing = false;
    markDrawingState().textSuppressed = false;
    if (database() && isWriteEnabled()) {
        // Whatever was changed may move the text.
        textEndPoint.reset();
        cachedExtents = {};
        m_isMeasured = false;
    }
    return AcDbEntity::subClose();
}

Acad::ErrorStatus QuillnoteObj3::subErase(bool erasing)
{
    if (!erasable || !mayChangeProtected(chPwMD5))
        return Acad::eInvalidInput;
    return AcDbEntity::subErase(erasing);
}

void QuillnoteObj3::subList() const
{
    acutPrintf(QStringLiteral("\n标记[%1]：%2").arg(QString::number(markNumber), suggestionContent));
}

bool QuillnoteObj3::subWorldDraw(AcGiWorldDraw *context) const
{
    return context->regenType() == kAcGiSaveWorldDrawForProxy;
}

void QuillnoteObj3::leaveTraces(const MarkLayout &layout) const
{
    outlineCache = layout.waveMiddles.slots();
    outlineChord = layout.waveMiddles.chord();
    plotting = layout.plotting;
    textAnchor = layout.writeBack.textAnchor;
    if (layout.writeBack.textEndPoint)
        textEndPoint = layout.writeBack.textEndPoint;
    cachedExtents = layout.sketch ? layout.sketch->extents : AcDbExtents();
}

/// The drawing that a mark stands in; none for a copy that is only shown.
static AcDbDatabase *drawingOf(AcDbObjectId id)
{
    AcDbDatabase *const database = id.database();
    return database && database->stub(id.stub()->index) == id.stub() ? database : nullptr;
}

void QuillnoteObj3::subViewportDraw(AcGiViewportDraw *context) const
{
    const bool isShown = context->regenType() == kAcGiStandardDisplay;
    if (displayMode != DisplayMode::hidden) {
        const MarkLayout layout = layOutMark(*this, markDrawingSettings(), markViewOf(context->viewport()));
        drawMark(layout, *context);
        if (isShown) {
            if (AcDbDatabase *const drawing = drawingOf(objectId()))
                drawnMarks(*drawing).insert(objectId());
            leaveTraces(layout);
        }
    }
    if (!isShown)
        return; // Somebody asks what would be seen where.
    gripEditing = false;
    markDrawingState().textSuppressed = false;
}

void QuillnoteObj3::saveAs(AcGiWorldDraw *context) const
{
    if (displayMode != DisplayMode::hidden)
        drawMark(layOutMark(*this, markDrawingSettings(), currentMarkView(database()), MarkPicture::proxy),
                 *context);
}

// A mark that was not drawn yet is laid out once, so that picks and zooms find its text and its sketch.
void QuillnoteObj3::measure() const
{
    if (m_isMeasured)
        return;
    MarkView view = currentMarkView(database());
    view.textSuppressed = false;
    const MarkLayout layout = layOutMark(*this, markDrawingSettings(), view);
    textEndPoint = layout.writeBack.textEndPoint;
    cachedExtents = layout.sketch ? layout.sketch->extents : AcDbExtents();
    m_isMeasured = true;
}

Acad::ErrorStatus QuillnoteObj3::subGetGeomExtents(AcDbExtents &extents) const
{
    AcDbExtents box;
    // Corners that were never computed lie at the origin, not at the mark.
    const auto addRectangle = [&](const AcGePoint3d &c1, const AcGePoint3d &c2, const AcGePoint3d &c3,
                                  const AcGePoint3d &c4) {
        box.addPoint(c1);
        box.addPoint(c2);
        if (cornersValid) {
            box.addPoint(c3);
            box.addPoint(c4);
        }
    };
    if (targetStyle != TargetStyle::none)
        addRectangle(targetCorner1, targetCorner2, targetCorner3, targetCorner4);
    if (hasTextBox(leaderMode)) {
        addRectangle(textBoxCorner1, textBoxCorner2, textBoxCorner3, textBoxCorner4);
        for (std::size_t i = 0; i < kSlots; ++i) {
            if (leaderUsed[i])
                box.addPoint(leaderEnds[i]);
        }
    }
    measure();
    if (textEndPoint)
        box.addPoint(*textEndPoint);
    if (!sketchData.isEmpty() && cachedExtents.isValid())
        box.addExt(cachedExtents);
    // A sketch that was not drawn yet will fill the target.
    if (!box.isValid())
        addRectangle(targetCorner1, targetCorner2, targetCorner3, targetCorner4);
    extents = box;
    return box.isValid() ? Acad::eOk : Acad::eInvalidExtents;
}

/// A mirrored mark would hang upside down or read backwards: the x direction points to the right again, the
/// corners get their roles anew, and the vertices run the other way, so that waves bulge outwards.
static void standUpright(QuillnoteObj3 &mark)
{
    AcGeVector3d &x = mark.xDirection;
    if (x.x < -kGeTolerance || (x.x <= kGeTolerance && x.y < 0.0))
        x = x * -1.0;
    const AcGeVector3d normal = mark.normal.normal();
    const AcGeMatrix3d frame = AcGeMatrix3d::fromAxes({}, x, normal.crossProduct(x), normal).inverse();
    const auto sort = [&](AcGePoint3d &corner1, AcGePoint3d &corner2) {
        const SortedCorners sorted = sortCorners(corner1, corner2, frame);
        corner1 = sorted.lowerLeft;
        corner2 = sorted.upperRight;
    };
    sort(mark.targetCorner1, mark.targetCorner2);
    sort(mark.textBoxCorner1, mark.textBoxCorner2);
    completeTargetCorners(mark);
    completeTextBoxCorners(mark);
    const int vertices = std::clamp<int>(mark.vertexCount, 0, QuillnoteObj3::kSlots);
    std::reverse(mark.vertices.begin(), mark.vertices.begin() + vertices);
}

Acad::ErrorStatus QuillnoteObj3::subTransformBy(const AcGeMatrix3d &matrix)
{
    assertWriteEnabled();
    for (const AcGePoint3d &point : {targetCorner1, targetCorner2, textBoxCorner1, textBoxCorner2}) {
        const AcGePoint3d moved = matrix * point;
        if (!std::isfinite(moved.x) || !std::isfinite(moved.y) || !std::isfinite(moved.z))
            return Acad::eInvalidInput;
    }
    normal.transformBy(matrix);
    xDirection.transformBy(matrix);
    const bool isScaled = std::abs(xDirection.length() - 1.0) > kGeTolerance;
    xDirection = xDirection.normal();
    for (AcGePoint3d *point :
         {&targetCorner1, &targetCorner2, &targetCorner3, &targetCorner4, &textBoxCorner1, &textBoxCorner2,
          &textBoxCorner3, &textBoxCorner4, &flagPoint, &textAnchor})
        point->transformBy(matrix);
    if (textEndPoint)
        textEndPoint->transformBy(matrix);
    cachedExtents.transformBy(matrix);
    for (std::size_t i = 0; i < kSlots; ++i) {
        if (leaderUsed[i])
            leaderEnds[i].transformBy(matrix);
        if (hasVertices(targetStyle))
            vertices[i].transformBy(matrix);
    }
    const bool isMirrored = matrix.determinant() < 0.0;
    if (isMirrored)
        standUpright(*this);
    // The text keeps its height, so the text box has to fit it anew.
    if ((isScaled || isMirrored) && database())
        settleMark(*this, *database());
    return Acad::eOk;
}
