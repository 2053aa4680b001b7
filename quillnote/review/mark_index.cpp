#include "quillnote/review/mark_index.h"

#include "quillnote/authoring/collect_marks.h"
#include "quillnote/entity/field_walk.h"
#include "quillnote/entity/mark_class.h"
#include "quillnote/entity/mark_fields.h"

#include <array>

static bool isMark(const AcDbObject &object)
{
    static const AcDbKind kind = acdbKind(kMarkDxfName);
    const AcDbObjectId id = object.objectId();
    return !id.isNull() && id.stub()->kind == kind;
}

MarkSummary summaryOf(const QuillnoteObj3 &mark)
{
    return {mark.objectId(),
            mark.markNumber,
            mark.subNumber,
            mark.feedbackType,
            mark.suggestionName.trimmed(),
            mark.suggestionContent,
            mark.feedbackContent};
}

/// Reads summaries. Marks that stand only in the drawing's bytes stay there: with their pictures they would
/// take far longer and much memory.
class MarkIndex::Reader
{
public:
    bool read(AcDbObjectId id, MarkSummary &summary)
    {
        for (const MarkField *row : m_rows)
            fields::copyField(*m_fresh, *m_peeked, *row);
        if (peekMarkFields(id, m_rows, *m_peeked)) {
            summary = summaryOf(*m_peeked);
            summary.id = id;
            return true;
        }
        const AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead);
        if (mark)
            summary = summaryOf(*mark);
        return bool(mark);
    }

private:
    const std::array<const MarkField *, 6> m_rows{
        &markField(u"markNumber"),     &markField(u"subNumber"),         &markField(u"feedbackType"),
        &markField(u"suggestionName"), &markField(u"suggestionContent"), &markField(u"feedbackContent")};
    const std::unique_ptr<QuillnoteObj3> m_fresh = QuillnoteObj3::forReading();
    const std::unique_ptr<QuillnoteObj3> m_peeked = QuillnoteObj3::forReading();
};

void MarkIndex::watch(AcDbDatabase *database)
{
    if (m_database == database)
        return;
    if (m_database)
        m_database->removeReactor(this);
    m_database = database;
    m_marks.clear();
    m_places.clear();
    m_changedMarks.clear();
    m_listIsOld = database != nullptr;
    if (database)
        database->addReactor(this);
}

void MarkIndex::goodbye(const AcDbDatabase *)
{
    m_database = nullptr;
    m_marks.clear();
    m_places.clear();
    m_changedMarks.clear();
    m_listIsOld = false;
}

void MarkIndex::objectModified(const AcDbDatabase *, const AcDbObject *object)
{
    if (!isMark(*object))
        return;
    m_changedMarks.insert(object->objectId());
    m_changed();
}

void MarkIndex::noteList(const AcDbObject *object)
{
    if (!isMark(*object))
        return;
    m_changedMarks.insert(object->objectId());
    m_listIsOld = true;
    m_changed();
}

const std::vector<MarkSummary> &MarkIndex::marks()
{
    if (m_listIsOld)
        readList();
    else
        readChanged();
    m_changedMarks.clear();
    return m_marks;
}

/// What is known of a mark and did not change is taken over.
void MarkIndex::readList()
{
    std::vector<MarkSummary> before = std::exchange(m_marks, {});
    const std::unordered_map<AcDbObjectId, std::size_t> places = std::exchange(m_places, {});
    Reader reader;
    for (const AcDbObjectId id : markIds(*m_database)) {
        const auto known = places.find(id);
        MarkSummary summary;
        if (known != places.end() && !m_changedMarks.contains(id))
            summary = std::move(before[known->second]);
        else if (!reader.read(id, summary))
            continue;
        m_places.emplace(id, m_marks.size());
        m_marks.push_back(std::move(summary));
    }
    m_listIsOld = false;
}

void MarkIndex::readChanged()
{
    Reader reader;
    for (const AcDbObjectId id : m_changedMarks) {
        if (const auto place = m_places.find(id); place != m_places.end())
            reader.read(id, m_marks[place->second]);
    }
}
