#include "host/formats/dwg/dwgreader.h"

#include "host/acdb/dbload.h"
#include "host/base/host_text.h"
#include "host/formats/dwg/dwgheader.h"
#include "host/formats/dwg/dwgkinds.h"
#include "host/formats/dwg/dwgmap.h"
#include "host/formats/dwg/dwgspecials.h"

#include <algorithm>
#include <map>
#include <optional>
#include <unordered_set>

namespace dwg
{
namespace
{

/// What opening learns of an object.
struct Found {
    std::uint64_t handle = 0;
    std::uint64_t begin = 0;
    std::uint64_t owner = 0;
    std::uint64_t next = 0; ///< In a chain of entities; 0 for the following handle.
    std::uint32_t size = 0;
    int type = 0;
    std::uint8_t space = 0; ///< 1 stands in paper space, 2 in model space, which need no owner.
    bool isEntity = false;
    bool isSettled = false; ///< Has its stub.
    AcDbStub *stub = nullptr;
};

/// Fills one database from one file.
class Loading
{
public:
    Loading(DwgSource &source, AcDbLoader &loader, const base::Progress &progress)
        : m_source(source), m_facts(source.facts()), m_loader(loader), m_progress(progress)
    {
    }
    /// False when it was stopped.
    bool run();

private:
    void warn(const QString &sentence) { m_source.container().warn(sentence); }
    ObjectReader readerOf(const Found &found) const { return {m_facts, m_source.recordAt(found.begin)}; }
    Found *find(std::uint64_t handle);
    bool findObjects();
    void lookAt(const MapEntry &entry);
    QByteArray kindName(const Found &found) const;
    AcDbStub *add(Found &found, std::uint16_t flags = 0);

    void readNames();
    void noteName(const Found &found);
    void nameAnonymousBlocks();
    void numberViewports(std::uint64_t block, const std::vector<std::uint64_t> &entities);
    void addTables();
    void addTable(const Found &control);
    std::vector<std::uint64_t> entriesOf(const Found &control) const;
    void addBlocks();
    void addBlock(Found &header);
    void addEntity(AcDbStub *block, Found &entity);
    void addParts(Found &entity);
    std::vector<std::uint64_t> chain(std::uint64_t first, std::uint64_t last);
    void addStrayEntities();
    void addOthers();
    void addVariables();
    void tellWhatStaysRaw();

    DwgSource &m_source;
    const FileFacts &m_facts;
    AcDbLoader &m_loader;
    const base::Progress &m_progress;
    Header m_header;
    std::vector<Found> m_objects; ///< In ascending order of handles.
    std::uint64_t m_modelSpace = 0, m_paperSpace = 0;
    std::unordered_map<int, AcDbKind> m_kinds; ///< By type.
    int m_badChecksums = 0;
    int m_damaged = 0;
};

Found *Loading::find(std::uint64_t handle)
{
    const auto found = std::ranges::lower_bound(m_objects, handle, {}, &Found::handle);
    return found != m_objects.end() && found->handle == handle ? &*found : nullptr;
}

void Loading::lookAt(const MapEntry &entry)
{
    const std::string_view record = m_source.recordAt(entry.offset);
    ObjectReader reader(m_facts, record);
    if (!reader.good() || reader.handle() != entry.handle) {
        ++m_damaged;
        return;
    }
    if (!reader.checksumFits())
        ++m_badChecksums;
    Found found;
    found.handle = entry.handle;
    found.begin = entry.offset;
    found.size = std::uint32_t(std::min(reader.size(), record.size()));
    found.type = reader.type();
    const DwgClass *const known = m_source.classOf(found.type);
    found.isEntity = known ? known->isEntity : isEntityType(found.type);
    const Common common = reader.readCommon(found.isEntity);
    found.owner = common.owner.handle;
    found.space = std::uint8_t(found.isEntity ? common.entityMode : 0);
    found.next = common.next;
    m_objects.push_back(found);
}

bool Loading::findObjects()
{
    const std::vector<MapEntry> map = readObjectMap(m_source.container());
    m_objects.reserve(map.size());
    constexpr std::size_t kStride = 8192;
    std::uint64_t last = 0;
    for (std::size_t i = 0; i < map.size(); ++i) {
        if (i % kStride == 0 && !base::report(m_progress, double(i) / double(map.size())))
            return false;
        if (map[i].handle != last)
            lookAt(map[i]);
        last = map[i].handle;
    }
    if (m_damaged != 0)
        m_source.container().warnOfLoss(Host::tr("%1 objects are damaged and were left out").arg(m_damaged));
    if (m_badChecksums != 0)
        warn(Host::tr("%1 objects have a wrong checksum; they are read as they are").arg(m_badChecksums));
    return true;
}

QByteArray Loading::kindName(const Found &found) const
{
    if (const DwgClass *const known = m_source.classOf(found.type))
        return known->dxfName;
    if (const char *const name = nameOfType(found.type))
        return name;
    return "DWG_" + QByteArray::number(found.type);
}

AcDbStub *Loading::add(Found &found, std::uint16_t flags)
{
    const auto [known, isNew] = m_kinds.try_emplace(found.type);
    if (isNew)
        known->second = m_loader.database().kindNamed(kindName(found));
    found.isSettled = true;
    found.stub = m_loader.addObject(known->second, found.handle, found.begin, found.size,
                                    std::uint16_t(flags | (found.isEntity ? AcDbStub::kEntity : 0)));
    return found.stub;
}

// Names ------------------------------------------------------------------------------------------

void Loading::noteName(const Found &found)
{
    Neighbours &neighbours = m_source.editNeighbours();
    ObjectReader reader = readerOf(found);
    reader.readCommon(found.isEntity);
    if (found.type == kBlockHeader) {
        const BlockHeader block = readBlockHeader(reader);
        neighbours.recordNames[found.handle] = block.head.name;
        if (block.layout != 0 && block.head.name.startsWith(u"*Paper_Space", Qt::CaseInsensitive))
            neighbours.sheetBlocks[found.handle] = block.layout;
        return;
    }
    if (found.type == kPolyline2d) {
        Decoder decoder(reader, Common(), neighbours);
        readFields(*kindOfType(kPolyline2d), decoder);
        const auto real = [&decoder](int group) {
            const resbuf *const read = decoder.find(group);
            return read ? read->real() : 0.0;
        };
        const resbuf *const place = decoder.find(10);
        const PlanePolyline whole{place ? place->point().z : 0.0, real(40), real(41)};
        if (whole.elevation != 0.0 || whole.startWidth != 0.0 || whole.endWidth != 0.0)
            neighbours.polylines[found.handle] = whole;
        return;
    }
    if (const DwgClass *const known = m_source.classOf(found.type); known && known->dxfName == "DBCOLOR") {
        const Color color = reader.color();
        neighbours.bookColors[found.handle] =
            color.book.isEmpty() ? color.name : color.book + u'$' + color.name;
        return;
    }
    if (found.type == kMlineStyle)
        neighbours.recordNames[found.handle] = reader.text();
    else
        neighbours.recordNames[found.handle] = readRecordHead(reader).name;
}

/// Blocks without a name of their own share one in the file ("*D", "*Paper_Space"); readers number them, by
/// their places in the table as others do.
void Loading::nameAnonymousBlocks()
{
    auto &names = m_source.editNeighbours().recordNames;
    const auto control = std::ranges::find(m_objects, int(kBlockControl), &Found::type);
    if (control == m_objects.end())
        return;
    std::unordered_set<QString> taken;
    for (const auto &[handle, name] : names)
        taken.insert(name.toUpper());
    const auto isSpace = [](const QString &name) {
        return name.compare(u"*Paper_Space", Qt::CaseInsensitive) == 0;
    };
    int sheets = 0;
    int place = -1;
    int next = 0; // Numbers only grow: however many names are taken, each is looked at once.
    for (const std::uint64_t handle : entriesOf(*control)) {
        ++place;
        const auto known = names.find(handle);
        if (known == names.end() || !known->second.startsWith(u'*'))
            continue;
        QString &name = known->second;
        const bool isAnonymous = name.size() == 2;
        if (isSpace(name) && m_header.paperSpace == 0)
            m_header.paperSpace = handle; // The variables, which say it, are damaged.
        const bool isOtherSheet = isSpace(name) && handle != m_header.paperSpace;
        if (!isAnonymous && !isOtherSheet)
            continue;
        int number = isAnonymous ? std::max(place, next) : sheets++;
        QString numbered = name + QString::number(number);
        while (taken.contains(numbered.toUpper()))
            numbered = name + QString::number(++number);
        taken.insert(numbered.toUpper());
        if (isAnonymous)
            next = number + 1;
        name = numbered;
    }
}

void Loading::readNames()
{
    for (const Found &found : m_objects) {
        const bool isRecord = found.type >= kBlockHeader && found.type <= 0x45 && found.type % 2 == 1;
        const bool isColor = found.type >= kFirstClass && m_source.classOf(found.type) &&
                             m_source.classOf(found.type)->dxfName == "DBCOLOR";
        if (isRecord || isColor || found.type == kPolyline2d || found.type == kMlineStyle)
            noteName(found);
    }
    nameAnonymousBlocks();
    const auto spaceNamed = [this](QStringView name) -> std::uint64_t {
        for (const Found &found : m_objects) {
            if (found.type == kBlockHeader &&
                m_source.editNeighbours().recordNames[found.handle].compare(name, Qt::CaseInsensitive) == 0)
                return found.handle;
        }
        return 0;
    };
    m_modelSpace = spaceNamed(u"*Model_Space");
    m_paperSpace = spaceNamed(u"*Paper_Space");
    for (Found &found : m_objects) {
        if (found.space == 1)
            found.owner = m_paperSpace;
        else if (found.space == 2)
            found.owner = m_modelSpace;
    }
}

// Tables -----------------------------------------------------------------------------------------

std::vector<std::uint64_t> Loading::entriesOf(const Found &control) const
{
    ObjectReader reader = readerOf(control);
    reader.readCommon(false);
    reader.data.bitLong();
    std::vector<std::uint64_t> entries;
    // All handles that are left: some are not counted. A dimension style table has further ones.
    while (reader.handles.bitsLeft() >= 8) {
        const HandleRef entry = reader.reference();
        if (reader.handles.failed())
            break;
        entries.push_back(entry.handle); // 0 for a record that is gone.
    }
    return entries;
}

static std::optional<SymbolTable> tableOf(int controlType)
{
    switch (controlType) {
    case 0x30:
        return SymbolTable::block;
    case 0x32:
        return SymbolTable::layer;
    case 0x34:
        return SymbolTable::textStyle;
    case 0x38:
        return SymbolTable::linetype;
    case 0x3C:
        return SymbolTable::view;
    case 0x3E:
        return SymbolTable::ucs;
    case 0x40:
        return SymbolTable::viewport;
    case 0x42:
        return SymbolTable::appId;
    case 0x44:
        return SymbolTable::dimStyle;
    default:
        return {};
    }
}

void Loading::addTable(const Found &control)
{
    const SymbolTable table = *tableOf(control.type);
    std::vector<Found *> records;
    for (const std::uint64_t handle : entriesOf(control)) {
        Found *const record = find(handle);
        if (record && record->type == control.type + 1 && !record->isSettled) {
            record->isSettled = true;
            records.push_back(record);
        }
    }
    // Spaces come first, as in DXF.
    if (table == SymbolTable::block) {
        std::stable_partition(records.begin(), records.end(), [this](const Found *record) {
            return record->handle == m_modelSpace || record->handle == m_paperSpace;
        });
    }
    for (Found *const record : records)
        m_loader.addRecord(table, add(*record));
}

void Loading::addTables()
{
    // In the order of DXF.
    for (const int type : {0x40, 0x38, 0x32, 0x34, 0x3C, 0x3E, 0x42, 0x44, 0x30}) {
        const auto control = std::ranges::find(m_objects, type, &Found::type);
        if (control == m_objects.end()) {
            warn(Host::tr("the table %1 is missing").arg(dwgTableName(type)));
        } else {
            m_loader.setTableHead(*tableOf(type), add(*control));
            addTable(*control);
        }
        // Records that no table lists.
        for (Found &found : m_objects) {
            if (found.type == type + 1 && !found.isSettled)
                m_loader.addRecord(*tableOf(type), add(found));
        }
    }
}

// Blocks -----------------------------------------------------------------------------------------

/// Entities from the first to the last, by their links.
std::vector<std::uint64_t> Loading::chain(std::uint64_t first, std::uint64_t last)
{
    std::vector<std::uint64_t> handles;
    std::uint64_t at = first;
    while (at != 0 && handles.size() <= m_objects.size()) {
        const Found *const entity = find(at);
        if (!entity || !entity->isEntity || entity->isSettled)
            break; // Chains that run into each other would be walked over and over.
        handles.push_back(at);
        if (at == last)
            break;
        at = entity->next != 0 ? entity->next : at + 1;
    }
    return handles;
}

void Loading::addParts(Found &entity)
{
    const bool mayOwn = entity.type == kInsert || entity.type == kMinsert || entity.type == kPolyline2d ||
                        entity.type == kPolyline3d || entity.type == kPolylinePface ||
                        entity.type == kPolylineMesh;
    if (!mayOwn)
        return;
    ObjectReader reader = readerOf(entity);
    const Common common = reader.readCommon(true);
    Decoder decoder(reader, common, m_source.editNeighbours());
    readFields(*kindOfType(entity.type), decoder);
    std::vector<std::uint64_t> parts = decoder.parts.owned;
    if (parts.empty())
        parts = chain(decoder.parts.first, decoder.parts.last);
    parts.push_back(decoder.parts.end);
    for (const std::uint64_t handle : parts) {
        Found *const part = find(handle);
        if (!part || !part->isEntity || part->isSettled)
            continue;
        m_loader.setOwner(add(*part, AcDbStub::kSubEntity), entity.stub);
    }
}

void Loading::addEntity(AcDbStub *block, Found &entity)
{
    m_loader.addEntity(block, add(entity));
    addParts(entity);
}

/// The viewports of the current sheet have numbers; the first one is the sheet itself.
void Loading::numberViewports(std::uint64_t block, const std::vector<std::uint64_t> &entities)
{
    constexpr int kViewport = 0x22;
    if (block != m_header.paperSpace)
        return;
    int number = 0;
    for (const std::uint64_t handle : entities) {
        if (const Found *const entity = find(handle); entity && entity->type == kViewport)
            m_source.editNeighbours().viewportNumbers[handle] = ++number;
    }
}

void Loading::addBlock(Found &header)
{
    ObjectReader reader = readerOf(header);
    reader.readCommon(false);
    const BlockHeader block = readBlockHeader(reader);
    BlockContents &contents = m_loader.block(header.stub);
    if (Found *const begin = find(block.begin); begin && begin->type == kBlockBegin && !begin->isSettled) {
        contents.blockBegin = add(*begin);
        m_loader.setOwner(begin->stub, header.stub);
    }
    const std::vector<std::uint64_t> entities =
        m_facts.since(DrawingVersion::r2004) ? block.owned : chain(block.first, block.last);
    for (const std::uint64_t handle : entities) {
        if (Found *const entity = find(handle); entity && entity->isEntity && !entity->isSettled)
            addEntity(header.stub, *entity);
    }
    numberViewports(header.handle, entities);
    if (Found *const end = find(block.end); end && end->type == kBlockEnd && !end->isSettled) {
        m_loader.block(header.stub).blockEnd = add(*end);
        m_loader.setOwner(end->stub, header.stub);
    }
}

void Loading::addBlocks()
{
    for (const std::uint32_t index : m_loader.database().tableRecords(SymbolTable::block)) {
        if (Found *const header = find(m_loader.database().stub(index)->handle))
            addBlock(*header);
    }
}

/// Entities that no block lists, though they name one.
void Loading::addStrayEntities()
{
    int strays = 0;
    for (Found &found : m_objects) {
        if (!found.isEntity || found.isSettled)
            continue;
        Found *const owner = find(found.owner);
        if (!owner || !owner->stub || found.type == kBlockBegin || found.type == kBlockEnd)
            continue;
        ++strays;
        if (owner->type == kBlockHeader)
            addEntity(owner->stub, found);
        else
            m_loader.setOwner(add(found, owner->isEntity ? AcDbStub::kSubEntity : 0), owner->stub);
    }
    if (strays != 0)
        warn(Host::tr("%1 entities are not listed by the block that owns them; they were added to it")
                 .arg(strays));
}

// The rest ---------------------------------------------------------------------------------------

void Loading::addOthers()
{
    constexpr int kViewportControl = 0x46; // What AC1015 and older keep of viewports; DXF knows none of it.
    for (Found &found : m_objects) {
        if (found.isSettled || found.type == kViewportControl || found.type == kViewportControl + 1)
            continue;
        AcDbStub *const stub = add(found);
        if (found.owner != 0)
            m_loader.setOwnerHandle(stub, found.owner);
        const bool isRoot = m_header.namedObjects != 0 ? found.handle == m_header.namedObjects
                                                       : found.type == kDictionary && found.owner == 0;
        if (isRoot)
            m_loader.setNamedObjects(stub);
    }
}

void Loading::addVariables()
{
    const auto &names = m_source.editNeighbours().recordNames;
    for (const auto &[place, handle] : m_header.names) {
        const auto name = names.find(handle);
        if (name != names.end())
            m_header.variables[place].groups.front().assign(name->second);
    }
    for (HeaderVariable &variable : m_header.variables)
        m_loader.addHeaderVariable(variable.name, std::move(variable.groups));
}

void Loading::tellWhatStaysRaw()
{
    std::map<QByteArray, int> counts;
    for (const Found &found : m_objects) {
        const bool hasForm = m_source.kindOf(found.type) || !dwgTableName(found.type).isEmpty() ||
                             found.type == 0x46 || found.type == 0x47;
        if (!hasForm)
            ++counts[kindName(found)];
    }
    QStringList kinds;
    for (const auto &[kind, count] : counts)
        kinds.append(QStringLiteral("%1 %2").arg(count).arg(QString::fromUtf8(kind)));
    m_source.setNotUnderstood(kinds.join(QStringLiteral(", ")));
}

bool Loading::run()
{
    m_source.editClasses() = readClasses(m_facts, m_source.container());
    m_header = readHeader(m_facts, m_source.container());
    if (!findObjects())
        return false;
    readNames();
    for (const DwgClass &each : m_source.classes()) {
        DrawingClass added;
        added.dxfName = each.dxfName;
        added.className = each.className;
        added.application = each.application;
        added.proxyFlags = each.proxyFlags;
        added.wasProxy = each.wasProxy;
        added.isEntity = each.isEntity;
        m_loader.addClass(std::move(added));
    }
    addVariables();
    addTables();
    addBlocks();
    addStrayEntities();
    addOthers();
    tellWhatStaysRaw();
    return true;
}

} // namespace
} // namespace dwg

base::Result<std::unique_ptr<AcDbDatabase>, QString> readDwg(base::FileBytes bytes, const QString &name,
                                                             const base::Progress &progress)
{
    const auto failed = [&name](const QString &reason) {
        return base::Failure<QString>{name + QStringLiteral(": ") + reason};
    };
    auto container = dwg::openContainer(bytes.view());
    if (!container)
        return failed(container.error());
    auto database = std::make_unique<AcDbDatabase>();
    auto owned = std::make_unique<DwgSource>(std::move(bytes), *std::move(container));
    DwgSource &source = *owned;
    AcDbLoader loader(*database, std::move(owned));
    if (!dwg::Loading(source, loader, progress).run())
        return failed(Host::tr("opening was stopped"));
    for (const QString &sentence : source.container().warnings)
        loader.addRepair(sentence);
    loader.finish();
    if (!database->blockContents(database->modelSpaceId()))
        return failed(Host::tr("the drawing has no model space that can be read"));
    return database;
}
