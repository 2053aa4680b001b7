// Proxy graphics: any bytes are drawn or refused, and never more than they pay for.
#include "host/acgi/giproxygraphics.h"

#include <cstdlib>

namespace
{

/// Counts what it is given.
class CountingSink : public AcGiGeometry
{
public:
    std::size_t points = 0;
    void polyline(std::uint32_t count, const AcGePoint3d *) override { points += count; }
    void arc(const AcGiArc &) override { ++points; }
    void text(const AcGiTextLine &line) override { points += std::size_t(line.text.size()); }
    void infiniteLine(const AcGePoint3d &, const AcGeVector3d &, bool) override { ++points; }
    void fill(std::span<const AcGiLoop> loops) override
    {
        for (const AcGiLoop &loop : loops)
            points += loop.size();
    }
};

class Unknown : public AcDbEntity
{
public:
    Unknown() : AcDbEntity("UNKNOWN") {}
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const Unknown entity;
    CountingSink sink;
    acgiDrawProxyGraphics({reinterpret_cast<const std::byte *>(data), size}, entity, sink);
    // A vertex of a mesh shows twice; a wide arc of a light polyline has up to 140 points for a few bits.
    if (sink.points > 2000 * (size + 1))
        std::abort();
    return 0;
}
