#include "app/window/stroke_drawing.h"

#include <cmath>

namespace window
{

namespace
{

class StrokeReader
{
public:
    explicit StrokeReader(const QString &text) : m_words(text.simplified().split(u' ', Qt::SkipEmptyParts)) {}

    std::optional<StrokeDrawing> read()
    {
        while (m_isGood && m_next < m_words.size())
            step(m_words[m_next++]);
        return m_isGood ? std::optional(m_drawing) : std::nullopt;
    }

private:
    double number()
    {
        constexpr double kMost = 1000.0; // Far off the grid, and no trouble to any painter.
        bool isNumber = false;
        const double value = m_words.value(m_next++).toDouble(&isNumber);
        m_isGood &= isNumber && std::abs(value) <= kMost;
        return m_isGood ? value : 0.0;
    }
    QPointF point()
    {
        const double x = number();
        return {x, number()};
    }
    void step(const QString &verb)
    {
        QPainterPath &path = m_fills ? m_drawing.areas : m_drawing.lines;
        if (verb == u"M") {
            path.moveTo(point());
        } else if (verb == u"L") {
            path.lineTo(point());
        } else if (verb == u"C") {
            const QPointF first = point(), second = point();
            path.cubicTo(first, second, point());
        } else if (verb == u"Z") {
            path.closeSubpath();
        } else if (verb == u"O") {
            const QPointF centre = point();
            const double radius = number();
            path.addEllipse(centre, radius, radius);
        } else if (verb == u"F") {
            m_fills = true;
        } else {
            m_isGood = false;
        }
    }

    QStringList m_words;
    qsizetype m_next = 0;
    StrokeDrawing m_drawing;
    bool m_fills = false;
    bool m_isGood = true;
};

} // namespace

std::optional<StrokeDrawing> readStrokes(const QString &text)
{
    return StrokeReader(text).read();
}

} // namespace window
