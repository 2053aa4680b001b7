#include "host/acgi/display/box_grid.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace acgi
{

/// What reaches over more cells is looked at always.
static constexpr int kMostCells = 16;

int BoxGrid::Axis::cell(double at, int count) const
{
    const double cell = std::floor((at - start) / step);
    return cell > 0.0 ? int(std::min(cell, count - 1.0)) : 0;
}

/// Drawings have stray entities far out; the cells are for the places where most are.
BoxGrid::Axis BoxGrid::axisThrough(std::vector<float> places, int count)
{
    if (places.empty())
        return {};
    std::ranges::sort(places);
    const double low = places[places.size() / 50];
    const double high = places[places.size() - 1 - places.size() / 50];
    return {low, high > low ? (high - low) / count : 1.0};
}

BoxGrid::Cells BoxGrid::cells(double left, double bottom, double right, double top) const
{
    return {m_columns.cell(left, m_side), m_rows.cell(bottom, m_side), m_columns.cell(right, m_side),
            m_rows.cell(top, m_side)};
}

template <class Visit>
void BoxGrid::visitCells(std::span<const Entry> entries, Visit visit) const
{
    for (const Entry &entry : entries) {
        if (!entry.box)
            continue;
        const Cells reached = cells(entry.box[0], entry.box[1], entry.box[2], entry.box[3]);
        if (reached.count() > kMostCells)
            continue;
        for (int row = reached.bottom; row <= reached.top; ++row) {
            for (int column = reached.left; column <= reached.right; ++column)
                visit(std::size_t(row) * std::size_t(m_side) + std::size_t(column), entry.number);
        }
    }
}

BoxGrid::BoxGrid(std::span<const Entry> entries)
{
    m_end = entries.empty() ? 0 : entries.back().number + 1;
    constexpr double kPerCell = 16.0;
    constexpr double kMostColumns = 256.0;
    m_side = int(std::clamp(std::sqrt(double(entries.size()) / kPerCell), 1.0, kMostColumns));
    constexpr std::size_t kSample = 2000;
    std::vector<float> x, y;
    for (std::size_t i = 0; i < entries.size(); i += entries.size() / kSample + 1) {
        if (const float *const box = entries[i].box) {
            x.push_back(box[0]);
            y.push_back(box[1]);
        }
    }
    m_columns = axisThrough(x, m_side);
    m_rows = axisThrough(y, m_side);

    // Counted first, so that the numbers of all cells lie in one row.
    m_ends.resize(std::size_t(m_side) * std::size_t(m_side) + 1);
    visitCells(entries, [this](std::size_t cell, std::uint32_t) { ++m_ends[cell + 1]; });
    for (std::size_t cell = 1; cell < m_ends.size(); ++cell)
        m_ends[cell] += m_ends[cell - 1];
    m_numbers.resize(m_ends.back());
    // Each cell's place moves on while it is filled, and ends up at the cell's end.
    visitCells(entries,
               [this](std::size_t cell, std::uint32_t number) { m_numbers[m_ends[cell]++] = number; });
    for (const Entry &entry : entries) {
        if (!entry.box || cells(entry.box[0], entry.box[1], entry.box[2], entry.box[3]).count() > kMostCells)
            m_anywhere.push_back(entry.number);
    }
}

namespace
{

/// Every number once, ascending. Marking all that could be there is quicker than sorting what is.
class NumberSet
{
public:
    explicit NumberSet(std::uint32_t end) : m_words(end / kBits + 1) {}
    void add(std::span<const std::uint32_t> numbers)
    {
        for (const std::uint32_t number : numbers)
            m_words[number / kBits] |= std::uint64_t(1) << number % kBits;
    }
    std::vector<std::uint32_t> numbers() const
    {
        std::vector<std::uint32_t> all;
        for (std::size_t word = 0; word < m_words.size(); ++word) {
            for (std::uint64_t left = m_words[word]; left != 0; left &= left - 1)
                all.push_back(std::uint32_t(word * kBits) + std::uint32_t(std::countr_zero(left)));
        }
        return all;
    }

private:
    static constexpr std::uint32_t kBits = 64;
    std::vector<std::uint64_t> m_words;
};

} // namespace

std::optional<std::vector<std::uint32_t>> BoxGrid::find(double left, double bottom, double right,
                                                        double top) const
{
    const Cells wanted = cells(left, bottom, right, top);
    if (wanted.count() * 4 > m_side * m_side)
        return std::nullopt;
    NumberSet found(m_end);
    found.add(m_anywhere);
    for (int row = wanted.bottom; row <= wanted.top; ++row) {
        const std::size_t first = std::size_t(row) * std::size_t(m_side) + std::size_t(wanted.left);
        const std::size_t last = first + std::size_t(wanted.right - wanted.left);
        // The cells of a row lie side by side.
        const std::size_t begin = first == 0 ? 0 : m_ends[first - 1];
        found.add(std::span(m_numbers).subspan(begin, m_ends[last] - begin));
    }
    return found.numbers();
}

} // namespace acgi
