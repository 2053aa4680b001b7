#include "quillnote/authoring/polygon_mark.h"

#include "quillnote/authoring/mark_opinion.h"
#include "quillnote/authoring/mark_targets.h"
#include "quillnote/authoring/mark_vertices.h"
#include "quillnote/authoring/numbering.h"
#include "quillnote/authoring/polygon_jig.h"
#include "quillnote/entity/mark_layout.h"
#include "quillnote/entity/mark_record.h"
#include "quillnote/frame/settings/settings.h"
#include "quillnote/snapshot/capture.h"
#include "quillnote/snapshot/full_snapshot_view.h"
#include "quillnote/snapshot/pending_snapshot.h"

#include "host/acap/docman.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edinput.h"
#include "host/os/guid.h"

static constexpr std::size_t kLeastVertices = 3; ///< Of what encloses something.
static constexpr std::size_t kMostPicks = 128;

// New marks ---------------------------------------------------------------------------------------

void initMarkFromSettings(QuillnoteObj3 &mark)
{
    fillMarkFromSettings(mark);
    mark.suggestionName = settings::text(u"name");
    mark.GUID.clear();
}

// Every view looks along the world's Z axis.
void orientMark(QuillnoteObj3 &mark, const AcGeVector3d &ucsNormal)
{
    if (ucsNormal.z < 0.0)
        mark.xDirection = -mark.xDirection;
}

AcDbObjectId appendPolygonMark(AcDbDatabase &database, std::unique_ptr<QuillnoteObj3> mark)
{
    mark->GUID = os::newGuidText();
    storeSnapshot(database, *mark);
    const AcDbObjectId id = appendNewMark(database, std::move(mark));
    if (id.isNull())
        acedRefuse(QStringLiteral("无法在本图中创建评图标签。"));
    return id;
}

/// What is done once the mark is complete and has its number.
static void keepFinishedMark(AcDbDatabase &database, AcDbObjectId id, std::uint16_t number)
{
    if (recordsFullView())
        recordFullSnapshot(id);
    keepMarkNumber(database, number);
}

static void tellLeftOutPoints(std::size_t count)
{
    if (count > QuillnoteObj3::kSlots)
        acutPrintf(QStringLiteral("\n靶框最多只能有16个顶点，其余%1个点未采用。")
                       .arg(count - QuillnoteObj3::kSlots));
}

AcDbObjectId makePolygonMark(AcDbDatabase &database, std::span<const AcGePoint3d> points,
                             const AcGeVector3d &ucsNormal)
{
    const std::vector<AcGePoint3d> vertices = distinctVertices(points);
    if (vertices.size() < kLeastVertices)
        return {};
    const std::optional<std::uint16_t> number = nextMarkNumber(database);
    if (!number)
        return {};
    tellLeftOutPoints(vertices.size());
    auto mark = std::make_unique<QuillnoteObj3>();
    initMarkFromSettings(*mark);
    orientMark(*mark, ucsNormal);
    mark->markNumber = *number;
    mark->targetStyle = TargetStyle::thickPolygon;
    setOutlineVertices(*mark, vertices);
    const AcDbObjectId id = appendPolygonMark(database, std::move(mark));
    if (!id.isNull())
        keepFinishedMark(database, id, *number);
    return id;
}

// Completing what the jig drew --------------------------------------------------------------------

void finishPolygonMark(AcDbObjectId polygon)
{
    AcDbDatabase &database = *polygon.database();
    const std::optional<std::uint16_t> number = nextMarkNumber(database);
    {
        AcDbObjectPointer<QuillnoteObj3> mark(polygon, AcDb::kForWrite);
        if (!mark || !number)
            return;
        mark->suggestionName = settings::text(u"name");
        mark->markNumber = *number;
        mark->subNumber = 0;
        settleMark(*mark, database);
    }
    keepFinishedMark(database, polygon, *number);
}

/// Everything that belongs to the opinion. The text height and the picture of the view go along: the text box
/// was made for that height, and the picture was recorded for this mark.
static void takeOpinion(QuillnoteObj3 &polygon, const QuillnoteObj3 &from)
{
    setTextBoxCorners(polygon, textBoxCorners(from));
    polygon.textHeight = from.textHeight;
    polygon.flagStyle = from.flagStyle;
    polygon.suggestionContent = from.suggestionContent;
    polygon.suggestionName = from.suggestionName;
    polygon.weight = from.weight;
    polygon.bigCategory = from.bigCategory;
    polygon.smallCategory = from.smallCategory;
    polygon.markNumber = from.markNumber;
    polygon.subNumber = from.subNumber;
    polygon.chPwMD5 = from.chPwMD5;
    polygon.fullImage = from.fullImage;
    polygon.leaderMode = LeaderMode::leader;
    polygon.leaderUsed[0] = true;
    polygon.leaderEnds[0] = from.leaderEnds[0];
}

static bool canTakeText(AcDbObjectId polygon)
{
    const AcDbObjectPointer<QuillnoteObj3> mark(polygon, AcDb::kForRead);
    return mark && mark->vertexCount >= static_cast<std::int16_t>(kLeastVertices);
}

bool mergePolygonIntoLeaderMark(AcDbObjectId polygon, AcDbObjectId leaderMark)
{
    if (!canTakeText(polygon))
        return false;
    AcDbObjectPointer<QuillnoteObj3> kept(polygon, AcDb::kForWrite);
    AcDbObjectPointer<QuillnoteObj3> dropped(leaderMark, AcDb::kForWrite);
    if (!kept || !dropped)
        return false;
    takeOpinion(*kept, *dropped);
    settleMark(*kept, *kept->database());
    // The opinion was typed a moment ago: no password is asked for to move it.
    dropped->chPwMD5.clear();
    dropped->erase();
    return true;
}

// The commands ------------------------------------------------------------------------------------

static AcGeVector3d ucsNormal()
{
    return acedTrans(AcGeVector3d::kZAxis, AcEdSpace::ucs, AcEdSpace::world).normal();
}

/// A mark in no drawing; null when less than two places were pointed at, or the user thought better of it.
static std::unique_ptr<QuillnoteObj3> drawOutline(bool isPolygon)
{
    AcGePoint3d start;
    if (acedGetPoint(nullptr, QStringLiteral("\n请指定起点: "), start) != RTNORM)
        return nullptr;
    QuillnotePolygonJig jig(acedTrans(start, AcEdSpace::ucs, AcEdSpace::world), ucsNormal(), isPolygon);
    const AcEdJig::DragStatus end = jig.run();
    const std::size_t count = distinctVertices(jig.vertices()).size();
    if (end == AcEdJig::kCancel || count < 2)
        return nullptr;
    tellLeftOutPoints(count);
    return jig.takeMark();
}

static AcGePoint3d middleOf(const QuillnoteObj3 &polygon)
{
    const std::span<const AcGePoint3d> vertices =
        std::span(polygon.vertices).first(std::size_t(polygon.vertexCount));
    AcGeVector3d sum;
    for (const AcGePoint3d &vertex : vertices)
        sum = sum + vertex.asVector();
    return AcGePoint3d() + sum / double(vertices.size());
}

namespace
{

/// Shows an outline that is in no drawing yet while something else is asked.
class StandingOutline : public AcEdCursorTracker
{
public:
    explicit StandingOutline(const QuillnoteObj3 &mark) : m_mark(mark) {}
    bool cursorMoved(const AcGePoint3d &) override { return !std::exchange(m_wasShown, true); }
    std::vector<const AcDbEntity *> shown() const override { return {&m_mark}; }

private:
    const QuillnoteObj3 &m_mark;
    bool m_wasShown = false;
};

} // namespace

/// RTNORM with the place (world, z 0); RTNONE for a mark without text; RTCAN.
static int askTextStart(const QuillnoteObj3 &polygon, AcGePoint3d &start)
{
    const AcGePoint3d base = acedTrans(middleOf(polygon), AcEdSpace::world, AcEdSpace::ucs);
    StandingOutline outline(polygon);
    const int answer = acedGetTrackedPoint(&base, QStringLiteral("\n请指定文字的起点: "), outline, start);
    start = acedTrans(start, AcEdSpace::ucs, AcEdSpace::world);
    start.z = 0.0;
    return answer;
}

/// Puts the outline into the drawing, with the opinion when there is one.
static void keepOutline(AcDbDatabase &database, std::unique_ptr<QuillnoteObj3> mark,
                        const std::optional<NewMark> &opinion)
{
    const AcDbObjectId polygon = appendPolygonMark(database, std::move(mark));
    if (polygon.isNull())
        return;
    const AcDbObjectId text = opinion ? makeMark(*opinion) : AcDbObjectId();
    if (text.isNull() || !mergePolygonIntoLeaderMark(polygon, text))
        finishPolygonMark(polygon);
}

// Nothing is in the drawing before everything is answered: Esc at any of the questions leaves it as it was.
void drawMarkJig(bool isPolygon)
{
    AcDbDatabase *const database = acdbCurDwg();
    if (!database || !hasFreeMarkNumber(*database))
        return;
    std::unique_ptr<QuillnoteObj3> mark;
    AcGePoint3d textStart;
    int answer = RTCAN;
    {
        const PickVariables quiet;
        mark = drawOutline(isPolygon);
        if (!mark)
            return;
        answer = askTextStart(*mark, textStart);
    }
    if ((answer != RTNORM && answer != RTNONE) || acdbCurDwg() != database)
        return;
    InkSketch sketch;
    std::optional<NewMark> opinion;
    if (answer == RTNORM) {
        NewMark request;
        request.corner1 = middleOf(*mark);
        request.corner2 = textStart;
        request.isLeader = true;
        opinion = askOpinion(request, sketch);
        if (!opinion)
            return;
    }
    keepOutline(*database, std::move(mark), opinion);
}

void QN3_PolygonMarkJig()
{
    drawMarkJig(true);
}

void QN3_SplineMarkJig()
{
    drawMarkJig(false);
}

/// World coordinates; empty when the user gives up.
static std::vector<AcGePoint3d> askVertices()
{
    const PickVariables quiet;
    std::vector<AcGePoint3d> points;
    AcGePoint3d point;
    if (acedGetPoint(nullptr, QStringLiteral("\n绘制标记范围,请指定点<退出>: "), point) != RTNORM) {
        acutPrintf(QStringLiteral("未获取点，放弃!"));
        return points;
    }
    const QString prompt = QStringLiteral("\n绘制标记范围,请指定下一点<退出>: ");
    for (;;) {
        points.push_back(acedTrans(point, AcEdSpace::ucs, AcEdSpace::world));
        tellLastVertex(points);
        if (points.size() == kMostPicks)
            return points;
        const AcGePoint3d base = point;
        const int answer = acedGetPoint(&base, prompt, point);
        if (answer != RTNORM)
            return answer == RTNONE ? points : std::vector<AcGePoint3d>();
    }
}

void QN3_PolygonMark()
{
    AcDbDatabase *const database = acdbCurDwg();
    if (!database || !hasFreeMarkNumber(*database))
        return;
    const std::vector<AcGePoint3d> vertices = askVertices();
    if (acdbCurDwg() == database)
        makePolygonMark(*database, vertices, ucsNormal());
}
