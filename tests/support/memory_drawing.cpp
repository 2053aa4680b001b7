#include "tests/support/memory_drawing.h"

#include "host/acdb/dbload.h"

#include <algorithm>

namespace tests
{

class MemoryDrawing::Source : public DrawingSource
{
public:
    explicit Source(const MemoryDrawing &drawing)
        : m_version(drawing.m_version), m_format(drawing.m_format), m_objects(drawing.m_objects)
    {
    }
    DrawingForm form() const override { return m_format; }
    DrawingVersion version() const override { return m_version; }
    ResbufList read(const AcDbStub &stub) const override { return m_objects.at(stub.begin).groups; }

private:
    DrawingVersion m_version;
    DrawingForm m_format;
    std::vector<Object> m_objects;
};

MemoryDrawing::MemoryDrawing(DrawingVersion version, DrawingForm format)
    : m_version(version), m_format(format)
{
    m_namedObjects = add("DICTIONARY", {{100, "AcDbDictionary"}}, 0, 0);
    m_modelSpace = block("*Model_Space");
    m_paperSpace = block("*Paper_Space");
    layer("0");
}

std::uint64_t MemoryDrawing::add(const char *kind, const Groups &groups, std::uint64_t owner,
                                 std::uint16_t flags, int table)
{
    const std::uint64_t handle = m_objects.size() + 1;
    const bool isEntity = flags & AcDbStub::kEntity;
    ResbufList list{Group(0, kind), Group(5, AcDbHandle{handle}), Group(330, AcDbHandle{owner})};
    if (isEntity) {
        list.push_back(Group(100, "AcDbEntity"));
        if (std::ranges::none_of(groups, [](const Group &group) { return group.restype == 8; }))
            list.push_back(Group(8, "0"));
    }
    list.insert(list.end(), groups.begin(), groups.end());
    m_objects.push_back({kind, std::move(list), owner, flags, table});
    return handle;
}

std::uint64_t MemoryDrawing::layer(const char *name, LayerState state)
{
    return record(SymbolTable::layer, "LAYER", name,
                  {{70, state.flags}, {62, state.color}, {6, "Continuous"}});
}

std::uint64_t MemoryDrawing::record(SymbolTable table, const char *kind, const char *name,
                                    const Groups &groups)
{
    Groups all{{100, "AcDbSymbolTableRecord"}, {2, name}};
    all.insert(all.end(), groups.begin(), groups.end());
    return add(kind, all, 0, 0, int(table));
}

std::uint64_t MemoryDrawing::block(const char *name, AcGePoint3d origin)
{
    const std::uint64_t recordHandle = record(SymbolTable::block, "BLOCK_RECORD", name, {});
    const Groups begin{{100, "AcDbBlockBegin"}, {2, name}, {70, 0}, {10, origin}, {3, name}};
    const std::uint64_t beginHandle = add("BLOCK", begin, recordHandle, AcDbStub::kEntity);
    const std::uint64_t endHandle = add("ENDBLK", {{100, "AcDbBlockEnd"}}, recordHandle, AcDbStub::kEntity);
    m_blockEnds[recordHandle] = {beginHandle, endHandle};
    return recordHandle;
}

std::uint64_t MemoryDrawing::entity(const char *kind, const Groups &groups, std::uint64_t blockRecord)
{
    return add(kind, groups, blockRecord ? blockRecord : m_modelSpace, AcDbStub::kEntity);
}

std::uint64_t MemoryDrawing::subEntity(const char *kind, const Groups &groups)
{
    std::uint64_t owner = m_objects.size();
    while (owner > 0 && m_objects[owner - 1].flags != AcDbStub::kEntity)
        --owner;
    return add(kind, groups, owner, AcDbStub::kEntity | AcDbStub::kSubEntity);
}

std::uint64_t MemoryDrawing::object(const char *kind, const Groups &groups, std::uint64_t owner)
{
    return add(kind, groups, owner, 0);
}

void MemoryDrawing::headerVariable(const char *name, const Groups &groups)
{
    m_header.emplace_back(name, ResbufList(groups.begin(), groups.end()));
}

std::unique_ptr<AcDbDatabase> MemoryDrawing::open() const
{
    auto database = std::make_unique<AcDbDatabase>();
    AcDbLoader loader(*database, std::make_unique<Source>(*this));
    std::vector<AcDbStub *> stubs;
    for (const Object &object : m_objects) {
        AcDbStub *const stub =
            loader.addObject(acdbKind(object.kind), stubs.size() + 1, stubs.size(), 1, object.flags);
        stubs.push_back(stub);
        if (object.table >= 0)
            loader.addRecord(SymbolTable(object.table), stub);
        else if (object.flags == AcDbStub::kEntity && object.kind != "BLOCK" && object.kind != "ENDBLK")
            loader.addEntity(stubs.at(object.owner - 1), stub);
        else if (object.owner != 0)
            loader.setOwner(stub, stubs.at(object.owner - 1));
    }
    for (const auto &[recordHandle, ends] : m_blockEnds) {
        BlockContents &contents = loader.block(stubs.at(recordHandle - 1));
        contents.blockBegin = stubs.at(ends.first - 1);
        contents.blockEnd = stubs.at(ends.second - 1);
    }
    for (const auto &[name, groups] : m_header)
        loader.addHeaderVariable(name, groups);
    loader.setNamedObjects(stubs.at(m_namedObjects - 1));
    loader.finish();
    return database;
}

} // namespace tests
