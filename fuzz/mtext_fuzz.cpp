// Codes of multi-line text: whatever stands there is laid out and drawn in finite numbers, in every way that
// texts can be broken, turned and put into columns.
#include "host/acgi/text/mtext.h"
#include "host/acgi/text/text_layout.h"
#include "host/base/assert.h"

#include <cmath>

namespace
{

class FiniteSink : public AcGiGeometry
{
public:
    void polyline(std::uint32_t count, const AcGePoint3d *points) override
    {
        for (std::uint32_t i = 0; i < count; ++i)
            check(points[i]);
    }
    void arc(const acgi::Arc &) override {}
    void fill(std::span<const acgi::Loop> loops) override
    {
        for (const acgi::Loop &loop : loops)
            polyline(std::uint32_t(loop.size()), loop.data());
    }
    void text(const acgi::TextLine &line) override
    {
        QUILL_ASSERT(line.font && !line.text.isEmpty() && line.width >= 0.0);
        check(line.position);
        check(line.position + line.direction * line.width + line.up);
    }
    void infiniteLine(const AcGePoint3d &, const AcGeVector3d &, bool) override {}

private:
    static void check(const AcGePoint3d &point)
    {
        QUILL_ASSERT(std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z));
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString coded = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    std::vector<acgi::TextRule> rules;
    const QString plain = acgi::plainText(coded, rules);
    for (const acgi::TextRule &rule : rules)
        QUILL_ASSERT(rule.from >= 0 && rule.from < rule.to && rule.to <= plain.size());

    FiniteSink sink;
    acgi::MText text;
    text.coded = coded;
    acgi::drawMText(text, sink);
    text.wrapWidth = text.columnWidth = 7.0;
    text.columns = 3;
    text.columnHeights = {5.0, 0.5};
    text.attachment = 5;
    text.exactSpacing = true;
    text.maskFactor = 1.5;
    acgi::drawMText(text, sink);
    text.vertical = true;
    acgi::drawMText(text, sink);
    const acgi::MTextBox box = acgi::mtextBox(text);
    QUILL_ASSERT(box.low.x <= box.high.x && box.low.y <= box.high.y);
    return 0;
}
