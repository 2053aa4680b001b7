#include "quillnote/authoring/polygon_mark.h"

#include "quillnote/authoring/append_mark.h"
#include "quillnote/authoring/append_state.h"
#include "quillnote/authoring/leader_mark.h"
#include "quillnote/authoring/mark_vertices.h"
#include "quillnote/authoring/pick_points.h"
#include "quillnote/authoring/polygon_jig.h"
#include "quillnote/entity/mark_dictionary.h"
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

static constexpr std::int16_t kThickPolygon = 51;
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
        acutPrintf(QStringLiteral("\n无法在本图中创建评图标签。"));
    return id;
}

static std::uint16_t nextMarkNumber(const AcDbDatabase &database)
{
    return static_cast<std::uint16_t>(readLastMarkNumber(database) + 1);
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
    tellLeftOutPoints(vertices.size());
    const std::uint16_t number = nextMarkNumber(database);
    auto mark = std::make_unique<QuillnoteObj3>();
    initMarkFromSettings(*mark);
    orientMark(*mark, ucsNormal);
    mark->markNumber = number;
    mark->targetStyle = kThickPolygon;
    setOutlineVertices(*mark, vertices);
    const AcDbObjectId id = appendPolygonMark(database, std::move(mark));
    if (!id.isNull())
        keepFinishedMark(database, id, number);
    return id;
}

// Completing what the jig drew --------------------------------------------------------------------

void finishPolygonMark(AcDbObjectId polygon)
{
    AcDbDatabase &database = *polygon.database();
    const std::uint16_t number = nextMarkNumber(database);
    {
        AcDbObjectPointer<QuillnoteObj3> mark(polygon, AcDb::kForWrite);
        if (!mark)
            return;
        mark->suggestionName = settings::text(u"name");
        mark->markNumber = number;
        mark->subNumber = 0;
        settleMark(*mark, database);
    }
    keepFinishedMark(database, polygon, number);
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
    polygon.leaderMode = 1;
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
    // Whoever typed the opinion a moment ago need not give its password to see it moved.
    dropped->chPwMD5.clear();
    dropped->erase();
    appendState().lastCreatedMark = polygon;
    return true;
}

// The commands ------------------------------------------------------------------------------------

static AcGeVector3d ucsNormal()
{
    return acedTrans(AcGeVector3d::kZAxis, AcEdSpace::ucs, AcEdSpace::world).normal();
}

/// The appended mark; null when less than two places were pointed at.
static AcDbObjectId drawOutline(bool isPolygon)
{
    AcGePoint3d start;
    if (acedGetPoint(nullptr, QStringLiteral("\n请指定起点: "), start) != RTNORM)
        return {};
    QuillnotePolygonJig jig(acedTrans(start, AcEdSpace::ucs, AcEdSpace::world), ucsNormal(), isPolygon);
    jig.run();
    const std::size_t count = distinctVertices(jig.vertices()).size();
    if (count < 2)
        return {};
    tellLeftOutPoints(count);
    const AcDbObjectId id = appendPolygonMark(*acdbCurDwg(), jig.takeMark());
    acutPrintf(QStringLiteral("\n"));
    return id;
}

static AcGePoint3d middleOf(AcDbObjectId polygon)
{
    const AcDbObjectPointer<QuillnoteObj3> mark(polygon, AcDb::kForRead);
    const std::span<const AcGePoint3d> vertices =
        std::span(mark->vertices).first(std::size_t(mark->vertexCount));
    AcGeVector3d sum;
    for (const AcGePoint3d &vertex : vertices)
        sum = sum + vertex.asVector();
    return AcGePoint3d() + sum / double(vertices.size());
}

/// World, z 0; none when the mark is to have no text.
static std::optional<AcGePoint3d> askTextStart(const AcGePoint3d &middle)
{
    const AcGePoint3d base = acedTrans(middle, AcEdSpace::world, AcEdSpace::ucs);
    AcGePoint3d start;
    if (acedGetPoint(&base, QStringLiteral("\n请指定文字的起点: "), start) != RTNORM)
        return std::nullopt;
    start = acedTrans(start, AcEdSpace::ucs, AcEdSpace::world);
    return AcGePoint3d(start.x, start.y, 0.0);
}

/// Whether the editor made a text, which the polygon has then taken over.
static bool joinText(AcDbObjectId polygon, const AcGePoint3d &middle, const AcGePoint3d &textStart)
{
    appendState().lastCreatedMark = polygon;
    openEditorForLeader(middle, textStart);
    const AcDbObjectId made = appendState().lastCreatedMark;
    return made != polygon && mergePolygonIntoLeaderMark(polygon, made);
}

void drawMarkJig(bool isPolygon)
{
    AcDbObjectId polygon;
    AcGePoint3d middle;
    std::optional<AcGePoint3d> textStart;
    {
        const PickVariables quiet;
        polygon = drawOutline(isPolygon);
        if (polygon.isNull())
            return;
        middle = middleOf(polygon);
        textStart = askTextStart(middle);
    }
    if (!textStart || !joinText(polygon, middle, *textStart))
        finishPolygonMark(polygon);
}

void QN3_PolygonMarkJig()
{
    drawMarkJig(true);
}

void QN3_SplineMarkJig()
{
    drawMarkJig(false);
}

/// World coordinates.
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
    do {
        points.push_back(acedTrans(point, AcEdSpace::ucs, AcEdSpace::world));
        const AcGePoint3d base = point;
        if (points.size() == kMostPicks || acedGetPoint(&base, prompt, point) != RTNORM)
            return points;
    } while (true);
}

void QN3_PolygonMark()
{
    makePolygonMark(*acdbCurDwg(), askVertices(), ucsNormal());
}
