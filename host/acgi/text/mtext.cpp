#include "host/acgi/text/mtext.h"

#include "host/acgi/text/mtext_layout.h"
#include "host/acgi/text/text_layout.h"

#include <algorithm>
#include <cmath>

namespace acgi
{

namespace
{

/// Draws a text that is laid out; takes the pen's colour back when it is done.
class MTextDrawer
{
public:
    MTextDrawer(const MText &text, const MTextLayout &layout, AcGiGeometry &sink)
        : m_text(text), m_layout(layout), m_sink(sink), m_traits(sink.subEntityTraits().traits())
    {
        m_right = text.along;
        m_up = text.normal.crossProduct(text.along).normal();
        // Vertical text runs down, and its next line stands to the right.
        m_x = text.vertical ? -m_up : m_right;
        m_y = text.vertical ? -m_right : m_up;
    }
    ~MTextDrawer() { m_sink.subEntityTraits().setTraits(m_traits); }
    MTextDrawer(const MTextDrawer &) = delete;
    MTextDrawer &operator=(const MTextDrawer &) = delete;

    void draw()
    {
        drawMask();
        for (const MTextLine &line : m_layout.lines) {
            for (const MTextPiece &piece : line.pieces) {
                if (m_sink.isDone())
                    return;
                drawPiece(line, piece);
            }
        }
    }

private:
    AcGePoint3d at(double x, double y) const { return m_text.position + m_x * x + m_y * y; }

    void setColor(const std::optional<AcCmEntityColor> &color)
    {
        m_sink.subEntityTraits().setTrueColor(color.value_or(m_traits.color));
    }

    void drawMask();
    void drawPiece(const MTextLine &line, const MTextPiece &piece);
    void drawRun(QStringView text, double x, double y, double width, const MTextFormat &format,
                 double height);
    void drawUpright(QStringView text, double x, double y, const MTextFormat &format);
    void drawStack(const MTextPiece &piece, double x, double y, const MTextFormat &format);
    void drawBar(const AcGePoint2d &from, const AcGePoint2d &to);

    const MText &m_text;
    const MTextLayout &m_layout;
    AcGiGeometry &m_sink;
    const Traits m_traits;
    AcGeVector3d m_right, m_up; ///< Of the letters.
    AcGeVector3d m_x, m_y;      ///< Of the layout.
};

} // namespace

void MTextDrawer::drawMask()
{
    const bool isEmpty =
        std::ranges::all_of(m_layout.lines, [](const MTextLine &l) { return l.pieces.empty(); });
    if (isEmpty || (!(m_text.maskFactor > 0.0) && !m_text.hasFrame))
        return;
    const double margin = std::max(m_text.maskFactor - 1.0, 0.0) * m_text.height;
    const MTextBox &box = m_layout.frame;
    const Loop edge = {
        at(box.low.x - margin, box.low.y - margin), at(box.high.x + margin, box.low.y - margin),
        at(box.high.x + margin, box.high.y + margin), at(box.low.x - margin, box.high.y + margin),
        at(box.low.x - margin, box.low.y - margin)};
    if (m_text.maskFactor > 0.0) {
        setColor(m_text.maskColor);
        m_sink.fill(std::span(&edge, 1));
    }
    if (m_text.hasFrame) {
        setColor(std::nullopt);
        m_sink.polyline(std::uint32_t(edge.size()), edge.data());
    }
}

void MTextDrawer::drawPiece(const MTextLine &line, const MTextPiece &piece)
{
    const MTextFormat &format = m_layout.formats[piece.format];
    const double x = m_layout.left + line.column * m_layout.columnStep + piece.x;
    setColor(format.color);
    if (piece.isStack) {
        drawStack(piece, x, line.y, format);
    } else {
        const double y = line.y + (line.height - format.height) * double(format.alignment) / 2.0;
        if (m_text.vertical)
            drawUpright(piece.text, x, y, format);
        else if (!piece.isBlank)
            drawRun(piece.text, x, y, piece.width, format, format.height);
    }
    const std::pair<bool, CharacterCode> rules[] = {{format.underline, CharacterCode::underline},
                                                    {format.overline, CharacterCode::overline},
                                                    {format.strikeThrough, CharacterCode::strikeThrough}};
    for (const auto &[isOn, kind] : rules) {
        const double y = line.y + ruleHeight(kind) * format.height;
        if (isOn && piece.width > 0.0)
            drawBar({x, y}, {x + piece.width, y});
    }
}

void MTextDrawer::drawRun(QStringView text, double x, double y, double width, const MTextFormat &format,
                          double height)
{
    if (text.isEmpty())
        return;
    TextLine line;
    line.text = text.toString();
    line.font = format.font;
    line.tracking = format.tracking;
    line.position = at(x, y);
    line.direction = m_right * (height * format.widthFactor);
    line.up = (m_up + m_right * std::tan(format.oblique)) * height;
    line.width = width / (height * format.widthFactor);
    m_sink.text(line);
}

/// Characters below each other, each in the middle of the line.
void MTextDrawer::drawUpright(QStringView text, double x, double y, const MTextFormat &format)
{
    for (qsizetype i = 0; i < text.size();) {
        const qsizetype length = characterLength(text, i);
        const QStringView character = text.mid(i, length);
        i += length;
        if (character != u" ") {
            TextLine line;
            line.text = character.toString();
            line.font = format.font;
            line.width = format.font->width(character);
            line.direction = m_right * (format.height * format.widthFactor);
            line.up = (m_up + m_right * std::tan(format.oblique)) * format.height;
            line.position =
                at(x + format.height, y + format.height / 2.0) - line.direction * (line.width / 2.0);
            m_sink.text(line);
        }
        x += kVerticalAdvance * format.tracking * format.height;
    }
}

void MTextDrawer::drawStack(const MTextPiece &piece, double x, double y, const MTextFormat &format)
{
    const MTextStack stack = layOutStack(piece, format);
    drawRun(piece.text, x + stack.upperX, y + stack.upperY, stack.upperWidth, format, stack.height);
    drawRun(piece.lower, x + stack.lowerX, y + stack.lowerY, stack.lowerWidth, format, stack.height);
    if (stack.bar)
        drawBar({x + stack.bar->first.x, y + stack.bar->first.y},
                {x + stack.bar->second.x, y + stack.bar->second.y});
}

void MTextDrawer::drawBar(const AcGePoint2d &from, const AcGePoint2d &to)
{
    const AcGePoint3d ends[] = {at(from.x, from.y), at(to.x, to.y)};
    m_sink.polyline(2, ends);
}

/// Heights that leave something to see; others would only make infinite numbers.
static bool isDrawable(const MText &text)
{
    return text.height > 1e-9 && text.height < 1e12 && std::isfinite(text.wrapWidth);
}

MTextBox mtextBox(const MText &text)
{
    return isDrawable(text) ? layOutMText(text).box : MTextBox();
}

void drawMText(const MText &text, AcGiGeometry &sink)
{
    if (!isDrawable(text))
        return;
    const MTextLayout layout = layOutMText(text);
    MTextDrawer(text, layout, sink).draw();
}

} // namespace acgi
