#include "quillnote/entity/mark_drawing_settings.h"

#include "quillnote/entity/mark_state.h"
#include "quillnote/frame/settings/settings.h"
#include "quillnote/frame/settings/start_up_settings.h"

#include <cstdlib>

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
            .style = copies.style,
            .BKstyle = copies.BKstyle,
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

int drawnTargetStyle(int targetStyle, const MarkDrawingSettings &settings)
{
    const int own = std::abs(targetStyle);
    const bool isReplaced = settings.applyAll && settings.style != 0 && own >= 1 && own <= 49;
    return isReplaced ? std::abs(settings.style) : own;
}

int drawnFlagStyle(int flagStyle, const MarkDrawingSettings &settings)
{
    constexpr int kFirst = 100;
    constexpr int kLast = 105;
    constexpr int kBevelBox = 103;
    const int style = settings.applyAll ? settings.BKstyle : flagStyle;
    return style >= kFirst && style <= kLast ? style : kBevelBox;
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
