#include "quillnote/entity/mark_draw.h"

static constexpr int kRuleColor = 250;
static constexpr int kPaperColor = 7; ///< Black on white, white on black.

// Text --------------------------------------------------------------------------------------------

static void drawLine(const MarkTextLine &line, const acgi::Font &font, const MarkAxes &axes,
                     AcGiGeometry &geometry)
{
    if (line.text.isEmpty())
        return;
    geometry.text({.text = line.text,
                   .position = line.base,
                   .direction = axes.right * (line.size * line.xScale),
                   .up = axes.up * line.size,
                   .width = font.width(line.text),
                   .font = &font});
}

static void drawText(const MarkTextLayout &text, const MarkAxes &axes, const AcGiCommonDraw &context)
{
    const acgi::Font &font = text.style.font();
    for (const MarkTextLine &line : text.lines)
        drawLine(line, font, axes, context.geometry());
    if (!text.signature)
        return;
    drawLine(text.signature->line, font, axes, context.geometry());
    const AcGePoint3d rule[] = {text.signature->ruleStart, text.signature->ruleEnd};
    context.subEntityTraits().setColor(kRuleColor);
    context.geometry().polyline(2, rule);
}

// Leaders and flag --------------------------------------------------------------------------------

static void drawLeaders(const MarkLayout &layout, const AcGiCommonDraw &context)
{
    context.subEntityTraits().setColor(layout.leaderColor);
    context.subEntityTraits().setFillType(kAcGiFillNever);
    for (const MarkLeader &leader : layout.leaders) {
        const AcGePoint3d ends[] = {leader.start, leader.end};
        context.geometry().polyline(2, ends);
    }
}

static void drawFlag(const MarkFlag &flag, const MarkAxes &axes, bool asOutline,
                     const AcGiCommonDraw &context)
{
    context.subEntityTraits().setColor(flag.fillColor);
    context.subEntityTraits().setFillType(asOutline ? kAcGiFillNever : kAcGiFillAlways);
    context.geometry().polygon(std::uint32_t(flag.outline.size()), flag.outline.data());
    // On paper the flag is not filled, so its number stands on the paper.
    context.subEntityTraits().setColor(asOutline ? kPaperColor : flag.numberColor);
    drawLine(flag.number, markNumberStyle().font(), axes, context.geometry());
}

void drawMark(const MarkLayout &layout, const AcGiCommonDraw &context)
{
    AcGiSubEntityTraits &pen = context.subEntityTraits();
    const acgi::Traits own = pen.traits();
    if (layout.text)
        drawText(*layout.text, layout.axes, context);
    drawOutline(layout.outline, context);
    drawLeaders(layout, context);
    drawOutline(layout.frame, context);
    if (layout.flag)
        drawFlag(*layout.flag, layout.axes, layout.plotting, context);
    pen.setTraits(own);
    if (layout.sketch)
        sketch::draw(layout.sketch->strokes, layout.sketch->placement, context);
}
