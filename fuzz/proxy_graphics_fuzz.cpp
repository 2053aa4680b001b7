// Proxy graphics: any bytes are drawn or refused, and never more than they pay for.
#include "fuzz/counting_sink.h"
#include "host/acgi/proxy/proxy_graphics.h"

namespace
{

class Unknown : public AcDbEntity
{
public:
    Unknown() : AcDbEntity("UNKNOWN") {}
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const Unknown entity;
    fuzz::CountingSink sink;
    acgi::drawProxyGraphics({reinterpret_cast<const std::byte *>(data), size}, entity, sink);
    // A vertex of a mesh shows twice; a wide arc of a light polyline has up to 140 points for a few bits.
    QUILL_ASSERT(sink.points <= 2000 * (size + 1));
    return 0;
}
