// What has been drawn: shapes as values, steps that can be undone, the bytes of the sketch file.
#pragma once

#include <QByteArray>
#include <QColor>
#include <QPointF>
#include <QSize>

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace ink
{

/// As the file numbers them.
enum class Kind : std::int32_t {
    line = 2,
    rectangle = 3,
    roundedRectangle = 4,
    ellipse = 5,
    filledRectangle = 7,
    filledRoundedRectangle = 8,
    filledEllipse = 9,
};

/// The kind with its inside filled; a line stays a line.
Kind filled(Kind kind);
bool isFilled(Kind kind);

struct Shape {
    Kind kind = Kind::line;
    /// Pixels of the canvas, y downwards. A line may have any number of points, one makes a dot; the other
    /// kinds have two, opposite corners.
    std::vector<QPointF> points{};
    QRgb color = 0xFF000000;
    int penWidth = 1; ///< 1 to 4, for the line weights 0.20, 0.35, 0.50 and 0.70 mm.

    friend bool operator==(const Shape &, const Shape &) = default;
};

class Document
{
public:
    /// The size of the canvas in pixels, at least 1 by 1.
    explicit Document(QSize canvas) : m_canvas(canvas) {}

    QSize canvas() const { return m_canvas; }
    /// What there is to see, in the order in which it was drawn.
    std::span<const Shape> shapes() const;
    bool isEmpty() const { return shapes().empty(); }

    /// Each of these is one step; what was undone before is gone. Clearing nothing is no step.
    void add(Shape shape);
    void clear();

    bool canUndo() const { return m_step > 0; }
    bool canRedo() const { return m_step + 1 < m_steps.size(); }
    void undo();
    void redo();

    /// The content of the sketch file: docs/formats/sketch.md.
    QByteArray bytes() const;

private:
    /// Which of the shapes are there to see after a step.
    struct Range {
        std::size_t begin = 0;
        std::size_t end = 0;
    };
    void dropUndone();

    QSize m_canvas;
    std::vector<Shape> m_shapes; ///< Also those that were cleared or undone.
    std::vector<Range> m_steps{Range{}};
    std::size_t m_step = 0;
};

} // namespace ink
