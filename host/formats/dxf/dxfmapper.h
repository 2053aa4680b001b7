// Mapper: the one pass over a DXF file that finds its objects and its structure.
//
// It knows the two scanners as a template parameter; dxfmapper.cpp makes both. Whatever it has to mend
// it says through RepairLog.
#pragma once

#include "host/acdb/dbload.h"
#include "host/base/progress.h"
#include "host/formats/dxf/dxfblocks.h"
#include "host/formats/dxf/dxfkinds.h"
#include "host/formats/dxf/dxfrepair.h"
#include "host/formats/dxf/dxfsource.h"

namespace dxf
{

/// What the pass reads of an object before it skips to the next one.
struct Head {
    std::uint64_t handle = 0;
    std::uint64_t owner = 0;
    std::string_view name;   ///< Group 2, when asked for.
    bool paperSpace = false; ///< Group 67.
};

template <class Scanner>
class Mapper
{
public:
    Mapper(AcDbLoader &loader, DxfSource &source, RepairLog &log, Scanner scanner,
           const base::Progress &progress);
    /// False when the file has no section.
    bool run();
    /// Progress said no: what was found is not the whole drawing.
    bool isStopped() const { return m_stopped; }

private:
    std::uint64_t offset(const char *at) const { return std::uint64_t(at - m_begin) + m_beginOffset; }
    std::uint64_t here() const { return m_done ? m_contentEnd : offset(m_group.begin); }
    QString quoted(std::string_view value) const;
    bool advance();
    bool recover(Step step);
    bool skipGarbageObject();
    void reportProgress();
    void toNextObject();
    bool atSectionEnd() const;
    Head readHead(bool wantName);
    /// `handleIn5`: not for dimension styles of R12, which have a block name in 5 and no markers.
    template <bool WantName>
    void readHeadGroups(Head &head, bool handleIn5);
    AcDbStub *addObject(Kind kind, const Head &head, std::uint64_t begin, std::uint16_t flags);
    void skipStray(const QString &where);

    void readSection();
    void readHeader();
    void addHeaderVariables();
    void readClasses();
    void readTables();
    void readTable();
    void addTableRecord(const Table &table);
    void addRecord(SymbolTable table);
    void addStrayRecord(const QString &where);
    void readBlocks();
    void readBlock();
    void readEntities();
    void addEntity(BlockCollector::Place place);
    void readObjects();
    void closeAtEof();
    void readSections();
    void readKept();

    AcDbLoader &m_loader;
    DxfSource &m_source;
    RepairLog &m_log;
    Scanner m_scanner;
    const char *m_begin;             ///< What is being read, the file or the text kept in its comments.
    std::uint64_t m_beginOffset = 0; ///< The offset that m_begin has in the source.
    BlockCollector m_blocks;
    KindCache m_kinds;
    Group m_group;                  ///< The current group; a group 0 between objects.
    Kind m_kind;                    ///< Of m_group when its code is 0.
    bool m_done = false;            ///< Nothing is left to read.
    std::uint64_t m_contentEnd = 0; ///< Behind the last readable group, once done.
    AcDbStub *m_mainEntity = nullptr;
    AcDbStub *m_rootDictionary = nullptr;
    bool m_rootHasNoOwner = false;
    const base::Progress &m_progress;
    std::uint32_t m_untilReport = 0; ///< Objects.
    bool m_stopped = false;
};

} // namespace dxf
