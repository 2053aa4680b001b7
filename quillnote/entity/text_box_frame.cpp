// The frames around the text box of a leader mark.
#include "quillnote/entity/outline_pieces.h"

#include <array>

namespace
{

constexpr double kLeastHeight = 0.001;

/// A share of the text height; without one, of the drawing unit.
double sizeOf(const OutlineRecord &mark, const OutlineView &view, double heightShare, double unitShare)
{
    return mark.textHeight > kLeastHeight ? mark.textHeight * heightShare : view.drawUnit * unitShare;
}

/// The step of a wave: the share of the height itself must be worth something.
double waveStep(const OutlineRecord &mark, const OutlineView &view, double heightShare)
{
    const double step = mark.textHeight * heightShare;
    return step > kLeastHeight ? step : view.drawUnit * 0.5;
}

void underlineBar(const OutlineRecord &mark, const OutlineView &view, const PlaneAxes &axes,
                  MarkOutline &outline)
{
    const AcGeVector3d down = axes.up * (-sizeOf(mark, view, 0.25, 1.0) / 8.0);
    const AcGePoint3d &left = mark.textBox.corner1;
    const AcGePoint3d &right = mark.textBox.corner4;
    const std::array<AcGePoint3d, 5> bar{left, right, right + down, left + down, left};
    addPiece(outline, OutlinePiece::area, drawnColor1(mark.color1, view.settings, ColorRange::indexes), bar);
}

void bevelBox(const OutlineRecord &mark, const OutlineView &view, const PlaneAxes &axes, MarkOutline &outline)
{
    const double size = sizeOf(mark, view, 1.0, 1.0);
    const BevelBars bars{.axes = axes, .offset = size / 2.0, .halfWidth = size / 8.0, .mitre = size / 8.0};
    addThinRectangle(outline, mark.textBox, mark, view.settings);
    addBevelBars(outline, mark.textBox, bars, mark, view.settings);
}

} // namespace

void textBoxFrame(const OutlineRecord &mark, const OutlineView &view, FrameStyle style, MarkOutline &outline)
{
    outline.clear();
    if (mark.displayMode != DisplayMode::full)
        return;
    const MarkCorners &box = mark.textBox;
    const PlaneAxes axes = planeAxes(box.corner4 - box.corner1);
    outline.waveColor = drawnColor1(mark.color1, view.settings, ColorRange::indexesAndByLayer);
    outline.thinWaves = style == FrameStyle::thinWaves || mark.gripEditing;
    switch (style) {
    case FrameStyle::underline:
        underlineBar(mark, view, axes, outline);
        break;
    case FrameStyle::waveLine:
        waveAlongSegment(outline.bumps, box.corner1, box.corner4, waveStep(mark, view, 0.5));
        break;
    case FrameStyle::rectangle:
        addThinRectangle(outline, box, mark, view.settings);
        break;
    case FrameStyle::thinWaves:
    case FrameStyle::thickWaves:
        addWaveRectangle(outline, box, waveStep(mark, view, 1.0));
        break;
    default:
        bevelBox(mark, view, axes, outline);
        break;
    }
}
