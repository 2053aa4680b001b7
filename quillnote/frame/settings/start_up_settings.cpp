#include "quillnote/frame/settings/start_up_settings.h"

#include "quillnote/frame/settings/settings.h"

StartUpSettings &startUpSettings()
{
    static StartUpSettings copies;
    return copies;
}

static constexpr int kTextHeight = 1000;

static int readTextHeight(QStringView name, int otherwise)
{
    const int stored = settings::number(name);
    return stored > 0 ? stored : otherwise;
}

static bool isOn(QStringView name)
{
    return settings::number(name) >= 1;
}

void readStartUpSettings()
{
    StartUpSettings &copies = startUpSettings();
    copies.chineseVersion = settings::number(u"ChineseVersion") != 0;
    copies.displayFlagWithFreehandDraw = settings::number(u"DisplayFlagWithFreehandDraw") != 0;
    copies.snapshotMode = (settings::number(u"SnapRecord") != 0 ? StartUpSettings::kRecordFullView : 0) +
                          (settings::number(u"SnapReview") != 0 ? StartUpSettings::kReviewFullView : 0);
    copies.autoFlagSize = isOn(u"autoFlagSize");
    copies.applyAll = isOn(u"applyAll");
    copies.textHeight = readTextHeight(u"textHeight", kTextHeight);
    copies.suitsTextHeight = settings::number(u"textHeight") <= 0;
    copies.textHeightPS = readTextHeight(u"textHeightPS", 10);
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
