#include "host/acgi/kinds/draw_tools.h"

#include "host/acdb/dbdict.h"
#include "host/acgi/kinds/draw_entity.h"
#include "host/acgi/proxy/proxy_chunks.h"
#include "host/acgi/text/text_layout.h"
#include "host/base/host_text.h"

namespace acgi
{

bool isFillOn(const AcDbEntity &entity)
{
    static const QByteArray kVariable = QByteArrayLiteral("$FILLMODE");
    return !entity.database() || entity.database()->headerInteger(kVariable, 1) != 0;
}

void noteCutText(const AcDbEntity &entity, AcGiGeometry &sink)
{
    sink.noteUndrawn(Host::tr("%1: the first %2 characters only")
                         .arg(QLatin1String(entity.dxfName()))
                         .arg(kMostShownCharacters));
}

void drawClosed(Loop loop, AcGiGeometry &sink)
{
    if (loop.empty())
        return;
    loop.push_back(loop.front());
    sink.polyline(std::uint32_t(loop.size()), loop.data());
}

void drawArea(const AcDbEntity &entity, const Loop &loop, AcGiGeometry &sink)
{
    if (isFillOn(entity))
        sink.fill(std::span(&loop, 1));
    else
        drawClosed(loop, sink);
}

// Leaders know one form more than proxy graphics: the colour of the window.
AcCmEntityColor colorOfRaw(std::int64_t raw)
{
    constexpr std::uint32_t kWindow = 0xC8;
    const auto packed = std::uint32_t(raw);
    return packed >> 24 == kWindow ? AcCmEntityColor::background() : proxy::colorOf(packed);
}

std::optional<AcCmEntityColor> statedColor(const OwnGroups &groups, int indexCode, int rgbCode)
{
    if (const resbuf *const rgb = groups.find(rgbCode))
        return AcCmEntityColor::fromRgb(std::uint32_t(rgb->integer()));
    if (const resbuf *const index = groups.find(indexCode))
        return AcCmEntityColor::fromIndex(int(std::clamp<std::int64_t>(index->integer(), -256, 256)));
    return std::nullopt;
}

AcDbObjectId dictionaryEntry(AcDbObjectId dictionary, const QString &key)
{
    const AcDbObjectPointer<AcDbDictionary> opened(dictionary, AcDb::kForRead);
    return opened ? opened->getAt(key) : AcDbObjectId();
}

AcDbObjectId dictionaryEntry(AcDbObjectId parent, const QString &dictionary, const QString &key)
{
    return dictionaryEntry(dictionaryEntry(parent, dictionary), key);
}

std::int64_t frameVariable(const AcDbEntity &entity, const QString &name, std::int64_t fallback)
{
    std::int64_t value = fallback;
    if (entity.database())
        readObject(dictionaryEntry(entity.database()->namedObjectsDictionaryId(), name),
                   [&](const AcDbObject &object) { value = OwnGroups(object).integer(70, fallback); });
    return value;
}

namespace
{

/// Joins what a closed entity draws to one chain.
class OutlineSink : public AcGiGeometry
{
public:
    Loop points;

    void polyline(std::uint32_t count, const AcGePoint3d *first) override
    {
        for (std::uint32_t i = 0; i < count; ++i)
            add(toWorld(first[i]));
    }
    void arc(const Arc &arc) override
    {
        Loop samples;
        toWorld(arc).appendSamples(samples);
        for (const AcGePoint3d &sample : samples)
            add(sample);
    }
    void fill(std::span<const Loop>) override {}
    void text(const TextLine &) override {}
    void infiniteLine(const AcGePoint3d &, const AcGeVector3d &, bool) override {}
    bool blockReference(const BlockPlacement &) override { return true; }

private:
    void add(const AcGePoint3d &point)
    {
        if (points.empty() || !points.back().isEqualTo(point))
            points.push_back(point);
    }
};

} // namespace

Loop outlineOf(const AcDbEntity &entity)
{
    OutlineSink sink;
    drawEntity(entity, sink);
    return std::move(sink.points);
}

} // namespace acgi
