#include "host/acgi/display/display_list.h"

#include "host/acdb/dbentity.h"
#include "host/acgi/text/font.h"
#include "host/base/assert.h"

#include <algorithm>
#include <bit>
#include <limits>

namespace acgi
{

// Tables -----------------------------------------------------------------------------------------

std::size_t ListTables::Hash::operator()(const Traits &traits) const
{
    std::size_t hash = std::hash<AcDbObjectId>()(traits.layer);
    const auto mix = [&hash](std::size_t value) { hash = (hash ^ value) * 0x9E3779B97F4A7C15ULL; };
    mix(std::size_t(traits.color.colorMethod()) << 32 | traits.color.rgb());
    mix(std::hash<AcDbObjectId>()(traits.linetype));
    mix(std::bit_cast<std::uint64_t>(traits.linetypeScale));
    mix(std::size_t(traits.alwaysWide) << 40 | std::size_t(traits.lineWeight + 16) << 24 |
        std::size_t(traits.linetypeBy) << 16 | std::size_t(traits.alphaBy) << 8 | traits.alpha);
    return hash ^ hash >> 29;
}

std::uint32_t ListTables::traitsNumber(const Traits &traits)
{
    if (!m_traits.empty() && traits == m_last)
        return m_lastNumber;
    const auto [place, isNew] = m_traitsNumbers.try_emplace(traits, m_first + std::uint32_t(m_traits.size()));
    if (isNew)
        m_traits.push_back(traits);
    m_last = traits;
    return m_lastNumber = place->second;
}

std::uint32_t ListTables::add(Image image)
{
    m_images.push_back(std::move(image));
    return m_first + std::uint32_t(m_images.size() - 1);
}

std::uint32_t ListTables::add(ViewportPicture viewport)
{
    m_viewports.push_back(std::move(viewport));
    return m_first + std::uint32_t(m_viewports.size() - 1);
}

// Store ------------------------------------------------------------------------------------------

DisplayList ListStore::keep(const std::vector<std::uint64_t> &words)
{
    DisplayList list;
    list.size = std::uint32_t(words.size());
    if (words.empty())
        return list;
    constexpr std::size_t kPiece = 1 << 16;
    if (m_left < words.size()) {
        const std::size_t size = std::max(kPiece, words.size());
        m_pieces.emplace_back(new std::uint64_t[size]);
        m_memory += size * sizeof(std::uint64_t);
        m_at = m_pieces.back().get();
        m_left = size;
    }
    std::memcpy(m_at, words.data(), words.size() * sizeof(std::uint64_t));
    list.words = m_at;
    m_at += words.size();
    m_left -= words.size();
    return list;
}

void ListStore::clear()
{
    m_pieces.clear();
    m_left = 0;
    m_memory = 0;
}

// Reading ----------------------------------------------------------------------------------------
AcGeMatrix3d ListReader::matrix()
{
    AcGeMatrix3d read;
    std::memcpy(&read.entry, m_at, sizeof read.entry);
    m_at += sizeof read.entry / sizeof(std::uint64_t);
    return read;
}

QStringView ListReader::characters(std::size_t count)
{
    const QStringView view(reinterpret_cast<const char16_t *>(m_at), qsizetype(count));
    m_at += (count + 3) / 4;
    return view;
}

// Building ---------------------------------------------------------------------------------------

void ListBuilder::begin(std::uint32_t owner)
{
    m_owner = owner;
    m_words.clear();
    m_box = AcDbExtents();
    m_flags = 0;
}

DisplayList ListBuilder::finish(ListStore &store)
{
    DisplayList list = store.keep(m_words);
    list.flags = std::uint16_t(m_flags | DisplayList::kBuilt);
    if (m_box.isValid()) {
        constexpr float kFar = std::numeric_limits<float>::max();
        const auto below = [](double v) { return std::nextafter(float(std::max(v, -1e38)), -kFar); };
        const auto above = [](double v) { return std::nextafter(float(std::min(v, 1e38)), kFar); };
        list.box[0] = below(m_box.minPoint().x);
        list.box[1] = below(m_box.minPoint().y);
        list.box[2] = above(m_box.maxPoint().x);
        list.box[3] = above(m_box.maxPoint().y);
    }
    return list;
}

void ListBuilder::op(ListOp op, std::uint32_t count, unsigned flags)
{
    const std::uint64_t traits = m_tables.traitsNumber(subEntityTraits().traits());
    const std::uint64_t small = std::min<std::uint32_t>(count, 0xFFFF);
    m_words.push_back(std::uint64_t(op) | std::uint64_t(flags) << 8 | small << 16 | traits << 32);
    if (small == 0xFFFF)
        m_words.push_back(count);
}

void ListBuilder::put(double value)
{
    m_words.push_back(std::bit_cast<std::uint64_t>(value));
}

void ListBuilder::put(const AcGePoint3d &point)
{
    put(point.x);
    put(point.y);
    put(point.z);
}

void ListBuilder::polyline(std::uint32_t count, const AcGePoint3d *points)
{
    if (count == 0)
        return;
    const std::size_t head = m_words.size();
    op(ListOp::polyline, count, 1);
    const std::size_t first = m_words.size();
    bool isFlat = true;
    for (std::uint32_t i = 0; i < count && isFlat; ++i) {
        const AcGePoint3d point = toWorld(points[i]);
        isFlat = point.z == 0.0;
        put(point.x);
        put(point.y);
        reach(point);
    }
    if (isFlat)
        return;
    m_words.resize(first);
    m_words[head] &= ~std::uint64_t(0x100);
    for (std::uint32_t i = 0; i < count; ++i) {
        put(toWorld(points[i]));
        reach(toWorld(points[i]));
    }
}

void ListBuilder::arc(const Arc &arc)
{
    const Arc world = toWorld(arc);
    op(ListOp::arc, 0);
    put(world.centre);
    put(world.u);
    put(world.v);
    put(world.start);
    put(world.sweep);
    // Of a small arc the ends and extremes would do; the whole ellipse never misses.
    const AcGeVector3d half(std::hypot(world.u.x, world.v.x), std::hypot(world.u.y, world.v.y),
                            std::hypot(world.u.z, world.v.z));
    reach(world.centre - half);
    reach(world.centre + half);
}

void ListBuilder::putLoops(std::span<const Loop> loops)
{
    for (const Loop &loop : loops) {
        m_words.push_back(loop.size());
        for (const AcGePoint3d &point : loop)
            put(toWorld(point));
    }
}

void ListBuilder::fill(std::span<const Loop> loops)
{
    op(ListOp::fill, std::uint32_t(loops.size()));
    putLoops(loops);
    for (const Loop &loop : loops) {
        for (const AcGePoint3d &point : loop)
            reach(toWorld(point));
    }
}

void ListBuilder::text(const TextLine &line)
{
    const AcGePoint3d position = toWorld(line.position);
    const AcGeVector3d direction = toWorld(line.position + line.direction) - position;
    const AcGeVector3d up = toWorld(line.position + line.up) - position;
    std::vector<PlacedGlyph> glyphs;
    const Font *const font = line.font;
    if (font)
        font->layOut(line.text, glyphs);
    std::erase_if(glyphs, [](const PlacedGlyph &placed) { return placed.glyph->outline.isEmpty(); });
    op(ListOp::text, std::uint32_t(line.text.size()));
    m_words.push_back(std::bit_cast<std::uint64_t>(font));
    put(position);
    put(direction);
    put(up);
    put(line.width);
    put(line.tracking);
    const std::size_t characters = m_words.size();
    m_words.resize(characters + std::size_t(line.text.size() + 3) / 4);
    if (!line.text.isEmpty())
        std::memcpy(&m_words[characters], line.text.constData(), std::size_t(line.text.size()) * 2);
    m_words.push_back(glyphs.size());
    for (const PlacedGlyph &placed : glyphs) {
        m_words.push_back(std::bit_cast<std::uint64_t>(placed.glyph));
        put(placed.x * line.tracking);
    }
    // Descenders and overhanging glyphs reach out of the nominal box.
    const AcGeVector3d along = direction * (line.width + 0.5);
    for (const double height : {-0.5, 1.5}) {
        reach(position - direction * 0.5 + up * height);
        reach(position + along + up * height);
    }
}

void ListBuilder::infiniteLine(const AcGePoint3d &base, const AcGeVector3d &direction, bool bothWays)
{
    const AcGePoint3d from = toWorld(base);
    op(ListOp::infiniteLine, 0, bothWays ? 2 : 0);
    put(from);
    put(toWorld(base + direction) - from);
    m_flags |= DisplayList::kEndless;
}

void ListBuilder::marker(const AcGePoint3d &point, int mode, double size, double angle)
{
    op(ListOp::marker, std::uint32_t(std::clamp(mode, 0, 255)));
    put(toWorld(point));
    // Sizes in drawing units grow with the block that the point stands in.
    put(size > 0.0 ? size * (toWorld(point + AcGeVector3d::kXAxis) - toWorld(point)).length() : size);
    put(angle);
    reach(toWorld(point));
    if (mode != 0)
        m_flags |= DisplayList::kEndless;
}

void ListBuilder::image(const Image &image)
{
    Image world = image;
    world.origin = toWorld(image.origin);
    world.u = toWorld(image.origin + image.u) - world.origin;
    world.v = toWorld(image.origin + image.v) - world.origin;
    for (AcGePoint3d &corner : world.clip)
        corner = toWorld(corner);
    reach(world.origin);
    reach(world.origin + world.u);
    reach(world.origin + world.v);
    reach(world.origin + world.u + world.v);
    op(ListOp::image, m_tables.add(std::move(world)));
}

void ListBuilder::viewport(const ViewportPicture &picture)
{
    const AcGeVector3d half(picture.width / 2.0, picture.height / 2.0, 0.0);
    reach(picture.centre - half);
    reach(picture.centre + half);
    op(ListOp::viewport, m_tables.add(picture));
}

bool ListBuilder::wants(const AcDbEntity &nested)
{
    const resbuf *const hidden = findGroup(nested.groups(), 60);
    return !hidden || hidden->integer() == 0;
}

void ListBuilder::reachBox(const AcGeMatrix3d &matrix, const float *box)
{
    for (const int x : {0, 2}) {
        for (const int y : {1, 3})
            reach(matrix * AcGePoint3d(box[x], box[y], 0.0));
    }
}

bool ListBuilder::blockReference(const BlockPlacement &reference)
{
    const DisplayList block = m_blocks.blockList(reference.record);
    m_blocks.noteUndrawnOf(reference.record, m_owner);
    m_flags |= DisplayList::kReferences;
    m_flags |= block.flags & (DisplayList::kViewDependent | DisplayList::kEndless | DisplayList::kLarge);
    if (block.size == 0)
        return true;
    const AcGeMatrix3d placement = modelToWorld() * reference.placement;
    const AcGeVector3d columnStep = modelToWorld() * reference.columnStep;
    const AcGeVector3d rowStep = modelToWorld() * reference.rowStep;
    const bool isArray = reference.columns > 1 || reference.rows > 1;
    op(ListOp::reference, std::uint32_t(reference.columns), isArray ? 2 : 0);
    m_words.push_back(std::bit_cast<std::uint64_t>(reference.record.stub()));
    for (const auto &row : placement.entry) {
        for (const double value : row)
            put(value);
    }
    if (isArray) {
        m_words.push_back(std::uint64_t(reference.rows));
        put(columnStep);
        put(rowStep);
    }
    // What has height shows elsewhere when it is tilted; only flat things are culled by their box.
    const bool isTilted = placement.entry[0][2] != 0.0 || placement.entry[1][2] != 0.0;
    if (isTilted || !block.hasBox())
        m_flags |= DisplayList::kEndless;
    for (const int column : {0, reference.columns - 1}) {
        for (const int row : {0, reference.rows - 1})
            reachBox(AcGeMatrix3d::translation(columnStep * column + rowStep * row) * placement, block.box);
    }
    return true;
}

void ListBuilder::reachPart(const DisplayList &part)
{
    m_flags |= part.flags & ~unsigned(DisplayList::kBuilt);
    if (part.hasBox())
        reachBox(AcGeMatrix3d(), part.box);
}

void ListBuilder::parts(std::uint32_t block)
{
    op(ListOp::parts, block);
    m_flags |= DisplayList::kLarge;
}

void ListBuilder::pushClip(std::span<const Loop> loops, bool inverted)
{
    op(ListOp::pushClip, std::uint32_t(loops.size()), inverted ? 2 : 0);
    putLoops(loops);
}

void ListBuilder::popClip()
{
    op(ListOp::popClip, 0);
}

const AcGiViewport *ListBuilder::view() const
{
    return m_view;
}

// Traits -----------------------------------------------------------------------------------------

static void takeTransparency(Traits &traits, std::int64_t value)
{
    const std::int64_t kind = value >> 24 & 0xFF;
    traits.alphaBy = kind == 2 ? Stated::itself : kind == 1 ? Stated::byBlock : Stated::byLayer;
    traits.alpha = std::uint8_t(value & 0xFF);
}

static void takeLinetype(Traits &traits, const AcDbEntity &entity, const QString &name, BlockLists &records)
{
    const auto is = [&](QLatin1String other) { return name.compare(other, Qt::CaseInsensitive) == 0; };
    if (is(QLatin1String("BYLAYER")))
        return;
    traits.linetypeBy = is(QLatin1String("BYBLOCK")) ? Stated::byBlock : Stated::itself;
    if (traits.linetypeBy == Stated::itself && !is(QLatin1String("CONTINUOUS")))
        traits.linetype = records.linetype(entity, name);
}

/// What the entity states of itself.
static Traits statedTraits(const AcDbEntity &entity, BlockLists &records)
{
    Traits traits;
    bool hasTrueColor = false;
    for (const resbuf &group : acdbCommonGroups(entity.groups())) {
        switch (group.restype) {
        case 6:
            takeLinetype(traits, entity, group.text(), records);
            break;
        case 8:
            traits.layer = records.layer(entity, group.text());
            break;
        case 48:
            traits.linetypeScale = group.real() > 0.0 ? group.real() : 1.0;
            break;
        case 62:
            if (!hasTrueColor)
                traits.color = AcCmEntityColor::fromIndex(int(group.integer()));
            break;
        case 370:
            traits.lineWeight = int(std::clamp<std::int64_t>(group.integer(), -3, 211));
            break;
        case 420:
            traits.color = AcCmEntityColor::fromRgb(std::uint32_t(group.integer()));
            hasTrueColor = true;
            break;
        case 440:
            takeTransparency(traits, group.integer());
            break;
        default:
            break;
        }
    }
    return traits;
}

void ListBuilder::beginEntity(const AcDbEntity &entity)
{
    m_outer.push_back(subEntityTraits().traits());
    subEntityTraits().setTraits(statedTraits(entity, m_blocks));
}

void ListBuilder::endEntity()
{
    QUILL_ASSERT(!m_outer.empty());
    subEntityTraits().setTraits(m_outer.back());
    m_outer.pop_back();
}

} // namespace acgi
