// DwgFiler: the fields of a custom object in the bits of a DWG file.
//
// Each item takes the code that the format has for its type: a bool B, 16 bits BS, 32 bits BL, a double BD, a
// text T, points and vectors 3BD, bytes as they are. Ids stand among the handles.
#pragma once

#include "host/acdb/dbfiler.h"
#include "host/formats/dwg/dwgencoder.h"

#include <memory>

namespace dwg
{

class BitWriter;

class DwgFiler : public AcDbDwgFiler
{
public:
    /// For writing; fields() is what was written.
    DwgFiler(const FileFacts &facts, AcDbDatabase *database);
    /// For reading. The record has to outlive the filer.
    DwgFiler(const FileFacts &facts, AcDbDatabase *database, std::string_view record, bool isEntity);
    ~DwgFiler() override;

    FiledFields fields() const;

    AcDb::FilerType filerType() const override { return AcDb::kFileFiler; }
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
    Acad::ErrorStatus writeBytes(const QByteArray &value) override;

private:
    template <class Value, class Read>
    Acad::ErrorStatus take(Value &value, Read read);
    template <class Write>
    Acad::ErrorStatus put(Write write);
    Acad::ErrorStatus takeId(AcDbObjectId &value);
    Acad::ErrorStatus putId(Reference kind, AcDbObjectId value);

    const FileFacts &m_facts;
    AcDbDatabase *m_database;
    std::unique_ptr<ObjectReader> m_reader; ///< Null for writing.
    std::unique_ptr<BitWriter> m_data, m_texts;
    std::vector<HandleRef> m_handles;
    Acad::ErrorStatus m_status = Acad::eOk;
};

/// What a custom object of the database files. The error is the status that its class gave.
base::Result<FiledFields, Acad::ErrorStatus> filedFields(const FileFacts &facts, AcDbObjectId id);

} // namespace dwg
