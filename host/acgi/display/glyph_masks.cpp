#include "host/acgi/display/glyph_masks.h"

#include <QImage>
#include <QPainter>

#include <bit>
#include <cmath>
#include <cstring>

namespace acgi
{

std::size_t GlyphMasks::MatrixHash::operator()(const GlyphMatrix &matrix) const
{
    std::size_t hash = 0;
    for (const double value : {matrix.a, matrix.b, matrix.c, matrix.d})
        hash = (hash ^ std::bit_cast<std::uint64_t>(value)) * 0x9E3779B97F4A7C15ULL;
    return hash ^ hash >> 31;
}

void GlyphMasks::setMatrix(const GlyphMatrix &matrix)
{
    // Sizes that differ by less than a hundredth of a pixel look the same.
    const auto rounded = [](double value) { return std::round(value * 64.0) / 64.0 + 0.0; };
    const GlyphMatrix wanted{rounded(matrix.a), rounded(matrix.b), rounded(matrix.c), rounded(matrix.d)};
    if (m_set && wanted == m_matrix)
        return;
    constexpr std::size_t kMostBytes = 32 << 20;
    if (m_bytes > kMostBytes) {
        m_sets.clear();
        m_recent = {};
        m_bytes = 0;
    }
    m_matrix = wanted;
    m_set = &m_sets[wanted];
}

/// Without the empty rows and columns around it: most of a small glyph's box is empty.
static QRect usedPart(const QImage &image)
{
    QRect used;
    for (int y = 0; y < image.height(); ++y) {
        const uchar *const row = image.constScanLine(y);
        for (int x = 0; x < image.width(); ++x) {
            if (row[x] > 0)
                used |= QRect(x, y, 1, 1);
        }
    }
    return used;
}

static GlyphMask makeMask(const QPainterPath &path)
{
    GlyphMask mask;
    const QRect box = path.boundingRect().toAlignedRect().adjusted(-1, -1, 1, 1);
    QImage image(box.size(), QImage::Format_Alpha8);
    image.fill(0);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(-box.topLeft());
    painter.fillPath(path, Qt::black);
    painter.end();
    const QRect used = usedPart(image);
    mask.left = box.left() + used.left();
    mask.top = box.top() + used.top();
    mask.width = used.width();
    mask.height = used.height();
    mask.coverage.resize(std::size_t(mask.width) * std::size_t(mask.height));
    for (int y = 0; y < mask.height; ++y)
        std::memcpy(mask.coverage.data() + std::ptrdiff_t(y) * mask.width,
                    image.constScanLine(used.top() + y) + used.left(), std::size_t(mask.width));
    return mask;
}

const GlyphMask &GlyphMasks::mask(const Glyph &glyph, QPointF &origin)
{
    // Text along an axis keeps its base line on a pixel edge; otherwise quarters of a pixel are told apart.
    const double stepsX = m_matrix.a == 0.0 ? 1.0 : 4.0;
    const double stepsY = m_matrix.b == 0.0 ? 1.0 : 4.0;
    const double x = std::round(origin.x() * stepsX) / stepsX;
    const double y = std::round(origin.y() * stepsY) / stepsY;
    origin = {std::floor(x), std::floor(y)};
    const QPointF share(x - origin.x(), y - origin.y());
    const Key key{&glyph, std::uint32_t(share.x() * 4.0) * 4 + std::uint32_t(share.y() * 4.0)};
    Recent &recent = m_recent[KeyHash()(key) % m_recent.size()];
    if (recent.set == m_set && recent.key == key)
        return *recent.mask;
    const auto [place, isNew] = m_set->try_emplace(key);
    if (isNew) {
        QPainterPath path = m_matrix.at(share).map(glyph.outline);
        path.setFillRule(Qt::WindingFill);
        place->second = makeMask(path);
        m_bytes += place->second.coverage.size() + 128;
    }
    recent = {m_set, key, &place->second};
    return place->second;
}

} // namespace acgi
