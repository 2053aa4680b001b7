#include "quillnote/snapshot/commands/changed_targets.h"

#include "quillnote/entity/mark_record.h"
#include "quillnote/entity/mark_values.h"
#include "quillnote/snapshot/fingerprint.h"

#include <unordered_set>

/// Leader marks are made without one; refreshing gives them one.
static bool hasNoSnapshot(const QuillnoteObj3 &mark)
{
    return mark.leaderMode == 1 && mark.snapEntityIds.empty() && mark.snapChecksum.isEmpty() &&
           mark.snapImage.isEmpty() && mark.fullImage.isEmpty();
}

static std::size_t countMissing(const std::vector<AcDbObjectId> &these,
                                const std::vector<AcDbObjectId> &among)
{
    const std::unordered_set<AcDbObjectId> known(among.begin(), among.end());
    return std::size_t(std::ranges::count_if(these, [&](AcDbObjectId id) { return !known.contains(id); }));
}

// The ids only tell what to say: whether something changed is told by count and checksum.
static ChangedTarget describe(const QuillnoteObj3 &mark, const TargetFingerprint &now)
{
    ChangedTarget changed;
    changed.mark = mark.objectId();
    changed.number = markNumberText(mark.markNumber, mark.subNumber);
    changed.reviewer = mark.suggestionName;
    changed.countBefore = mark.snapEntityCount();
    changed.countNow = now.ids.size();
    changed.gone = countMissing(mark.snapEntityIds, now.ids);
    changed.added = countMissing(now.ids, mark.snapEntityIds);
    return changed;
}

TargetComparison compareTargets(AcDbDatabase &database, std::span<const AcDbObjectId> marks,
                                const base::Progress &progress)
{
    TargetComparison result;
    FingerprintTaker fingerprints(database);
    for (std::size_t i = 0; i < marks.size(); ++i) {
        if (!base::report(progress, double(i) / double(marks.size()))) {
            result.stopped = true;
            break;
        }
        const AcDbObjectPointer<QuillnoteObj3> mark(marks[i], AcDb::kForRead);
        if (!mark || mark->targetStyle < 0)
            continue;
        if (hasNoSnapshot(*mark)) {
            ++result.withoutSnapshot;
            continue;
        }
        ++result.compared;
        const TargetFingerprint now = fingerprints.take(mark->blockId(), targetWindow(*mark));
        if (now.ids.size() != mark->snapEntityCount() || now.checksum != mark->snapChecksum)
            result.changed.push_back(describe(*mark, now));
    }
    return result;
}

static bool setCorrected(AcDbObjectId id)
{
    AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForWrite);
    if (mark && mark->feedbackType == handling::kNone)
        mark->feedbackType = handling::kCorrected;
    return bool(mark);
}

int markCorrected(std::vector<ChangedTarget> &changed)
{
    return int(std::erase_if(changed, [](const ChangedTarget &each) { return !setCorrected(each.mark); }));
}
