#include "quillnote/authoring/create_mark.h"

#include "quillnote/authoring/append_mark.h"
#include "quillnote/authoring/leader_text_box.h"
#include "quillnote/authoring/mark_numbers.h"
#include "quillnote/entity/mark_geometry.h"
#include "quillnote/entity/mark_layout.h"
#include "quillnote/entity/mark_record.h"
#include "quillnote/frame/settings/start_up_settings.h"
#include "quillnote/snapshot/capture.h"
#include "quillnote/snapshot/full_snapshot_view.h"
#include "quillnote/snapshot/pending_snapshot.h"

#include "host/aced/edview.h"
#include "host/os/guid.h"

#include <QFile>

#include <memory>

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
        leaderTextBox(request.corner1, request.corner2, mark.textHeight, leaderTextLines(request.opinionText),
                      leaderTextWidth(request.opinionText, mark.textHeight),
                      document ? document->view().getWorldToEyeTransform() : AcGeMatrix3d());
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
