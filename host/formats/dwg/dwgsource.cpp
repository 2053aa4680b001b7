#include "host/formats/dwg/dwgsource.h"

#include "host/acdb/dbdatabase.h"
#include "host/formats/dwg/dwgfiler.h"
#include "host/formats/dwg/dwgkinds.h"

#include <algorithm>

DwgSource::DwgSource(base::FileBytes bytes, dwg::Container container)
    : m_bytes(std::move(bytes)),
      m_container(std::move(container)), m_facts{m_container.version,
                                                 base::TextCodec::fromDwgNumber(m_container.codePage)}
{
}

std::string_view DwgSource::recordAt(std::uint64_t offset) const
{
    // The longest record that the format's own length can tell.
    constexpr std::uint64_t kLongest = (std::uint64_t(1) << 30) + 16;
    const std::string_view objects = m_container.objects;
    if (offset >= objects.size())
        return {};
    return objects.substr(std::size_t(offset), std::size_t(kLongest));
}

std::string_view DwgSource::record(const AcDbStub &stub) const
{
    return dwg::partOf(m_container.objects, stub.begin, stub.size);
}

const DwgClass *DwgSource::classOf(int type) const
{
    if (type < dwg::kFirstClass)
        return nullptr;
    const std::size_t place = std::size_t(type - dwg::kFirstClass);
    if (place < m_classes.size() && m_classes[place].number == type)
        return &m_classes[place];
    const auto found = std::ranges::find(m_classes, type, &DwgClass::number);
    return found == m_classes.end() ? nullptr : &*found;
}

const dwg::Kind *DwgSource::kindOf(int type) const
{
    const DwgClass *const known = classOf(type);
    const dwg::Kind *const kind = type < dwg::kFirstClass ? dwg::kindOfType(type)
                                  : known                 ? dwg::kindOfClass(known->dxfName)
                                                          : nullptr;
    return kind && (kind->until == DrawingVersion::unknown || m_facts.version < kind->until) ? kind : nullptr;
}

QString dwgTableName(int controlType)
{
    switch (controlType) {
    case 0x30:
        return QStringLiteral("BLOCK_RECORD");
    case 0x32:
        return QStringLiteral("LAYER");
    case 0x34:
        return QStringLiteral("STYLE");
    case 0x38:
        return QStringLiteral("LTYPE");
    case 0x3C:
        return QStringLiteral("VIEW");
    case 0x3E:
        return QStringLiteral("UCS");
    case 0x40:
        return QStringLiteral("VPORT");
    case 0x42:
        return QStringLiteral("APPID");
    case 0x44:
        return QStringLiteral("DIMSTYLE");
    default:
        return {};
    }
}

const DwgClass *DwgSource::classNamed(const QByteArray &dxfName) const
{
    const auto found = std::ranges::find(m_classes, dxfName, &DwgClass::dxfName);
    return found == m_classes.end() ? nullptr : &*found;
}

dwg::ObjectPlace DwgSource::placeOf(const AcDbStub &stub) const
{
    const dwg::ObjectReader head(m_facts, record(stub));
    dwg::ObjectPlace place;
    place.record = record(stub);
    place.kindName = acdbKindName(stub.kind);
    place.kind = kindOf(head.type());
    place.isEntity = stub.has(AcDbStub::kEntity);
    place.tableName = dwgTableName(head.type());
    const AcDbStub *const owner = stub.owner != 0 ? stub.database->stub(stub.owner) : nullptr;
    if (owner)
        place.owner = owner->handle;
    if (head.type() == dwg::kBlockBegin && owner)
        place.blockOfBegin = record(*owner);
    if (const DwgClass *const known = classOf(head.type()))
        place.classVersion = known->version | known->maintenance << 16;
    return place;
}

std::unique_ptr<AcDbDwgFiler> DwgSource::fieldsOf(const AcDbStub &stub) const
{
    if (!stub.has(AcDbStub::kHasSource))
        return nullptr;
    return std::make_unique<dwg::DwgFiler>(m_facts, stub.database, record(stub), stub.has(AcDbStub::kEntity));
}

ResbufList DwgSource::read(const AcDbStub &stub) const
{
    return dwg::decodeObject(m_facts, m_neighbours, placeOf(stub));
}
