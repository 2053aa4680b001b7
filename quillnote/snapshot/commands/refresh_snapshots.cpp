#include "quillnote/snapshot/commands/refresh_snapshots.h"

#include "quillnote/authoring/all_marks.h"
#include "quillnote/entity/mark_record.h"
#include "quillnote/entity/mark_values.h"
#include "quillnote/entity/password.h"
#include "quillnote/frame/settings/settings.h"
#include "quillnote/snapshot/capture.h"
#include "quillnote/snapshot/fingerprint.h"
#include "quillnote/snapshot/temporary_picture.h"
#include "quillnote/snapshot/zoom_to_area.h"

#include "host/acap/docman.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edinput.h"
#include "host/aced/edmessage.h"
#include "host/aced/edspace.h"
#include "host/aced/edview.h"
#include "host/acgi/display/display.h"

// One mark ----------------------------------------------------------------------------------------

/// What the pictures show: the mark without a handling status, in the middle of the view.
static bool bringOnScreen(AcDbObjectId id)
{
    AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForWrite);
    if (!mark)
        return false;
    mark->feedbackType = handling::kNone;
    const AcDbExtents window = targetZoomWindow(mark->targetCorner1, mark->targetCorner2);
    const AcDbObjectId space = mark->blockId();
    mark.close();
    zoomToArea(window, space);
    acgi::displayOf(*id.database()).regenerate(id);
    return true;
}

/// Made anew, so that it can be laid over one of another time; what is cut out of the full view is the second
/// choice.
static QString targetPictureFile(const QuillnoteObj3 &mark, const QString &fullView)
{
    if (const auto made = captureTargetImage(mark.targetCorner1, mark.targetCorner2))
        return *made;
    return cropTargetImage(mark.targetCorner1, mark.targetCorner2, fullView).value_or(QString());
}

static void storeTarget(QuillnoteObj3 &mark, const QString &fullView)
{
    TargetFingerprint now =
        FingerprintTaker(*mark.objectId().database()).take(mark.blockId(), targetWindow(mark));
    mark.snapEntityIds = std::move(now.ids);
    mark.snapNote = now.note;
    mark.snapChecksum = now.checksum;
    mark.snapImage = takeTemporaryPicture(targetPictureFile(mark, fullView));
}

/// True when the mark has a target. It is closed while the view is exported, or the picture would not show
/// it.
static bool takeSnapshot(AcDbObjectId id)
{
    const QString fullView = captureFullView();
    AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForWrite);
    const bool hasTarget = mark && !isNegative(mark->targetStyle);
    if (hasTarget)
        storeTarget(*mark, fullView);
    QByteArray picture = takeTemporaryPicture(fullView);
    if (mark)
        mark->fullImage = std::move(picture);
    return hasTarget;
}

static std::optional<QString> passwordOf(AcDbObjectId id)
{
    const AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForWrite);
    return mark ? std::optional(mark->chPwMD5) : std::nullopt;
}

// All of them -------------------------------------------------------------------------------------

RefreshResult refreshSnapshots(const std::vector<AcDbObjectId> &marks,
                               const std::function<bool(const QString &)> &mayChange,
                               const base::Progress &progress)
{
    RefreshResult result;
    AcApDocument &document = *curDoc();
    const AcDbObjectId space = document.database()->currentSpaceId();
    acedRememberView(document);
    for (std::size_t i = 0; i < marks.size(); ++i) {
        if (!base::report(progress, double(i) / double(marks.size()))) {
            result.stopped = true;
            break;
        }
        const auto hash = passwordOf(marks[i]);
        if (!hash || !mayChange(*hash) || !bringOnScreen(marks[i])) {
            ++result.skipped;
            continue;
        }
        if (i == 0)
            QN3_Redraw();
        result.refreshed += takeSnapshot(marks[i]) ? 1 : 0;
    }
    if (document.database()->currentSpaceId() != space)
        acedMakeSpaceCurrent(document, space);
    QN3_Redraw();
    return result;
}

std::optional<CollectedMarks> marksToRefresh(AcDbDatabase &database)
{
    CollectedMarks marks = collectAllMarks(database);
    if (marks.ids.empty())
        return std::nullopt;
    const QString name = settings::text(u"name");
    if (name.isEmpty())
        return marks;
    marks = collectMarks(database, {.reviewer = name});
    if (!marks.ids.empty())
        return marks;
    acutPrintf(
        QStringLiteral("\n本图中没有<%1>的评图标签。不是自己创建的，或不同命名的标记不能刷新。").arg(name));
    return std::nullopt;
}

/// A wrong password may be typed again, a few times in one run of the program.
static bool askForPassword(const QString &hash)
{
    constexpr int kMostRetries = 3;
    bool isRight = mayChangeProtected(hash);
    for (int &retries = passwordState().refreshRetries; !isRight && retries < kMostRetries; ++retries)
        isRight = checkPassword(hash);
    if (!isRight)
        acedRefuse(QStringLiteral("密码校验错误。"));
    return isRight;
}

static bool isAgreed()
{
    QString answer;
    const int status = acedGetString(false, QStringLiteral("你真的要刷新审图快照吗(Y/N)[N]? "), answer);
    return status == RTNORM && (answer.compare(u"YES", Qt::CaseInsensitive) == 0 ||
                                answer.compare(u"Y", Qt::CaseInsensitive) == 0);
}

void QN3_freshSnapshot()
{
    const auto marks = marksToRefresh(*acdbCurDwg());
    if (!marks || !isAgreed())
        return;
    RefreshResult result;
    {
        base::ProgressTeller teller(acDocManager()->progress(), QStringLiteral("刷新快照"));
        result =
            refreshSnapshots(marks->ids, askForPassword, [&](double share) { return teller.goesOn(share); });
    }
    if (result.stopped)
        acutPrintf(QStringLiteral("\n已停止刷新，其余评图标签保持原样。"));
    acedAlert(QStringLiteral("\n刷新或者重建了 %1 个评图标签的快照。").arg(result.refreshed));
}
