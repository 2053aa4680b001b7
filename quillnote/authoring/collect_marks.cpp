#include "quillnote/authoring/collect_marks.h"

#include "quillnote/entity/mark_class.h"
#include "quillnote/entity/mark_record.h"

#include "host/acdb/dbsymtb.h"

bool passesReviewer(const QString &filter, const QString &name)
{
    if (filter.compare(u"ALL", Qt::CaseInsensitive) == 0 || filter.compare(name, Qt::CaseInsensitive) == 0)
        return true;
    return name.isEmpty() && (filter.isEmpty() || filter == QString::fromUtf16(kUnnamedReviewer));
}

static void collect(const QuillnoteObj3 &mark, const MarkFilter &filter, CollectedMarks &collected)
{
    const QString name = mark.suggestionName.trimmed();
    if (passesReviewer(filter.reviewer, name) &&
        (filter.markNumber == 0 || filter.markNumber == mark.markNumber))
        collected.ids.push_back(mark.objectId());
    const QString shown = name.isEmpty() ? QString::fromUtf16(kUnnamedReviewer) : name;
    if (collected.reviewers.size() < kMostReviewers && !collected.reviewers.contains(shown))
        collected.reviewers.append(shown);
}

std::vector<AcDbObjectId> markIds(const AcDbDatabase &database)
{
    return acdbEntitiesOfKind(database, acdbKind(kMarkDxfName));
}

// A mark that is being told of as appended is open for notify, which does not keep it from being read.
CollectedMarks collectMarks(const AcDbDatabase &database, const MarkFilter &filter)
{
    CollectedMarks collected;
    for (const AcDbObjectId id : markIds(database)) {
        QuillnoteObj3 *mark = nullptr;
        const Acad::ErrorStatus status = acdbOpenObject(mark, id, AcDb::kForRead);
        if (status == Acad::eOk) {
            collect(*mark, filter, collected);
            mark->close();
        } else if (const auto *const open = acrxCast<QuillnoteObj3>(id.stub()->object);
                   open && status == Acad::eWasOpenForWrite) {
            collect(*open, filter, collected);
        }
    }
    return collected;
}
