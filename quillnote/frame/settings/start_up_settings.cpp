#include "quillnote/frame/settings/start_up_settings.h"

#include "quillnote/frame/settings/settings.h"

StartUpSettings &startUpSettings()
{
    static StartUpSettings copies;
    return copies;
}

static bool isOn(settings::Number row)
{
    return settings::number(row) >= 1;
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
    copies.textHeight = settings::number(u"textHeight");
    copies.suitsTextHeight = !settings::stored(u"textHeight");
    copies.textHeightPS = settings::number(u"textHeightPS");
    copies.showMarkText = settings::number(u"NoDisplayText") != 1;
    copies.autoTargetTextHeight = settings::number(u"autoTargetTxtH") >= 0;
    copies.tickScale = 1.0;
    copies.style = settings::number(u"style");
    copies.BKstyle = settings::number(u"BKstyle");
    copies.color1 = settings::number(u"color1");
    copies.color2 = settings::number(u"color2");
    copies.viewDateTime = isOn(u"viewDateTime");
    copies.viewName = isOn(u"viewName");
    copies.viewFlag = isOn(u"viewFlag");
}
