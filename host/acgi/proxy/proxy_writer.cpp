// Writing proxy graphics: a sink that turns what an entity draws into chunks.
#include "host/acgi/proxy/proxy_chunks.h"
#include "host/acgi/proxy/proxy_graphics.h"
#include "host/acgi/text/font.h"
#include "host/acgi/world_draw.h"
#include "host/base/byte_stream.h"
#include "host/base/text_codec.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace acgi
{

namespace
{

/// Everything in world coordinates and plain kinds that every reader knows. Blocks are drawn out.
class ProxyWriter : public AcGiGeometry
{
public:
    explicit ProxyWriter(const AcDbDatabase *database)
        : m_unicode(database && database->version() >= DrawingVersion::r2007),
          m_codec(database ? database->headerText("$DWGCODEPAGE").toStdString() : std::string("ANSI_1252"))
    {
        m_out.put<std::uint32_t>(0);
        m_out.put<std::uint32_t>(0);
    }

    /// Empty when nothing was drawn.
    QByteArray take()
    {
        if (!m_anything)
            return {};
        m_out.patch<std::uint32_t>(0, std::uint32_t(m_out.size()));
        m_out.patch<std::uint32_t>(4, m_chunks);
        return m_out.take();
    }

    void polyline(std::uint32_t count, const AcGePoint3d *points) override
    {
        chain(proxy::Chunk::polyline, {points, count}, false);
    }

    void arc(const Arc &local) override
    {
        const Arc curve = toWorld(local);
        const double radius = curve.u.length();
        const AcGeVector3d normal = curve.u.crossProduct(curve.v);
        const double tolerance = 1e-9 * radius * radius;
        const bool circular = std::abs(curve.v.length() - radius) <= 1e-9 * radius &&
                              std::abs(curve.u.dotProduct(curve.v)) <= tolerance;
        if (!circular || normal.isZeroLength()) {
            std::vector<AcGePoint3d> points;
            local.appendSamples(points);
            return chain(proxy::Chunk::polyline, points, false);
        }
        setPen(false);
        if (curve.isWhole()) {
            begin(proxy::Chunk::circle);
            put(curve.centre.asVector());
            m_out.put<double>(radius);
            put(normal.normal());
            return end();
        }
        // Arcs turn counter-clockwise about the normal from their start.
        const bool forward = curve.sweep >= 0.0;
        const double start = forward ? curve.start : curve.start + curve.sweep;
        const double sweep = std::abs(curve.sweep);
        // Three points need fewer bytes, and say as much unless they lie close together.
        if ((normal.normal() - AcGeVector3d::kZAxis).isZeroLength() && sweep > 0.5 && sweep < 5.5) {
            begin(proxy::Chunk::arcThrough);
            for (const double share : {0.0, 0.5, 1.0})
                put(curve.at(start + share * sweep).asVector());
            m_out.put<std::uint32_t>(0);
            return end();
        }
        begin(proxy::Chunk::arc);
        put(curve.centre.asVector());
        m_out.put<double>(radius);
        put(normal.normal());
        put((curve.at(start) - curve.centre).normal());
        m_out.put<double>(sweep);
        m_out.put<std::uint32_t>(0);
        end();
    }

    void fill(std::span<const Loop> loops) override
    {
        for (const Loop &loop : loops)
            chain(proxy::Chunk::polygon, loop, true);
    }

    void text(const TextLine &line) override;

    void infiniteLine(const AcGePoint3d &base, const AcGeVector3d &direction, bool bothWays) override
    {
        setPen(false);
        begin(bothWays ? proxy::Chunk::constructionLine : proxy::Chunk::ray);
        put(toWorld(base).asVector());
        put(toWorld(base + direction).asVector());
        end();
    }

private:
    void begin(proxy::Chunk kind)
    {
        m_chunkBegin = m_out.size();
        m_out.put<std::uint32_t>(0);
        m_out.put<std::uint32_t>(std::uint32_t(kind));
    }

    void end()
    {
        m_out.zeros((4 - m_out.size() % 4) % 4);
        m_out.patch<std::uint32_t>(m_chunkBegin, std::uint32_t(m_out.size() - m_chunkBegin));
        ++m_chunks;
        m_anything = true;
    }

    void attribute(proxy::Chunk kind, std::uint32_t value)
    {
        begin(kind);
        m_out.put<std::uint32_t>(value);
        end();
    }

    void put(const AcGeVector3d &vector)
    {
        m_out.put<double>(vector.x);
        m_out.put<double>(vector.y);
        m_out.put<double>(vector.z);
    }

    /// Attributes hold until they change; but some readers forget the fill after each figure.
    void setPen(bool filled)
    {
        const Traits &pen = subEntityTraits().traits();
        if (!m_color || *m_color != pen.color) {
            m_color = pen.color;
            if (pen.color.colorMethod() == AcCmEntityColor::kByColor)
                attribute(proxy::Chunk::trueColor, proxy::kRgb << 24 | pen.color.rgb());
            else
                attribute(proxy::Chunk::color, std::uint32_t(pen.color.colorIndex()));
        }
        if (!m_lineWeight || *m_lineWeight != pen.lineWeight) {
            m_lineWeight = pen.lineWeight;
            attribute(proxy::Chunk::lineWeight, std::uint32_t(pen.lineWeight));
        }
        if (filled || m_filled)
            attribute(proxy::Chunk::fill, filled ? 1 : 0);
        m_filled = filled;
    }

    void chain(proxy::Chunk kind, std::span<const AcGePoint3d> points, bool filled)
    {
        setPen(filled);
        begin(kind);
        m_out.put<std::uint32_t>(std::uint32_t(points.size()));
        for (const AcGePoint3d &point : points)
            put(toWorld(point).asVector());
        end();
    }

    void string(const QString &text)
    {
        if (m_unicode) {
            m_out.utf16(text);
            m_out.put<std::uint16_t>(0);
        } else {
            m_out.bytes(m_codec.encode(text, base::Substitute::unicodeEscape));
            m_out.put<std::uint8_t>(0);
        }
        m_out.zeros((4 - m_out.size() % 4) % 4);
    }

    base::ByteWriter m_out;
    bool m_unicode;
    base::TextCodec m_codec;
    std::size_t m_chunkBegin = 0;
    std::uint32_t m_chunks = 0;
    bool m_anything = false;
    bool m_filled = false;
    std::optional<AcCmEntityColor> m_color;
    std::optional<int> m_lineWeight;
};

} // namespace

void ProxyWriter::text(const TextLine &line)
{
    const AcGeVector3d along = toWorld(line.position + line.direction) - toWorld(line.position);
    const AcGeVector3d leaning = toWorld(line.position + line.up) - toWorld(line.position);
    const AcGeVector3d normal = along.crossProduct(leaning).normal();
    const AcGeVector3d up = normal.crossProduct(along).normal();
    const double height = leaning.dotProduct(up);
    if (!(height > 0.0) || along.isZeroLength())
        return;
    const FontRequest font = line.font ? line.font->request() : FontRequest();
    setPen(false);
    begin(m_unicode ? proxy::Chunk::unicodeText2 : proxy::Chunk::text2);
    put(toWorld(line.position).asVector());
    put(normal);
    put(along.normal());
    string(line.text);
    m_out.put<std::int32_t>(std::int32_t(line.text.size()));
    m_out.put<std::int32_t>(1); // The text has no codes to be resolved.
    m_out.put<double>(height);
    m_out.put<double>(along.length() / height);
    m_out.put<double>(std::atan2(leaning.dotProduct(along.normal()), height));
    m_out.put<double>(line.tracking);
    for (int flag = 0; flag < 5; ++flag) // Backward, upside down, vertical, under- and overlined.
        m_out.put<std::uint32_t>(0);
    if (m_unicode) {
        m_out.put<std::uint32_t>(font.bold ? 1 : 0);
        m_out.put<std::uint32_t>(font.italic ? 1 : 0);
        m_out.put<std::uint32_t>(0); // Character set.
        m_out.put<std::uint32_t>(0); // Pitch.
        string(font.typeface);
    }
    string(font.fontFile);
    string(font.bigFontFile);
    end();
}

QByteArray makeProxyGraphics(const AcDbEntity &entity)
{
    ProxyWriter writer(entity.database());
    AcGiWorldDraw context(writer, kAcGiSaveWorldDrawForProxy);
    entity.saveAs(&context);
    return writer.take();
}

} // namespace acgi
