// What the settings dialog edits, as a value: read from the settings, checked, stored. Which control shows
// what stands in setup_dialog.cpp.
#pragma once

#include <QString>

#include <optional>

/// Everything that the dialog shows and stores with OK.
struct SetupValues {
    int style = 1;     ///< 1 to 6
    int BKstyle = 103; ///< 100 to 105
    QString name;
    QString password; ///< As typed; empty: new marks have none.
    int textHeight = 0;
    int textHeightPS = 0;
    bool useLayer = false;
    QString layerName;
    bool noPlotLayer = false;
    bool displayFlagWithFreehandDraw = false;
    bool autoTargetTextHeight = false;
    bool snapRecord = false;
    bool snapReview = false;
    bool useTemplate = false;
    bool autoFlagSize = false;
    bool applyAll = false;
    bool viewDateTime = false;
    bool showMarkText = true;
    bool viewName = false;
    bool viewFlag = false;
    bool autoFlagRefresh = false;
    int doubleClick = 0; ///< 0 edits, 1 does nothing, 2 asks

    friend bool operator==(const SetupValues &, const SetupValues &) = default;
};

/// As the dialog shows them when it opens; the password is never shown.
SetupValues readSetup();
/// Into the settings and the copies that the running program uses. The flag refresh is left to the caller.
void storeSetup(const SetupValues &values);

/// A drawing as the height checks see it, drawing units.
struct SetupView {
    bool paperSpace = false;
    double viewSize = 0.0; ///< Height of the current view.
    double diagonal = 0.0; ///< Of the drawing's extents; above 1e20 when it has none.
};
SetupView currentSetupView();

struct HeightCheck {
    std::optional<int> replaced; ///< What the box shows from now on.
    QString message;             ///< Empty: the height is good.
};
/// The text height of the space that the view is in.
HeightCheck checkTextHeight(int height, const SetupView &view);

/// The number that a text begins with, 0 without one.
int leadingInteger(const QString &text);

/// The text of a report template, as Chinese programs write it.
struct TemplateCheck {
    bool isTemplate = false;
    QString message; ///< For the user; "%1" is the path.
    bool hasByteOrderMark = false;
};
TemplateCheck checkTemplate(QByteArrayView bytes);
