// Linetypes: the groups of LTYPE records, as text, laid along lines and round a bent loop.
#include "host/acdb/dbsymtb.h"
#include "host/acgi/linetype/linetype.h"
#include "host/base/assert.h"
#include "host/formats/dxf/dxfreader.h"

namespace
{

class CountingSink : public acgi::DashSink
{
public:
    std::size_t pieces = 0;

    void dash(std::span<const QPointF> points) override
    {
        QUILL_ASSERT(!points.empty());
        ++pieces;
        for (const QPointF &point : points)
            QUILL_ASSERT(kReach.contains(point));
    }
    void text(const acgi::PatternText &text, QPointF place, double) override
    {
        QUILL_ASSERT(kReach.contains(place));
        ++pieces;
        acgi::patternShape(text);
    }

private:
    const QRectF kReach{-1e-6, -1e-6, 1e4 + 2e-6, 1e4 + 2e-6};
};

void layEverywhere(const acgi::Linetype &linetype)
{
    const QRectF everything(0, 0, 1e4, 1e4);
    const std::vector<QPointF> chains[] = {
        {{0, 0}, {1000, 1000}}, {{0, 0}, {1e4, 0}}, {{5, 5}, {5, 5}, {20, 5}, {20, 40}, {5, 6}}, {{7, 7}}};
    for (const auto &chain : chains) {
        for (const double scale : {1.0, 1e-3, 250.0}) {
            for (const QRectF &visible : {everything, QRectF(10, 1, 3, 30)}) {
                CountingSink sink;
                acgi::layPattern(linetype, scale, chain, chain.size() > 2, visible, 0.1, sink);
                // A dash, a dot or a text for each element, and both ends.
                QUILL_ASSERT(sink.pieces <= 2'100'000);
            }
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    QByteArray text("0\nSECTION\n2\nTABLES\n0\nTABLE\n2\nLTYPE\n70\n1\n0\nLTYPE\n");
    text.append(reinterpret_cast<const char *>(data), qsizetype(size));
    text.append("\n0\nENDTAB\n0\nENDSEC\n0\nEOF\n");
    auto opened = readDxf(base::FileBytes::fromByteArray(text), QStringLiteral("fuzz"));
    if (!opened)
        return 0;
    for (const AcDbObjectId id : AcDbSymbolTable(**opened, SymbolTable::linetype).records())
        layEverywhere(acgi::readLinetype(id));
    return 0;
}
