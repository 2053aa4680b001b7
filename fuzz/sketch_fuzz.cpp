// Sketches: whatever is read can be placed and drawn, and all its strokes stand in the bytes.
#include "quillnote/entity/sketch.h"

#include <cstdlib>

namespace
{

class Nowhere : public AcGiGeometry
{
public:
    void polyline(std::uint32_t, const AcGePoint3d *) override {}
    void arc(const AcGiArc &) override {}
    void fill(std::span<const AcGiLoop>) override {}
    void text(const AcGiTextLine &) override {}
    void infiniteLine(const AcGePoint3d &, const AcGeVector3d &, bool) override {}
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto decoded =
        sketch::decode(QByteArrayView(reinterpret_cast<const char *>(data), qsizetype(size)));
    if (!decoded)
        return 0;
    const sketch::Sketch &sketch = decoded.value();
    if (sketch.width < 1 || sketch.height < 1 || 12 + 28 * sketch.strokes.size() > size)
        std::abort();
    const sketch::Placement placement(sketch, {0, 0, 0}, {20, 10, 0}, {});
    Nowhere sink;
    sketch::draw(sketch, placement, AcGiCommonDraw(sink, kAcGiForExtents));
    bool drawsSomething = false;
    for (const sketch::Stroke &stroke : sketch.strokes)
        drawsSomething |= stroke.isDrawn();
    if (sketch::extents(sketch, placement).isValid() != drawsSomething)
        std::abort();
    return 0;
}
