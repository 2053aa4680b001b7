// Drawing: the groups of entities (and of whatever sections the text goes on with), drawn into a sink that
// counts. No number in a file makes more than what its bytes pay for.
#include "fuzz/counting_sink.h"
#include "host/acdb/dbsymtb.h"
#include "host/acgi/kinds/draw_entity.h"
#include "host/formats/dxf/dxfreader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    QByteArray text("0\nSECTION\n2\nENTITIES\n");
    text.append(reinterpret_cast<const char *>(data), qsizetype(size));
    text.append("\n0\nENDSEC\n0\nEOF\n");
    auto opened = readDxf(base::FileBytes::fromByteArray(text), QStringLiteral("fuzz"));
    if (!opened)
        return 0;
    const AcDbObjectPointer<AcDbBlockTableRecord> space((*opened)->modelSpaceId(), AcDb::kForRead);
    if (!space)
        return 0;
    for (const AcDbObjectId id : space->entities()) {
        const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
        fuzz::CountingSink sink;
        if (entity && entity->dxfName() != "HATCH" && entity->dxfName() != "MPOLYGON")
            acgi::drawEntity(*entity, sink);
        QUILL_ASSERT(sink.clips == 0);
        // A wide arc has up to 140 points for a vertex of a few bytes; a jagged curve keeps its samples.
        QUILL_ASSERT(sink.points <= 400 * (size + 20));
    }
    return 0;
}
