// Mark data files: whatever is read, is written and read again as the same; nothing is made of what is not
// there.
#include "quillnote/exchange/mark_data_file.h"

#include "host/base/assert.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArrayView file(reinterpret_cast<const char *>(data), qsizetype(size));
    const auto header = readMarkDataHeader(file);
    if (!header)
        return 0;
    if (header->kind == MarkDataKind::erased) {
        const auto guids = readErasedMarks(file, *header);
        if (!guids)
            return 0;
        QUILL_ASSERT(guids->size() == header->markCount);
        const QByteArray written = encodeErasedMarks(*guids, header->shared);
        const auto again = readMarkDataHeader(written);
        QUILL_ASSERT(again && again->checksumHolds && again->shared == header->shared &&
                     readErasedMarks(written, *again) == guids);
        return 0;
    }
    const MarkDataContents read = readMarkData(file, *header);
    QUILL_ASSERT(read.data.marks.size() * 100 <= size);
    const QByteArray first = encodeMarkData(read.data);
    const MarkDataContents again = readMarkData(first, *readMarkDataHeader(first));
    QUILL_ASSERT(again.missing == 0 && again.left == 0 && encodeMarkData(again.data) == first);
    return 0;
}
