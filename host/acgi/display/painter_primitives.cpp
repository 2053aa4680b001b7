// ListPainter's primitives: from list coordinates to pixels.
#include "host/acgi/display/clip.h"
#include "host/acgi/display/painter.h"
#include "host/acgi/text/font.h"
#include "host/base/host_text.h"

#include <QGlyphRun>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace acgi
{

static double length(QPointF vector)
{
    // Lengths that a square root cannot take are not drawn anyway.
    return std::sqrt(vector.x() * vector.x() + vector.y() * vector.y());
}

// Lines ------------------------------------------------------------------------------------------

namespace
{

/// Takes the dashes of a pattern to the canvas, and its texts and shapes.
class DashPainter : public DashSink
{
public:
    DashPainter(Canvas &canvas, double scale) : m_canvas(canvas), m_scale(scale) {}

    void dash(std::span<const QPointF> points) override { m_canvas.chain(points); }

    // Chains run in pixels, y down; the pattern thinks of y as up, which mirrors turns and offsets.
    void text(const PatternText &text, QPointF place, double direction) override
    {
        const double turn = text.upright ? -text.rotation : direction - text.rotation;
        const QPointF along(std::cos(direction), std::sin(direction));
        const QPointF left(along.y(), -along.x());
        const QPointF origin = place + (along * text.xOffset + left * text.yOffset) * m_scale;
        const double size = text.scale * m_scale;
        if (text.text.isEmpty())
            shape(text, origin, turn, size);
        else
            characters(text, origin, turn,
                       size * (text.style.textSize() > 0.0 ? text.style.textSize() : 1.0));
    }

private:
    void shape(const PatternText &text, QPointF origin, double turn, double size)
    {
        QTransform placed;
        placed.translate(origin.x(), origin.y());
        placed.rotateRadians(turn);
        placed.scale(size, -size);
        for (const std::vector<QPointF> &line : patternShape(text)) {
            std::vector<QPointF> points;
            points.reserve(line.size());
            for (const QPointF &point : line)
                points.push_back(placed.map(point));
            m_canvas.chain(points);
        }
    }

    void characters(const PatternText &text, QPointF origin, double turn, double height)
    {
        constexpr double kLegible = 2.5;
        if (!(height >= kLegible))
            return;
        const QPointF along(std::cos(turn) * height * text.style.xScale(),
                            std::sin(turn) * height * text.style.xScale());
        const QPointF up(std::sin(turn) * height, -std::cos(turn) * height);
        m_canvas.beginGlyphs({along.x(), along.y(), up.x(), up.y()});
        for (const PlacedGlyph &placed : text.glyphs)
            m_canvas.glyph(*placed.glyph, origin + along * placed.x);
    }

    Canvas &m_canvas;
    double m_scale;
};

} // namespace

/// Draws m_points with the present pen.
void ListPainter::stroke(bool closed)
{
    if (!m_pen->linetype || m_points.size() < 2)
        return m_canvas.chain(m_points);
    const double scale = m_pen->linetypeScale * m_frame.pixelsPerUnit;
    constexpr double kFinest = 2.0;
    constexpr double kFar = 1e7;
    const auto isNear = [](QPointF p) { return std::abs(p.x()) < kFar && std::abs(p.y()) < kFar; };
    if (!(scale * m_pen->linetype->length > kFinest) || !std::ranges::all_of(m_points, isNear))
        return m_canvas.chain(m_points);
    DashPainter dashes(m_canvas, scale);
    const double margin = m_pen->linetype->length * scale;
    const double most = std::min(margin, 200.0) + 16.0;
    layPattern(*m_pen->linetype, scale, m_points, closed,
               m_canvas.visible().adjusted(-most, -most, most, most), kFinest, dashes);
}

void ListPainter::polyline(ListReader &reader, bool shown)
{
    const std::uint32_t count = reader.count();
    const std::size_t width = reader.isFlat() ? 2 : 3;
    const double *from = reader.reals(count * width);
    if (!shown)
        return;
    // Points nearer than this to the one before change nothing that could be seen.
    constexpr double kNear = 0.4;
    m_points.clear();
    for (std::uint32_t i = 0; i < count; ++i, from += width) {
        const QPointF point = pixel(AcGePoint3d(from[0], from[1], width == 3 ? from[2] : 0.0));
        const bool isMiddle = i > 0 && i + 1 < count;
        if (isMiddle && std::abs(point.x() - m_points.back().x()) < kNear &&
            std::abs(point.y() - m_points.back().y()) < kNear)
            continue;
        m_points.push_back(point);
    }
    stroke(m_points.size() > 2 && m_points.front() == m_points.back());
}

// Arcs -------------------------------------------------------------------------------------------

void ListPainter::arc(ListReader &reader, bool shown)
{
    const QPointF centre = pixel(reader.point());
    const QPointF u = pixel(reader.vector());
    const QPointF v = pixel(reader.vector());
    const double start = reader.real();
    const double sweep = std::clamp(reader.real(), -2.0 * kGePi, 2.0 * kGePi);
    const double radius = length(u) + length(v);
    if (!shown || !std::isfinite(radius + centre.x() + centre.y() + start + sweep))
        return;
    constexpr double kSmall = 4000.0;
    if (radius < 0.5)
        return m_canvas.dot(centre + u * std::cos(start) + v * std::sin(start));
    // The sum of both radii is careful; of tiny arcs, of which drawings are full, the larger one will do.
    constexpr double kTiny = 16.0;
    if (radius < kTiny)
        return smallArc(centre, u, v, start, sweep, std::max(length(u), length(v)));
    if (radius < kSmall || m_pen->linetype)
        return smallArc(centre, u, v, start, sweep, radius);
    constexpr int kPieces = 16;
    for (int piece = 0; piece < kPieces; ++piece)
        largeArc(centre, u, v, start + sweep * piece / kPieces, start + sweep * (piece + 1) / kPieces, 0);
}

/// Even steps that stay within a quarter of a pixel of the curve, each a turn of the one before.
void ListPainter::smallArc(QPointF centre, QPointF u, QPointF v, double start, double sweep, double radius)
{
    constexpr double kChordError = 0.25;
    constexpr double kMostSteps = 4096.0;
    const double step = 2.0 * std::sqrt(2.0 * std::min(kChordError / radius, 0.5));
    const int steps = int(std::clamp(std::ceil(std::abs(sweep) / step), 2.0, kMostSteps));
    const double turnCos = std::cos(sweep / steps);
    const double turnSin = std::sin(sweep / steps);
    double c = std::cos(start);
    double s = std::sin(start);
    m_points.clear();
    for (int i = 0; i <= steps; ++i) {
        m_points.push_back(centre + u * c + v * s);
        const double turned = c * turnCos - s * turnSin;
        s = s * turnCos + c * turnSin;
        c = turned;
    }
    stroke(std::abs(sweep) >= 2.0 * kGePi - 1e-9);
}

/// Halves the piece until it is straight; pieces that cannot reach the view end at once.
void ListPainter::largeArc(QPointF centre, QPointF u, QPointF v, double from, double to, int depth)
{
    constexpr double kChordError = 0.25;
    constexpr int kDeepest = 40;
    const auto at = [&](double t) { return centre + u * std::cos(t) + v * std::sin(t); };
    const QPointF a = at(from);
    const QPointF b = at(to);
    const double half = (to - from) / 2.0;
    // How far the piece bulges from its chord at most.
    const double bulge = (length(u) + length(v)) * 2.0 * std::pow(std::sin(half / 2.0), 2);
    const QRectF shown = m_canvas.visible().adjusted(-bulge - 8, -bulge - 8, bulge + 8, bulge + 8);
    QPointF first = a;
    QPointF last = b;
    if (!clipLine(first, last, shown))
        return;
    if (bulge < kChordError || depth >= kDeepest) {
        const QPointF ends[] = {a, b};
        return m_canvas.chain(ends);
    }
    largeArc(centre, u, v, from, from + half, depth + 1);
    largeArc(centre, u, v, from + half, to, depth + 1);
}

// Areas, text, images ----------------------------------------------------------------------------

void ListPainter::fill(ListReader &reader, bool shown)
{
    std::vector<QPolygonF> areas = loops(reader);
    if (!shown)
        return;
    if (!m_options.highlight.isValid())
        return m_canvas.fill(areas);
    // In one colour an area would hide what stands on it: the number of a flag, the text on a mask.
    for (QPolygonF &area : areas) {
        if (!area.isEmpty())
            area.append(QPointF(area.front()));
        m_canvas.chain(area);
    }
    m_areas = std::move(areas);
}

/// Over a picture, text on an area has the area's colour around it, and what was painted before: it gets a
/// ground of the background's colour.
void ListPainter::ground(QPointF position, QPointF along, QPointF up)
{
    const QPointF middle = position + (along + up) / 2.0;
    const auto holds = [&](const QPolygonF &area) { return area.containsPoint(middle, Qt::OddEvenFill); };
    if (std::ranges::none_of(m_areas, holds))
        return;
    constexpr double kAround = 0.1;
    const QPointF across = up * kAround;
    const QPointF ahead = length(along) > 0.0 ? along * (kAround * length(up) / length(along)) : QPointF();
    const QPointF corner = position - across - ahead;
    std::vector<QPolygonF> box{
        {{corner, corner + along + ahead * 2.0, corner + along + ahead * 2.0 + up + across * 2.0,
          corner + up + across * 2.0}}};
    m_canvas.setPen(m_options.background.rgba(), m_pen->width);
    m_canvas.fill(box);
    m_canvas.setPen(m_pen->color, m_pen->width);
}

void ListPainter::text(ListReader &reader, bool shown)
{
    const std::uint32_t count = reader.count();
    const auto *const font = std::bit_cast<const Font *>(reader.word());
    const QPointF position = pixel(reader.point());
    const QPointF direction = pixel(reader.vector());
    const QPointF up = pixel(reader.vector());
    const double width = reader.real();
    const double tracking = reader.real();
    const QStringView characters = reader.characters(count);
    const std::uint64_t glyphs = reader.word();
    const std::uint64_t *placed = reader.words(glyphs * 2);
    if (!shown || !std::isfinite(position.x() + position.y() + length(direction) + length(up)))
        return;
    if (m_options.highlight.isValid())
        ground(position, direction * width, up);
    constexpr double kLegible = 2.5;
    constexpr double kMiddle = 0.4;
    if (!font || length(up) < kLegible || !(length(direction) * width > 1.0)) {
        const QPointF base = position + up * kMiddle;
        const QPointF bar[] = {base, base + direction * width};
        return m_canvas.chain(bar);
    }
    if (m_options.plotting) {
        const QTransform place(direction.x(), direction.y(), up.x(), up.y(), position.x(), position.y());
        return textRun(*font, characters, tracking, place);
    }
    m_canvas.beginGlyphs({direction.x(), direction.y(), up.x(), up.y()});
    for (std::uint64_t i = 0; i < glyphs; ++i, placed += 2)
        m_canvas.glyph(*std::bit_cast<const Glyph *>(placed[0]),
                       position + direction * std::bit_cast<double>(placed[1]));
}

/// Text that stays text, so that it can be searched for in a PDF file: runs of glyphs of one face. Symbols
/// that no face has are outlines.
void ListPainter::textRun(const Font &font, QStringView text, double tracking, const QTransform &placed)
{
    std::vector<PlacedGlyph> glyphs;
    font.layOut(text, glyphs);
    for (PlacedGlyph &glyph : glyphs)
        glyph.x *= tracking;
    std::span<const PlacedGlyph> rest = glyphs;
    while (!rest.empty()) {
        const auto isOther = [&](const PlacedGlyph &glyph) {
            return glyph.face != rest.front().face || glyph.emSize != rest.front().emSize ||
                   glyph.widthFactor != rest.front().widthFactor;
        };
        const auto length = std::size_t(std::ranges::find_if(rest, isOther) - rest.begin());
        if (rest.front().face)
            faceRun(rest.first(length), placed);
        else
            outlines(rest.first(length), placed);
        rest = rest.subspan(length);
    }
}

/// The transform does all placing, so that width factors, slants and mirrors are those of the outlines.
void ListPainter::faceRun(std::span<const PlacedGlyph> glyphs, const QTransform &placed)
{
    const QRawFont &face = *glyphs.front().face;
    const double scale = glyphs.front().emSize / face.pixelSize();
    const double widthFactor = glyphs.front().widthFactor;
    QVector<quint32> indexes;
    QVector<QPointF> places;
    for (const PlacedGlyph &glyph : glyphs) {
        indexes.push_back(glyph.index);
        places.push_back({glyph.x / (scale * widthFactor), 0.0});
    }
    QGlyphRun run;
    run.setRawFont(face);
    run.setGlyphIndexes(indexes);
    run.setPositions(places);
    QPainter &painter = m_canvas.painter();
    painter.save();
    painter.setPen(QColor::fromRgba(m_pen->color));
    painter.setTransform(QTransform(scale * widthFactor, 0, 0, -scale, 0, 0) * placed, true);
    painter.drawGlyphRun({}, run);
    painter.restore();
}

void ListPainter::outlines(std::span<const PlacedGlyph> glyphs, const QTransform &placed)
{
    m_canvas.beginGlyphs({placed.m11(), placed.m12(), placed.m21(), placed.m22()});
    for (const PlacedGlyph &glyph : glyphs)
        m_canvas.glyph(*glyph.glyph, placed.map(QPointF(glyph.x, 0.0)));
}

void ListPainter::infiniteLine(ListReader &reader, bool shown)
{
    const QPointF base = pixel(reader.point());
    const QPointF direction = pixel(reader.vector());
    const double first = reader.flag() ? -std::numeric_limits<double>::infinity() : 0.0;
    QPointF ends[2];
    if (!shown ||
        !clipRay(base, direction, first, m_canvas.whole().adjusted(-32, -32, 32, 32), ends[0], ends[1]))
        return;
    m_points.assign(ends, ends + 2);
    stroke();
}

void ListPainter::marker(ListReader &reader, bool shown)
{
    const unsigned mode = reader.count();
    const QPointF place = pixel(reader.point());
    const double stated = reader.real();
    const double angle = reader.real();
    enum Figure { kDot = 0, kNothing = 1, kPlus = 2, kCross = 3, kTick = 4 };
    enum Around { kCircle = 32, kSquare = 64 };
    if (!shown || !std::isfinite(place.x() + place.y() + stated + angle))
        return;
    const double percent = stated == 0.0 ? 5.0 : -stated;
    const double half = stated > 0.0 ? stated * length(pixel(AcGeVector3d::kXAxis)) / 2.0
                                     : m_scene.viewHeight() * percent / 200.0;
    const QPointF right(half * std::cos(angle), -half * std::sin(angle));
    const QPointF up(right.y(), -right.x());
    const auto line = [&](QPointF from, QPointF to) {
        const QPointF ends[] = {place + from, place + to};
        m_canvas.chain(ends);
    };
    const unsigned figure = mode & 7;
    if (figure == kDot || figure > kTick)
        m_canvas.dot(place);
    if (figure == kPlus) {
        line(right * -2.0, right * 2.0);
        line(up * -2.0, up * 2.0);
    } else if (figure == kCross) {
        line((right + up) * -2.0, (right + up) * 2.0);
        line((right - up) * -2.0, (right - up) * 2.0);
    } else if (figure == kTick) {
        line({}, up);
    }
    if (mode & kCircle)
        smallArc(place, right, up, 0.0, 2.0 * kGePi, 2.0 * half);
    if (mode & kSquare) {
        const QPointF corners[] = {place - right - up, place + right - up, place + right + up,
                                   place - right + up, place - right - up};
        m_canvas.chain(corners);
    }
}

void ListPainter::image(ListReader &reader, bool shown)
{
    const Image &image = m_scene.image(reader.count());
    if (!shown)
        return;
    if (m_options.highlight.isValid())
        return imageFrame(image);
    const Images::Entry &entry = m_scene.images().load(image.path);
    if (entry.pixels.isNull())
        return missingImage(image, entry);
    const QPointF u = pixel(image.u) / entry.pixels.width();
    const QPointF v = pixel(image.v) / entry.pixels.height();
    const QPointF corner = pixel(image.origin + image.v);
    constexpr double kFar = 1e6;
    if (!(std::abs(corner.x()) < kFar && std::abs(corner.y()) < kFar && length(pixel(image.u)) < kFar &&
          length(pixel(image.v)) < kFar))
        return;
    if (!image.clip.empty()) {
        QPolygonF clip;
        for (const AcGePoint3d &point : image.clip)
            clip.push_back(pixel(point));
        m_canvas.pushClip({clip}, false);
    }
    QPainter &painter = m_canvas.painter();
    painter.save();
    painter.setOpacity(1.0 - std::clamp(image.fade, 0.0, 1.0));
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setTransform(QTransform(u.x(), u.y(), -v.x(), -v.y(), corner.x(), corner.y()), true);
    painter.drawImage(0, 0, entry.pixels);
    painter.restore();
    if (!image.clip.empty())
        m_canvas.popClip();
}

/// Around what shows of it.
void ListPainter::imageFrame(const Image &image)
{
    if (!image.clip.empty()) {
        QPolygonF edge;
        for (const AcGePoint3d &point : image.clip)
            edge.push_back(pixel(point));
        edge.push_back(edge.front());
        m_canvas.chain(edge);
        return;
    }
    const QPointF origin = pixel(image.origin);
    const QPointF u = pixel(image.u);
    const QPointF v = pixel(image.v);
    const QPointF frame[] = {origin, origin + u, origin + u + v, origin + v, origin};
    m_canvas.chain(frame);
}

static QString whyMissing(const Images::Entry &entry)
{
    if (entry.file.isEmpty())
        return Host::tr("not found");
    if (!entry.tooLarge.isValid())
        return Host::tr("is no image");
    return Host::tr("is too large (%1 × %2 pixels)").arg(entry.tooLarge.width()).arg(entry.tooLarge.height());
}

/// Its frame, with the name of the file in it.
void ListPainter::missingImage(const Image &image, const Images::Entry &entry)
{
    note(QStringLiteral("IMAGE: %1 %2").arg(entry.shownName, whyMissing(entry)));
    imageFrame(image);
    const QPointF origin = pixel(image.origin);
    const QPointF u = pixel(image.u);
    const QPointF v = pixel(image.v);
    if (entry.name.empty() || !(entry.nameWidth > 0.0))
        return;
    const double height = std::min(length(u) * 0.8 / entry.nameWidth, length(v) * 0.5);
    constexpr double kLegible = 2.5;
    if (!(height >= kLegible) || !(height < 1e4))
        return;
    const QPointF along = u / length(u) * height;
    const QPointF up = v / length(v) * height;
    const QPointF start = origin + u / 2.0 + v / 2.0 - along * (entry.nameWidth / 2.0) - up / 2.0;
    m_canvas.beginGlyphs({along.x(), along.y(), up.x(), up.y()});
    for (const PlacedGlyph &placed : entry.name)
        m_canvas.glyph(*placed.glyph, start + along * placed.x);
}

} // namespace acgi
