#include "helpers/ink_relay/ink_document.h"

#include "host/base/assert.h"
#include "host/base/byte_stream.h"

#include <cmath>
#include <utility>

namespace ink
{

// The file counts in whole numbers of any size: parts of a pixel keep curves smooth in a drawing that is
// looked at closer than it was drawn, and on screens that are finer than their coordinates.
static constexpr int kUnitsPerPixel = 8;

// What a filled kind has over the one that is not.
static constexpr std::int32_t kFilledOffset =
    std::int32_t(Kind::filledRectangle) - std::int32_t(Kind::rectangle);

Kind filled(Kind kind)
{
    return kind == Kind::line || isFilled(kind) ? kind : Kind(std::int32_t(kind) + kFilledOffset);
}

bool isFilled(Kind kind)
{
    return kind >= Kind::filledRectangle;
}

std::span<const Shape> Document::shapes() const
{
    const Range range = m_steps[m_step];
    return std::span(m_shapes).subspan(range.begin, range.end - range.begin);
}

void Document::dropUndone()
{
    m_steps.resize(m_step + 1);
    m_shapes.resize(m_steps[m_step].end);
}

void Document::add(Shape shape)
{
    QUILL_ASSERT(shape.kind == Kind::line ? !shape.points.empty() : shape.points.size() == 2);
    dropUndone();
    m_shapes.push_back(std::move(shape));
    m_steps.push_back({m_steps[m_step].begin, m_shapes.size()});
    ++m_step;
}

void Document::clear()
{
    if (isEmpty())
        return;
    dropUndone();
    m_steps.push_back({m_shapes.size(), m_shapes.size()});
    ++m_step;
}

void Document::undo()
{
    if (canUndo())
        --m_step;
}

void Document::redo()
{
    if (canRedo())
        ++m_step;
}

// Bytes -------------------------------------------------------------------------------------------

static std::int32_t units(double pixels)
{
    return std::int32_t(std::lround(pixels * kUnitsPerPixel));
}

static void putRecord(base::ByteWriter &out, const Shape &shape, const QPointF &from, const QPointF &to)
{
    out.put<std::int32_t>(std::int32_t(shape.kind));
    for (const double pixels : {from.x(), from.y(), to.x(), to.y()})
        out.put<std::int32_t>(units(pixels));
    out.put<std::int32_t>(qRed(shape.color) | qGreen(shape.color) << 8 | qBlue(shape.color) << 16);
    out.put<std::int32_t>(shape.penWidth);
}

/// Kinds with two corners are one record, lines one for each of their pieces.
static std::int32_t putShape(base::ByteWriter &out, const Shape &shape)
{
    // A line without length would not be seen everywhere.
    if (shape.points.size() == 1) {
        putRecord(out, shape, shape.points.front(), shape.points.front() + QPointF(1.0, 0.0));
        return 1;
    }
    for (std::size_t i = 0; i + 1 < shape.points.size(); ++i)
        putRecord(out, shape, shape.points[i], shape.points[i + 1]);
    return std::int32_t(shape.points.size()) - 1;
}

QByteArray Document::bytes() const
{
    base::ByteWriter out;
    out.put<std::int32_t>(m_canvas.width() * kUnitsPerPixel);
    out.put<std::int32_t>(m_canvas.height() * kUnitsPerPixel);
    const std::size_t countAt = out.size();
    out.put<std::int32_t>(0);
    std::int32_t count = 0;
    for (const Shape &shape : shapes())
        count += putShape(out, shape);
    out.patch<std::int32_t>(countAt, count);
    return out.take();
}

} // namespace ink
