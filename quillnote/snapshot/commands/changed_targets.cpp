#include "quillnote/snapshot/commands/changed_targets.h"

#include "quillnote/entity/mark_record.h"
#include "quillnote/entity/mark_values.h"
#include "quillnote/snapshot/fingerprint.h"

#include <algorithm>
#include <map>
#include <unordered_set>

/// Leader marks are made without one; refreshing gives them one.
static bool hasNoSnapshot(const QuillnoteObj3 &mark)
{
    return hasTextBox(mark.leaderMode) && mark.snapEntityIds.empty() && mark.snapChecksum.isEmpty() &&
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

namespace
{

/// The targets of one space, all of which are to be looked at.
struct SpaceTargets {
    std::vector<std::size_t> marks; ///< Places in the list of marks.
    std::vector<acgi::Window> windows;
};

} // namespace

static std::map<AcDbObjectId, SpaceTargets> targetsBySpace(std::span<const AcDbObjectId> marks,
                                                           TargetComparison &result)
{
    std::map<AcDbObjectId, SpaceTargets> spaces;
    for (std::size_t i = 0; i < marks.size(); ++i) {
        const AcDbObjectPointer<QuillnoteObj3> mark(marks[i], AcDb::kForRead);
        if (!mark || isNegative(mark->targetStyle))
            continue;
        if (hasNoSnapshot(*mark)) {
            ++result.withoutSnapshot;
            continue;
        }
        ++result.compared;
        SpaceTargets &targets = spaces[mark->blockId()];
        targets.marks.push_back(i);
        targets.windows.push_back(targetWindow(*mark));
    }
    return spaces;
}

TargetComparison compareTargets(AcDbDatabase &database, std::span<const AcDbObjectId> marks,
                                const base::Progress &progress)
{
    TargetComparison result;
    const std::map<AcDbObjectId, SpaceTargets> spaces = targetsBySpace(marks, result);
    FingerprintTaker fingerprints(database);
    std::map<std::size_t, ChangedTarget> changed; // By the places of the marks.
    std::size_t seen = 0;
    const auto takeSpace = [&](const auto &space) {
        const SpaceTargets &targets = space.second;
        return fingerprints.takeEach(
            space.first, targets.windows, [&](std::size_t target, const TargetFingerprint &now) {
                if (!base::report(progress, double(seen++) / double(result.compared)))
                    return false;
                const std::size_t place = targets.marks[target];
                const AcDbObjectPointer<QuillnoteObj3> mark(marks[place], AcDb::kForRead);
                if (mark && (now.ids.size() != mark->snapEntityCount() || now.checksum != mark->snapChecksum))
                    changed.emplace(place, describe(*mark, now));
                return true;
            });
    };
    result.stopped = !std::ranges::all_of(spaces, takeSpace);
    for (auto &[place, target] : changed)
        result.changed.push_back(std::move(target));
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
