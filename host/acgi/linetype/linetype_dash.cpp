// Laying a linetype's pattern along a chain: dashes by their distances from the start of the chain.
#include "host/acgi/linetype/linetype.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace acgi
{

namespace
{

/// Dashes that one chain may show; a line that has more is dense enough to be drawn without gaps.
constexpr double kMostDashes = 1e6;
/// Beyond this the places of the dashes drown in rounding.
constexpr double kMostOnChain = 1e12;

QPointF between(QPointF from, QPointF to, double share)
{
    return from + (to - from) * share;
}

/// The chain, measured.
class MeasuredChain
{
public:
    MeasuredChain(std::span<const QPointF> chain, bool closed) : m_points(chain.begin(), chain.end())
    {
        if (closed && m_points.size() > 1 && m_points.front() != m_points.back())
            m_points.push_back(m_points.front());
        m_distances.reserve(m_points.size());
        m_distances.push_back(0.0);
        for (std::size_t i = 1; i < m_points.size(); ++i) {
            const QPointF step = m_points[i] - m_points[i - 1];
            m_distances.push_back(m_distances.back() + std::hypot(step.x(), step.y()));
        }
    }

    double length() const { return m_distances.back(); }
    std::span<const QPointF> points() const { return m_points; }

    QPointF at(double distance) const
    {
        const std::size_t i = segmentAt(distance);
        const double length = m_distances[i + 1] - m_distances[i];
        const double share = length > 0.0 ? (distance - m_distances[i]) / length : 0.0;
        return between(m_points[i], m_points[i + 1], std::clamp(share, 0.0, 1.0));
    }

    double directionAt(double distance) const
    {
        const std::size_t i = segmentAt(distance);
        const QPointF step = m_points[i + 1] - m_points[i];
        return std::atan2(step.y(), step.x());
    }

    /// The part between two distances, both within the chain.
    void appendPart(double from, double to, std::vector<QPointF> &part) const
    {
        part.push_back(at(from));
        const auto first = std::upper_bound(m_distances.begin(), m_distances.end(), from);
        const auto last = std::lower_bound(first, m_distances.end(), to);
        const auto begin = m_points.begin();
        part.insert(part.end(), begin + (first - m_distances.begin()), begin + (last - m_distances.begin()));
        part.push_back(at(to));
    }

    /// Distances between which the chain runs inside the rectangle, in order.
    std::vector<std::pair<double, double>> partsInside(const QRectF &rectangle) const
    {
        std::vector<std::pair<double, double>> parts;
        for (std::size_t i = 0; i + 1 < m_points.size(); ++i) {
            double low = 0.0;
            double high = 1.0;
            const QPointF from = m_points[i];
            const QPointF step = m_points[i + 1] - from;
            clip(from.x(), step.x(), rectangle.left(), rectangle.right(), low, high);
            clip(from.y(), step.y(), rectangle.top(), rectangle.bottom(), low, high);
            if (!(low <= high))
                continue;
            const double length = m_distances[i + 1] - m_distances[i];
            const double start = m_distances[i] + low * length;
            const double end = m_distances[i] + high * length;
            if (!parts.empty() && parts.back().second >= start)
                parts.back().second = end;
            else
                parts.emplace_back(start, end);
        }
        return parts;
    }

private:
    /// The segment with a length that the distance falls into.
    std::size_t segmentAt(double distance) const
    {
        const auto after = std::upper_bound(m_distances.begin(), m_distances.end(), std::max(0.0, distance));
        if (after != m_distances.end())
            return std::size_t(after - m_distances.begin()) - 1;
        const auto atEnd = std::lower_bound(m_distances.begin(), m_distances.end(), length());
        return std::size_t(atEnd - m_distances.begin()) - 1;
    }

    static void clip(double from, double step, double least, double most, double &low, double &high)
    {
        if (step == 0.0) {
            if (from < least || from > most)
                high = -1.0;
            return;
        }
        const double one = (least - from) / step;
        const double other = (most - from) / step;
        low = std::max(low, std::min(one, other));
        high = std::min(high, std::max(one, other));
    }

    std::vector<QPointF> m_points;
    std::vector<double> m_distances; ///< Of each point from the first.
};

/// Where the patterns stand on a chain. An open chain begins and ends with at least half the first dash: what
/// is left over lengthens the dashes at its ends. A closed one stretches the pattern to a whole number.
class PatternLayer
{
public:
    PatternLayer(const Linetype &linetype, double scale, const MeasuredChain &chain, bool closed,
                 DashSink &sink)
        : m_elements(linetype.elements), m_chain(chain), m_closed(closed), m_sink(sink)
    {
        const auto shown =
            std::ranges::find_if(m_elements, [](const PatternElement &e) { return e.length >= 0.0; });
        m_firstElement = shown == m_elements.end() ? 0 : std::size_t(shown - m_elements.begin());
        const double patterns = chain.length() / (linetype.length * scale);
        m_count = closed ? std::round(patterns) : std::floor(patterns);
        m_scale = closed ? chain.length() / (m_count * linetype.length) : scale;
        m_pattern = linetype.length * m_scale;
        const double dash = std::max(0.0, m_elements[m_firstElement].length * m_scale);
        m_origin = closed ? -0.5 * dash : 0.5 * (chain.length() - m_count * m_pattern + dash) - dash;
    }

    /// Whether what lies in the parts is few enough to be laid dash by dash.
    bool isSparse(std::span<const std::pair<double, double>> parts) const
    {
        double seen = 0.0;
        for (const auto &[from, to] : parts)
            seen += to - from;
        return (seen / m_pattern + double(parts.size())) * double(m_elements.size()) < kMostDashes;
    }

    void lay(std::span<const std::pair<double, double>> parts)
    {
        double next = 0.0;
        for (const auto &[from, to] : parts) {
            const double last = std::min(std::floor((to - m_origin) / m_pattern), m_count);
            for (double k = std::max(next, std::floor((from - m_origin) / m_pattern)); k <= last; ++k) {
                layOne(k);
                next = k + 1.0;
            }
        }
    }

private:
    void layOne(double k)
    {
        const bool isEnd = k == m_count && !m_closed;
        if (m_closed && k == m_count)
            k = 0.0; // The first one again.
        if (k == 0.0 && std::exchange(m_firstIsLaid, true))
            return;
        double at = m_origin + k * m_pattern;
        for (std::size_t i = 0; i < m_elements.size(); ++i) {
            const PatternElement &element = m_elements[(m_firstElement + i) % m_elements.size()];
            const double end = at + std::abs(element.length) * m_scale;
            const bool isStart = i == 0 && k == 0.0 && !m_closed;
            if (element.length >= 0.0)
                layDash(isStart ? 0.0 : at, isEnd ? m_chain.length() : end, element.length == 0.0);
            if (isEnd)
                return;
            if (element.text)
                m_sink.text(*element.text, m_chain.at(end), m_chain.directionAt(end));
            at = end;
        }
    }

    void layDash(double from, double to, bool isDot)
    {
        const double length = m_chain.length();
        m_part.clear();
        if (isDot) {
            layDot(from);
            if (to > from)
                layDot(to);
            return;
        }
        if (from < 0.0) // Only on a closed chain: the dash runs through the joint.
            m_chain.appendPart(length + from, length, m_part);
        m_chain.appendPart(std::max(0.0, from), std::min(to, length), m_part);
        m_part.erase(std::unique(m_part.begin(), m_part.end()), m_part.end());
        m_sink.dash(m_part);
    }

    void layDot(double at)
    {
        const QPointF place = m_chain.at(at);
        m_sink.dash(std::span(&place, 1));
    }

    std::span<const PatternElement> m_elements;
    std::size_t m_firstElement;
    const MeasuredChain &m_chain;
    bool m_closed;
    DashSink &m_sink;
    double m_count = 0.0; ///< Whole patterns on the chain.
    double m_scale = 1.0;
    double m_pattern = 0.0; ///< Length in chain units.
    double m_origin = 0.0;  ///< Where the first dash of the first pattern would begin.
    bool m_firstIsLaid = false;
    std::vector<QPointF> m_part;
};

} // namespace

void layPattern(const Linetype &linetype, double scale, std::span<const QPointF> chain, bool closed,
                const QRectF &visible, double finest, DashSink &sink)
{
    if (chain.empty())
        return;
    const MeasuredChain measured(chain, closed);
    const double length = measured.length();
    const double pattern = linetype.length * scale;
    // Written so that what is not a number draws the chain as it is.
    const bool isLaid = !linetype.isContinuous() && pattern > 0.0 && pattern >= finest && length >= pattern &&
                        length / pattern < kMostOnChain;
    if (isLaid) {
        const auto parts = measured.partsInside(visible);
        PatternLayer layer(linetype, scale, measured, closed, sink);
        if (layer.isSparse(parts))
            return layer.lay(parts);
    }
    sink.dash(length == 0.0 ? measured.points().first(1) : measured.points());
}

} // namespace acgi
