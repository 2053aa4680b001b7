#include "quillnote/authoring/create_mark.h"

#include "quillnote/authoring/append_state.h"
#include "quillnote/authoring/leader_text_box.h"
#include "quillnote/authoring/mark_layer.h"
#include "quillnote/entity/mark_dictionary.h"
#include "quillnote/entity/mark_geometry.h"
#include "quillnote/entity/mark_layout.h"
#include "quillnote/entity/mark_record.h"
#include "quillnote/frame/settings/settings.h"
#include "quillnote/frame/settings/start_up_settings.h"
#include "quillnote/snapshot/capture.h"
#include "quillnote/snapshot/full_snapshot_view.h"
#include "quillnote/snapshot/pending_snapshot.h"

#include "host/acdb/dbsymtb.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edsysvar.h"
#include "host/aced/edview.h"
#include "host/os/guid.h"

#include <QFile>

#include <memory>

static bool isPaperSpaceCurrent()
{
    return acedIntVar(QStringLiteral("TILEMODE"), 1) == 0 && acedIntVar(QStringLiteral("CVPORT"), 2) == 1;
}

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
    mark.leaderMode = 0;
    mark.targetStyle = static_cast<std::int16_t>(request.isFreehand ? 0 : startUpSettings().style);
    if (request.isFreehand)
        mark.flagStyle = 0;
}

// The box holds the text roughly; drawing fits it to the lines that come out.
static void placeLeader(QuillnoteObj3 &mark, const NewMark &request)
{
    const AcApDocument *const document = curDoc();
    const LeaderTextBox box =
        leaderTextBox(request.corner1, request.corner2, mark.textHeight, leaderTextLines(request.opinionText),
                      leaderTextWidth(request.opinionText, mark.textHeight),
                      document ? acedViewFrame(document->view()) : AcGeMatrix3d());
    mark.textBoxCorner1 = box.corner1;
    mark.textBoxCorner2 = box.corner2;
    completeTextBoxCorners(mark);
    mark.leaderMode = 1;
    mark.flagStyle = static_cast<std::int16_t>(startUpSettings().BKstyle);
    mark.leaderEnds[0] = request.corner1;
    mark.leaderUsed[0] = true;
    mark.targetCorner1 = request.corner1;
    mark.targetCorner2 = request.corner1;
    completeTargetCorners(mark);
    mark.targetStyle = 0;
}

static void fillTarget(QuillnoteObj3 &mark, const NewMark &request)
{
    const StartUpSettings &start = startUpSettings();
    mark.textHeight = isPaperSpaceCurrent() ? start.textHeightPS : start.textHeight;
    mark.autoTextHeight = start.autoTargetTextHeight;
    mark.normal = AcGeVector3d::kZAxis;
    // The drawing appears turned by the twist, so what the user sees as "to the right" is turned back.
    mark.xDirection =
        AcGeVector3d::kXAxis.rotateBy(-acedRealVar(QStringLiteral("VIEWTWIST")), AcGeVector3d::kZAxis);
    if (request.isLeader)
        placeLeader(mark, request);
    else
        placeTarget(mark, request);
}

static void fillSettings(QuillnoteObj3 &mark)
{
    mark.color1 = static_cast<std::uint16_t>(startUpSettings().color1);
    mark.color2 = static_cast<std::uint16_t>(startUpSettings().color2);
    mark.chPwMD5 = settings::text(u"chPwMD5").left(QuillnoteObj3::kPasswordHashLength);
}

static void fillSketch(QuillnoteObj3 &mark, const QString &path)
{
    QFile file(path);
    if (!path.isEmpty() && file.open(QIODevice::ReadOnly))
        mark.sketchData = file.readAll();
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

static AcDbObjectId append(AcDbDatabase &database, std::unique_ptr<QuillnoteObj3> mark)
{
    const ImportingScope ours;
    AcDbObjectPointer<AcDbBlockTableRecord> space(database.currentSpaceId(), AcDb::kForWrite);
    AcDbObjectId id;
    if (!space || space->appendAcDbEntity(id, mark.get()) != Acad::eOk)
        return {};
    mark.release()->close();
    return id;
}

AcDbObjectId createMark(AcDbDatabase &database, const NewMark &request)
{
    const auto number = static_cast<std::uint16_t>(readLastMarkNumber(database) + 1);
    auto mark = std::make_unique<QuillnoteObj3>();
    mark->markNumber = number;
    fillTarget(*mark, request);
    fillText(*mark, request);
    putOnLayer(database, *mark);
    fillSettings(*mark);
    fillSketch(*mark, request.sketchFile);
    if (!request.isLeader)
        storeSnapshot(database, *mark);
    settleMark(*mark, database);
    const AcDbObjectId id = append(database, std::move(mark));
    if (id.isNull())
        return {};
    appendState().lastCreatedMark = id;
    if (recordsFullView())
        recordFullSnapshot(id);
    if (const Acad::ErrorStatus refused = writeLastMarkNumber(database, number); refused != Acad::eOk)
        acutPrintf(QStringLiteral("\n无法在图中保存评图标签编号：%1").arg(acadErrorStatusText(refused)));
    return id;
}
