// The DXF reader, decoder and writer: what opens is saved as the same bytes, and with an entity added it
// opens again and has that entity.
#include "host/acdb/dbsymtb.h"
#include "host/base/assert.h"
#include "host/formats/dxf/dxfreader.h"
#include "host/formats/dxf/dxfwriter.h"

static AcDbHandle addPoint(AcDbDatabase &database)
{
    auto *const entity = static_cast<AcDbEntity *>(acdbKindClass(acdbKind("POINT"), true)->create());
    entity->editGroups() = {{0, QStringLiteral("POINT")},
                            {100, QStringLiteral("AcDbEntity")},
                            {8, QStringLiteral("0")},
                            {100, QStringLiteral("AcDbPoint")},
                            {10, AcGePoint3d(1.0, 2.0, 3.0)}};
    AcDbObjectPointer<AcDbBlockTableRecord> space(database.modelSpaceId(), AcDb::kForWrite);
    AcDbObjectId id;
    QUILL_ASSERT(space && space->appendAcDbEntity(id, entity) == Acad::eOk);
    entity->close();
    return id.handle();
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArrayView bytes(data, qsizetype(size));
    auto opened = readDxf(base::FileBytes::fromByteArray(bytes), QStringLiteral("fuzz"));
    if (!opened)
        return 0;
    AcDbDatabase &database = **opened;
    for (std::uint32_t index = 1; index < database.stubCount(); ++index)
        static_cast<void>(database.fileGroups(*database.stub(index)));
    const auto untouched = writeDxf(database);
    QUILL_ASSERT(untouched && *untouched == bytes);

    const AcDbHandle added = addPoint(database);
    const auto changed = writeDxf(database);
    QUILL_ASSERT(changed);
    const auto again = readDxf(base::FileBytes::fromByteArray(*changed), QStringLiteral("fuzz again"));
    QUILL_ASSERT(again && !(*again)->getAcDbObjectId(added).isNull());
    return 0;
}
