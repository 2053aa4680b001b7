// Icons as strokes.
#include "app/window/stroke_drawing.h"

#include <cmath>
#include <cstdlib>

/// Whatever is read can be painted.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto drawn =
        window::readStrokes(QString::fromLatin1(reinterpret_cast<const char *>(data), qsizetype(size)));
    for (const QPainterPath &path :
         {drawn ? drawn->lines : QPainterPath(), drawn ? drawn->areas : QPainterPath()}) {
        const QRectF box = path.controlPointRect();
        if (!std::isfinite(box.width()) || !std::isfinite(box.height()))
            std::abort();
    }
    return 0;
}
