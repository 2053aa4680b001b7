// ObjectEncoder: one object of the database as the bytes of its place in a DXF file.
#pragma once

#include "host/formats/dxf/dxfencoder.h"

#include <optional>

namespace dxf
{

class ObjectEncoder
{
public:
    ObjectEncoder(const AcDbDatabase &database, const DxfSource &source, const Encoder &encoder)
        : m_database(database), m_source(source), m_encoder(encoder)
    {
    }

    /// Groups that came from the file stay as they are. Others are left out when the file's version
    /// knows nothing of them; the object's handle is put in when it is missing. `recordCount`
    /// replaces the first group 70 (of a table). Damaged bytes at the object's end are kept.
    QByteArray encode(const AcDbStub &stub, std::optional<std::int64_t> recordCount = {}) const;

private:
    std::string_view unreadableTail(const AcDbStub &stub) const;
    void leaveOutUnknown(ResbufList &groups, const AcDbStub &stub) const;

    const AcDbDatabase &m_database;
    const DxfSource &m_source;
    const Encoder &m_encoder;
};

/// The code of an object's own handle.
int handleCode(AcDbKind kind);

} // namespace dxf
