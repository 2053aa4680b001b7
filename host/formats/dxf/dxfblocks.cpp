#include "host/formats/dxf/dxfblocks.h"

#include "host/base/host_text.h"

#include <utility>

namespace dxf
{

/// R12 spells the names of the spaces with a dollar sign; letter case means nothing.
static QByteArray foldedName(std::string_view name)
{
    QByteArray folded = QByteArray(name.data(), qsizetype(name.size())).toUpper();
    if (folded == "$MODEL_SPACE" || folded == "$PAPER_SPACE")
        folded[0] = '*';
    return folded;
}

void BlockCollector::addRecord(AcDbStub *record, std::uint64_t handle, std::string_view name)
{
    const QByteArray folded = foldedName(name);
    if (handle != 0)
        m_byHandle.try_emplace(handle, record);
    const bool first = m_byName.try_emplace(folded, record).second;
    if (folded.startsWith("*MODEL_SPACE") || folded.startsWith("*PAPER_SPACE"))
        m_layouts.insert(record);
    if (first && folded == "*MODEL_SPACE")
        m_model = record;
    if (first && folded == "*PAPER_SPACE")
        m_paper = record;
}

AcDbStub *BlockCollector::recordByHandle(std::uint64_t handle)
{
    if (handle == m_lastOwner)
        return m_lastRecord;
    const auto found = m_byHandle.find(handle);
    if (found == m_byHandle.end())
        return nullptr; // Not remembered: the record may still come.
    m_lastOwner = handle;
    m_lastRecord = found->second;
    return m_lastRecord;
}

/// What stands outside blocks belongs to a layout, whatever it says of its owner.
AcDbStub *BlockCollector::layoutByHandle(std::uint64_t handle)
{
    AcDbStub *const record = recordByHandle(handle);
    return m_layouts.contains(record) ? record : nullptr;
}

AcDbStub *BlockCollector::recordByName(const QByteArray &name) const
{
    const auto found = m_byName.find(foldedName({name.data(), std::size_t(name.size())}));
    return found == m_byName.end() ? nullptr : found->second;
}

void BlockCollector::claim(Block &block, AcDbStub *record)
{
    block.record = record;
    m_claimed[record] = true;
    m_loader.block(record).blockBegin = block.begin;
    m_loader.setOwner(block.begin, record);
}

void BlockCollector::beginBlock(AcDbStub *begin, std::uint64_t owner, std::string_view name,
                                std::uint64_t offset)
{
    Block &block = m_blocks.emplace_back();
    block.begin = begin;
    block.offset = offset;
    block.name = QByteArray(name.data(), qsizetype(name.size()));
    AcDbStub *record = owner != 0 ? recordByHandle(owner) : nullptr;
    if (!record)
        record = recordByName(block.name);
    if (record && !m_claimed.contains(record))
        claim(block, record);
}

void BlockCollector::endBlock(AcDbStub *end)
{
    Block &block = m_blocks.back();
    block.end = end;
    if (!block.record)
        return;
    m_loader.block(block.record).blockEnd = end;
    m_loader.setOwner(end, block.record);
}

void BlockCollector::addEntity(AcDbStub *entity, std::uint64_t owner, bool paperSpace, const Place &place)
{
    if (place.inBlock) {
        Block &block = m_blocks.back();
        if (block.record)
            m_loader.addEntity(block.record, entity);
        else
            block.waiting.push_back(entity);
        return;
    }
    AcDbStub *const space = paperSpace ? m_paper : m_model;
    AcDbStub *record = owner != 0 ? layoutByHandle(owner) : space;
    if (!record && space) {
        noteUnknownOwner(owner, paperSpace, place.offset);
        record = space;
    }
    if (record)
        m_loader.addEntity(record, entity);
    else
        m_waiting.push_back({entity, owner, paperSpace, place.offset});
}

void BlockCollector::noteUnknownOwner(std::uint64_t owner, bool paperSpace, std::uint64_t offset)
{
    if (std::exchange(m_lastUnknownOwner, owner) == owner)
        return;
    m_log.add(offset, Host::tr("the owner %1 is no layout; its entities were put into %2 space")
                          .arg(QString::number(owner, 16).toUpper(),
                               paperSpace ? Host::tr("paper") : Host::tr("model")));
}

AcDbStub *BlockCollector::makeRecord(const QByteArray &name)
{
    ResbufList groups;
    groups.emplace_back(0, QStringLiteral("BLOCK_RECORD"));
    groups.emplace_back(100, QStringLiteral("AcDbSymbolTableRecord"));
    groups.emplace_back(100, QStringLiteral("AcDbBlockTableRecord"));
    groups.emplace_back(2, m_source.text({name.data(), std::size_t(name.size())}));
    static const AcDbKind kBlockRecord = acdbKind("BLOCK_RECORD");
    AcDbStub *const record = m_loader.addSynthetic(kBlockRecord, std::move(groups), AcDbStub::kNoFileForm);
    m_loader.addRecord(SymbolTable::block, record);
    return record;
}

AcDbStub *BlockCollector::spaceRecord(const QByteArray &name)
{
    if (AcDbStub *const record = recordByName(name))
        return record;
    AcDbStub *const record = makeRecord(name);
    addRecord(record, 0, {name.data(), std::size_t(name.size())});
    return record;
}

void BlockCollector::settle(Block &block, bool recordsExpected)
{
    AcDbStub *record = recordByName(block.name);
    if (!record || m_claimed.contains(record)) {
        if (recordsExpected)
            m_log.add(block.offset,
                      Host::tr("the block %1 has no block record of its own, one was made")
                          .arg(m_source.text({block.name.data(), std::size_t(block.name.size())})));
        record = makeRecord(block.name);
    }
    claim(block, record);
    for (AcDbStub *const entity : block.waiting)
        m_loader.addEntity(record, entity);
    if (!block.end)
        return;
    m_loader.block(record).blockEnd = block.end;
    m_loader.setOwner(block.end, record);
}

void BlockCollector::finish(bool recordsExpected)
{
    m_model = spaceRecord("*Model_Space");
    m_paper = spaceRecord("*Paper_Space");
    for (Block &block : m_blocks) {
        if (!block.record)
            settle(block, recordsExpected);
    }
    for (const Waiting &waiting : m_waiting) {
        AcDbStub *record = waiting.owner != 0 ? layoutByHandle(waiting.owner) : nullptr;
        if (!record && waiting.owner != 0 && recordsExpected)
            noteUnknownOwner(waiting.owner, waiting.paperSpace, waiting.offset);
        m_loader.addEntity(record ? record : waiting.paperSpace ? m_paper : m_model, waiting.entity);
    }
}

} // namespace dxf
