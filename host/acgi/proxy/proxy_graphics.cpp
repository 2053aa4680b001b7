// Reading proxy graphics: chunks of a size, a kind and a body, drawn one after the other.
#include "host/acgi/proxy/proxy_graphics.h"

#include "host/acdb/dbsymtb.h"
#include "host/acgi/proxy/proxy_chunks.h"
#include "host/acgi/text/font.h"
#include "host/acgi/text/text_layout.h"
#include "host/base/bit_stream.h"
#include "host/base/byte_stream.h"
#include "host/base/text_codec.h"

#include <algorithm>
#include <cmath>

namespace acgi
{

using base::ByteReader;

namespace
{

/// Draws chunk after chunk. Attributes hold until they change; matrices nest.
class ProxyPlayer
{
public:
    ProxyPlayer(const AcDbEntity &entity, AcGiGeometry &sink)
        : m_sink(sink), m_pen(sink.subEntityTraits()), m_database(entity.database())
    {
    }
    ~ProxyPlayer()
    {
        while (m_pushed-- > 0)
            m_sink.popModelTransform();
    }
    ProxyPlayer(const ProxyPlayer &) = delete;
    ProxyPlayer &operator=(const ProxyPlayer &) = delete;

    bool play(ByteReader graphics)
    {
        graphics.skip(8); // Size and number of the chunks.
        while (graphics.left() >= 8 && !m_sink.isDone()) {
            const auto size = graphics.get<std::uint32_t>();
            const auto kind = graphics.get<std::uint32_t>();
            if (size < 8 || size - 8 > graphics.left())
                return false;
            const auto body = graphics.bytes(size - 8);
            ByteReader chunk(
                QByteArrayView(reinterpret_cast<const char *>(body.data()), qsizetype(body.size())));
            draw(proxy::Chunk(kind), chunk);
            if (chunk.failed())
                return false;
        }
        return !graphics.failed();
    }

private:
    void draw(proxy::Chunk kind, ByteReader &chunk);
    void setAttribute(proxy::Chunk kind, ByteReader &chunk);
    void drawText(proxy::Chunk kind, ByteReader &chunk);

    static AcGePoint3d point(ByteReader &chunk)
    {
        const double x = chunk.get<double>();
        const double y = chunk.get<double>();
        return {x, y, chunk.get<double>()};
    }
    static AcGeVector3d vector(ByteReader &chunk) { return point(chunk).asVector(); }

    /// As many points as the chunk says and has room for.
    static std::vector<AcGePoint3d> points(ByteReader &chunk, std::uint64_t count)
    {
        constexpr std::size_t kPointSize = 24;
        std::vector<AcGePoint3d> list;
        if (count > chunk.left() / kPointSize) {
            chunk.fail();
            return list;
        }
        list.reserve(count);
        for (std::uint64_t i = 0; i < count; ++i)
            list.push_back(point(chunk));
        return list;
    }

    void circleThrough(ByteReader &chunk)
    {
        const AcGePoint3d a = point(chunk);
        const AcGePoint3d b = point(chunk);
        const AcGePoint3d c = point(chunk);
        if (auto arc = arcThrough(a, b, c)) {
            arc->sweep = 2.0 * kGePi;
            m_sink.arc(*arc);
        }
    }

    void circularArc(ByteReader &chunk)
    {
        const AcGePoint3d centre = point(chunk);
        const double radius = chunk.get<double>();
        const AcGeVector3d normal = vector(chunk);
        const AcGeVector3d start = vector(chunk);
        const double sweep = chunk.get<double>();
        m_sink.circularArc(centre, radius, normal, start, sweep);
    }

    void ellipticArc(ByteReader &chunk)
    {
        Arc arc;
        arc.centre = point(chunk);
        const AcGeVector3d normal = vector(chunk).normal();
        const double major = chunk.get<double>();
        const double minor = chunk.get<double>();
        arc.start = chunk.get<double>();
        arc.sweep = chunk.get<double>() - arc.start;
        const double turn = chunk.get<double>();
        const AcGeMatrix3d plane = AcGeMatrix3d::planeToWorld(normal);
        arc.u = plane * AcGeVector3d(std::cos(turn), std::sin(turn), 0.0) * major;
        arc.v = plane * AcGeVector3d(-std::sin(turn), std::cos(turn), 0.0) * minor;
        m_sink.arc(arc);
    }

    void chain(ByteReader &chunk, bool closed)
    {
        const std::vector<AcGePoint3d> list = points(chunk, chunk.get<std::uint32_t>());
        if (list.empty())
            return;
        if (closed)
            m_sink.polygon(std::uint32_t(list.size()), list.data());
        else
            m_sink.polyline(std::uint32_t(list.size()), list.data());
    }

    void mesh(ByteReader &chunk)
    {
        const std::uint64_t rows = chunk.get<std::uint32_t>();
        const std::uint64_t columns = chunk.get<std::uint32_t>();
        const std::vector<AcGePoint3d> grid = points(chunk, rows * columns);
        if (chunk.failed() || grid.empty())
            return;
        for (std::uint64_t row = 0; row < rows; ++row)
            m_sink.polyline(std::uint32_t(columns), &grid[row * columns]);
        std::vector<AcGePoint3d> line(rows);
        for (std::uint64_t column = 0; column < columns; ++column) {
            for (std::uint64_t row = 0; row < rows; ++row)
                line[row] = grid[row * columns + column];
            m_sink.polyline(std::uint32_t(rows), line.data());
        }
    }

    // Faces are lists of vertex numbers behind their length; a negative length is a hole.
    void shell(ByteReader &chunk)
    {
        const std::vector<AcGePoint3d> vertices = points(chunk, chunk.get<std::uint32_t>());
        const auto entries = chunk.get<std::uint32_t>();
        if (chunk.failed() || entries > chunk.left() / 4)
            return chunk.fail();
        std::vector<Loop> loops;
        for (std::uint32_t read = 0; read < entries;) {
            const auto length = chunk.get<std::int32_t>();
            const std::uint32_t count = std::uint32_t(std::abs(std::int64_t(length)));
            if (count > entries - read - 1)
                return chunk.fail();
            read += 1 + count;
            if (length > 0)
                face(loops);
            Loop &loop = loops.emplace_back();
            for (std::uint32_t i = 0; i < count; ++i) {
                const auto index = chunk.get<std::uint32_t>();
                if (index >= vertices.size())
                    return chunk.fail();
                loop.push_back(vertices[index]);
            }
        }
        face(loops);
    }

    void face(std::vector<Loop> &loops)
    {
        if (m_pen.fillType() == kAcGiFillAlways && !loops.empty()) {
            m_sink.fill(loops);
        } else {
            for (const Loop &loop : loops) {
                if (!loop.empty())
                    m_sink.polygon(std::uint32_t(loop.size()), loop.data());
            }
        }
        loops.clear();
    }

    void infinite(ByteReader &chunk, bool bothWays)
    {
        const AcGePoint3d base = point(chunk);
        const AcGeVector3d direction = point(chunk) - base;
        if (!direction.isZeroLength())
            m_sink.infiniteLine(base, direction, bothWays);
    }

    void pushMatrix(ByteReader &chunk)
    {
        AcGeMatrix3d matrix;
        for (auto &row : matrix.entry) {
            for (double &entry : row)
                entry = chunk.get<double>();
        }
        if (chunk.failed())
            return;
        m_sink.pushModelTransform(matrix);
        ++m_pushed;
    }

    void popMatrix()
    {
        if (m_pushed == 0)
            return;
        m_sink.popModelTransform();
        --m_pushed;
    }

    void lightPolyline(ByteReader &chunk);

    QString string(ByteReader &chunk, bool unicode);
    AcDbObjectId record(SymbolTable table, std::uint32_t number) const;

    AcGiGeometry &m_sink;
    AcGiSubEntityTraits &m_pen;
    AcDbDatabase *m_database;
    int m_pushed = 0;
};

} // namespace

/// The number counts the records in table order; linetypes without "ByLayer" and "ByBlock".
AcDbObjectId ProxyPlayer::record(SymbolTable table, std::uint32_t number) const
{
    if (!m_database)
        return {};
    for (const std::uint32_t index : m_database->tableRecords(table)) {
        const AcDbObjectId id(m_database->stub(index));
        if (table == SymbolTable::linetype) {
            const AcDbObjectPointer<AcDbSymbolTableRecord> linetype(id, AcDb::kForRead);
            const QString name = linetype ? linetype->getName().toLower() : QString();
            if (name == QLatin1String("bylayer") || name == QLatin1String("byblock"))
                continue;
        }
        if (number-- == 0)
            return id;
    }
    return {};
}

void ProxyPlayer::setAttribute(proxy::Chunk kind, ByteReader &chunk)
{
    if (kind == proxy::Chunk::linetypeScale)
        return m_pen.setLineTypeScale(chunk.get<double>());
    const auto value = chunk.get<std::uint32_t>();
    if (chunk.failed())
        return;
    switch (kind) {
    case proxy::Chunk::color:
        m_pen.setColor(int(std::min(value, 256u)));
        break;
    case proxy::Chunk::layer:
        m_pen.setLayer(record(SymbolTable::layer, value));
        break;
    case proxy::Chunk::linetype: {
        Traits traits = m_pen.traits();
        traits.linetypeBy = value == proxy::kByBlockLinetype   ? Stated::byBlock
                            : value >= proxy::kByLayerLinetype ? Stated::byLayer
                                                               : Stated::itself;
        m_pen.setTraits(traits);
        if (traits.linetypeBy == Stated::itself)
            m_pen.setLineType(record(SymbolTable::linetype, value));
        break;
    }
    case proxy::Chunk::fill:
        m_pen.setFillType(value != 0 ? kAcGiFillAlways : kAcGiFillNever);
        break;
    case proxy::Chunk::trueColor:
        m_pen.setTrueColor(proxy::colorOf(value));
        break;
    case proxy::Chunk::lineWeight:
        m_pen.setLineWeight(std::int32_t(value));
        break;
    default:
        break;
    }
}

QString ProxyPlayer::string(ByteReader &chunk, bool unicode)
{
    if (unicode) {
        QString text;
        while (!chunk.failed()) {
            const auto unit = chunk.get<std::uint16_t>();
            if (unit == 0)
                break;
            text += QChar(unit);
        }
        chunk.skip(text.size() % 2 == 0 ? 2 : 0); // With its end it fills whole longs.
        return text;
    }
    std::string text;
    while (!chunk.failed()) {
        const char c = chunk.get<char>();
        if (c == '\0')
            break;
        text += c;
    }
    chunk.skip((4 - (text.size() + 1) % 4) % 4);
    const QString page = m_database ? m_database->headerText("$DWGCODEPAGE") : QString();
    return base::decodeDrawingText(text, base::TextCodec(page.toStdString()));
}

// Kinds with a font name it behind the text; those without have their proportions before it.
void ProxyPlayer::drawText(proxy::Chunk kind, ByteReader &chunk)
{
    const bool unicode = kind == proxy::Chunk::unicodeText || kind == proxy::Chunk::unicodeText2;
    const bool withFont = kind == proxy::Chunk::text2 || kind == proxy::Chunk::unicodeText2;
    const AcGePoint3d position = point(chunk);
    const AcGeVector3d normal = vector(chunk).normal();
    const AcGeVector3d along = vector(chunk).normal();
    QString text = withFont ? string(chunk, unicode) : QString();
    std::uint32_t raw = 0;
    if (withFont) {
        chunk.skip(4); // Length of the text.
        raw = chunk.get<std::uint32_t>();
    }
    const double height = chunk.get<double>();
    const double widthFactor = chunk.get<double>();
    const double oblique = chunk.get<double>();
    TextLine line;
    FontRequest font;
    std::uint32_t flags[5] = {}; // Backward, upside down, vertical, under- and overlined.
    if (withFont) {
        line.tracking = chunk.get<double>();
        for (std::uint32_t &flag : flags)
            flag = chunk.get<std::uint32_t>();
        if (unicode) {
            font.bold = chunk.get<std::uint32_t>() != 0;
            font.italic = chunk.get<std::uint32_t>() != 0;
            chunk.skip(8); // Character set and pitch.
            font.typeface = string(chunk, unicode);
        }
        font.fontFile = string(chunk, unicode);
        font.bigFontFile = string(chunk, unicode);
    } else {
        text = string(chunk, unicode);
    }
    if (chunk.failed() || text.isEmpty() || !(height > 0.0))
        return;
    line.text = raw ? text : plainText(text);
    line.font = &findFont(font);
    line.width = line.font->width(line.text) * line.tracking;
    const AcGeVector3d up = normal.crossProduct(along) * (flags[1] ? -1.0 : 1.0);
    const AcGeVector3d right = along * (flags[0] ? -1.0 : 1.0);
    line.position = position;
    line.direction = right * (height * widthFactor);
    line.up = (up + right * std::tan(std::clamp(oblique, -1.5, 1.5))) * height;
    m_sink.text(line);
    for (const double rise : {flags[3] ? -0.2 : 0.0, flags[4] ? 1.2 : 0.0}) {
        const AcGePoint3d ends[] = {position + line.up * rise,
                                    position + line.up * rise + line.direction * line.width};
        if (rise != 0.0)
            m_sink.polyline(2, ends);
    }
}

// The fields are those of the entity in a DWG file.
void ProxyPlayer::lightPolyline(ByteReader &chunk)
{
    enum Flag { kNormal = 1, kThickness = 2, kWidth = 4, kElevation = 8, kBulges = 16, kWidths = 32 };
    const auto size = chunk.get<std::uint32_t>();
    base::BitReader bits(chunk.bytes(size));
    const int flags = bits.bitShort();
    const double width = flags & kWidth ? bits.bitDouble() : 0.0;
    const double elevation = flags & kElevation ? bits.bitDouble() : 0.0;
    if (flags & kThickness)
        bits.bitDouble();
    AcGeVector3d normal = AcGeVector3d::kZAxis;
    if (flags & kNormal) {
        normal.x = bits.bitDouble();
        normal.y = bits.bitDouble();
        normal.z = bits.bitDouble();
    }
    const std::int32_t count = bits.bitLong();
    const std::int32_t bulges = flags & kBulges ? bits.bitLong() : 0;
    const bool withIds = m_database && m_database->version() >= DrawingVersion::r2010;
    const std::int32_t ids = withIds ? bits.bitLong() : 0;
    const std::int32_t widths = flags & kWidths ? bits.bitLong() : 0;
    if (bits.failed() || count < 1 || std::size_t(count) > bits.bitsLeft())
        return;
    std::vector<Vertex> vertices(static_cast<std::size_t>(count));
    AcGePoint3d last(bits.rawDouble(), 0.0, elevation);
    last.y = bits.rawDouble();
    vertices[0].point = last;
    for (std::size_t i = 1; i < vertices.size(); ++i) {
        last.x = bits.bitDoubleWithDefault(last.x);
        last.y = bits.bitDoubleWithDefault(last.y);
        vertices[i].point = last;
    }
    for (std::int32_t i = 0; i < bulges && !bits.failed(); ++i) {
        const double bulge = bits.bitDouble();
        if (i < count)
            vertices[std::size_t(i)].bulge = bulge;
    }
    for (std::int32_t i = 0; i < ids && !bits.failed(); ++i)
        bits.bitLong();
    for (Vertex &vertex : vertices)
        vertex.startWidth = vertex.endWidth = width;
    for (std::int32_t i = 0; i < std::min(widths, count) && !bits.failed(); ++i) {
        vertices[std::size_t(i)].startWidth = bits.bitDouble();
        vertices[std::size_t(i)].endWidth = bits.bitDouble();
    }
    if (bits.failed())
        return;
    const ModelTransform plane(m_sink, AcGeMatrix3d::planeToWorld(normal));
    m_sink.pline(vertices, flags & 512);
}

void ProxyPlayer::draw(proxy::Chunk kind, ByteReader &chunk)
{
    switch (kind) {
    case proxy::Chunk::circle: {
        const AcGePoint3d centre = point(chunk);
        const double radius = chunk.get<double>();
        return m_sink.circle(centre, radius, vector(chunk));
    }
    case proxy::Chunk::circleThrough:
        return circleThrough(chunk);
    case proxy::Chunk::arc:
        return circularArc(chunk);
    case proxy::Chunk::arcThrough: {
        const AcGePoint3d start = point(chunk);
        const AcGePoint3d through = point(chunk);
        return m_sink.circularArc(start, through, point(chunk));
    }
    case proxy::Chunk::polyline:
    case proxy::Chunk::polylineWithNormal:
        return chain(chunk, false);
    case proxy::Chunk::polygon:
        return chain(chunk, true);
    case proxy::Chunk::mesh:
        return mesh(chunk);
    case proxy::Chunk::shell:
        return shell(chunk);
    case proxy::Chunk::text:
    case proxy::Chunk::text2:
    case proxy::Chunk::unicodeText:
    case proxy::Chunk::unicodeText2:
        return drawText(kind, chunk);
    case proxy::Chunk::constructionLine:
        return infinite(chunk, true);
    case proxy::Chunk::ray:
        return infinite(chunk, false);
    case proxy::Chunk::color:
    case proxy::Chunk::layer:
    case proxy::Chunk::linetype:
    case proxy::Chunk::fill:
    case proxy::Chunk::trueColor:
    case proxy::Chunk::lineWeight:
    case proxy::Chunk::linetypeScale:
        return setAttribute(kind, chunk);
    case proxy::Chunk::pushMatrix:
    case proxy::Chunk::pushMatrix2:
        return pushMatrix(chunk);
    case proxy::Chunk::popMatrix:
        return popMatrix();
    case proxy::Chunk::lightPolyline:
        return lightPolyline(chunk);
    case proxy::Chunk::ellipticArc:
        return ellipticArc(chunk);
    case proxy::Chunk::extents:
        break;
    }
}

bool drawProxyGraphics(std::span<const std::byte> graphics, const AcDbEntity &entity, AcGiGeometry &sink)
{
    const Traits before = sink.subEntityTraits().traits();
    const bool whole = ProxyPlayer(entity, sink)
                           .play(ByteReader(QByteArrayView(reinterpret_cast<const char *>(graphics.data()),
                                                           qsizetype(graphics.size()))));
    sink.subEntityTraits().setTraits(before);
    return whole;
}

QByteArray proxyGraphicsOf(const AcDbEntity &entity)
{
    QByteArray graphics;
    bool counted = false;
    for (const resbuf &group : entity.groups()) {
        if (!counted)
            counted = group.restype == 92 || group.restype == 160;
        else if (group.restype == 310)
            graphics += group.bytes();
        else
            break; // What follows other groups is something else.
    }
    return graphics;
}

} // namespace acgi
