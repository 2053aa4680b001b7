// DWG files: containers, decompression, maps, and every object that they lead to.
#include "host/base/assert.h"
#include "host/formats/dwg/dwgdecompress.h"
#include "host/formats/dwg/dwgreader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view bytes(reinterpret_cast<const char *>(data), size);
    constexpr std::size_t kLimit = 1 << 16;
    QUILL_ASSERT(std::size_t(dwg::decompress18(bytes, kLimit).bytes.size()) <= kLimit);
    QUILL_ASSERT(std::size_t(dwg::decompress21(bytes, kLimit).bytes.size()) <= kLimit);
    const auto opened = readDwg(base::FileBytes::fromByteArray(QByteArrayView(data, qsizetype(size))),
                                QStringLiteral("fuzz"));
    if (!opened)
        return 0;
    const AcDbDatabase &database = **opened;
    for (std::uint32_t index = 1; index < database.stubCount(); ++index)
        static_cast<void>(database.fileGroups(*database.stub(index)));
    return 0;
}
