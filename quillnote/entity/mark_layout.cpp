#include "quillnote/entity/mark_layout.h"

#include "quillnote/entity/leader_attachment.h"
#include "quillnote/entity/mark_geometry.h"
#include "quillnote/entity/mark_record.h"
#include "quillnote/entity/mark_state.h"
#include "quillnote/entity/mark_values.h"

#include "host/acap/docview.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edpicture.h"
#include "host/aced/edsysvar.h"
#include "host/aced/edview.h"

#include <algorithm>
#include <cmath>

/// 15 pixels where 96 of them make an inch, and as large to the eye on denser screens.
static constexpr double kUnitMillimetres = 15.0 / AcGiViewport::kUsualDensity;
static constexpr double kLeastFlagOnPaper = 3.5; ///< Millimetres, the height of a flag.
static constexpr int kLeastWaveOnPaper = 35;     ///< Hundredths of a millimetre.
static constexpr double kPlotUnits = 30.0;       ///< Drawing units in the diagonal of a plotted target.
static constexpr double kLeastTextHeight = 0.001;
static constexpr double kLeaderTextHeight = 500.0;
static constexpr double kLeaderFlagScale = 1.36;

namespace
{

class LayoutPass
{
public:
    LayoutPass(const QuillnoteObj3 &mark, const MarkDrawingSettings &settings, const MarkView &view,
               MarkPicture picture);

    MarkLayout run();

private:
    void layOutText();
    void fitTextBox(const MarkTextLayout &text, const MarkTextFrame &frame, double textHeight);
    void layOutOutline();
    void layOutLeaders();
    AcGePoint3d leaderStart(const AcGePoint3d &end) const;
    void attachFirstLeader();
    void layOutFlag();
    double flagSize() const;
    AcGePoint3d flagAnchor() const;
    void layOutSketch();

    bool isProxy() const { return m_picture == MarkPicture::proxy; }
    int configuredTextHeight() const
    {
        return m_view.viewport.paperSpace ? m_settings.textHeightPS : m_settings.textHeight;
    }

    const QuillnoteObj3 &m_mark;
    const MarkDrawingSettings &m_settings;
    const MarkView &m_view;
    MarkPicture m_picture;
    bool m_isLeader;
    TargetStyle m_style; ///< Outline to draw.
    OutlineRecord m_record;
    OutlineView m_outlineView;
    MarkLayout m_layout;
};

} // namespace

LayoutPass::LayoutPass(const QuillnoteObj3 &mark, const MarkDrawingSettings &settings, const MarkView &view,
                       MarkPicture picture)
    : m_mark(mark), m_settings(settings), m_view(view), m_picture(picture),
      m_isLeader(hasTextBox(mark.leaderMode)), m_style(drawnTargetStyle(mark.targetStyle, settings)),
      m_record(outlineRecord(mark))
{
    m_layout.axes = markAxes(mark);
    m_layout.plotting = view.plotting;
    m_layout.target = m_record.target;
    m_layout.textBox = m_isLeader ? m_record.textBox : m_record.target;
    m_layout.drawUnit = view.plotting ? m_record.target.diagonal() / kPlotUnits
                                      : kUnitMillimetres * view.viewport.millimetre();
    m_outlineView = {m_layout.drawUnit, settings};
    if (isProxy()) {
        m_record.displayMode = DisplayMode::full;
        m_record.gripEditing = false;
    }
}

MarkLayout LayoutPass::run()
{
    MarkWriteBack &found = m_layout.writeBack;
    found.targetCorner3 = m_layout.target.corner3;
    found.targetCorner4 = m_layout.target.corner4;
    found.flagPoint = m_mark.flagPoint;
    found.leaderEnds = m_mark.leaderEnds;
    found.leaderUsed = m_mark.leaderUsed;
    layOutText();
    m_record.textBox = m_layout.textBox;
    found.textBox = m_layout.textBox;
    if (m_isLeader)
        attachFirstLeader();
    if (m_mark.displayMode != DisplayMode::hidden) {
        layOutOutline();
        layOutFlag();
        layOutSketch();
    }
    return std::move(m_layout);
}

// Text --------------------------------------------------------------------------------------------

// Where the text would stand is known even while it is not shown: grips and exports ask for it.
void LayoutPass::layOutText()
{
    const MarkCorners &box = m_layout.textBox;
    const MarkTextFrame frame = markTextFrame(box.corner1, box.corner2, box.corner3, m_layout.axes);
    const double height = markTextHeight(m_mark, m_settings, m_view.viewport.paperSpace, frame.width);
    const AcGePoint3d start = markTextStart(m_isLeader, frame, m_layout.axes, height);
    MarkWriteBack &found = m_layout.writeBack;
    found.textAnchor = start + m_layout.axes.up * height;
    if (!m_isLeader)
        found.flagPoint = found.textAnchor;

    const bool hasText =
        !m_mark.suggestionContent.isEmpty() || m_settings.viewName || m_settings.viewDateTime;
    const bool isShown = (m_settings.showMarkText || m_isLeader) && m_mark.sketchData.isEmpty();
    if (!hasText || !isShown || m_mark.displayMode != DisplayMode::full || m_view.textSuppressed)
        return;
    m_layout.text = layOutMarkText(m_mark, m_settings, frame, m_layout.axes, start, height);
    found.textEndPoint = m_layout.text->endPoint;
    if (m_isLeader)
        fitTextBox(*m_layout.text, frame, height);
}

// A box without text keeps its size. The text hangs on the upper edge, so the lower one follows the lines.
void LayoutPass::fitTextBox(const MarkTextLayout &text, const MarkTextFrame &frame, double textHeight)
{
    const double widest = text.widest;
    const double frameWidth = frame.width;
    const double least = widest + 0.6 * textHeight;
    const double roomy = std::max(1.2 * widest, least);
    double width = frameWidth;
    if (widest > 0.0 && frameWidth > roomy)
        width = roomy;
    else if (widest > frameWidth)
        width = least;
    MarkCorners &box = m_layout.textBox;
    const bool mirrored = (box.corner2 - box.corner1).dotProduct(m_layout.axes.right) < 0.0;
    const AcGeVector3d shift = m_layout.axes.right * ((width - frameWidth) * (mirrored ? -1.0 : 1.0));
    box.corner2 = box.corner2 + shift;
    box.corner4 = box.corner4 + shift;
    const AcGeVector3d down = m_layout.axes.up * -(kFirstBaseLine * textHeight + text.depth);
    box.corner1 = box.corner3 + down;
    box.corner4 = box.corner2 + down;
}

// Outline, leaders and text box -------------------------------------------------------------------

void LayoutPass::layOutOutline()
{
    if (m_record.displayMode != DisplayMode::full)
        return;
    if (isProxy())
        proxyOutline(m_record, m_style, m_settings, m_layout.outline);
    else
        targetOutline(m_record, m_outlineView, m_style, m_layout.outline);
    if (m_view.plotting)
        m_layout.outline.waveWeight = kLeastWaveOnPaper;
    m_layout.waveMiddles.add(m_layout.outline.bumps);
    if (!m_isLeader)
        return;
    layOutLeaders();
    const FrameStyle frame =
        isProxy() ? FrameStyle::rectangle : drawnFrameStyle(m_mark.flagStyle, m_settings);
    if (!m_mark.suggestionContent.isEmpty())
        textBoxFrame(m_record, m_outlineView, frame, m_layout.frame);
    if (m_view.plotting)
        m_layout.frame.waveWeight = kLeastWaveOnPaper;
}

// Box corner 2 decides; where it sees no way to a polygon, corner 3 may.
void LayoutPass::attachFirstLeader()
{
    const bool hasUsed = std::ranges::find(m_mark.leaderUsed, true) != m_mark.leaderUsed.end();
    for (const AcGePoint3d &reference : {m_layout.textBox.corner2, m_layout.textBox.corner3}) {
        const std::optional<AcGePoint3d> end =
            attachLeaders(m_mark.targetStyle, m_style, m_record, hasUsed, reference);
        if (!end)
            continue;
        m_layout.writeBack.leaderEnds[0] = *end;
        m_layout.writeBack.leaderUsed[0] = true;
        return;
    }
}

void LayoutPass::layOutLeaders()
{
    m_layout.leaderColor = drawnColor1(m_mark.color1, m_settings, ColorRange::indexesAndByLayer);
    MarkWriteBack &found = m_layout.writeBack;
    for (std::size_t i = 0; i < QuillnoteObj3::kSlots; ++i) {
        if (!found.leaderUsed[i])
            continue;
        AcGePoint3d &end = found.leaderEnds[i];
        end = snapLeaderEnd(end, m_layout.waveMiddles);
        m_layout.leaders.push_back({.start = leaderStart(end), .end = end});
    }
}

/// The corner of the text box on the side of the end, as seen.
AcGePoint3d LayoutPass::leaderStart(const AcGePoint3d &end) const
{
    const AcGeMatrix3d toEye = m_view.viewport.getWorldToEyeTransform();
    const AcGePoint3d a = toEye * m_layout.textBox.corner1;
    const AcGePoint3d b = toEye * m_layout.textBox.corner2;
    const AcGePoint3d seen = toEye * end;
    const auto side = [](double from, double to, double at) {
        return at > (from + to) / 2.0 ? std::max(from, to) : std::min(from, to);
    };
    return m_view.viewport.getEyeToWorldTransform() *
           AcGePoint3d(side(a.x, b.x, seen.x), side(a.y, b.y, seen.y), a.z);
}

// Flag and sketch ---------------------------------------------------------------------------------

double LayoutPass::flagSize() const
{
    const bool isConfigured = m_settings.applyAll && configuredTextHeight() >= 1;
    const bool hasHeight = m_mark.textHeight > kLeastTextHeight;
    double size = m_layout.drawUnit;
    if (m_isLeader && !m_view.flagRefreshRunning)
        size = isConfigured ? configuredTextHeight() : hasHeight ? m_mark.textHeight : kLeaderTextHeight;
    else if (!m_settings.autoFlagSize && isConfigured)
        size = configuredTextHeight();
    else if (!m_settings.autoFlagSize && hasHeight)
        size = m_mark.textHeight * m_view.flagScale;
    if (m_isLeader)
        size *= kLeaderFlagScale;
    if (m_view.plotting)
        size = std::max(size, kLeastFlagOnPaper * m_view.viewport.millimetre() / kFlagHeight);
    return size;
}

// A wave rectangle has its flag at the left, where no bump of the right side shows behind it.
AcGePoint3d LayoutPass::flagAnchor() const
{
    if (m_isLeader)
        return m_layout.textBox.corner2;
    return isWaveRectangle(m_style) ? m_layout.target.corner3 : m_layout.target.corner2;
}

void LayoutPass::layOutFlag()
{
    const bool hasOutline = fillsRectangle(m_mark.targetStyle) || hasVertices(m_mark.targetStyle);
    const bool hasFlag = hasOutline || m_isLeader || m_settings.displayFlagWithFreehandDraw;
    if (!hasFlag || !(m_settings.viewFlag || isProxy()))
        return;
    m_layout.flag = makeMarkFlag(flagAnchor(), flagSize(), m_layout.axes,
                                 markNumberText(m_mark.markNumber, m_mark.subNumber), m_mark.feedbackType);
}

void LayoutPass::layOutSketch()
{
    if (m_mark.sketchData.isEmpty() || isProxy())
        return;
    auto strokes = sketch::decode(m_mark.sketchData);
    if (!strokes)
        return;
    const sketch::Placement placement(*strokes, m_mark.targetCorner1, m_mark.targetCorner2,
                                      m_view.viewport.getWorldToEyeTransform());
    const AcDbExtents box = sketch::extents(*strokes, placement);
    m_layout.sketch = {std::move(strokes).value(), placement, box};
    if (m_mark.targetStyle == TargetStyle::none && box.isValid())
        m_layout.writeBack.targetCorner3 = {box.minPoint().x, box.maxPoint().y, box.minPoint().z};
}

MarkLayout layOutMark(const QuillnoteObj3 &mark, const MarkDrawingSettings &settings, const MarkView &view,
                      MarkPicture picture)
{
    return LayoutPass(mark, settings, view, picture).run();
}

// Writing back ------------------------------------------------------------------------------------

void applyWriteBack(QuillnoteObj3 &mark, const MarkWriteBack &found)
{
    mark.assertWriteEnabled();
    mark.targetCorner3 = found.targetCorner3;
    mark.targetCorner4 = found.targetCorner4;
    mark.cornersValid = true;
    setTextBoxCorners(mark, found.textBox);
    mark.flagPoint = found.flagPoint;
    mark.leaderEnds = found.leaderEnds;
    mark.leaderUsed = found.leaderUsed;
    mark.textAnchor = found.textAnchor;
    if (found.textEndPoint)
        mark.textEndPoint = found.textEndPoint;
}

void settleMark(QuillnoteObj3 &mark, const AcDbDatabase &database)
{
    const MarkView view = currentMarkView(&database);
    applyWriteBack(mark, layOutMark(mark, markDrawingSettings(), view).writeBack);
}

// Views -------------------------------------------------------------------------------------------

static bool isPlotRunning()
{
    resbuf names;
    if (acedGetVar(QStringLiteral("CMDNAMES"), names) != RTNORM) {
        acutPrintf(QStringLiteral("\nError while reading default AutoCAD VAR CMDNAME"));
        return false;
    }
    const QString first = names.text().section(QLatin1Char('\''), 0, 0);
    return first.compare(u"plot", Qt::CaseInsensitive) == 0 ||
           first.compare(u"preview", Qt::CaseInsensitive) == 0;
}

MarkView markViewOf(const AcGiViewport &viewport)
{
    const MarkDrawingState &state = markDrawingState();
    return {.viewport = viewport,
            .plotting = isPlotRunning(),
            .textSuppressed = state.textSuppressed,
            .flagScale = state.flagScale,
            .flagRefreshRunning = state.flagRefreshRunning};
}

static AcGiViewport currentViewport(const AcDbDatabase *database)
{
    if (const AcApDocument *const document = database ? acDocManager()->document(database) : nullptr)
        return acedViewport(*document);
    AcGeView saved;
    if (database)
        acapRestoreView(*database, database->modelSpaceId(), saved);
    return acedGiViewport(saved, false);
}

MarkView currentMarkView(const AcDbDatabase *database)
{
    MarkView view = markViewOf(currentViewport(database));
    view.textSuppressed = false;
    return view;
}
