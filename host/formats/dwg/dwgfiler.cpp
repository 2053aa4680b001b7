#include "host/formats/dwg/dwgfiler.h"

#include "host/acdb/dbdatabase.h"
#include "host/acdb/dbobject.h"
#include "host/formats/dwg/dwgbitwriter.h"
#include "host/formats/dwg/dwgsection.h"

namespace dwg
{

DwgFiler::DwgFiler(const FileFacts &facts, AcDbDatabase *database)
    : m_facts(facts), m_database(database), m_data(std::make_unique<BitWriter>()),
      m_texts(std::make_unique<BitWriter>())
{
}

DwgFiler::DwgFiler(const FileFacts &facts, AcDbDatabase *database, std::string_view record, bool isEntity)
    : m_facts(facts), m_database(database), m_reader(std::make_unique<ObjectReader>(facts, record))
{
    if (m_reader->good())
        m_reader->readCommon(isEntity);
    if (!m_reader->good())
        m_status = Acad::eEndOfFile;
}

DwgFiler::~DwgFiler() = default;

FiledFields DwgFiler::fields() const
{
    if (!m_data)
        return {};
    return {m_data->written(), m_texts->written(), m_data->size(), m_texts->size(), m_handles};
}

/// What does not fit into the data any more is not there.
template <class Value, class Read>
Acad::ErrorStatus DwgFiler::take(Value &value, Read read)
{
    value = Value();
    if (!m_reader && m_status == Acad::eOk)
        m_status = Acad::eEndOfFile;
    if (m_status != Acad::eOk)
        return m_status;
    Value taken = read(*m_reader);
    if (m_reader->good() && m_reader->data.position() <= m_reader->dataEnd())
        value = std::move(taken);
    else
        m_status = Acad::eEndOfFile;
    return m_status;
}

template <class Write>
Acad::ErrorStatus DwgFiler::put(Write write)
{
    if (m_status == Acad::eOk && m_data)
        write(*m_data);
    return m_status;
}

Acad::ErrorStatus DwgFiler::readBool(bool &value)
{
    return take(value, [](ObjectReader &in) { return in.data.bit(); });
}

Acad::ErrorStatus DwgFiler::readInt16(std::int16_t &value)
{
    return take(value, [](ObjectReader &in) { return in.data.bitShort(); });
}

Acad::ErrorStatus DwgFiler::readUInt16(std::uint16_t &value)
{
    return take(value, [](ObjectReader &in) { return std::uint16_t(in.data.bitShort()); });
}

Acad::ErrorStatus DwgFiler::readInt32(std::int32_t &value)
{
    return take(value, [](ObjectReader &in) { return in.data.bitLong(); });
}

Acad::ErrorStatus DwgFiler::readUInt32(std::uint32_t &value)
{
    return take(value, [](ObjectReader &in) { return std::uint32_t(in.data.bitLong()); });
}

Acad::ErrorStatus DwgFiler::readDouble(double &value)
{
    return take(value, [](ObjectReader &in) { return in.data.bitDouble(); });
}

Acad::ErrorStatus DwgFiler::readString(QString &value)
{
    return take(value, [](ObjectReader &in) { return in.text(); });
}

Acad::ErrorStatus DwgFiler::readPoint3d(AcGePoint3d &value)
{
    return take(value, [](ObjectReader &in) { return in.data.point3(); });
}

Acad::ErrorStatus DwgFiler::readVector3d(AcGeVector3d &value)
{
    return take(value, [](ObjectReader &in) {
        const AcGePoint3d end = in.data.point3();
        return AcGeVector3d(end.x, end.y, end.z);
    });
}

/// Handles that name nothing in the drawing read as null ids.
Acad::ErrorStatus DwgFiler::takeId(AcDbObjectId &value)
{
    return take(value, [this](ObjectReader &in) {
        const std::uint64_t handle = in.reference().handle;
        return m_database ? m_database->getAcDbObjectId({handle}) : AcDbObjectId();
    });
}

Acad::ErrorStatus DwgFiler::readHardPointerId(AcDbObjectId &value)
{
    return takeId(value);
}

Acad::ErrorStatus DwgFiler::readSoftPointerId(AcDbObjectId &value)
{
    return takeId(value);
}

Acad::ErrorStatus DwgFiler::readBytes(QByteArray &value, std::uint32_t size)
{
    return take(value, [size](ObjectReader &in) { return in.data.bytes(size); });
}

Acad::ErrorStatus DwgFiler::writeBool(bool value)
{
    return put([value](BitWriter &out) { out.bit(value); });
}

Acad::ErrorStatus DwgFiler::writeInt16(std::int16_t value)
{
    return put([value](BitWriter &out) { out.bitShort(value); });
}

Acad::ErrorStatus DwgFiler::writeUInt16(std::uint16_t value)
{
    return put([value](BitWriter &out) { out.bitShort(value); });
}

Acad::ErrorStatus DwgFiler::writeInt32(std::int32_t value)
{
    return put([value](BitWriter &out) { out.bitLong(value); });
}

Acad::ErrorStatus DwgFiler::writeUInt32(std::uint32_t value)
{
    return put([value](BitWriter &out) { out.bitLong(std::int32_t(value)); });
}

Acad::ErrorStatus DwgFiler::writeDouble(double value)
{
    return put([value](BitWriter &out) { out.bitDouble(value); });
}

Acad::ErrorStatus DwgFiler::writeString(const QString &value)
{
    const bool isWide = m_facts.hasTextStream();
    const QByteArray bytes = storedText(m_facts, value);
    const qsizetype length = isWide ? bytes.size() / 2 : bytes.size();
    constexpr qsizetype kLongest = 0xFFFF;
    if (length > kLongest && m_status == Acad::eOk)
        m_status = Acad::eInvalidInput;
    return put([&](BitWriter &data) {
        BitWriter &out = isWide ? *m_texts : data;
        out.bitShort(int(length));
        out.bytes(bytes);
    });
}

Acad::ErrorStatus DwgFiler::writePoint3d(const AcGePoint3d &value)
{
    return put([&value](BitWriter &out) { out.point3(value); });
}

Acad::ErrorStatus DwgFiler::writeVector3d(const AcGeVector3d &value)
{
    return put([&value](BitWriter &out) { out.point3({value.x, value.y, value.z}); });
}

Acad::ErrorStatus DwgFiler::putId(Reference kind, AcDbObjectId value)
{
    return put([&](BitWriter &) { m_handles.push_back({kind, value.handle().value}); });
}

Acad::ErrorStatus DwgFiler::writeHardPointerId(AcDbObjectId value)
{
    return putId(Reference::hardPointer, value);
}

Acad::ErrorStatus DwgFiler::writeSoftPointerId(AcDbObjectId value)
{
    return putId(Reference::softPointer, value);
}

Acad::ErrorStatus DwgFiler::writeBytes(const QByteArray &value)
{
    return put([&value](BitWriter &out) { out.bytes(value); });
}

base::Result<FiledFields, Acad::ErrorStatus> filedFields(const FileFacts &facts, AcDbObjectId id)
{
    AcDbObjectPointer<AcDbObject> object(id, AcDb::kForRead);
    if (!object)
        return base::Failure{Acad::eNullObjectPointer};
    DwgFiler filer(facts, id.database());
    const Acad::ErrorStatus status = object->dwgOutFields(&filer);
    if (status != Acad::eOk)
        return base::Failure{status};
    return filer.fields();
}

} // namespace dwg
