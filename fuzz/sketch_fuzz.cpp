// Sketches: whatever is read can be placed and drawn, and all its strokes stand in the bytes.
#include "fuzz/counting_sink.h"
#include "quillnote/entity/sketch.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto decoded =
        sketch::decode(QByteArrayView(reinterpret_cast<const char *>(data), qsizetype(size)));
    if (!decoded)
        return 0;
    const sketch::Sketch &sketch = decoded.value();
    QUILL_ASSERT(sketch.width >= 1 && sketch.height >= 1 && 12 + 28 * sketch.strokes.size() <= size);
    const sketch::Placement placement(sketch, {0, 0, 0}, {20, 10, 0}, {});
    fuzz::CountingSink sink;
    sketch::draw(sketch, placement, AcGiCommonDraw(sink, kAcGiForExtents));
    bool drawsSomething = false;
    for (const sketch::Stroke &stroke : sketch.strokes)
        drawsSomething |= stroke.isDrawn();
    QUILL_ASSERT(sketch::extents(sketch, placement).isValid() == drawsSomething);
    return 0;
}
