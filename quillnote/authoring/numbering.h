// Numbers of marks. New ones: each drawing counts for itself and never gives a number twice. Copies: how many
// marks have one number. Marks that are there: all of them anew, or one by hand.
#pragma once

#include "host/acdb/dbdatabase.h"

#include <cstdint>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <utility>

class QuillnoteObj3;

// New marks ----------------------------------------------------------------------------------------

/// One more than the drawing's last number, or than the highest number of its marks where the record is
/// missing or lower. None when every number up to 65535 may be taken.
std::optional<std::uint16_t> nextMarkNumber(AcDbDatabase &database);
/// The same for a command that is about to ask the user for the rest: says why there will be no mark.
bool hasFreeMarkNumber(AcDbDatabase &database);
/// Keeps the number as the drawing's last; prints when the drawing refuses it.
void keepMarkNumber(AcDbDatabase &database, std::uint16_t number);

/// What mark making and importing tell the reactors, for the whole process.
struct AppendState {
    /// The program itself is adding marks, which have their numbers: they are no copies that a person made.
    bool importing = false;

    void reset() { *this = {}; }
};
AppendState &appendState();

/// Sets the importing flag for the life of a scope.
class ImportingScope
{
public:
    ImportingScope() : m_before(std::exchange(appendState().importing, true)) {}
    ~ImportingScope() { appendState().importing = m_before; }
    ImportingScope(const ImportingScope &) = delete;
    ImportingScope &operator=(const ImportingScope &) = delete;

private:
    bool m_before;
};

// Copies -------------------------------------------------------------------------------------------

/// How many marks of each number the layouts of a drawing hold. Counted once, then kept by what the drawing's
/// reactor hears, so that numbering a copy does not cost more the more marks there are.
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

// Marks that are there -----------------------------------------------------------------------------

/// Command: renumbers all marks after the full word "YES".
void QN3_reNumber();
/// Command: asks for the new number of one mark, and for its password when it has one.
void QN8_editNumber();

/// Numbers all marks from 1 without gaps: grouped by reviewer in the order in which the reviewers appear,
/// each group in the collector's order; letter case does not tell reviewers apart. Marks whose reviewer is
/// none of the collector's come last, as one group. The drawing's last number follows. Marks that cannot be
/// written to keep their number, with a printed line.
void renumberMarks(AcDbDatabase &database);
