#include "quillnote/snapshot/pending_snapshot.h"

#include "quillnote/entity/mark_record.h"
#include "quillnote/snapshot/capture.h"
#include "quillnote/snapshot/temporary_picture.h"

#include "host/acap/docman.h"
#include "host/aced/edfrontend.h"

void PendingSnapshot::reset()
{
    removeTemporaryPicture(picturePath);
    *this = {};
}

PendingSnapshot &pendingSnapshot()
{
    static PendingSnapshot pending;
    return pending;
}

void capturePendingSnapshot(const MarkCorners &target)
{
    PendingSnapshot &pending = pendingSnapshot();
    pending.reset();
    pending.target = target;
    pending.picturePath = captureTargetImage(target.corner1, target.corner2).value_or(QString());
    pending.fingerprint = computeTargetFingerprint(target);
}

void storeSnapshot(const AcDbDatabase &database, QuillnoteObj3 &mark)
{
    PendingSnapshot &pending = pendingSnapshot();
    const MarkCorners target = targetCorners(mark);
    const bool isSeen = acdbCurDwg() == &database;
    const bool waits = pending.target && pending.target->corner1 == target.corner1 &&
                       pending.target->corner2 == target.corner2;
    if (isSeen && !waits)
        capturePendingSnapshot(target);
    if (isSeen) {
        mark.snapEntityIds = std::move(pending.fingerprint.ids);
        mark.snapNote = pending.fingerprint.note;
        mark.snapChecksum = pending.fingerprint.checksum;
        mark.snapImage = takeTemporaryPicture(pending.picturePath);
        if (mark.snapImage.isEmpty())
            acutPrintf(QStringLiteral("\n没有生成靶区图片，标签不带图片。"));
    }
    pending.reset();
}

void renewFingerprint(QuillnoteObj3 &mark)
{
    const AcDbDatabase *const shown = acdbCurDwg();
    if (mark.snapChecksum.isEmpty() || shown != mark.database() || mark.blockId() != shown->currentSpaceId())
        return;
    TargetFingerprint taken = computeTargetFingerprint(targetCorners(mark));
    mark.snapEntityIds = std::move(taken.ids);
    mark.snapChecksum = taken.checksum;
}
