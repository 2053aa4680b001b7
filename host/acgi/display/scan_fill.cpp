#include "host/acgi/display/scan_fill.h"

#include <algorithm>
#include <cmath>

namespace acgi
{

namespace
{

/// Lines of samples in a row of pixels; along a line coverage is exact to a part of a pixel.
constexpr int kLines = 4;
constexpr int kShare = 256 / kLines;

/// A side of a loop, from its upper end down.
struct Side {
    double top;
    double bottom;
    double x; ///< At y = 0 of the picture.
    double slope;
    double at(double y) const { return x + slope * y; }
};

class ScanFill
{
public:
    ScanFill(std::span<const QPolygonF> loops, const QRect &visible, const std::atomic<bool> &cancelled)
        : m_cancelled(cancelled), m_visible(visible), m_steps(std::size_t(visible.width()) + 2),
          m_coverage(std::size_t(visible.width()))
    {
        for (const QPolygonF &loop : loops) {
            for (qsizetype i = 0; i < loop.size(); ++i)
                addSide(loop[i], loop[(i + 1) % loop.size()]);
        }
        if (!m_cancelled)
            std::ranges::sort(m_sides, {}, &Side::top);
    }

    void run(const std::function<void(int, std::span<const std::uint16_t>)> &row)
    {
        for (int y = m_visible.top(); y <= m_visible.bottom() && !m_cancelled; ++y) {
            std::ranges::fill(m_steps, 0);
            takeSides(y);
            for (int line = 0; line < kLines && !m_cancelled; ++line)
                sample(y + (line + 0.5) / kLines);
            int sum = 0;
            for (std::size_t x = 0; x < m_coverage.size(); ++x)
                m_coverage[x] = std::uint16_t(std::clamp(sum += m_steps[x], 0, 256));
            row(y, m_coverage);
        }
    }

private:
    void addSide(QPointF from, QPointF to)
    {
        if (from.y() > to.y())
            std::swap(from, to);
        const double slope = (to.x() - from.x()) / (to.y() - from.y());
        // Level sides cross no line of samples.
        if (to.y() > m_visible.top() && from.y() < m_visible.bottom() + 1 && std::isfinite(slope))
            m_sides.push_back({from.y(), to.y(), from.x() - slope * from.y(), slope});
    }

    void takeSides(int y)
    {
        std::erase_if(m_active, [&](const Side &side) { return side.bottom <= y; });
        for (; m_next < m_sides.size() && m_sides[m_next].top < y + 1; ++m_next)
            m_active.push_back(m_sides[m_next]);
    }

    void sample(double y)
    {
        m_crossings.clear();
        for (const Side &side : m_active) {
            if (side.top <= y && y < side.bottom)
                m_crossings.push_back(side.at(y));
        }
        std::ranges::sort(m_crossings);
        for (std::size_t i = 0; i + 1 < m_crossings.size(); i += 2) {
            step(m_crossings[i], kShare);
            step(m_crossings[i + 1], -kShare);
        }
    }

    /// Coverage changes by so much at x; the pixel that x lies in gets its part of it.
    void step(double x, int change)
    {
        const double inside = std::clamp(x - m_visible.left(), -1.0, double(m_visible.width()));
        if (inside < 0.0) {
            m_steps[0] += change;
            return;
        }
        const auto pixel = std::size_t(inside);
        const int later = inside < m_visible.width() ? int(std::lround((x - std::floor(x)) * change)) : 0;
        m_steps[pixel] += change - later;
        m_steps[pixel + 1] += later;
    }

    const std::atomic<bool> &m_cancelled;
    QRect m_visible;
    std::vector<Side> m_sides;
    std::size_t m_next = 0;
    std::vector<Side> m_active;
    std::vector<double> m_crossings;
    std::vector<int> m_steps; ///< Of coverage, from one pixel to the next.
    std::vector<std::uint16_t> m_coverage;
};

} // namespace

void scanFill(std::span<const QPolygonF> loops, const QRect &visible, const std::atomic<bool> &cancelled,
              const std::function<void(int y, std::span<const std::uint16_t> coverage)> &row)
{
    if (!visible.isEmpty())
        ScanFill(loops, visible, cancelled).run(row);
}

} // namespace acgi
