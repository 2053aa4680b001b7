#include "quillnote/entity/mark_drawing_settings.h"

#include "quillnote/entity/mark_state.h"
#include "quillnote/frame/settings/settings.h"
#include "quillnote/frame/settings/start_up_settings.h"

static bool usesTrueType()
{
    std::optional<bool> &known = markDrawingState().trueType;
    if (!known)
        known = settings::number(u"TextStyle") == 1;
    return *known;
}

MarkDrawingSettings markDrawingSettings()
{
    const StartUpSettings &copies = startUpSettings();
    return {.applyAll = copies.applyAll,
            .style = TargetStyle(copies.style),
            .BKstyle = FrameStyle(copies.BKstyle),
            .color1 = copies.color1,
            .color2 = copies.color2,
            .textHeight = copies.suitsTextHeight ? 0 : copies.textHeight,
            .textHeightPS = copies.textHeightPS,
            .autoTargetTextHeight = copies.autoTargetTextHeight,
            .autoFlagSize = copies.autoFlagSize,
            .showMarkText = copies.showMarkText,
            .viewFlag = copies.viewFlag,
            .viewDateTime = copies.viewDateTime,
            .viewName = copies.viewName,
            .displayFlagWithFreehandDraw = copies.displayFlagWithFreehandDraw,
            .trueType = usesTrueType()};
}

TargetStyle drawnTargetStyle(TargetStyle targetStyle, const MarkDrawingSettings &settings)
{
    const TargetStyle own = withoutSign(targetStyle);
    const bool isReplaced = settings.applyAll && settings.style != TargetStyle::none && fillsRectangle(own);
    return isReplaced ? withoutSign(settings.style) : own;
}

FrameStyle drawnFrameStyle(FrameStyle flagStyle, const MarkDrawingSettings &settings)
{
    return orBevel(settings.applyAll ? settings.BKstyle : flagStyle);
}

static int drawnColor(int own, int configured, bool applyAll, ColorRange highest)
{
    return applyAll && configured >= 1 && configured <= int(highest) ? configured : own;
}

int drawnColor1(int color1, const MarkDrawingSettings &settings, ColorRange highest)
{
    return drawnColor(color1, settings.color1, settings.applyAll, highest);
}

int drawnColor2(int color2, const MarkDrawingSettings &settings, ColorRange highest)
{
    return drawnColor(color2, settings.color2, settings.applyAll, highest);
}
