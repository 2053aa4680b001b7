#include "quillnote/authoring/append_mark.h"

#include "quillnote/authoring/append_state.h"
#include "quillnote/authoring/mark_layer.h"
#include "quillnote/entity/mark_dictionary.h"
#include "quillnote/entity/mark_layout.h"
#include "quillnote/entity/mark_record.h"
#include "quillnote/frame/settings/settings.h"
#include "quillnote/frame/settings/start_up_settings.h"

#include "host/acap/docman.h"
#include "host/acdb/dbsymtb.h"
#include "host/aced/edinput.h"
#include "host/aced/edsysvar.h"
#include "host/aced/edview.h"

#include <algorithm>
#include <cmath>

static bool isPaperSpaceCurrent()
{
    return acedIntVar(QStringLiteral("TILEMODE"), 1) == 0 && acedIntVar(QStringLiteral("CVPORT"), 2) == 1;
}

// The drawing appears turned by the twist, so what the user sees as "to the right" is turned back.
AcGeVector3d viewRight()
{
    return AcGeVector3d::kXAxis.rotateBy(-acedRealVar(QStringLiteral("VIEWTWIST")), AcGeVector3d::kZAxis);
}

double suitingTextHeight(double viewHeight, const AcDbExtents &drawing)
{
    constexpr double kLinesInView = 50.0;
    constexpr double kFewestLines = 10.0; // A higher text would be a band across the view.
    double height = viewHeight / kLinesInView;
    if (drawing.isValid()) {
        // Of a sheet with this diagonal: from what is just legible to what shouts.
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

void keepTextLegible(QuillnoteObj3 &mark)
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

AcDbObjectId appendNewMark(AcDbDatabase &database, std::unique_ptr<QuillnoteObj3> mark)
{
    putOnMarkLayer(database, *mark);
    settleMark(*mark, database);
    const AcDbObjectId id = appendMark(database, std::move(mark));
    if (!id.isNull())
        appendState().lastCreatedMark = id;
    return id;
}

void keepMarkNumber(AcDbDatabase &database, std::uint16_t number)
{
    if (const Acad::ErrorStatus refused = writeLastMarkNumber(database, number); refused != Acad::eOk)
        acedRefuse(QStringLiteral("无法在图中保存评图标签编号：%1").arg(acadErrorStatusText(refused)));
}
