// BoxGrid: which of very many boxes have to do with a small part of the plane, without looking at all.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace acgi
{

class BoxGrid
{
public:
    struct Entry {
        std::uint32_t number;
        /// Left, bottom, right, top; null for what may be anywhere.
        const float *box;
    };
    /// Keeps the numbers, which ascend, and no pointer.
    explicit BoxGrid(std::span<const Entry> entries);

    /// The numbers of all entries whose box meets the part, and of others near it, ascending. None when the
    /// part is so large that looking at all of them is as good.
    std::optional<std::vector<std::uint32_t>> find(double left, double bottom, double right,
                                                   double top) const;

private:
    /// Columns or rows. Whatever lies beyond the first and the last belongs to these.
    struct Axis {
        double start = 0.0;
        double step = 1.0;
        int cell(double at, int count) const;
    };
    struct Cells {
        int left, bottom, right, top;
        int count() const { return (right - left + 1) * (top - bottom + 1); }
    };
    static Axis axisThrough(std::vector<float> places, int count);
    Cells cells(double left, double bottom, double right, double top) const;
    template <class Visit>
    void visitCells(std::span<const Entry> entries, Visit visit) const;

    std::uint32_t m_end; ///< Beyond all numbers.
    int m_side;          ///< Columns, and rows.
    Axis m_columns;
    Axis m_rows;
    std::vector<std::uint32_t> m_ends;    ///< Of each cell in m_numbers, row by row.
    std::vector<std::uint32_t> m_numbers; ///< Cell by cell.
    std::vector<std::uint32_t> m_anywhere;
};

} // namespace acgi
