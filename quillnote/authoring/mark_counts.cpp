#include "quillnote/authoring/mark_counts.h"

#include "quillnote/authoring/collect_marks.h"
#include "quillnote/entity/mark_record.h"

#include "host/acdb/dbsymtb.h"

void MarkCounts::countAll(const AcDbDatabase &database)
{
    *this = {};
    m_counted = true;
    m_blocks = database.tableRecords(SymbolTable::block).size();
    for (const AcDbObjectId layout : acdbLayoutBlocks(database))
        m_layouts.insert(layout);
    for (const AcDbObjectId id : collectMarks(database).ids) {
        // One that is open for write is the one that is being told of.
        if (const auto *const mark = acrxCast<QuillnoteObj3>(id.stub()->object))
            note(*mark);
    }
}

std::size_t MarkCounts::ofNumber(const AcDbDatabase &database, const QuillnoteObj3 &mark)
{
    if (!m_counted || m_blocks != database.tableRecords(SymbolTable::block).size())
        countAll(database);
    note(mark);
    const auto found = m_counts.find(mark.markNumber);
    return found == m_counts.end() ? 0 : found->second;
}

void MarkCounts::note(const QuillnoteObj3 &mark, bool present)
{
    if (!m_counted)
        return;
    if (const auto known = m_numbers.find(mark.objectId()); known != m_numbers.end()) {
        --m_counts[known->second];
        m_numbers.erase(known);
    }
    if (!present || !m_layouts.contains(mark.blockId()))
        return;
    m_numbers.emplace(mark.objectId(), mark.markNumber);
    ++m_counts[mark.markNumber];
}
