// The settings that are read once at start-up and again when the settings dialog saves. Drawing and
// mark-making use these copies, so that a pass over all marks does not read the store.
#pragma once

struct StartUpSettings {
    bool chineseVersion = false;
    bool displayFlagWithFreehandDraw = false;
    /// Bit 1: a full-view picture with each new mark. Bit 2: the palette shows that picture.
    int snapshotMode = 0;
    bool autoFlagSize = false;
    bool applyAll = false;
    int textHeight = 1000; ///< Drawing units, at least 1.
    /// No height is stored: marks in model space get one that suits their drawing when they are made.
    bool suitsTextHeight = false;
    int textHeightPS = 10;
    bool showMarkText = true;
    bool autoTargetTextHeight = true;
    double tickScale = 1.0;
    int style = 0;     ///< -6 to 6
    int BKstyle = 103; ///< 99 to 105
    int color1 = 2;    ///< 1 to 255
    int color2 = 2;
    bool viewDateTime = false;
    bool viewName = false;
    bool viewFlag = false;

    static constexpr int kRecordFullView = 1;
    static constexpr int kReviewFullView = 2;

    void reset() { *this = {}; }
    friend bool operator==(const StartUpSettings &, const StartUpSettings &) = default;
};

/// The copies of this process.
StartUpSettings &startUpSettings();

/// Reads all copies anew.
void readStartUpSettings();
