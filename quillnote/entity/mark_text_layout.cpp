#include "quillnote/entity/mark_text_layout.h"

#include "quillnote/entity/mark_drawing_settings.h"
#include "quillnote/entity/mark_record.h"
#include "quillnote/entity/mark_values.h"

#include <QFontDatabase>
#include <QGuiApplication>
#include <QTextBoundaryFinder>

#include <algorithm>
#include <cmath>

static constexpr double kLeastTextHeight = 0.001;
static constexpr double kLeaderTextHeight = 500.0; ///< Of leader marks that have none.
static constexpr double kLinePitch = 1.25;         ///< From line to line, in text heights.
static constexpr double kSignatureSize = 1.0 / 3.0;
static constexpr double kRoomBelow = 0.6; ///< Under the last base line of a box, in sizes of that line.

// Frame -------------------------------------------------------------------------------------------

MarkAxes markAxes(const AcGeVector3d &normal, const AcGeVector3d &xDirection)
{
    MarkAxes axes;
    if (!normal.isZeroLength())
        axes.normal = normal.normal();
    if (!xDirection.isZeroLength())
        axes.right = xDirection.normal();
    axes.up = axes.right.rotateBy(kGePi / 2.0, axes.normal);
    return axes;
}

MarkAxes markAxes(const QuillnoteObj3 &mark)
{
    return markAxes(mark.normal, mark.xDirection);
}

MarkTextFrame markTextFrame(const AcGePoint3d &corner1, const AcGePoint3d &corner2,
                            const AcGePoint3d &corner3, const MarkAxes &axes)
{
    const AcGeVector3d diagonal = corner2 - corner1;
    return {.corner1 = corner1,
            .corner2 = corner2,
            .corner3 = corner3,
            .width = std::abs(diagonal.dotProduct(axes.right)),
            .height = std::abs(diagonal.dotProduct(axes.up))};
}

static double flagMarkTextHeight(const QuillnoteObj3 &mark, const MarkDrawingSettings &settings,
                                 bool paperSpace, double frameWidth)
{
    const double following = frameWidth / 12.0;
    double height = mark.autoTextHeight ? following : mark.textHeight;
    if (settings.applyAll) {
        height = settings.autoTargetTextHeight ? following
                 : paperSpace                  ? settings.textHeightPS
                                               : settings.textHeight;
    }
    return height > 0.0 ? height : following;
}

double markTextHeight(const QuillnoteObj3 &mark, const MarkDrawingSettings &settings, bool paperSpace,
                      double frameWidth)
{
    double height = 0.0;
    if (!hasTextBox(mark.leaderMode))
        height = flagMarkTextHeight(mark, settings, paperSpace, frameWidth);
    else if (settings.applyAll && settings.textHeight >= 1)
        height = settings.textHeight;
    else if (mark.textHeight > kLeastTextHeight)
        height = mark.textHeight;
    else
        height = kLeaderTextHeight;
    return height > 0.0 && std::isfinite(height) ? height : 1.0;
}

// Text under a target keeps clear of the bumps of its lower edge.
static double bumpSpacing(const MarkTextFrame &frame)
{
    double step = frame.corner1.distanceTo(frame.corner2) / 10.0;
    if (!(step >= 0.0001))
        step = 1.0;
    const double points = std::max(2.0, std::floor(frame.width / step + 0.5) + 1.0);
    return frame.width / (points - 1.0);
}

AcGePoint3d markTextStart(bool leaderMark, const MarkTextFrame &frame, const MarkAxes &axes, double height)
{
    if (!leaderMark)
        return frame.corner1 - axes.up * (bumpSpacing(frame) / 2.0 + height);
    const bool mirrored = (frame.corner2 - frame.corner3).dotProduct(axes.right) < 0.0;
    const AcGePoint3d &upperLeft = mirrored ? frame.corner2 : frame.corner3;
    return upperLeft + axes.right * (height / 3.0) - axes.up * (kFirstBaseLine * height);
}

// Font --------------------------------------------------------------------------------------------

static AcGiTextStyle shapeStyle(const char *fontFile)
{
    AcGiTextStyle style;
    style.setFileName(QString::fromLatin1(fontFile));
    style.setBigFontFileName(QStringLiteral("gbcbig.shx"));
    return style;
}

/// The face of the names under icons; empty without a screen system.
static QString iconTitleFace()
{
    return qobject_cast<QGuiApplication *>(QCoreApplication::instance())
               ? QFontDatabase::systemFont(QFontDatabase::TitleFont).family()
               : QString();
}

static AcGiTextStyle firstInstalledTrueType()
{
    AcGiTextStyle song;
    song.setFileName(QStringLiteral("simsun.ttc"));
    if (song.loadStyleRec() == 0)
        return song;
    AcGiTextStyle icons;
    const QString face = iconTitleFace();
    if (face.isEmpty())
        icons.setFileName(QStringLiteral("simsun.ttc"));
    else
        icons.setFont(face, false, false);
    return icons.loadStyleRec() == 0 ? icons : shapeStyle("simplex.shx");
}

const AcGiTextStyle &markTextStyle(bool trueType)
{
    static const AcGiTextStyle shape = shapeStyle("complex.shx");
    if (!trueType)
        return shape;
    static const AcGiTextStyle installed = firstInstalledTrueType();
    return installed;
}

double markTextSize(bool trueType, double height)
{
    const bool isShape = !markTextStyle(trueType).fontRequest().bigFontFile.isEmpty();
    return isShape ? height : 0.75 * height;
}

// Lines -------------------------------------------------------------------------------------------

namespace
{

/// Breaks paragraphs into lines no longer than a width, narrowing or widening the letters a little.
class LineBreaker
{
public:
    LineBreaker(MarkTextLayout &layout, const AcGeVector3d &down, double size, double lineWidth,
                const AcGePoint3d &start)
        : m_layout(layout), m_font(layout.style.font()), m_down(down), m_size(size), m_lineWidth(lineWidth),
          m_base(start)
    {
    }

    void addParagraph(QStringView paragraph)
    {
        const double lines = measured(paragraph) / m_lineWidth;
        const double length = double(paragraph.size());
        const qsizetype count =
            lines > 1.0 ? std::max<qsizetype>(1, qsizetype(std::floor(length / lines))) : paragraph.size();
        do {
            // Both halves of a character beyond the first plane stay together.
            qsizetype end = std::min(count, paragraph.size());
            if (end > 0 && end < paragraph.size() && paragraph[end].isLowSurrogate())
                ++end;
            addLine(paragraph.first(end));
            paragraph = paragraph.sliced(end);
        } while (!paragraph.isEmpty());
    }

    /// Breaks where words end; a word that is too long for a line breaks anywhere.
    void addWrapped(QStringView paragraph)
    {
        do {
            const qsizetype end = lineEnd(paragraph);
            QStringView line = paragraph.first(end);
            paragraph = paragraph.sliced(end);
            if (!paragraph.isEmpty()) {
                // Blanks that a break falls into belong to neither line.
                while (line.endsWith(u' '))
                    line.chop(1);
                while (paragraph.startsWith(u' '))
                    paragraph = paragraph.sliced(1);
            }
            keepLine(line, measured(line));
        } while (!paragraph.isEmpty());
    }

    const AcGePoint3d &base() const { return m_base; }

private:
    /// How much of the text the first line takes; at least one character.
    qsizetype lineEnd(QStringView text) const
    {
        constexpr double kRounding = 1e-9;
        const double most = m_lineWidth * (1.0 + kRounding);
        if (measured(text) <= most)
            return text.size();
        // Widths grow with the text, so the longest piece that fits is found by halving.
        qsizetype fits = 1;
        qsizetype tooLong = text.size();
        while (tooLong - fits > 1) {
            const qsizetype middle = fits + (tooLong - fits) / 2;
            (measured(text.first(middle)) <= most ? fits : tooLong) = middle;
        }
        QTextBoundaryFinder breaks(QTextBoundaryFinder::Line, text.data(), text.size());
        breaks.setPosition(fits);
        // A blank may hang over the end of its line.
        if (breaks.isAtBoundary() || text[fits] == u' ')
            return fits;
        if (const qsizetype word = breaks.toPreviousBoundary(); word > 0)
            return word;
        return fits > 0 && text[fits].isLowSurrogate() ? (fits > 1 ? fits - 1 : fits + 1) : fits;
    }

    double measured(QStringView text) const { return m_font.width(text) * m_size * m_xScale; }

    // The scale of the line before stays in force for measuring, so equal lines look equal. A line that was
    // fitted before comes out at the line width, give or take a rounding.
    void addLine(QStringView text)
    {
        constexpr double kRounding = 1e-9;
        const double width = measured(text);
        const double share = width / m_lineWidth;
        if (share > 0.9 && std::abs(share - 1.0) > kRounding)
            m_xScale = 1.0 / share;
        keepLine(text, width);
    }

    void keepLine(QStringView text, double width)
    {
        m_layout.widest = std::max(m_layout.widest, width);
        m_layout.lines.push_back({text.toString(), m_base, m_size, m_xScale});
        m_base = m_base + m_down;
    }

    MarkTextLayout &m_layout;
    const acgi::Font &m_font;
    AcGeVector3d m_down;
    double m_size;
    double m_lineWidth;
    AcGePoint3d m_base;
    double m_xScale = 1.0;
};

} // namespace

static QString signatureText(const QuillnoteObj3 &mark, const MarkDrawingSettings &settings)
{
    QString text = settings.viewName ? mark.suggestionName : QString();
    if (settings.viewDateTime) {
        if (!text.isEmpty())
            text += QStringLiteral(" @ ");
        text += markDateText(mark.createTime);
    }
    return text;
}

static std::vector<QStringView> paragraphsOf(const QString &text)
{
    std::vector<QStringView> paragraphs;
    QStringView rest(text);
    for (;;) {
        const qsizetype end = rest.indexOf(QLatin1Char('\n'));
        QStringView paragraph = end < 0 ? rest : rest.first(end);
        if (paragraph.endsWith(QLatin1Char('\r')))
            paragraph.chop(1);
        paragraphs.push_back(paragraph);
        if (end < 0)
            return paragraphs;
        rest = rest.sliced(end + 1);
    }
}

MarkTextLayout layOutMarkText(const QuillnoteObj3 &mark, const MarkDrawingSettings &settings,
                              const MarkTextFrame &frame, const MarkAxes &axes, const AcGePoint3d &start,
                              double height)
{
    MarkTextLayout layout;
    layout.style = markTextStyle(settings.trueType);
    const double margined = std::abs(frame.width - 0.6 * height);
    const double lineWidth = 10.0 * height > frame.width ? 10.0 * height : margined;
    LineBreaker breaker(layout, axes.up * (-kLinePitch * height), markTextSize(settings.trueType, height),
                        lineWidth, start);
    const bool isBox = hasTextBox(mark.leaderMode);
    for (const QStringView paragraph : paragraphsOf(mark.suggestionContent))
        isBox ? breaker.addWrapped(paragraph) : breaker.addParagraph(paragraph);
    layout.endPoint = breaker.base();
    const double lines = double(layout.lines.size());
    layout.depth = (kLinePitch * (lines - 1.0) + kRoomBelow) * height;
    if (settings.viewName || settings.viewDateTime) {
        const AcGePoint3d rule = layout.endPoint + axes.up * (0.825 * height);
        const double size = kSignatureSize * height;
        layout.signature = {.line = {signatureText(mark, settings), layout.endPoint, size, 1.0},
                            .ruleStart = rule,
                            .ruleEnd = rule + axes.right * margined};
        layout.endPoint = layout.endPoint - axes.up * (kLinePitch * size);
        layout.depth = kLinePitch * lines * height + kRoomBelow * size;
    }
    return layout;
}
