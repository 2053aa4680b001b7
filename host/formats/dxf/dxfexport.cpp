#include "host/formats/dxf/dxfexport.h"

#include "host/acdb/dbobject.h"

#include "host/base/host_text.h"
#include "host/formats/dxf/dxfencoder.h"
#include "host/formats/dxf/dxftables.h"

#include <array>
#include <map>
#include <memory>
#include <unordered_set>

namespace dxf
{
namespace
{

/// An empty text file of the drawing's version and code page: new groups are written as it has them.
std::unique_ptr<DxfSource> emptyFile(const AcDbDatabase &database)
{
    auto file = std::make_unique<DxfSource>(base::FileBytes::fromByteArray("  0\r\nEOF\r\n"));
    file->learnStyle(file->bytes());
    const QByteArray version = "AC" + QByteArray::number(int(database.version()));
    const QByteArray codePage = database.headerText("$DWGCODEPAGE").toLatin1();
    file->setVersion({version.constData(), std::size_t(version.size())},
                     {codePage.constData(), std::size_t(codePage.size())});
    return file;
}

class Exporter
{
public:
    explicit Exporter(const AcDbDatabase &database)
        : m_database(database), m_file(emptyFile(database)), m_encoder(*m_file),
          m_written(database.stubCount())
    {
    }
    Exported run();

private:
    void section(const char *name)
    {
        m_encoder.marker(m_out, "SECTION");
        m_encoder.plainText(m_out, 2, name);
    }
    void endSection() { m_encoder.marker(m_out, "ENDSEC"); }
    void header();
    void classes();
    void tables();
    void table(SymbolTable kind);
    void blocks();
    void entities();
    void entity(std::uint32_t index);
    void objects();
    bool object(const AcDbStub &stub);
    bool isOfTheLost(const AcDbStub &stub) const;
    bool isSpace(const AcDbStub &record) const
    {
        return &record == m_database.modelSpaceId().stub() || &record == m_database.paperSpaceId().stub();
    }

    const AcDbDatabase &m_database;
    const std::unique_ptr<DxfSource> m_file;
    const Encoder m_encoder;
    QByteArray m_out;
    std::vector<bool> m_written; ///< By index of the stub.
    std::uint32_t m_objects = 0;
    std::map<QByteArray, int> m_lost;
    std::unordered_set<std::uint32_t> m_lostStubs;
    std::map<QByteArray, int> m_proxies;
};

void Exporter::header()
{
    section("HEADER");
    for (const QByteArray &name : m_database.headerNames()) {
        const ResbufList *const groups = m_database.headerVariable(name);
        if (!groups || name == "$REQUIREDVERSIONS")
            continue;
        m_encoder.plainText(m_out, 9, name);
        if (name == "$HANDSEED")
            m_encoder.handle(m_out, 5, m_database.handseed().value);
        else
            m_encoder.append(m_out, *groups);
    }
    endSection();
}

void Exporter::classes()
{
    section("CLASSES");
    for (const DrawingClass &each : m_database.classes()) {
        m_encoder.marker(m_out, "CLASS");
        m_encoder.plainText(m_out, 1, each.dxfName);
        m_encoder.text(m_out, 2, each.className);
        m_encoder.text(m_out, 3, each.application);
        m_encoder.integer(m_out, 90, each.proxyFlags);
        if (m_file->version() >= DrawingVersion::r2004)
            m_encoder.integer(m_out, 91, 0);
        m_encoder.integer(m_out, 280, each.wasProxy);
        m_encoder.integer(m_out, 281, each.isEntity);
    }
    endSection();
}

/// What a lost object owns goes with it.
bool Exporter::isOfTheLost(const AcDbStub &stub) const
{
    if (m_lostStubs.empty())
        return false;
    std::uint32_t owner = stub.owner;
    for (std::uint32_t steps = 0; owner != 0 && steps < m_database.stubCount(); ++steps) {
        if (m_lostStubs.contains(owner))
            return true;
        owner = m_database.stub(owner)->owner;
    }
    return false;
}

/// False when DXF has no form for it.
bool Exporter::object(const AcDbStub &stub)
{
    if (m_written[stub.index] || stub.has(AcDbStub::kErased))
        return true;
    m_written[stub.index] = true;
    if (isOfTheLost(stub))
        return false;
    ResbufList groups = m_database.fileGroups(stub);
    for (std::size_t i = 0; i < groups.size(); ++i) {
        if (groups[i].restype != 100 || !groups[i].text().startsWith(u"AcDbProxy"))
            continue;
        constexpr std::int64_t kFirstClass = 500;
        const resbuf *const classId = findGroup(groups, 91, i);
        const QByteArray kind = acdbKindName(stub.kind);
        if (!classId || classId->integer() < kFirstClass) {
            ++m_lost[kind];
            m_lostStubs.insert(stub.index);
            return false;
        }
        const char *const name = stub.has(AcDbStub::kEntity) ? "ACAD_PROXY_ENTITY" : "ACAD_PROXY_OBJECT";
        // What its class can read will be written by the class.
        const bool isRead =
            acdbKindClass(stub.kind, stub.has(AcDbStub::kEntity))->application() && !stub.object;
        if (kind != name && !isRead)
            ++m_proxies[kind];
        groups.front().assign(QString::fromLatin1(name));
        break;
    }
    m_encoder.append(m_out, groups);
    ++m_objects;
    return true;
}

void Exporter::table(SymbolTable kind)
{
    const AcDbStub *const head = m_database.symbolTableId(kind).stub();
    if (head) {
        object(*head);
    } else {
        m_encoder.marker(m_out, "TABLE");
        m_encoder.plainText(m_out, 2, tableName(kind));
        m_encoder.integer(m_out, 70, std::int64_t(m_database.tableRecords(kind).size()));
    }
    for (const std::uint32_t index : m_database.tableRecords(kind))
        object(*m_database.stub(index));
    m_encoder.marker(m_out, "ENDTAB");
}

void Exporter::tables()
{
    section("TABLES");
    for (const SymbolTable kind :
         {SymbolTable::viewport, SymbolTable::linetype, SymbolTable::layer, SymbolTable::textStyle,
          SymbolTable::view, SymbolTable::ucs, SymbolTable::appId, SymbolTable::dimStyle, SymbolTable::block})
        table(kind);
    endSection();
}

/// What an entity owns follows it among the stubs.
void Exporter::entity(std::uint32_t index)
{
    const AcDbStub &stub = *m_database.stub(index);
    if (stub.has(AcDbStub::kErased) || !object(stub))
        return;
    for (std::uint32_t part = index + 1; part < m_database.stubCount(); ++part) {
        const AcDbStub &next = *m_database.stub(part);
        if (!next.has(AcDbStub::kSubEntity) || next.owner != index)
            break;
        object(next);
    }
}

void Exporter::blocks()
{
    section("BLOCKS");
    for (const std::uint32_t index : m_database.tableRecords(SymbolTable::block)) {
        AcDbStub *const record = m_database.stub(index);
        const BlockContents *const contents = m_database.blockContents(AcDbObjectId(record));
        if (!contents || !contents->blockBegin || record->has(AcDbStub::kErased))
            continue;
        object(*contents->blockBegin);
        if (!isSpace(*record)) {
            for (const std::uint32_t each : contents->entities)
                entity(each);
        }
        if (contents->blockEnd)
            object(*contents->blockEnd);
        else
            m_encoder.marker(m_out, "ENDBLK");
    }
    endSection();
}

void Exporter::entities()
{
    section("ENTITIES");
    for (const AcDbObjectId space : {m_database.modelSpaceId(), m_database.paperSpaceId()}) {
        const BlockContents *const contents = m_database.blockContents(space);
        for (std::size_t i = 0; contents && i < contents->entities.size(); ++i)
            entity(contents->entities[i]);
    }
    endSection();
}

void Exporter::objects()
{
    section("OBJECTS");
    if (const AcDbStub *const root = m_database.namedObjectsDictionaryId().stub())
        object(*root);
    for (std::uint32_t index = 1; index < m_database.stubCount(); ++index) {
        const AcDbStub &stub = *m_database.stub(index);
        // Entities that are left stand in no block, but in a dictionary.
        if (!stub.has(AcDbStub::kSubEntity) && !stub.has(AcDbStub::kNoFileForm))
            object(stub);
    }
    endSection();
}

QString listOf(const std::map<QByteArray, int> &counts)
{
    QStringList parts;
    for (const auto &[kind, count] : counts)
        parts.append(QStringLiteral("%1 %2").arg(count).arg(QString::fromUtf8(kind)));
    return parts.join(QStringLiteral(", "));
}

Exported Exporter::run()
{
    header();
    classes();
    tables();
    blocks();
    entities();
    objects();
    m_encoder.marker(m_out, "EOF");
    Exported result{std::move(m_out), m_objects, {}};
    if (!m_lost.empty())
        result.losses.append(Host::tr("left out, because DXF has no form for them: %1").arg(listOf(m_lost)));
    if (!m_proxies.empty())
        result.losses.append(Host::tr("written as proxies, which other programs show but cannot edit: %1")
                                 .arg(listOf(m_proxies)));
    return result;
}

} // namespace

Exported exportDrawing(const AcDbDatabase &database)
{
    return Exporter(database).run();
}

} // namespace dxf
