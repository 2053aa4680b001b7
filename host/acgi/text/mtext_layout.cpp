#include "host/acgi/text/mtext_layout.h"

#include "host/acgi/text/text_layout.h"

#include <algorithm>
#include <utility>

namespace acgi
{

namespace
{

constexpr double kLineDistance = 5.0 / 3.0;
constexpr double kStackedScale = 0.7;
/// Between the parts of a stack and its bar, in heights of its letters.
constexpr double kStackGap = 0.2;

/// Ideographs and their like: lines break between any two of them.
bool isIdeograph(char16_t c)
{
    return (c >= 0x1100 && c <= 0x115F) || (c >= 0x2E80 && c <= 0xA4CF) || (c >= 0xAC00 && c <= 0xD7A3) ||
           (c >= 0xF900 && c <= 0xFAFF) || (c >= 0xFE30 && c <= 0xFE4F) || (c >= 0xFF00 && c <= 0xFF60) ||
           (c >= 0xFFE0 && c <= 0xFFE6);
}

/// Puts items onto lines. A word may be of several formats and breaks nowhere.
class LineBreaker
{
public:
    LineBreaker(const MText &text, const MTextContent &content, double wrapWidth,
                std::vector<MTextLine> &lines)
        : m_content(content), m_vertical(text.vertical), m_unit(text.height), m_wrap(wrapWidth),
          m_lines(lines)
    {
        for (const MTextItem &item : content.items)
            add(item);
    }

private:
    const MTextFormat &format(std::uint32_t index) const { return m_content.formats[index]; }
    const MTextParagraph &paragraph() const { return m_content.paragraphs[m_paragraph]; }
    bool isJustified() const
    {
        return paragraph().justification == u'j' || paragraph().justification == u'd';
    }
    double runWidth(QStringView text, std::uint32_t of) const
    {
        return acgi::runWidth(text, format(of), m_vertical);
    }

    void add(const MTextItem &item);
    void addRun(const MTextItem &item);
    void addToWord(QStringView text, std::uint32_t formatIndex);
    void addStack(const MTextItem &item);
    void addSpace(std::uint32_t formatIndex);
    void addTab(std::uint32_t formatIndex);
    void settleTab();
    void place(MTextPiece piece);
    void endWord();
    void begin(std::uint32_t paragraphIndex);
    void pushLine(bool endsParagraph);
    void trim(bool endsParagraph);

    const MTextContent &m_content;
    const bool m_vertical;
    const double m_unit;
    const double m_wrap;
    std::vector<MTextLine> &m_lines;

    MTextLine m_line;
    bool m_isOpen = false; ///< The line has its beginning.
    bool m_isFirst = true; ///< The line is the first of its paragraph.
    std::uint32_t m_paragraph = 0;
    std::uint32_t m_lastFormat = 0;
    std::vector<MTextPiece> m_word;
    double m_wordWidth = 0.0;
    std::optional<std::pair<MTextTab, std::size_t>> m_tab; ///< A stop, and the first piece behind it.
};

} // namespace

double runWidth(QStringView text, const MTextFormat &format, bool vertical)
{
    if (vertical)
        return double(characterCount(text)) * kVerticalAdvance * format.tracking * format.height;
    return format.font->width(text) * format.tracking * format.height * format.widthFactor;
}

MTextStack layOutStack(const MTextPiece &stack, const MTextFormat &format)
{
    MTextFormat part = format;
    part.height *= kStackedScale;
    MTextStack s{};
    s.height = part.height;
    s.upperWidth = runWidth(stack.text, part, false);
    s.lowerWidth = runWidth(stack.lower, part, false);
    const double gap = kStackGap * part.height;
    double total = 2.0 * part.height + 2.0 * gap;
    if (stack.divider == u'#') {
        // A diagonal bar: one part before its upper end, the other behind its lower one.
        total = 1.6 * part.height;
        const double barWidth = 0.5 * total;
        s.lowerX = s.upperWidth + barWidth;
        s.width = s.lowerX + s.lowerWidth;
        s.bar.emplace(AcGePoint2d(s.upperWidth, 0.0), AcGePoint2d(s.lowerX, total));
    } else {
        // Tolerances stand flush left, fractions centred over their bar.
        s.width = std::max(s.upperWidth, s.lowerWidth);
        const double share = stack.divider == u'/' ? 0.5 : 0.0;
        s.upperX = (s.width - s.upperWidth) * share;
        s.lowerX = (s.width - s.lowerWidth) * share;
        if (stack.divider == u'/')
            s.bar.emplace(AcGePoint2d(0.0, total / 2.0), AcGePoint2d(s.width, total / 2.0));
    }
    s.bottom = (format.height - total) * double(format.alignment) / 2.0;
    s.top = s.bottom + total;
    s.lowerY = s.bottom;
    s.upperY = s.top - part.height;
    if (s.bar) {
        s.bar->first.y += s.bottom;
        s.bar->second.y += s.bottom;
    }
    return s;
}

void LineBreaker::add(const MTextItem &item)
{
    // Paragraph codes hold from the beginning of a line.
    if (!m_isOpen)
        begin(item.paragraph);
    m_lastFormat = item.format;
    switch (item.kind) {
    case MTextItem::run:
        addRun(item);
        break;
    case MTextItem::space:
        addSpace(item.format);
        break;
    case MTextItem::tab:
        addTab(item.format);
        break;
    case MTextItem::stack:
        addStack(item);
        break;
    case MTextItem::endParagraph:
    case MTextItem::endColumn:
        endWord();
        if (!m_isOpen)
            begin(item.paragraph);
        m_line.endsColumn = item.kind == MTextItem::endColumn;
        pushLine(true);
        break;
    }
}

void LineBreaker::addRun(const MTextItem &item)
{
    const QStringView text = item.text;
    qsizetype from = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (!isIdeograph(text[i].unicode()))
            continue;
        addToWord(text.mid(from, i + 1 - from), item.format);
        endWord();
        from = i + 1;
    }
    if (from < text.size())
        addToWord(text.mid(from), item.format);
}

void LineBreaker::addToWord(QStringView text, std::uint32_t formatIndex)
{
    MTextPiece &piece = m_word.emplace_back();
    piece.text = text.toString();
    piece.format = formatIndex;
    piece.width = runWidth(text, formatIndex);
    m_wordWidth += piece.width;
}

void LineBreaker::addStack(const MTextItem &item)
{
    MTextPiece &piece = m_word.emplace_back();
    piece.text = item.text;
    piece.lower = item.lower;
    piece.divider = item.divider;
    piece.isStack = true;
    piece.format = item.format;
    piece.width = layOutStack(piece, format(item.format)).width;
    m_wordWidth += piece.width;
}

void LineBreaker::addSpace(std::uint32_t formatIndex)
{
    endWord();
    if (!m_isOpen)
        begin(m_paragraph);
    MTextPiece blank;
    blank.text = QStringLiteral(" ");
    blank.isBlank = true;
    blank.format = formatIndex;
    blank.width = runWidth(blank.text, formatIndex);
    place(std::move(blank));
}

void LineBreaker::addTab(std::uint32_t formatIndex)
{
    endWord();
    if (!m_isOpen)
        begin(m_paragraph);
    settleTab();
    constexpr double kUsualDistance = 4.0; // Heights.
    MTextTab stop{(std::floor(m_line.end / (kUsualDistance * m_unit) + 1e-6) + 1.0) * kUsualDistance, u'l'};
    for (const MTextTab &tab : paragraph().tabs) {
        if (tab.at * m_unit > m_line.end + 1e-9 * m_unit) {
            stop = tab;
            break;
        }
    }
    // A blank piece keeps the runs on both sides apart, and is what under- and overlines run along.
    MTextPiece blank;
    blank.format = formatIndex;
    blank.width = std::max(stop.at * m_unit - m_line.end, 0.0);
    const bool movesLater = stop.kind != u'l';
    if (movesLater)
        blank.width = 0.0;
    blank.x = m_line.end;
    m_line.end += blank.width;
    m_line.pieces.push_back(std::move(blank));
    if (movesLater)
        m_tab.emplace(stop, m_line.pieces.size());
}

/// Moves what stands behind a centring or right tabulator to its place.
void LineBreaker::settleTab()
{
    if (!m_tab)
        return;
    const auto [stop, first] = *std::exchange(m_tab, std::nullopt);
    if (first >= m_line.pieces.size())
        return;
    const double width = m_line.end - m_line.pieces[first].x;
    const double wanted = stop.at * m_unit - width * (stop.kind == u'c' ? 0.5 : 1.0);
    const double move = std::max(wanted - m_line.pieces[first].x, 0.0);
    for (std::size_t i = first; i < m_line.pieces.size(); ++i)
        m_line.pieces[i].x += move;
    m_line.pieces[first - 1].width += move;
    m_line.end += move;
}

void LineBreaker::place(MTextPiece piece)
{
    const MTextFormat &of = format(piece.format);
    m_line.height = std::max(m_line.height, of.height);
    m_line.ascent = std::max(m_line.ascent, of.height);
    if (piece.isStack) {
        const MTextStack stack = layOutStack(piece, of);
        m_line.ascent = std::max(m_line.ascent, stack.top);
        m_line.descent = std::max(m_line.descent, -stack.bottom);
    }
    piece.x = m_line.end;
    m_line.end += piece.width;
    MTextPiece *const last = m_line.pieces.empty() ? nullptr : &m_line.pieces.back();
    const bool joins = last && !last->isStack && !piece.isStack && !last->text.isEmpty() &&
                       last->format == piece.format && (!isJustified() || last->isBlank == piece.isBlank);
    if (!joins) {
        m_line.pieces.push_back(std::move(piece));
        return;
    }
    last->text += piece.text;
    last->width += piece.width;
    last->isBlank = last->isBlank && piece.isBlank;
}

void LineBreaker::endWord()
{
    if (m_word.empty())
        return;
    const double right = m_wrap - paragraph().right * m_unit;
    // What is only rounded up stays on the line.
    const double tolerance = 1e-9 * m_wrap;
    if (m_isOpen && m_wrap > 0.0 && !m_line.pieces.empty() && m_line.end + m_wordWidth > right + tolerance)
        pushLine(false);
    if (!m_isOpen)
        begin(m_paragraph);
    for (MTextPiece &piece : m_word)
        place(std::move(piece));
    m_word.clear();
    m_wordWidth = 0.0;
}

void LineBreaker::begin(std::uint32_t paragraphIndex)
{
    m_paragraph = paragraphIndex;
    m_line = MTextLine();
    m_line.paragraph = paragraphIndex;
    const double indent = m_isFirst ? paragraph().indent : 0.0;
    m_line.x = m_line.end = std::max((paragraph().left + indent) * m_unit, 0.0);
    m_isOpen = true;
}

void LineBreaker::pushLine(bool endsParagraph)
{
    trim(endsParagraph);
    settleTab();
    if (m_line.height == 0.0)
        m_line.height = m_line.ascent = format(m_lastFormat).height;
    m_line.endsParagraph = endsParagraph;
    m_lines.push_back(std::exchange(m_line, MTextLine()));
    m_isOpen = false;
    m_isFirst = endsParagraph;
}

/// Blanks at the end of a line take no room; lined ones at the end of a paragraph do: people sign there.
void LineBreaker::trim(bool endsParagraph)
{
    while (!m_line.pieces.empty()) {
        MTextPiece &last = m_line.pieces.back();
        const MTextFormat &of = format(last.format);
        const bool isLined = of.underline || of.overline || of.strikeThrough;
        if (last.isStack || !last.text.endsWith(u' ') || (endsParagraph && isLined))
            return;
        qsizetype kept = last.text.size();
        while (kept > 0 && last.text[kept - 1] == u' ')
            --kept;
        const double width = runWidth(QStringView(last.text).mid(kept), last.format);
        last.text.truncate(kept);
        last.width -= width;
        m_line.end -= width;
        if (kept > 0)
            return;
        m_line.pieces.pop_back();
        if (m_tab && m_tab->second > m_line.pieces.size())
            m_tab.reset();
    }
}

// Where the lines stand -----------------------------------------------------------------------

/// Spreads a line over the width: blanks grow.
static void justify(MTextLine &line, double right)
{
    const auto blanks = std::ranges::count_if(line.pieces, &MTextPiece::isBlank);
    if (blanks == 0 || right <= line.end)
        return;
    const double more = (right - line.end) / double(blanks);
    double move = 0.0;
    for (MTextPiece &piece : line.pieces) {
        piece.x += move;
        if (piece.isBlank) {
            piece.width += more;
            move += more;
        }
    }
    line.end = right;
}

/// Moves a line to its side of a column of this width.
static void alignLine(MTextLine &line, const MTextParagraph &paragraph, int attachmentColumn, double width,
                      double unit)
{
    const double right = width - paragraph.right * unit;
    const QChar side = paragraph.justification;
    if (side == u'd' || (side == u'j' && !line.endsParagraph))
        justify(line, right);
    double share = double(attachmentColumn) / 2.0;
    if (side == u'l' || side == u'j' || side == u'd')
        share = 0.0;
    else if (side == u'c')
        share = 0.5;
    else if (side == u'r')
        share = 1.0;
    const double move = (right - line.end) * share;
    line.x += move;
    line.end += move;
    for (MTextPiece &piece : line.pieces)
        piece.x += move;
}

namespace
{

/// Base lines and columns; the first line of a column hangs from y = 0.
class ColumnFiller
{
public:
    ColumnFiller(const MText &text, const MTextContent &content) : m_text(text), m_content(content) {}

    void fill(std::vector<MTextLine> &lines)
    {
        const MTextLine *before = nullptr;
        for (MTextLine &line : lines) {
            double y = before ? m_y - distance(*before, line) : -line.ascent;
            if (before && (before->endsColumn || y < -columnHeight()) && m_column + 1 < m_text.columns) {
                ++m_column;
                y = -line.ascent;
            }
            line.y = m_y = y;
            line.column = m_column;
            m_lowest = std::min(m_lowest, y - line.descent);
            before = &line;
        }
    }

    double lowest() const { return m_lowest; }

private:
    double columnHeight() const
    {
        const auto &heights = m_text.columnHeights;
        if (heights.empty())
            return 1e300;
        const double height = heights[std::min(std::size_t(m_column), heights.size() - 1)];
        return height > 0.0 ? height * (1.0 + 1e-9) : 1e300;
    }

    double distance(const MTextLine &before, const MTextLine &line) const
    {
        const MTextParagraph &paragraph = m_content.paragraphs[line.paragraph];
        const bool ownSpacing = paragraph.spacing > 0.0;
        const double factor = (ownSpacing ? paragraph.spacing : m_text.spacingFactor) *
                              (m_text.vertical ? kVerticalAdvance : kLineDistance);
        if (ownSpacing ? paragraph.exactSpacing : m_text.exactSpacing)
            return m_text.height * factor;
        return before.descent + line.height * (factor - 1.0) + line.ascent;
    }

    const MText &m_text;
    const MTextContent &m_content;
    int m_column = 0;
    double m_y = 0.0;
    double m_lowest = 0.0;
};

} // namespace

// A line that ends in taken-back blanks, or holds nothing but half a stack, may run against its direction.
static void extend(MTextBox &box, double left, double bottom, double right, double top)
{
    box.low = {std::min({box.low.x, left, right}), std::min({box.low.y, bottom, top})};
    box.high = {std::max({box.high.x, left, right}), std::max({box.high.y, bottom, top})};
}

/// The box of the lines, from the upper left corner of the first column.
static MTextBox boxOf(const MTextLayout &layout)
{
    MTextBox box{{1e300, 1e300}, {-1e300, -1e300}};
    for (const MTextLine &line : layout.lines) {
        const double column = line.column * layout.columnStep;
        extend(box, column + line.x, line.y - line.descent, column + line.end, line.y + line.ascent);
    }
    return box;
}

MTextLayout layOutMText(const MText &text)
{
    MTextFormat start;
    start.font = &text.style.font();
    start.height = text.height;
    start.widthFactor = std::clamp(text.style.xScale(), 0.01, 100.0);
    start.oblique = text.style.obliquingAngle();
    MTextContent content = readMText(text.coded, start);

    MTextLayout layout;
    const double wrap = text.columns > 1 && text.columnWidth > 0.0 ? text.columnWidth : text.wrapWidth;
    const LineBreaker broken(text, content, wrap, layout.lines);
    double width = wrap;
    if (wrap <= 0.0) {
        for (const MTextLine &line : layout.lines)
            width = std::max(width, line.end + content.paragraphs[line.paragraph].right * text.height);
    }
    // From the beginning of the lines to their end, and from the first line to the last: 0, 1 or 2.
    const int attachment = std::clamp(text.attachment, 1, 9) - 1;
    const int along = text.vertical ? attachment / 3 : attachment % 3;
    const int across = text.vertical ? attachment % 3 : attachment / 3;
    for (MTextLine &line : layout.lines)
        alignLine(line, content.paragraphs[line.paragraph], along, width, text.height);
    ColumnFiller filler(text, content);
    filler.fill(layout.lines);

    const int columns = text.columns > 1 ? layout.lines.back().column + 1 : 1;
    layout.columnStep = width + text.columnGap;
    const double whole = columns * layout.columnStep - text.columnGap;
    layout.left = -whole * double(along) / 2.0;
    const double up = -filler.lowest() * double(across) / 2.0;
    for (MTextLine &line : layout.lines)
        line.y += up;
    layout.box = boxOf(layout);
    layout.box.low.x += layout.left;
    layout.box.high.x += layout.left;
    layout.frame = layout.box;
    extend(layout.frame, layout.left, layout.box.low.y, layout.left + whole, layout.box.high.y);
    layout.formats = std::move(content.formats);
    return layout;
}

} // namespace acgi
