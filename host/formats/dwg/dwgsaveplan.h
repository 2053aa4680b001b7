// SavePlan: what saving makes of an opened DWG file: its records, changed, added and left out, and the
// sections that follow from them.
//
// Objects that nobody changed keep their records. Others are encoded; so are those that list them: headers of
// blocks, heads of tables, owners of attributes and vertices, neighbours in a chain (AC1015).
#pragma once

#include "host/formats/dwg/dwgencoder.h"
#include "host/formats/dwg/dwgpacker.h"
#include "host/formats/dwg/dwgsource.h"

#include <deque>
#include <memory>
#include <set>

namespace dwg
{

class SavePlan
{
public:
    /// Of the drawing as it is now; the source must outlive the plan. What cannot be encoded refuses the
    /// whole: the error is a sentence without the file's name.
    static base::Result<std::unique_ptr<SavePlan>, QString> make(const AcDbDatabase &database,
                                                                 const DwgSource &source);

    const FileContents &contents() const { return m_contents; }
    /// Neither erased nor owned by something that is.
    bool isLive(const AcDbStub &stub) const;

private:
    /// What follows for an object from what others do.
    struct Place {
        std::optional<std::pair<std::uint64_t, std::uint64_t>> chain;
        std::optional<OwnedParts> parts;
        std::optional<BlockLists> block;
        std::optional<std::vector<std::uint64_t>> entries;
        const ResbufList *blockBegin = nullptr;
    };
    using Stubs = std::vector<const AcDbStub *>;

    SavePlan(const AcDbDatabase &database, const DwgSource &source);
    base::Result<void, QString> run();

    bool isGone(const AcDbStub &stub) const { return !m_gone.empty() && m_gone[stub.index]; }
    bool isNew(const AcDbStub &stub) const { return !stub.has(AcDbStub::kHasSource); }
    /// The object will be encoded.
    Place &touch(const AcDbStub &stub) { return m_places[stub.index]; }
    std::uint64_t newHandle();
    void fail(const QString &sentence);

    void findTouched();
    void touchOwner(const AcDbStub &stub);
    void settleBlocks();
    void settleBlock(const AcDbStub &record);
    BlockLists listsOf(const AcDbStub &record, const Stubs &entities);
    std::vector<std::uint64_t> insertsOf(const AcDbStub &record, std::vector<std::uint64_t> known);
    void noteInserts();
    std::uint64_t blockEnd(const AcDbStub &record, const char *kind);
    void settleParts(const AcDbStub &owner);
    void settleTable(SymbolTable table);
    void link(const Stubs &before, const Stubs &after);
    Stubs live(const Stubs &all) const;

    void settleClasses();
    void encodeAll();
    void encode(const AcDbStub &stub);
    void addRecord(std::uint64_t handle, base::Result<QByteArray, QString> record);
    void settleRecords();
    void settleVariables();
    void settleMeasurement(const ResbufList &groups);

    const AcDbDatabase &m_database;
    const DwgSource &m_source;
    const FileFacts &m_facts;
    const Names m_names;
    FileContents m_contents;
    std::vector<AcDbStub *> m_changed;
    std::vector<bool> m_gone;                          ///< By stub index; empty when nothing is erased.
    std::unordered_map<std::uint32_t, Place> m_places; ///< Of touched objects, by index.
    std::set<std::uint32_t> m_blocks, m_owners;        ///< Whose lists change, by index.
    std::set<SymbolTable> m_tables;
    std::unordered_map<std::uint64_t, std::vector<std::uint64_t>> m_newInserts; ///< By the block's handle.
    std::vector<DwgClass> m_classes;
    std::uint64_t m_nextHandle = 0;
    std::map<std::uint64_t, QByteArray> m_records; ///< Those that differ from the file.
    std::deque<ResbufList> m_groups;               ///< Groups that places point to.
    QString m_failure;
};

} // namespace dwg
