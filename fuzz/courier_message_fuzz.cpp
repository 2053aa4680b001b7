// Messages of other people: what is taken for one is written and joined as the same; nothing else gets past
// the courier.
#include "helpers/courier/message.h"

#include "host/base/assert.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArrayView bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    const auto header = courier::readMessage(bytes);
    if (!header)
        return 0;
    const SharedChange &change = *header->shared;
    QUILL_ASSERT(courier::isDrawingName(courier::drawingName(change)) && change.mark.size() == kIdentitySize);
    const QByteArray written = withMarkDataHeader(*header, bytes.sliced(qsizetype(kMarkDataHeaderSize)));
    const auto again = courier::readMessage(written);
    QUILL_ASSERT(again && *again->shared == change);
    const auto joined = readMarkDataHeader(joinMarkData(*header, {written, bytes.toByteArray()}));
    QUILL_ASSERT(joined && joined->markCount == 2 && joined->checksumHolds);
    return 0;
}
