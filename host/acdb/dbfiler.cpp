#include "host/acdb/dbfiler.h"

#include "host/acdb/dbdatabase.h"

#include <QtEndian>

#include <bit>

AcDbMemoryFiler::AcDbMemoryFiler(AcDb::FilerType type, AcDbDatabase *database)
    : m_type(type), m_database(database)
{
}

AcDbMemoryFiler::AcDbMemoryFiler(AcDb::FilerType type, AcDbDatabase *database, QByteArray stream)
    : m_type(type), m_database(database), m_stream(std::move(stream))
{
}

template <class T>
Acad::ErrorStatus AcDbMemoryFiler::take(T &value)
{
    value = T();
    if (m_status == Acad::eOk && m_stream.size() - m_position < qsizetype(sizeof(T)))
        m_status = Acad::eEndOfFile;
    if (m_status == Acad::eOk) {
        value = qFromLittleEndian<T>(m_stream.constData() + m_position);
        m_position += qsizetype(sizeof(T));
    }
    return m_status;
}

template <class T>
Acad::ErrorStatus AcDbMemoryFiler::put(T value)
{
    if (m_status != Acad::eOk)
        return m_status;
    const T stored = qToLittleEndian(value);
    m_stream.append(reinterpret_cast<const char *>(&stored), sizeof(T));
    return m_status;
}

Acad::ErrorStatus AcDbMemoryFiler::readBool(bool &value)
{
    std::uint8_t stored = 0;
    take(stored);
    value = stored != 0;
    return m_status;
}

Acad::ErrorStatus AcDbMemoryFiler::readInt16(std::int16_t &value)
{
    return take(value);
}

Acad::ErrorStatus AcDbMemoryFiler::readUInt16(std::uint16_t &value)
{
    return take(value);
}

Acad::ErrorStatus AcDbMemoryFiler::readInt32(std::int32_t &value)
{
    return take(value);
}

Acad::ErrorStatus AcDbMemoryFiler::readUInt32(std::uint32_t &value)
{
    return take(value);
}

Acad::ErrorStatus AcDbMemoryFiler::readDouble(double &value)
{
    std::uint64_t bits = 0;
    take(bits);
    value = std::bit_cast<double>(bits);
    return m_status;
}

Acad::ErrorStatus AcDbMemoryFiler::readString(QString &value)
{
    value.clear();
    std::uint32_t units = 0;
    take(units);
    if (m_status == Acad::eOk && units > std::uint32_t(m_stream.size() - m_position) / 2)
        m_status = Acad::eEndOfFile;
    if (m_status != Acad::eOk)
        return m_status;
    value.resize(qsizetype(units));
    qFromLittleEndian<char16_t>(m_stream.constData() + m_position, qsizetype(units), value.data());
    m_position += 2 * qsizetype(units);
    return m_status;
}

Acad::ErrorStatus AcDbMemoryFiler::readPoint3d(AcGePoint3d &value)
{
    readDouble(value.x);
    readDouble(value.y);
    return readDouble(value.z);
}

Acad::ErrorStatus AcDbMemoryFiler::readVector3d(AcGeVector3d &value)
{
    readDouble(value.x);
    readDouble(value.y);
    return readDouble(value.z);
}

Acad::ErrorStatus AcDbMemoryFiler::readHardPointerId(AcDbObjectId &value)
{
    AcDbHandle handle;
    readAcDbHandle(handle);
    if (m_copies) {
        if (const auto copied = m_copies->find(handle); copied != m_copies->end())
            handle = copied->second;
    }
    value = m_database ? m_database->getAcDbObjectId(handle) : AcDbObjectId();
    return m_status;
}

Acad::ErrorStatus AcDbMemoryFiler::readAcDbHandle(AcDbHandle &value)
{
    return take(value.value);
}

Acad::ErrorStatus AcDbMemoryFiler::readSoftPointerId(AcDbObjectId &value)
{
    return readHardPointerId(value);
}

Acad::ErrorStatus AcDbMemoryFiler::readBytes(QByteArray &value, std::uint32_t size)
{
    value.clear();
    if (m_status == Acad::eOk && qsizetype(size) > m_stream.size() - m_position)
        m_status = Acad::eEndOfFile;
    if (m_status == Acad::eOk) {
        value = m_stream.mid(m_position, qsizetype(size));
        m_position += qsizetype(size);
    }
    return m_status;
}

Acad::ErrorStatus AcDbMemoryFiler::writeBool(bool value)
{
    return put(std::uint8_t(value ? 1 : 0));
}

Acad::ErrorStatus AcDbMemoryFiler::writeInt16(std::int16_t value)
{
    return put(value);
}

Acad::ErrorStatus AcDbMemoryFiler::writeUInt16(std::uint16_t value)
{
    return put(value);
}

Acad::ErrorStatus AcDbMemoryFiler::writeInt32(std::int32_t value)
{
    return put(value);
}

Acad::ErrorStatus AcDbMemoryFiler::writeUInt32(std::uint32_t value)
{
    return put(value);
}

Acad::ErrorStatus AcDbMemoryFiler::writeDouble(double value)
{
    return put(std::bit_cast<std::uint64_t>(value));
}

Acad::ErrorStatus AcDbMemoryFiler::writeString(const QString &value)
{
    if (put(std::uint32_t(value.size())) != Acad::eOk)
        return m_status;
    const qsizetype at = m_stream.size();
    m_stream.resize(at + 2 * value.size());
    qToLittleEndian<char16_t>(value.utf16(), value.size(), m_stream.data() + at);
    return m_status;
}

Acad::ErrorStatus AcDbMemoryFiler::writePoint3d(const AcGePoint3d &value)
{
    writeDouble(value.x);
    writeDouble(value.y);
    return writeDouble(value.z);
}

Acad::ErrorStatus AcDbMemoryFiler::writeVector3d(const AcGeVector3d &value)
{
    writeDouble(value.x);
    writeDouble(value.y);
    return writeDouble(value.z);
}

Acad::ErrorStatus AcDbMemoryFiler::writeHardPointerId(AcDbObjectId value)
{
    return put(value.handle().value);
}

Acad::ErrorStatus AcDbMemoryFiler::writeSoftPointerId(AcDbObjectId value)
{
    return put(value.handle().value);
}

Acad::ErrorStatus AcDbMemoryFiler::writeAcDbHandle(AcDbHandle value)
{
    return put(value.value);
}

Acad::ErrorStatus AcDbMemoryFiler::writeBytes(const QByteArray &value)
{
    if (m_status == Acad::eOk)
        m_stream.append(value);
    return m_status;
}

AcDbDxfFiler::AcDbDxfFiler(AcDbDatabase *database) : m_database(database) {}

AcDbDxfFiler::AcDbDxfFiler(AcDbDatabase *database, ResbufList groups)
    : m_database(database), m_groups(std::move(groups))
{
}

Acad::ErrorStatus AcDbDxfFiler::setError(Acad::ErrorStatus status)
{
    return m_status = status;
}

Acad::ErrorStatus AcDbDxfFiler::readResBuf(resbuf &group)
{
    if (m_status != Acad::eOk)
        return m_status;
    if (m_position >= m_groups.size())
        return Acad::eEndOfFile;
    group = m_groups[m_position++];
    return Acad::eOk;
}

bool AcDbDxfFiler::atSubclassData(QStringView name)
{
    if (m_status != Acad::eOk || m_position >= m_groups.size())
        return false;
    const resbuf &next = m_groups[m_position];
    if (next.restype != 100 || next.text() != name)
        return false;
    ++m_position;
    return true;
}

Acad::ErrorStatus AcDbDxfFiler::write(int code, resbuf::Value value)
{
    if (m_status == Acad::eOk)
        m_groups.emplace_back(code, std::move(value));
    return m_status;
}

Acad::ErrorStatus AcDbDxfFiler::writeSubclassMarker(QStringView name)
{
    return write(100, name.toString());
}

Acad::ErrorStatus AcDbDxfFiler::writeInt16(int code, std::int16_t value)
{
    return write(code, std::int64_t(value));
}

// Sixteen-bit groups are signed in the file: larger numbers come out negative and are read back as written.
Acad::ErrorStatus AcDbDxfFiler::writeUInt16(int code, std::uint16_t value)
{
    return write(code, std::int64_t(std::int16_t(value)));
}

Acad::ErrorStatus AcDbDxfFiler::writeInt32(int code, std::int32_t value)
{
    return write(code, std::int64_t(value));
}

Acad::ErrorStatus AcDbDxfFiler::writeBool(int code, bool value)
{
    return write(code, std::int64_t(value ? 1 : 0));
}

Acad::ErrorStatus AcDbDxfFiler::writeDouble(int code, double value)
{
    return write(code, value);
}

Acad::ErrorStatus AcDbDxfFiler::writeString(int code, const QString &value)
{
    return write(code, value);
}

Acad::ErrorStatus AcDbDxfFiler::writePoint3d(int code, const AcGePoint3d &value)
{
    return write(code, value);
}

Acad::ErrorStatus AcDbDxfFiler::writeVector3d(int code, const AcGeVector3d &value)
{
    return write(code, AcGePoint3d(value.x, value.y, value.z));
}
