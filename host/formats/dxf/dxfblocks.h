// BlockCollector: brings entities and block definitions together with their block records.
//
// Files since R13 list the records before the blocks, so most entities find their record at once. What
// finds none waits until the whole file is known; then records that no file form exists for (R12), or
// that a damaged file lost, are made.
#pragma once

#include "host/acdb/dbload.h"
#include "host/formats/dxf/dxfrepair.h"

#include <unordered_map>
#include <unordered_set>

namespace dxf
{

class BlockCollector
{
public:
    BlockCollector(AcDbLoader &loader, const DxfSource &source, RepairLog &log)
        : m_loader(loader), m_source(source), m_log(log)
    {
    }

    struct Place {
        std::uint64_t offset = 0; ///< For repairs.
        bool inBlock = false;     ///< In the block begun last, not in a space.
    };

    void addRecord(AcDbStub *record, std::uint64_t handle, std::string_view name);
    void beginBlock(AcDbStub *begin, std::uint64_t owner, std::string_view name, std::uint64_t offset);
    void endBlock(AcDbStub *end);
    /// An entity of the current block, or of the space that `owner` or `paperSpace` name.
    void addEntity(AcDbStub *entity, std::uint64_t owner, bool paperSpace, const Place &place);
    /// `recordsExpected`: the file's version has block records, so a missing one is damage.
    void finish(bool recordsExpected);

private:
    struct Block {
        AcDbStub *record = nullptr;
        AcDbStub *begin = nullptr;
        AcDbStub *end = nullptr;
        QByteArray name;
        std::uint64_t offset = 0;
        std::vector<AcDbStub *> waiting;
    };
    struct Waiting {
        AcDbStub *entity;
        std::uint64_t owner;
        bool paperSpace;
        std::uint64_t offset;
    };

    AcDbStub *recordByHandle(std::uint64_t handle);
    AcDbStub *layoutByHandle(std::uint64_t handle);
    AcDbStub *recordByName(const QByteArray &name) const;
    AcDbStub *makeRecord(const QByteArray &name);
    AcDbStub *spaceRecord(const QByteArray &name);
    void noteUnknownOwner(std::uint64_t owner, bool paperSpace, std::uint64_t offset);
    void claim(Block &block, AcDbStub *record);
    void settle(Block &block, bool recordsExpected);

    AcDbLoader &m_loader;
    const DxfSource &m_source;
    RepairLog &m_log;
    std::unordered_map<std::uint64_t, AcDbStub *> m_byHandle;
    std::unordered_map<QByteArray, AcDbStub *> m_byName;  ///< Folded names.
    std::unordered_map<const AcDbStub *, bool> m_claimed; ///< Records that have their block already.
    std::unordered_set<const AcDbStub *> m_layouts;       ///< Records of model and paper spaces.
    std::vector<Block> m_blocks;
    std::vector<Waiting> m_waiting;
    AcDbStub *m_model = nullptr;
    AcDbStub *m_paper = nullptr;
    std::uint64_t m_lastOwner = 0;
    AcDbStub *m_lastRecord = nullptr;
    std::uint64_t m_lastUnknownOwner = 0;
};

} // namespace dxf
