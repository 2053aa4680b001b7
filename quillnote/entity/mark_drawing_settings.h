// What the settings impose on the drawing of marks, as one value that a drawing pass is given.
#pragma once

#include "quillnote/entity/mark_styles.h"

/// Everything but `trueType` comes from the start-up copies. Whether the flags are being refreshed while
/// zooming (setting autoFlagRefresh) is no wish but a state: see mark_state.h.
struct MarkDrawingSettings {
    /// The settings below replace what the marks themselves hold: style, BKstyle, text heights, colours.
    bool applyAll = false;
    TargetStyle style = TargetStyle::none; ///< Up to thickWaveEllipse, of either sign.
    FrameStyle BKstyle = FrameStyle::bevel;
    int color1 = 2; ///< Colour indexes.
    int color2 = 2;
    int textHeight = 1000; ///< Drawing units; 0: none is set, marks keep their own.
    int textHeightPS = 10; ///< The same in paper-space layouts.
    bool autoTargetTextHeight = true;

    bool autoFlagSize = false;
    bool showMarkText = true; ///< Setting NoDisplayText is off.
    bool viewFlag = false;
    bool viewDateTime = false;
    bool viewName = false;
    bool displayFlagWithFreehandDraw = false;
    bool trueType = false; ///< Setting TextStyle: mark text in a TrueType font, else in shape fonts.
};

/// As they are now. Reads one value from the store: ask once for a pass over many marks where possible.
MarkDrawingSettings markDrawingSettings();

/// The outline that a mark is drawn with; the number has no sign. See
/// docs/decisions/0011-apply-all-and-negative-styles.md.
TargetStyle drawnTargetStyle(TargetStyle targetStyle, const MarkDrawingSettings &settings);
/// The text-box frame that a mark is drawn with: one that has a name, and not `none`.
FrameStyle drawnFrameStyle(FrameStyle flagStyle, const MarkDrawingSettings &settings);

/// A colour that a mark is drawn in: its own, or the configured one where it is an index up to `highest`.
/// 256 is "by layer".
enum class ColorRange : std::uint16_t { indexes = 255, indexesAndByLayer = 256 };
int drawnColor1(int color1, const MarkDrawingSettings &settings, ColorRange highest);
int drawnColor2(int color2, const MarkDrawingSettings &settings, ColorRange highest);
