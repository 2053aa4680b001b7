// MarkCounts: how many marks of each number the layouts of a drawing hold. Counted once, then kept by what
// the drawing's reactor hears, so that numbering a copy does not cost more the more marks there are.
#pragma once

#include "host/acdb/dbdatabase.h"

#include <unordered_map>
#include <unordered_set>

class QuillnoteObj3;

class MarkCounts
{
public:
    /// As many as collectMarks() would find of the mark's number in its drawing; the mark counts itself.
    std::size_t ofNumber(const AcDbDatabase &database, const QuillnoteObj3 &mark);
    /// The mark came, changed, or went (`present` false).
    void note(const QuillnoteObj3 &mark, bool present = true);

private:
    void countAll(const AcDbDatabase &database);

    bool m_counted = false;
    std::size_t m_blocks = 0; ///< Block records when it was counted: among new ones may be a layout.
    std::unordered_set<AcDbObjectId> m_layouts;
    std::unordered_map<AcDbObjectId, std::uint16_t> m_numbers; ///< By mark.
    std::unordered_map<std::uint16_t, std::size_t> m_counts;   ///< By number.
};
