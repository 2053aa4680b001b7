// Display lists: what an entity or a block draws, as a row of words that the painter walks again and again.
// Traits stand in them as stated; blocks by reference. Coordinates are those of the owner (space or block).
#pragma once

#include "host/acge/geextents.h"
#include "host/acgi/geometry.h"

#include <cstring>
#include <deque>
#include <memory>
#include <unordered_map>

class AcGiViewport;

namespace acgi
{

class Font;
struct Glyph;

/// What an operation draws. Payloads are written by ListBuilder and read by ListReader only.
enum class ListOp : std::uint8_t {
    polyline,
    arc,
    fill,
    text,
    infiniteLine,
    marker,
    image,
    viewport,
    reference,
    parts,
    pushClip,
    popClip
};

/// The things that operations name by number, each kept once for a drawing.
class ListTables
{
public:
    /// Numbers from here on name things of lists that are not the drawing's.
    static constexpr std::uint32_t kOwn = 0x80000000u;

    explicit ListTables(std::uint32_t first = 0) : m_first(first) {}
    std::uint32_t traitsNumber(const Traits &traits);
    const std::deque<Traits> &traits() const { return m_traits; }
    std::uint32_t add(Image image);
    const Image &image(std::uint32_t number) const { return m_images[number - m_first]; }
    const std::deque<Image> &images() const { return m_images; }
    std::uint32_t add(ViewportPicture viewport);
    const ViewportPicture &viewport(std::uint32_t number) const { return m_viewports[number - m_first]; }
    std::uint32_t viewportCount() const { return std::uint32_t(m_viewports.size()); }

private:
    struct Hash {
        std::size_t operator()(const Traits &traits) const;
    };
    std::uint32_t m_first;
    std::deque<Traits> m_traits;
    std::unordered_map<Traits, std::uint32_t, Hash> m_traitsNumbers;
    Traits m_last;
    std::uint32_t m_lastNumber = 0;
    std::deque<Image> m_images;
    std::deque<ViewportPicture> m_viewports;
};

/// One list, as a value that points into its store.
struct DisplayList {
    enum Flag : std::uint16_t {
        kReferences = 1,    ///< Shows blocks: gone when a block changes.
        kViewDependent = 2, ///< Good for one view only.
        kEndless = 4,       ///< Reaches beyond its box.
        kBuilt = 8,
        kLarge = 16 ///< Shows a block that is painted part by part.
    };

    const std::uint64_t *words = nullptr;
    std::uint32_t size = 0; ///< Words.
    std::uint16_t flags = 0;
    /// Left, bottom, right, top, rounded outward; left above right when nothing with an end is drawn.
    float box[4] = {1.0F, 1.0F, 0.0F, 0.0F};

    bool has(Flag flag) const { return flags & flag; }
    bool hasBox() const { return box[0] <= box[2]; }
};

/// Reads the operations of a list in order.
class ListReader
{
public:
    explicit ListReader(const DisplayList &list) : m_at(list.words), m_end(list.words + list.size) {}

    /// The next operation; false at the end. Its payload must be read whole before the next call.
    bool next()
    {
        if (m_at >= m_end)
            return false;
        // Kind, flags, count, traits; a count that is too large for its 16 bits follows.
        const std::uint64_t head = *m_at++;
        m_op = ListOp(head & 0xFF);
        m_flags = std::uint8_t(head >> 8);
        m_count = std::uint32_t(head >> 16 & 0xFFFF);
        m_traits = std::uint32_t(head >> 32);
        if (m_count == 0xFFFF)
            m_count = std::uint32_t(*m_at++);
        return true;
    }
    ListOp op() const { return m_op; }
    std::uint32_t traits() const { return m_traits; }
    /// Points or loops that follow, columns, flags: as the operation has it.
    std::uint32_t count() const { return m_count; }
    bool isFlat() const { return m_flags & 1; }
    bool flag() const { return m_flags & 2; }

    double real()
    {
        double value;
        std::memcpy(&value, m_at++, sizeof value);
        return value;
    }
    std::uint64_t word() { return *m_at++; }
    AcGePoint3d point()
    {
        AcGePoint3d read;
        read.x = real();
        read.y = real();
        read.z = real();
        return read;
    }
    AcGeVector3d vector() { return point().asVector(); }
    AcGeMatrix3d matrix();
    /// `count` numbers in a row.
    const double *reals(std::size_t count)
    {
        const auto *const first = reinterpret_cast<const double *>(m_at);
        m_at += count;
        return first;
    }
    const std::uint64_t *words(std::size_t count)
    {
        const std::uint64_t *const first = m_at;
        m_at += count;
        return first;
    }
    /// Text as it was given.
    QStringView characters(std::size_t count);

private:
    const std::uint64_t *m_at;
    const std::uint64_t *m_end;
    ListOp m_op = ListOp::polyline;
    std::uint8_t m_flags = 0;
    std::uint32_t m_count = 0;
    std::uint32_t m_traits = 0;
};

/// Keeps lists in large pieces of memory. What is dropped is freed when the store is cleared.
class ListStore
{
public:
    DisplayList keep(const std::vector<std::uint64_t> &words);
    void clear();
    std::size_t memory() const { return m_memory; }

private:
    std::vector<std::unique_ptr<std::uint64_t[]>> m_pieces;
    std::size_t m_left = 0;
    std::uint64_t *m_at = nullptr;
    std::size_t m_memory = 0;
};

/// How far the picture of a block reaches, asked while a list that shows it is made.
class BlockLists
{
public:
    virtual ~BlockLists() = default;
    /// The list of a block definition, made when needed; empty for a block that is just being made.
    virtual DisplayList blockList(AcDbObjectId record) = 0;
    /// Layer and linetype records by the name that an entity states.
    virtual AcDbObjectId layer(const AcDbEntity &entity, const QString &name) = 0;
    virtual AcDbObjectId linetype(const AcDbEntity &entity, const QString &name) = 0;
    /// Something that a list cannot show; `reason` as for AcGiGeometry::noteUndrawn. 0: of no entity of the
    /// drawing.
    virtual void noteUndrawn(std::uint32_t entity, const QString &reason) = 0;
    /// What a block cannot show, whoever shows the block cannot either.
    virtual void noteUndrawnOf(AcDbObjectId record, std::uint32_t entity) = 0;
};

/// Makes lists: draw an entity or a block into it, then finish().
class ListBuilder final : public AcGiGeometry
{
public:
    ListBuilder(ListTables &tables, BlockLists &blocks, const AcGiViewport *view)
        : m_tables(tables), m_blocks(blocks), m_view(view)
    {
    }
    /// The list of what was drawn since the last one. `owner` is whom undrawn things are noted for.
    void begin(std::uint32_t owner);
    bool isViewDependent() const { return m_flags & DisplayList::kViewDependent; }
    DisplayList finish(ListStore &store);

    /// A list that others are a part of: `block` names them, `part` is one of them.
    void parts(std::uint32_t block);
    void reachPart(const DisplayList &part);

    void polyline(std::uint32_t count, const AcGePoint3d *points) override;
    void arc(const Arc &arc) override;
    void fill(std::span<const Loop> loops) override;
    void text(const TextLine &line) override;
    void infiniteLine(const AcGePoint3d &base, const AcGeVector3d &direction, bool bothWays) override;
    void marker(const AcGePoint3d &point, int mode, double size, double angle) override;
    void image(const Image &image) override;
    void viewport(const ViewportPicture &picture) override;

    bool wants(const AcDbEntity &nested) override;
    bool blockReference(const BlockPlacement &reference) override;
    void beginEntity(const AcDbEntity &entity) override;
    void endEntity() override;
    void pushClip(std::span<const Loop> loops, bool inverted) override;
    void popClip() override;
    void noteUndrawn(const QString &reason) override { m_blocks.noteUndrawn(m_owner, reason); }
    const AcGiViewport *view() const override;
    bool isDisplay() const override { return true; }
    void beginViewDependent() override { m_flags |= DisplayList::kViewDependent; }

private:
    void op(ListOp op, std::uint32_t count, unsigned flags = 0);
    void put(double value);
    void put(const AcGePoint3d &point);
    void put(const AcGeVector3d &vector) { put(AcGePoint3d(vector.x, vector.y, vector.z)); }
    void putLoops(std::span<const Loop> loops);
    void reach(const AcGePoint3d &point) { m_box.addPoint(point); }
    void reachBox(const AcGeMatrix3d &matrix, const float *box);

    ListTables &m_tables;
    BlockLists &m_blocks;
    const AcGiViewport *m_view;
    std::uint32_t m_owner = 0;
    std::vector<std::uint64_t> m_words;
    AcDbExtents m_box;
    unsigned m_flags = 0;
    std::vector<Traits> m_outer; ///< Traits of the entities around the present one.
};

} // namespace acgi
