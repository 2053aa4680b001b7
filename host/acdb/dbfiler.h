// Filers: how an object's own fields travel. A DWG filer is a typed stream without names; a DXF filer
// is a list of groups. The object writes the same fields whatever is behind the filer: a file, an undo
// image, a copy, the carrier inside a DXF file.
#pragma once

#include "host/acdb/errorstatus.h"
#include "host/acdb/resbuf.h"

#include <map>

namespace AcDb
{
enum FilerType : int {
    kFileFiler = 0,
    kCopyFiler = 1,
    kUndoFiler = 2,
    kBagFiler = 3,
    kIdXlateFiler = 4,
    kPageFiler = 5,
    kDeepCloneFiler = 6,
    kIdFiler = 7,
    kPurgeFiler = 8,
    kWblockCloneFiler = 9,
};
} // namespace AcDb

/// Reads and writes in one fixed order. The first failure stays in filerStatus(); after it reads give
/// zero values and writes do nothing, and each call returns the failure.
class AcDbDwgFiler
{
public:
    virtual ~AcDbDwgFiler() = default;

    virtual AcDb::FilerType filerType() const = 0;
    virtual Acad::ErrorStatus filerStatus() const = 0;
    virtual void resetFilerStatus() = 0;
    /// The drawing that ids belong to; may be null for streams without ids.
    virtual AcDbDatabase *database() const = 0;

    virtual Acad::ErrorStatus readBool(bool &value) = 0;
    virtual Acad::ErrorStatus readInt16(std::int16_t &value) = 0;
    virtual Acad::ErrorStatus readUInt16(std::uint16_t &value) = 0;
    virtual Acad::ErrorStatus readInt32(std::int32_t &value) = 0;
    virtual Acad::ErrorStatus readUInt32(std::uint32_t &value) = 0;
    virtual Acad::ErrorStatus readDouble(double &value) = 0;
    virtual Acad::ErrorStatus readString(QString &value) = 0;
    virtual Acad::ErrorStatus readPoint3d(AcGePoint3d &value) = 0;
    virtual Acad::ErrorStatus readVector3d(AcGeVector3d &value) = 0;
    virtual Acad::ErrorStatus readHardPointerId(AcDbObjectId &value) = 0;
    virtual Acad::ErrorStatus readSoftPointerId(AcDbObjectId &value) = 0;
    /// A handle as a number: of an object of another drawing, or one that need not be there.
    virtual Acad::ErrorStatus readAcDbHandle(AcDbHandle &value) = 0;
    /// Exactly `size` bytes; refuses sizes beyond what the stream holds before allocating.
    virtual Acad::ErrorStatus readBytes(QByteArray &value, std::uint32_t size) = 0;

    virtual Acad::ErrorStatus writeBool(bool value) = 0;
    virtual Acad::ErrorStatus writeInt16(std::int16_t value) = 0;
    virtual Acad::ErrorStatus writeUInt16(std::uint16_t value) = 0;
    virtual Acad::ErrorStatus writeInt32(std::int32_t value) = 0;
    virtual Acad::ErrorStatus writeUInt32(std::uint32_t value) = 0;
    virtual Acad::ErrorStatus writeDouble(double value) = 0;
    virtual Acad::ErrorStatus writeString(const QString &value) = 0;
    virtual Acad::ErrorStatus writePoint3d(const AcGePoint3d &value) = 0;
    virtual Acad::ErrorStatus writeVector3d(const AcGeVector3d &value) = 0;
    virtual Acad::ErrorStatus writeHardPointerId(AcDbObjectId value) = 0;
    virtual Acad::ErrorStatus writeSoftPointerId(AcDbObjectId value) = 0;
    virtual Acad::ErrorStatus writeAcDbHandle(AcDbHandle value) = 0;
    virtual Acad::ErrorStatus writeBytes(const QByteArray &value) = 0;
};

/// A DWG filer over bytes in memory. Layout (docs/formats/mark-stream.md): little-endian; bool one byte;
/// text a 32-bit count of UTF-16 units and the units; point and vector three doubles; an id its 64-bit
/// handle, and a handle likewise; bytes as they are.
class AcDbMemoryFiler : public AcDbDwgFiler
{
public:
    /// For writing.
    AcDbMemoryFiler(AcDb::FilerType type, AcDbDatabase *database);
    /// For reading. Handles that name nothing in `database` read as null ids.
    AcDbMemoryFiler(AcDb::FilerType type, AcDbDatabase *database, QByteArray stream);

    /// Ids that are read name the copies of what they named, where there are some. The map outlives this.
    void setCopies(const std::map<AcDbHandle, AcDbHandle> *copies) { m_copies = copies; }

    const QByteArray &stream() const { return m_stream; }
    qsizetype position() const { return m_position; }

    AcDb::FilerType filerType() const override { return m_type; }
    Acad::ErrorStatus filerStatus() const override { return m_status; }
    void resetFilerStatus() override { m_status = Acad::eOk; }
    AcDbDatabase *database() const override { return m_database; }

    Acad::ErrorStatus readBool(bool &value) override;
    Acad::ErrorStatus readInt16(std::int16_t &value) override;
    Acad::ErrorStatus readUInt16(std::uint16_t &value) override;
    Acad::ErrorStatus readInt32(std::int32_t &value) override;
    Acad::ErrorStatus readUInt32(std::uint32_t &value) override;
    Acad::ErrorStatus readDouble(double &value) override;
    Acad::ErrorStatus readString(QString &value) override;
    Acad::ErrorStatus readPoint3d(AcGePoint3d &value) override;
    Acad::ErrorStatus readVector3d(AcGeVector3d &value) override;
    Acad::ErrorStatus readHardPointerId(AcDbObjectId &value) override;
    Acad::ErrorStatus readSoftPointerId(AcDbObjectId &value) override;
    Acad::ErrorStatus readAcDbHandle(AcDbHandle &value) override;
    Acad::ErrorStatus readBytes(QByteArray &value, std::uint32_t size) override;

    Acad::ErrorStatus writeBool(bool value) override;
    Acad::ErrorStatus writeInt16(std::int16_t value) override;
    Acad::ErrorStatus writeUInt16(std::uint16_t value) override;
    Acad::ErrorStatus writeInt32(std::int32_t value) override;
    Acad::ErrorStatus writeUInt32(std::uint32_t value) override;
    Acad::ErrorStatus writeDouble(double value) override;
    Acad::ErrorStatus writeString(const QString &value) override;
    Acad::ErrorStatus writePoint3d(const AcGePoint3d &value) override;
    Acad::ErrorStatus writeVector3d(const AcGeVector3d &value) override;
    Acad::ErrorStatus writeHardPointerId(AcDbObjectId value) override;
    Acad::ErrorStatus writeSoftPointerId(AcDbObjectId value) override;
    Acad::ErrorStatus writeAcDbHandle(AcDbHandle value) override;
    Acad::ErrorStatus writeBytes(const QByteArray &value) override;

private:
    template <class T>
    Acad::ErrorStatus take(T &value);
    template <class T>
    Acad::ErrorStatus put(T value);

    AcDb::FilerType m_type;
    AcDbDatabase *m_database;
    const std::map<AcDbHandle, AcDbHandle> *m_copies = nullptr;
    QByteArray m_stream;
    qsizetype m_position = 0;
    Acad::ErrorStatus m_status = Acad::eOk;
};

/// Reads or writes the groups of one object, extended data not included.
class AcDbDxfFiler
{
public:
    /// For writing.
    explicit AcDbDxfFiler(AcDbDatabase *database);
    /// For reading.
    AcDbDxfFiler(AcDbDatabase *database, ResbufList groups);

    AcDbDatabase *database() const { return m_database; }
    Acad::ErrorStatus filerStatus() const { return m_status; }
    /// A reader that refuses what it read stores its status here.
    Acad::ErrorStatus setError(Acad::ErrorStatus status);

    /// eEndOfFile after the last group; that end is not a failure and does not stay in filerStatus().
    Acad::ErrorStatus readResBuf(resbuf &group);
    /// True, and moves behind it, when the next group is the marker 100 with this name.
    bool atSubclassData(QStringView name);

    Acad::ErrorStatus writeSubclassMarker(QStringView name);
    Acad::ErrorStatus writeInt16(int code, std::int16_t value);
    Acad::ErrorStatus writeUInt16(int code, std::uint16_t value);
    Acad::ErrorStatus writeInt32(int code, std::int32_t value);
    Acad::ErrorStatus writeBool(int code, bool value);
    Acad::ErrorStatus writeDouble(int code, double value);
    Acad::ErrorStatus writeString(int code, const QString &value);
    Acad::ErrorStatus writePoint3d(int code, const AcGePoint3d &value);
    Acad::ErrorStatus writeVector3d(int code, const AcGeVector3d &value);

    const ResbufList &groups() const { return m_groups; }

private:
    Acad::ErrorStatus write(int code, resbuf::Value value);

    AcDbDatabase *m_database;
    ResbufList m_groups;
    std::size_t m_position = 0;
    Acad::ErrorStatus m_status = Acad::eOk;
};
