// Hatches: the groups of one or more HATCH entities, as text. What they draw is bounded, whatever they ask
// for.
#include "fuzz/counting_sink.h"
#include "host/acdb/dbsymtb.h"
#include "host/acgi/entity_groups.h"
#include "host/acgi/kinds/draw_entity.h"
#include "host/acgi/query/extents.h"
#include "host/formats/dxf/dxfreader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    QByteArray text("0\nSECTION\n2\nENTITIES\n0\nHATCH\n");
    text.append(reinterpret_cast<const char *>(data), qsizetype(size));
    text.append("\n0\nENDSEC\n0\nEOF\n");
    auto opened = readDxf(base::FileBytes::fromByteArray(text), QStringLiteral("fuzz"));
    if (!opened)
        return 0;
    std::vector<AcDbObjectId> entities;
    if (const AcDbObjectPointer<AcDbBlockTableRecord> space((*opened)->modelSpaceId(), AcDb::kForRead); space)
        entities = space->entities();
    for (const AcDbObjectId id : entities) {
        readEntity(id, [](const AcDbEntity &entity) {
            if (entity.dxfName() != "HATCH")
                return;
            fuzz::CountingSink sink(true);
            acgi::drawEntity(entity, sink);
            QUILL_ASSERT(sink.lines <= 200000 && sink.clips == 0);
            AcDbExtents box;
            acgi::extentsOf(entity, box);
        });
    }
    return 0;
}
