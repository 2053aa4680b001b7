#include "quillnote/review/show_mark.h"

#include "quillnote/entity/mark_record.h"
#include "quillnote/frame/settings/settings.h"
#include "quillnote/frame/settings/start_up_settings.h"
#include "quillnote/review/review_rules.h"
#include "quillnote/snapshot/snapshot_viewer.h"
#include "quillnote/snapshot/zoom_to_area.h"

#include "host/aced/edcommands.h"
#include "host/aced/edinput.h"
#include "host/aced/edspace.h"
#include "host/aced/edsysvar.h"
#include "host/aced/edview.h"
#include "host/acgi/query/extents.h"

static constexpr int kFirstWithPictures = 6;

static bool showsFullViews()
{
    return startUpSettings().snapshotMode & StartUpSettings::kReviewFullView;
}

static bool holdsPicture(const QuillnoteObj3 &mark)
{
    return mark.formatVersion >= kFirstWithPictures && !mark.snapImage.isEmpty();
}

bool standsBesidePicture(AcDbObjectId id, bool wanted)
{
    const AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead);
    return wanted && mark && holdsPicture(*mark) && !showsFullViews();
}

void showPictureOf(AcDbObjectId id, bool wanted)
{
    const AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead);
    const bool hasOne = wanted && mark && holdsPicture(*mark);
    if (hasOne && !showsFullViews())
        showSnapshotImage(mark->snapImage, SnapshotKind::target);
    else if (hasOne && !mark->fullImage.isEmpty())
        showSnapshotImage(mark->fullImage, SnapshotKind::fullView);
    else
        closeSnapshotViewers();
}

static void zoomSheet(const AcDbExtents &mark, bool besidePicture)
{
    const AcDbExtents window = sheetWindow(mark, settings::number(u"viewScale"), besidePicture);
    acedSetIntVar(QStringLiteral("CVPORT"), 1);
    const AcGePoint3d low = acedTrans(window.minPoint(), AcEdSpace::world, AcEdSpace::ucs);
    const AcGePoint3d high = acedTrans(window.maxPoint(), AcEdSpace::world, AcEdSpace::ucs);
    ads_queueexpr(QString::asprintf("_ZOOM W %f,%f %f,%f ", low.x, low.y, high.x, high.y));
}

void zoomToMark(AcApDocument &document, AcDbObjectId id, bool besidePicture)
{
    AcDbExtents extents;
    AcDbObjectId space;
    {
        const AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead);
        if (!mark || acgi::extentsOf(*mark, extents) != Acad::eOk || !extents.isValid())
            return;
        space = mark->ownerId();
    }
    const bool isModel = space == document.database()->modelSpaceId();
    if (acedShownSpace(document) != space) {
        const QString running = acedEditor()->activeCommands();
        if (!running.isEmpty() && !running.startsWith(u"QN3_QuillnoteAsk", Qt::CaseInsensitive))
            return;
        if (acedMakeSpaceCurrent(document, space) != Acad::eOk)
            return;
    }
    acedRememberView(document);
    if (isModel)
        zoomToArea(extents);
    else
        zoomSheet(extents, besidePicture);
}
