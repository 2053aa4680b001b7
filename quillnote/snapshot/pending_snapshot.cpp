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

void capturePendingSnapshot(const AcGePoint3d &corner1, const AcGePoint3d &corner2)
{
    PendingSnapshot &pending = pendingSnapshot();
    pending.reset();
    pending.corners = {corner1, corner2};
    pending.picturePath = captureTargetImage(corner1, corner2).value_or(QString());
    pending.fingerprint = computeTargetFingerprint(corner1, corner2);
}

void storeSnapshot(const AcDbDatabase &database, QuillnoteObj3 &mark)
{
    PendingSnapshot &pending = pendingSnapshot();
    const std::pair target(mark.targetCorner1, mark.targetCorner2);
    const bool isSeen = acdbCurDwg() == &database;
    if (isSeen && pending.corners != target)
        capturePendingSnapshot(target.first, target.second);
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
