// The snapshot of a target that waits for its mark: taken when the target is picked, before a dialog covers
// the drawing, and handed to the mark when it is made.
#pragma once

#include "quillnote/snapshot/fingerprint.h"

#include <optional>

class AcDbDatabase;
class QuillnoteObj3;

struct PendingSnapshot {
    /// Of which target; none while nothing waits.
    std::optional<MarkCorners> target;
    TargetFingerprint fingerprint;
    QString picturePath; ///< Temporary picture; empty when there is none.

    /// Removes the picture.
    void reset();
};

/// The one of this process.
PendingSnapshot &pendingSnapshot();

/// Takes picture and fingerprint of a target; what waited before is dropped.
void capturePendingSnapshot(const MarkCorners &target);

/// Gives a new mark of the drawing the snapshot of its own target: the one that waits when it is of this
/// target, otherwise one that is taken now. Nothing waits afterwards. A drawing that is not the current one
/// cannot be seen; its mark has no snapshot.
void storeSnapshot(const AcDbDatabase &database, QuillnoteObj3 &mark);

/// Takes the fingerprint of a mark anew: its target has become another one. The picture stays, as evidence of
/// what was reviewed. A mark without fingerprint, or in a space that is not shown, keeps what it has.
void renewFingerprint(QuillnoteObj3 &mark);
