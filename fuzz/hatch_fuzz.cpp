// Hatches: the groups of one or more HATCH entities, as text. What they draw is bounded, whatever they ask
// for.
#include "host/acdb/dbsymtb.h"
#include "host/acgi/gidraw.h"
#include "host/acgi/giextents.h"
#include "host/acgi/giread.h"
#include "host/base/assert.h"
#include "host/formats/dxf/dxfreader.h"

namespace
{

class CountingSink : public AcGiGeometry
{
public:
    std::size_t pieces = 0;
    int clips = 0;

    bool isDisplay() const override { return true; }
    void polyline(std::uint32_t count, const AcGePoint3d *) override { pieces += count > 0; }
    void arc(const AcGiArc &) override { ++pieces; }
    void fill(std::span<const AcGiLoop> loops) override { QUILL_ASSERT(!loops.empty()); }
    void text(const AcGiTextLine &) override {}
    void infiniteLine(const AcGePoint3d &, const AcGeVector3d &, bool) override {}
    void pushClip(std::span<const AcGiLoop>, bool) override { ++clips; }
    void popClip() override { --clips; }
};

} // namespace

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
            CountingSink sink;
            acgiDrawEntity(entity, sink);
            QUILL_ASSERT(sink.pieces <= 200000 && sink.clips == 0);
            AcDbExtents box;
            acgiExtents(entity, box);
        });
    }
    return 0;
}
