#include "quillnote/frame/settings/start_up_settings.h"

#include "quillnote/frame/settings/settings.h"

#include <cmath>
#include <limits>

StartUpSettings &startUpSettings()
{
    static StartUpSettings copies;
    return copies;
}

static constexpr int kTextHeight = 1000;

/// A twentieth of the view's height, rounded up to whole units; no value for a view without a size.
static std::optional<int> heightForView(const ViewSize &viewSize)
{
    const std::optional<double> size = viewSize ? viewSize() : std::nullopt;
    if (!size || !std::isfinite(*size))
        return std::nullopt;
    const double height = std::floor(*size / 20.0) + 1.0;
    if (height < 1.0 || height > std::numeric_limits<int>::max())
        return std::nullopt;
    return static_cast<int>(height);
}

static int readTextHeight(QStringView name, const ViewSize &viewSize, int otherwise)
{
    if (const int stored = settings::number(name); stored > 0)
        return stored;
    const std::optional<int> height = heightForView(viewSize);
    if (height)
        settings::setNumber(name, *height);
    return height.value_or(otherwise);
}

static bool isOn(QStringView name)
{
    return settings::number(name) >= 1;
}

void readStartUpSettings(const ViewSize &viewSize)
{
    StartUpSettings &copies = startUpSettings();
    copies.chineseVersion = settings::number(u"ChineseVersion") != 0;
    copies.displayFlagWithFreehandDraw = settings::number(u"DisplayFlagWithFreehandDraw") != 0;
    copies.snapshotMode = (settings::number(u"SnapRecord") != 0 ? StartUpSettings::kRecordFullView : 0) +
                          (settings::number(u"SnapReview") != 0 ? StartUpSettings::kReviewFullView : 0);
    copies.autoFlagSize = isOn(u"autoFlagSize");
    copies.applyAll = isOn(u"applyAll");
    copies.textHeight = readTextHeight(u"textHeight", viewSize, kTextHeight);
    copies.textHeightPS = readTextHeight(u"textHeightPS", viewSize, 10);
    copies.showMarkText = settings::number(u"NoDisplayText") != 1;
    copies.autoTargetTextHeight = settings::number(u"autoTargetTxtH") >= 0;
    copies.tickScale = 1.0;
    copies.style = settings::numberInRange(u"style", -6, 6, 0);
    copies.BKstyle = settings::numberInRange(u"BKstyle", 99, 105, 103);
    copies.color1 = settings::numberInRange(u"color1", 1, 255, 2);
    copies.color2 = settings::numberInRange(u"color2", 1, 255, 2);
    copies.viewDateTime = isOn(u"viewDateTime");
    copies.viewName = isOn(u"viewName");
    copies.viewFlag = isOn(u"viewFlag");
}

void suitTextHeight(const ViewSize &viewSize)
{
    if (settings::number(u"textHeight") <= 0)
        startUpSettings().textHeight = heightForView(viewSize).value_or(kTextHeight);
}
