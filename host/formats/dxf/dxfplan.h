// SavePlan: what saving changes in the bytes of an opened DXF file, as edits in file order.
//
// It is made from what the database knows to be changed; everything between the edits is the file as it
// was. Without changes there are no edits.
#pragma once

#include "host/formats/dxf/dxfobject.h"

#include <map>
#include <unordered_map>

namespace dxf
{

struct Edit {
    std::uint64_t offset = 0;
    std::uint64_t removed = 0;
    QByteArray bytes;
};

class SavePlan
{
public:
    SavePlan(const AcDbDatabase &database, const DxfSource &source);

    const std::vector<Edit> &edits() const { return m_edits; }
    std::vector<Edit> takeEdits() { return std::move(m_edits); }
    /// Erased, or owned by something that is.
    bool isGone(const AcDbStub &stub) const { return !m_gone.empty() && m_gone[stub.index]; }

private:
    /// What comes first among insertions at one offset.
    enum Rank { kContents, kInnerEnd, kContainer, kSectionEnd, kNewSection, kKept, kFileEnd };

    std::uint64_t newHandle();

    void insert(std::uint64_t offset, Rank rank, const QByteArray &bytes);
    void replace(Place place, QByteArray bytes);
    void insertIntoSection(const QByteArray &section, const QByteArray &bytes, Rank rank = kContents);

    void removeGone();
    void writeChanged();
    void writeNew();
    void writeNewEntity(const AcDbStub &stub);
    void writeNewRecord(const AcDbStub &stub, SymbolTable table);
    QByteArray entityWithParts(const AcDbStub &entity) const;
    QByteArray newBlock(const AcDbStub &record);
    void insertIntoBlock(const AcDbStub &blockRecord, const QByteArray &bytes);
    std::uint64_t subEntityPlace(const AcDbStub &owner) const;

    void writeTableCounts();
    void writeNewTables();
    std::int64_t recordCount(SymbolTable table) const;
    void writeClasses();
    void writeInstanceCount(const ClassRecord &record, std::int64_t count);
    void writeVariables();
    void writeVariable(const QByteArray &name, const ResbufList &groups);
    void writeHandseed();
    void writeMissingHandles();
    void writeHandle(const AcDbStub &stub);
    void writeMissingEnds();
    void writeNewSections();
    QByteArray takeKeptText();
    void writeKept();
    void sortEdits();

    const AcDbDatabase &m_database;
    const DxfSource &m_source;
    const Layout &m_layout;
    Encoder m_encoder;
    ObjectEncoder m_objects;

    std::vector<AcDbStub *> m_changed;
    std::vector<bool> m_gone; ///< By stub index; empty when nothing is erased.
    std::unordered_map<std::uint32_t, std::vector<const AcDbStub *>>
        m_newParts;                                ///< By the owning entity's index.
    std::map<SymbolTable, QByteArray> m_newTables; ///< New records of tables that the file lacks.
    std::map<SymbolTable, bool> m_tablesTouched;
    std::map<QByteArray, QByteArray> m_newSections;
    std::uint64_t m_nextHandle = 0; ///< Where newHandle() begins to look.
    bool m_handlesWritten = false;
    std::map<std::pair<std::uint64_t, Rank>, QByteArray> m_insertions;
    std::vector<Edit> m_edits;
};

} // namespace dxf
