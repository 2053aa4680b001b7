#include "quillnote/entity/native_entities.h"

#include "quillnote/entity/mark_draw.h"

#include <algorithm>
#include <cmath>

static resbuf realGroup(int code, double value)
{
    return {code, value};
}

static resbuf number(int code, std::int64_t value)
{
    return {code, value};
}

static resbuf subclass(const char *subclass)
{
    return {100, QString::fromLatin1(subclass)};
}

static AcGePoint3d asPoint(const AcGeVector3d &v)
{
    return {v.x, v.y, v.z};
}

// Areas -------------------------------------------------------------------------------------------

static double turn(const AcGePoint3d &a, const AcGePoint3d &b, const AcGePoint3d &c)
{
    return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

/// True when no corner of the quadrilateral turns against the sense.
static bool isConvex(const std::array<AcGePoint3d, 4> &q, double sense)
{
    const double least = -1e-9 * std::abs(sense);
    const double sign = sense < 0.0 ? -1.0 : 1.0;
    for (std::size_t i = 0; i < 4; ++i) {
        if (turn(q[i], q[(i + 1) % 4], q[(i + 2) % 4]) * sign < least)
            return false;
    }
    return true;
}

// From the side between the first and the last corner inwards, a piece between each two pairs of corners.
std::vector<std::array<AcGePoint3d, 4>> solidPieces(std::span<const AcGePoint3d> area)
{
    std::vector<AcGePoint3d> corners(area.begin(), area.end());
    if (corners.size() > 1 && corners.front().isEqualTo(corners.back()))
        corners.pop_back();
    double sense = 0.0; // Twice the area, with its sign.
    for (std::size_t i = 2; i < corners.size(); ++i)
        sense += turn(corners[0], corners[i - 1], corners[i]);
    for (std::size_t rotation = 0; rotation < corners.size() && sense != 0.0; ++rotation) {
        std::vector<std::array<AcGePoint3d, 4>> pieces;
        for (std::size_t i = 0, last = corners.size() - 1; i + 1 < last; ++i, --last)
            pieces.push_back({corners[i], corners[i + 1], corners[last - 1], corners[last]});
        if (std::ranges::all_of(pieces, [&](const auto &piece) { return isConvex(piece, sense); }))
            return pieces;
        std::rotate(corners.begin(), corners.begin() + 1, corners.end());
    }
    return {};
}

// The builder -------------------------------------------------------------------------------------

static bool isColorCode(int code)
{
    return code == 62 || code == 420 || code == 430;
}

NativeEntityBuilder::NativeEntityBuilder(const AcDbEntity &like, DrawingVersion version,
                                         NativeTextStyles styles)
    : m_version(version), m_styles(std::move(styles))
{
    constexpr int kCopied[] = {6, 8, 48, 440};
    acgi::Traits pen;
    for (const resbuf &group : like.groups()) {
        if (group.restype == 101 || group.restype == 1001)
            break;
        if (std::ranges::find(kCopied, group.restype) != std::end(kCopied))
            m_common.emplace_back(group.restype, group.resval);
        if (isColorCode(group.restype))
            m_color.emplace_back(group.restype, group.resval);
        if (group.restype == 62)
            pen.color = AcCmEntityColor::fromIndex(int(group.integer()));
        if (group.restype == 420)
            pen.color = AcCmEntityColor::fromRgb(std::uint32_t(group.integer()));
    }
    pen.lineWeight = like.lineWeight();
    m_ownColor = pen.color;
    subEntityTraits().setTraits(pen);
}

void NativeEntityBuilder::add(const char *kind, ResbufList groups)
{
    std::unique_ptr<AcDbEntity> entity = acdbNewEntity(kind, std::move(groups));
    const acgi::Traits &pen = subEntityTraits().traits();
    const auto set = [&](int code, resbuf::Value value) {
        entity->setGroup(code, std::move(value), u"AcDbEntity");
    };
    for (const resbuf &group : m_common)
        set(group.restype, group.resval);
    if (pen.color == m_ownColor) {
        for (const resbuf &group : m_color)
            set(group.restype, group.resval);
    } else if (pen.color.colorMethod() == AcCmEntityColor::kByColor) {
        set(420, std::int64_t(pen.color.rgb()));
    } else {
        set(62, std::int64_t(pen.color.colorIndex()));
    }
    if (pen.lineWeight != -1 && !isR12())
        set(370, std::int64_t(pen.lineWeight));
    m_entities.push_back(std::move(entity));
}

void NativeEntityBuilder::line(const AcGePoint3d &from, const AcGePoint3d &to)
{
    add("LINE", {subclass("AcDbLine"), {10, from}, {11, to}});
}

void NativeEntityBuilder::polyline(std::uint32_t count, const AcGePoint3d *points)
{
    const std::span<const AcGePoint3d> all(points, count);
    const auto sameHeight = [&](const AcGePoint3d &p) { return p.z == all.front().z; };
    if (isR12() || !std::ranges::all_of(all, sameHeight)) {
        for (std::size_t i = 1; i < all.size(); ++i)
            line(all[i - 1], all[i]);
        return;
    }
    const bool closed = count > 3 && all.front().isEqualTo(all.back());
    std::vector<acgi::Vertex> vertices;
    for (const AcGePoint3d &point : closed ? all.first(count - 1) : all)
        vertices.push_back({.point = point});
    if (vertices.size() > 1)
        pline(vertices, closed);
}

void NativeEntityBuilder::pline(std::span<const acgi::Vertex> vertices, bool closed)
{
    ResbufList groups{subclass("AcDbPolyline"), number(90, std::int64_t(vertices.size())),
                      number(70, closed ? 1 : 0)};
    if (vertices.front().point.z != 0.0)
        groups.push_back(realGroup(38, vertices.front().point.z));
    for (const acgi::Vertex &vertex : vertices) {
        groups.emplace_back(10, AcGePoint2d(vertex.point.x, vertex.point.y));
        if (vertex.startWidth > 0.0 || vertex.endWidth > 0.0) {
            groups.push_back(realGroup(40, vertex.startWidth));
            groups.push_back(realGroup(41, vertex.endWidth));
        }
        if (vertex.bulge != 0.0)
            groups.push_back(realGroup(42, vertex.bulge));
    }
    add("LWPOLYLINE", std::move(groups));
}

void NativeEntityBuilder::arc(const acgi::Arc &arc)
{
    constexpr double kDegrees = 180.0 / kGePi;
    const double base = std::atan2(arc.u.y, arc.u.x);
    const bool isCircular = std::abs(arc.u.length() - arc.v.length()) <= 1e-9 * arc.u.length() &&
                            arc.u.z == 0.0 && arc.v.z == 0.0;
    if (!isCircular || arc.isWhole()) {
        std::vector<AcGePoint3d> samples;
        arc.appendSamples(samples);
        return polyline(std::uint32_t(samples.size()), samples.data());
    }
    const double sense = arc.u.crossProduct(arc.v).z < 0.0 ? -1.0 : 1.0;
    double from = base + sense * arc.start;
    double to = base + sense * (arc.start + arc.sweep);
    if (from > to)
        std::swap(from, to);
    add("ARC", {subclass("AcDbCircle"),
                {10, arc.centre},
                realGroup(40, arc.u.length()),
                subclass("AcDbArc"),
                realGroup(50, from * kDegrees),
                realGroup(51, to * kDegrees)});
}

// Bands and rectangles are solids. What would take many of them, with seams between, is one hatch.
void NativeEntityBuilder::fill(std::span<const acgi::Loop> loops)
{
    for (const acgi::Loop &loop : loops) {
        const bool isClosed = loop.size() > 1 && loop.front().isEqualTo(loop.back());
        const auto corners = std::span(loop).first(loop.size() - (isClosed ? 1 : 0));
        const bool isBand = corners.size() == 4 || corners.size() == 6;
        if (isBand || isR12())
            solids(corners);
        else if (corners.size() > 2)
            hatch(corners);
    }
}

// Corners of solids run zigzag.
void NativeEntityBuilder::solids(std::span<const AcGePoint3d> area)
{
    for (const auto &piece : solidPieces(area))
        add("SOLID", {subclass("AcDbTrace"), {10, piece[0]}, {11, piece[1]}, {12, piece[3]}, {13, piece[2]}});
}

void NativeEntityBuilder::hatch(std::span<const AcGePoint3d> area)
{
    constexpr std::int64_t kOuterPolyline = 1 | 2;
    ResbufList groups{subclass("AcDbHatch"),
                      {10, AcGePoint3d(0.0, 0.0, area.front().z)},
                      {210, AcGePoint3d(0.0, 0.0, 1.0)},
                      {2, QStringLiteral("SOLID")},
                      number(70, 1),
                      number(71, 0),
                      number(91, 1),
                      number(92, kOuterPolyline),
                      number(72, 0),
                      number(73, 1),
                      number(93, std::int64_t(area.size()))};
    for (const AcGePoint3d &corner : area)
        groups.emplace_back(10, AcGePoint2d(corner.x, corner.y));
    for (const auto &[code, value] : {std::pair(97, 0), std::pair(75, 0), std::pair(76, 1), std::pair(98, 0)})
        groups.push_back(number(code, value));
    add("HATCH", std::move(groups));
}

void NativeEntityBuilder::text(const acgi::TextLine &line)
{
    const AcGeVector3d normal = line.direction.crossProduct(line.up).normal();
    const AcGeMatrix3d toPlane = AcGeMatrix3d::planeToWorld(normal).inverse();
    const AcGeVector3d along = toPlane * line.direction;
    const double height = line.up.length();
    QString shown = line.text;
    shown.replace(QStringLiteral("%%"), QStringLiteral("%%%%%%")); // A percent sign is written as three.
    ResbufList groups{subclass("AcDbText"),
                      {10, toPlane * line.position},
                      realGroup(40, height),
                      {1, shown},
                      realGroup(50, std::atan2(along.y, along.x) * 180.0 / kGePi),
                      realGroup(41, line.direction.length() / height)};
    if (line.font)
        groups.emplace_back(7, m_styles.withFont(line.font->request()));
    if (!asPoint(normal).isEqualTo({0.0, 0.0, 1.0}))
        groups.emplace_back(210, asPoint(normal));
    groups.push_back(subclass("AcDbText"));
    add("TEXT", std::move(groups));
}

// Multi-line text ---------------------------------------------------------------------------------

/// Inline code for a font: files of shape fonts, faces of others.
static QString fontCode(const acgi::FontRequest &font)
{
    if (!font.bigFontFile.isEmpty())
        return QStringLiteral("\\F%1,%2;").arg(font.fontFile, font.bigFontFile);
    if (!font.typeface.isEmpty())
        return QStringLiteral("\\f%1|b0|i0;").arg(font.typeface);
    return QStringLiteral("\\f%1|b0|i0;").arg(font.fontFile.section(u'.', 0, 0));
}

/// The text without anything that means a format.
static QString escaped(const QString &text)
{
    QString result;
    for (const QChar c : text) {
        if (c == u'\\' || c == u'{' || c == u'}')
            result += u'\\';
        if (c == u'%' && result.endsWith(u'%'))
            result += QStringLiteral("{}");
        result += c;
        if (c == u'^')
            result += u' ';
    }
    return result;
}

static void addContents(ResbufList &groups, QString contents)
{
    constexpr qsizetype kChunk = 250;
    while (contents.size() > kChunk) {
        const qsizetype end = contents[kChunk - 1].isHighSurrogate() ? kChunk - 1 : kChunk;
        groups.emplace_back(3, contents.first(end));
        contents.remove(0, end);
    }
    groups.emplace_back(1, contents);
}

void NativeEntityBuilder::multilineText(std::span<const MarkTextLine> lines, const AcGiTextStyle &style,
                                        const MarkAxes &axes)
{
    if (lines.empty())
        return;
    constexpr double kUsualPitch = 5.0 / 3.0; // In text heights.
    const MarkTextLine &first = lines.front();
    const double pitch = lines.size() > 1 ? first.base.distanceTo(lines[1].base) : kUsualPitch * first.size;
    QString contents = QStringLiteral("{\\Q0;") + fontCode(style.fontRequest());
    for (const MarkTextLine &line : lines) {
        if (&line != &first)
            contents += QStringLiteral("\\P");
        contents += QStringLiteral("\\W%1;").arg(line.xScale, 0, 'g', 12) + escaped(line.text);
    }
    ResbufList groups{subclass("AcDbMText"),
                      {10, first.base + axes.up * first.size},
                      realGroup(40, first.size),
                      realGroup(41, 0.0),
                      number(71, 1),
                      number(72, 1)};
    addContents(groups, contents + u'}');
    groups.emplace_back(7, m_styles.current);
    groups.emplace_back(210, asPoint(axes.normal));
    groups.emplace_back(11, asPoint(axes.right));
    groups.push_back(number(73, 2)); // Exactly that distance.
    groups.push_back(realGroup(44, pitch / (kUsualPitch * first.size)));
    add("MTEXT", std::move(groups));
}

// Waves -------------------------------------------------------------------------------------------

static double bulgeOf(const acgi::Arc &arc)
{
    return std::tan(arc.sweep / 4.0) * (arc.u.crossProduct(arc.v).z < 0.0 ? -1.0 : 1.0);
}

/// Bumps that follow each other are one polyline, closed when they lead back.
static void buildThinWaves(std::span<const WaveBump> bumps, NativeEntityBuilder &builder)
{
    constexpr double kRounding = 1e-6; // Of a chord.
    const auto meet = [](const WaveBump &bump, const AcGePoint3d &next) {
        return bump.b.isEqualTo(next, kRounding * bump.a.distanceTo(bump.b));
    };
    std::vector<acgi::Vertex> chain;
    for (std::size_t i = 0, first = 0; i < bumps.size(); ++i) {
        const auto arc = acgi::arcThrough(bumps[i].a, waveMiddle(bumps[i]), bumps[i].b);
        chain.push_back({.point = bumps[i].a, .bulge = arc ? bulgeOf(*arc) : 0.0});
        if (i + 1 < bumps.size() && meet(bumps[i], bumps[i + 1].a))
            continue;
        const bool closed = i > first && meet(bumps[i], bumps[first].a);
        if (!closed)
            chain.push_back({.point = bumps[i].b});
        builder.pline(chain, closed);
        chain.clear();
        first = i + 1;
    }
}

/// The sickle as a line along its middle that is as wide as the sickle is there; its way back is a line
/// without width inside.
static void buildThickBump(const WaveBump &bump, NativeEntityBuilder &builder)
{
    const WaveBand band = waveBand(bump);
    std::array<acgi::Vertex, kBumpSamples> vertices;
    for (std::size_t k = 0; k < kBumpSamples; ++k) {
        vertices[k].point = band.inner[k] + (band.outer[k] - band.inner[k]) * 0.5;
        vertices[k].startWidth = band.inner[k].distanceTo(band.outer[k]);
        if (k > 0)
            vertices[k - 1].endWidth = vertices[k].startWidth;
    }
    vertices.back().startWidth = 0.0;
    const auto arc =
        acgi::arcThrough(vertices.front().point, vertices[kBumpSamples / 2].point, vertices.back().point);
    if (arc)
        vertices.back().bulge = -bulgeOf(*arc);
    builder.pline(vertices, true);
}

static void buildOutline(const MarkOutline &outline, NativeEntityBuilder &builder)
{
    MarkOutline pieces = outline;
    pieces.bumps.clear();
    drawOutline(pieces, AcGiWorldDraw(builder, kAcGiStandardDisplay));
    builder.subEntityTraits().setColor(outline.waveColor);
    if (outline.thinWaves)
        return buildThinWaves(outline.bumps, builder);
    for (const WaveBump &bump : outline.bumps)
        buildThickBump(bump, builder);
}

static void buildText(const MarkTextLayout &text, const MarkAxes &axes, NativeEntityBuilder &builder)
{
    constexpr int kRuleColor = 250;
    builder.multilineText(text.lines, text.style, axes);
    if (!text.signature)
        return;
    builder.multilineText(std::span(&text.signature->line, 1), text.style, axes);
    const acgi::Traits own = builder.subEntityTraits().traits();
    builder.subEntityTraits().setColor(kRuleColor);
    const AcGePoint3d rule[] = {text.signature->ruleStart, text.signature->ruleEnd};
    builder.polyline(2, rule);
    builder.subEntityTraits().setTraits(own);
}

void buildNativeEntities(const MarkLayout &layout, NativeEntityBuilder &builder)
{
    const acgi::Traits own = builder.subEntityTraits().traits();
    MarkLayout rest = layout;
    if (layout.text && !builder.isR12()) {
        buildText(*layout.text, layout.axes, builder);
        rest.text.reset();
    }
    if (!builder.isR12()) {
        buildOutline(layout.outline, builder);
        buildOutline(layout.frame, builder);
        rest.outline.clear();
        rest.frame.clear();
        builder.subEntityTraits().setTraits(own);
    }
    drawMark(rest, AcGiWorldDraw(builder, kAcGiStandardDisplay));
}
