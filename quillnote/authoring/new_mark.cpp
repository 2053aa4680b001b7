#include "quillnote/authoring/new_mark.h"

#include "quillnote/authoring/mark_layer.h"
#include "quillnote/authoring/numbering.h"
#include "quillnote/entity/mark_geometry.h"
#include "quillnote/entity/mark_layout.h"
#include "quillnote/entity/mark_record.h"
#include "quillnote/frame/settings/settings.h"
#include "quillnote/frame/settings/start_up_settings.h"
#include "quillnote/snapshot/capture.h"
#include "quillnote/snapshot/full_snapshot_view.h"
#include "quillnote/snapshot/pending_snapshot.h"

#include "host/acap/docman.h"
#include "host/acdb/dbsymtb.h"
#include "host/aced/edsysvar.h"
#include "host/aced/edview.h"
#include "host/acgi/text/text_style.h"
#include "host/os/guid.h"

#include <QFile>

#include <algorithm>
#include <cmath>

static bool isPaperSpaceCurrent()
{
    return acedIntVar(QStringLiteral("TILEMODE"), 1) == 0 && acedIntVar(QStringLiteral("CVPORT"), 2) == 1;
}

// Sizes -------------------------------------------------------------------------------------------

double suitingTextHeight(double viewHeight, const AcDbExtents &drawing)
{
    constexpr double kLinesInView = 50.0;
    constexpr double kFewestLines = 10.0; // A higher text would be a band across the view.
    double height = viewHeight / kLinesInView;
    if (drawing.isValid()) {
        // Of a sheet with this diagonal: from just legible to far too large.
        const double diagonal = drawing.minPoint().distanceTo(drawing.maxPoint());
        if (diagonal > 0.0 && std::isfinite(diagonal))
            height = std::clamp(height, diagonal / 500.0, diagonal / 60.0);
    }
    height = std::min(height, viewHeight / kFewestLines);
    if (!(height > 0.0) || !std::isfinite(height))
        return 1.0;
    const double digit = std::pow(10.0, std::floor(std::log10(height)) - 1.0);
    return std::round(height / digit) * digit;
}

/// The height that the user has set, or one for this drawing as it is seen now. What marks show beside their
/// extents does not count: it is no part of the drawing, and looking at every mark there is would slow down
/// each new one.
static double modelTextHeight(const StartUpSettings &start)
{
    const AcApDocument *const document = curDoc();
    return start.suitsTextHeight && document
               ? suitingTextHeight(
                     document->view().height,
                     acedSpaceExtents(*document->database(), document->database()->currentSpaceId()))
               : start.textHeight;
}

/// Text under a small target would follow it into what nobody can read in the current view: such a mark gets
/// a height of its own instead.
static void keepTextLegible(QuillnoteObj3 &mark)
{
    constexpr double kLegibleShare = 1.0 / 80.0; // Of the view's height: ten pixels or so.
    constexpr double kFollowingShare = 1.0 / 12.0;
    const AcApDocument *const document = curDoc();
    // A height that the user has set, for sheets in particular, stays the mark's.
    if (!document || !mark.autoTextHeight || !startUpSettings().suitsTextHeight || isPaperSpaceCurrent())
        return;
    const double least = document->view().height * kLegibleShare;
    if (mark.targetCorner1.distanceTo(mark.targetCorner4) * kFollowingShare >= least)
        return;
    mark.autoTextHeight = false;
    mark.textHeight = least;
}

static double widthInMarkFont(const QString &text, double textHeight)
{
    AcGiTextStyle style;
    style.setFileName(QStringLiteral("complex.shx"));
    style.setBigFontFileName(QStringLiteral("gbcbig.shx"));
    style.setTextSize(textHeight);
    style.loadStyleRec();
    return style.extents(text).x;
}

LeaderTextBox leaderTextBox(const AcGePoint3d &start, const AcGePoint3d &end, double textHeight,
                            const QString &text, const AcGeMatrix3d &worldToView)
{
    constexpr int kLineLength = 40;
    const AcGePoint3d from = worldToView * start;
    const AcGePoint3d to = worldToView * end;
    const double margin = 2.0 * textHeight;
    const double width = widthInMarkFont(text.left(kLineLength), textHeight);
    const int lines = int(text.size() / kLineLength) + 1;
    const bool isToTheRight = to.x >= from.x;
    const AcGePoint3d lowerLeft(isToTheRight ? to.x : to.x - margin - width, to.y - margin, 0);
    const AcGePoint3d upperRight(isToTheRight ? to.x + margin + width : to.x, to.y + textHeight * (lines + 2),
                                 0);
    const AcGeMatrix3d viewToWorld = worldToView.inverse();
    return {viewToWorld * lowerLeft, viewToWorld * upperRight};
}

// What new marks have in common -------------------------------------------------------------------

// The drawing appears turned by the twist, so what the user sees as "to the right" is turned back.
AcGeVector3d viewRight()
{
    return AcGeVector3d::kXAxis.rotateBy(-acedRealVar(QStringLiteral("VIEWTWIST")), AcGeVector3d::kZAxis);
}

void fillMarkFromSettings(QuillnoteObj3 &mark)
{
    const StartUpSettings &start = startUpSettings();
    mark.textHeight = isPaperSpaceCurrent() ? start.textHeightPS : modelTextHeight(start);
    mark.autoTextHeight = start.autoTargetTextHeight;
    mark.normal = AcGeVector3d::kZAxis;
    mark.xDirection = viewRight();
    mark.color1 = static_cast<std::uint16_t>(start.color1);
    mark.color2 = static_cast<std::uint16_t>(start.color2);
    mark.chPwMD5 = settings::text(u"chPwMD5").left(QuillnoteObj3::kPasswordHashLength);
}

static void putOnLayer(AcDbDatabase &database, QuillnoteObj3 &mark)
{
    const bool ownLayer = settings::number(u"useLayer") == 1;
    if (ownLayer)
        ensureMarkLayer(database);
    const QString layer = ownLayer ? markLayerName() : QStringLiteral("0");
    if (database.tableRecord(SymbolTable::layer, layer).isValid())
        mark.setLayer(layer);
}

AcDbObjectId appendNewMark(AcDbDatabase &database, std::unique_ptr<QuillnoteObj3> mark)
{
    putOnLayer(database, *mark);
    settleMark(*mark, database);
    return appendMark(database, std::move(mark));
}

AcDbObjectId appendMark(AcDbDatabase &database, std::unique_ptr<QuillnoteObj3> mark, AcDbObjectId space)
{
    const ImportingScope ours;
    AcDbObjectPointer<AcDbBlockTableRecord> block(space.isNull() ? database.currentSpaceId() : space,
                                                  AcDb::kForWrite);
    AcDbObjectId id;
    if (!block || block->appendAcDbEntity(id, mark.get()) != Acad::eOk)
        return {};
    mark.release()->close();
    return id;
}

// createMark --------------------------------------------------------------------------------------

static void fillText(QuillnoteObj3 &mark, const NewMark &request)
{
    mark.suggestionName = request.reviewerName;
    mark.suggestionContent = request.opinionText;
    mark.weight = static_cast<std::int16_t>(request.weight);
    mark.bigCategory = request.bigCategory;
    mark.smallCategory = request.smallCategory;
    mark.GUID = os::newGuidText();
}

static void placeTarget(QuillnoteObj3 &mark, const NewMark &request)
{
    mark.targetCorner1 = request.corner1;
    mark.targetCorner2 = request.corner2;
    completeTargetCorners(mark);
    mark.leaderMode = LeaderMode::flag;
    mark.targetStyle = request.isFreehand ? TargetStyle::none : TargetStyle(startUpSettings().style);
    if (request.isFreehand)
        mark.flagStyle = FrameStyle::none;
    else
        keepTextLegible(mark);
}

// Fitting a box to its lines moves its lower edge; that of a new one lies a text height under where the user
// pointed.
static void standBoxOnItsPlace(const AcDbDatabase &database, QuillnoteObj3 &mark)
{
    const MarkLayout layout = layOutMark(mark, markDrawingSettings(), currentMarkView(&database));
    MarkCorners box = layout.writeBack.textBox;
    const AcGeVector3d down =
        layout.axes.up * ((mark.textBoxCorner1 - box.corner1).dotProduct(layout.axes.up) + mark.textHeight);
    for (AcGePoint3d *corner : {&box.corner1, &box.corner2, &box.corner3, &box.corner4})
        *corner = *corner + down;
    setTextBoxCorners(mark, box);
}

// The box holds the text roughly; drawing fits it to the lines that come out.
static void placeLeader(const AcDbDatabase &database, QuillnoteObj3 &mark, const NewMark &request)
{
    const AcApDocument *const document = curDoc();
    const LeaderTextBox box =
        leaderTextBox(request.corner1, request.corner2, mark.textHeight, request.opinionText,
                      document ? document->view().getWorldToEyeTransform() : AcGeMatrix3d());
    mark.textBoxCorner1 = box.corner1;
    mark.textBoxCorner2 = box.corner2;
    completeTextBoxCorners(mark);
    mark.leaderMode = LeaderMode::leader;
    mark.flagStyle = FrameStyle(startUpSettings().BKstyle);
    mark.leaderEnds[0] = request.corner1;
    mark.leaderUsed[0] = true;
    mark.targetCorner1 = request.corner1;
    mark.targetCorner2 = request.corner1;
    completeTargetCorners(mark);
    mark.targetStyle = TargetStyle::none;
    standBoxOnItsPlace(database, mark);
}

static void fillSketch(QuillnoteObj3 &mark, const QString &path)
{
    QFile file(path);
    if (!path.isEmpty() && file.open(QIODevice::ReadOnly))
        mark.sketchData = file.readAll();
}

AcDbObjectId createMark(AcDbDatabase &database, const NewMark &request)
{
    const std::optional<std::uint16_t> number = nextMarkNumber(database);
    if (!number)
        return {};
    auto mark = std::make_unique<QuillnoteObj3>();
    mark->markNumber = *number;
    fillMarkFromSettings(*mark);
    fillText(*mark, request);
    if (request.isLeader)
        placeLeader(database, *mark, request);
    else
        placeTarget(*mark, request);
    fillSketch(*mark, request.sketchFile);
    if (!request.isLeader)
        storeSnapshot(database, *mark);
    const AcDbObjectId id = appendNewMark(database, std::move(mark));
    if (id.isNull())
        return {};
    if (recordsFullView())
        recordFullSnapshot(id);
    keepMarkNumber(database, *number);
    return id;
}
