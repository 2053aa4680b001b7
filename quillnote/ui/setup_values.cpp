#include "quillnote/ui/setup_values.h"

#include "quillnote/entity/mark_styles.h"
#include "quillnote/entity/password.h"
#include "quillnote/frame/settings/settings.h"
#include "quillnote/frame/settings/start_up_settings.h"

#include "host/aced/edsysvar.h"
#include "host/base/phrase_file.h"

#include <algorithm>
#include <cmath>
#include <limits>

// Reading and storing ----------------------------------------------------------------------------

static bool isOn(settings::Number row)
{
    return settings::number(row) >= 1;
}

SetupValues readSetup()
{
    SetupValues values;
    values.style = std::max(settings::number(u"style"), 1);
    values.BKstyle = int(orBevel(FrameStyle(settings::number(u"BKstyle"))));
    values.name = settings::text(u"name");
    values.textHeight = settings::number(u"textHeight");
    values.textHeightPS = settings::number(u"textHeightPS");
    values.useLayer = isOn(u"useLayer");
    values.layerName = values.useLayer ? settings::text(u"LayerName") : QString();
    values.noPlotLayer = isOn(u"noPlotLayer");
    values.displayFlagWithFreehandDraw = startUpSettings().displayFlagWithFreehandDraw;
    values.autoTargetTextHeight = isOn(u"autoTargetTxtH");
    values.snapRecord = isOn(u"SnapRecord");
    values.snapReview = isOn(u"SnapReview");
    values.useTemplate = isOn(u"useTemplet");
    values.autoFlagSize = settings::number(u"autoFlagSize") >= 0;
    values.applyAll = isOn(u"applyAll");
    values.viewDateTime = isOn(u"viewDateTime");
    values.showMarkText = settings::number(u"NoDisplayText") != 1;
    values.viewName = isOn(u"viewName");
    values.viewFlag = isOn(u"viewFlag");
    values.autoFlagRefresh = isOn(u"autoFlagRefresh");
    const int doubleClick = settings::number(u"doubleClick");
    values.doubleClick = doubleClick == 0 || doubleClick == 2 ? doubleClick : 1;
    return values;
}

/// With 0 the height suits the view; what the program uses stays until it looks.
static void storeHeight(settings::Number row, int height, int &copy)
{
    settings::setNumber(row, height);
    if (height > 0)
        copy = height;
}

static void storeLayer(const SetupValues &values)
{
    settings::setNumber(u"useLayer", values.useLayer);
    if (!values.useLayer)
        return;
    settings::setNumber(u"noPlotLayer", values.noPlotLayer);
    const QString name = values.layerName.trimmed();
    settings::setText(u"LayerName", name.isEmpty() ? QStringLiteral("评图标签") : name);
}

static void storeDisplay(const SetupValues &values, StartUpSettings &copies)
{
    settings::setNumber(u"autoFlagSize", values.autoFlagSize ? 1 : -1);
    copies.autoFlagSize = values.autoFlagSize;
    settings::setNumber(u"applyAll", copies.applyAll = values.applyAll);
    settings::setNumber(u"viewDateTime", copies.viewDateTime = values.viewDateTime);
    settings::setNumber(u"NoDisplayText", !values.showMarkText);
    copies.showMarkText = values.showMarkText;
    settings::setNumber(u"viewName", copies.viewName = values.viewName);
    settings::setNumber(u"viewFlag", copies.viewFlag = values.viewFlag);
}

void storeSetup(const SetupValues &values)
{
    StartUpSettings &copies = startUpSettings();
    settings::setNumber(u"style", copies.style = values.style);
    settings::setNumber(u"BKstyle", copies.BKstyle = values.BKstyle);
    settings::setNumber(u"DisplayFlagWithFreehandDraw",
                        copies.displayFlagWithFreehandDraw = values.displayFlagWithFreehandDraw);
    settings::setText(u"name", values.name.trimmed());
    settings::setText(u"chPwMD5", values.password.isEmpty() ? QString() : hashPassword(values.password));
    storeHeight(u"textHeight", values.textHeight < 0 ? 300 : values.textHeight, copies.textHeight);
    storeHeight(u"textHeightPS", values.textHeightPS < 0 ? 10 : values.textHeightPS, copies.textHeightPS);
    settings::setNumber(u"autoTargetTxtH", values.autoTargetTextHeight ? 1 : -1);
    copies.autoTargetTextHeight = values.autoTargetTextHeight;
    storeLayer(values);
    settings::setNumber(u"SnapRecord", values.snapRecord);
    settings::setNumber(u"SnapReview", values.snapReview);
    copies.snapshotMode = (values.snapRecord ? StartUpSettings::kRecordFullView : 0) +
                          (values.snapReview ? StartUpSettings::kReviewFullView : 0);
    settings::setNumber(u"useTemplet", values.useTemplate);
    storeDisplay(values, copies);
    settings::setNumber(u"doubleClick", values.doubleClick);
}

int leadingInteger(const QString &text)
{
    const QString trimmed = text.trimmed();
    const bool isSigned = trimmed.startsWith(u'-') || trimmed.startsWith(u'+');
    qsizetype end = isSigned ? 1 : 0;
    while (end < trimmed.size() && trimmed[end] >= u'0' && trimmed[end] <= u'9')
        ++end;
    bool isNumber = false;
    const int value = trimmed.first(end).toInt(&isNumber);
    if (isNumber || end <= (isSigned ? 1 : 0))
        return value;
    // More digits than the type holds.
    return trimmed.startsWith(u'-') ? std::numeric_limits<int>::min() : std::numeric_limits<int>::max();
}

// Text heights -----------------------------------------------------------------------------------

SetupView currentSetupView()
{
    SetupView view;
    view.paperSpace =
        acedIntVar(QStringLiteral("TILEMODE"), 1) == 0 && acedIntVar(QStringLiteral("CVPORT"), 2) == 1;
    view.viewSize = acedRealVar(QStringLiteral("VIEWSIZE"));
    resbuf least;
    resbuf most;
    if (acedGetVar(QStringLiteral("EXTMIN"), least) == RTNORM &&
        acedGetVar(QStringLiteral("EXTMAX"), most) == RTNORM)
        view.diagonal = least.point().distanceTo(most.point());
    return view;
}

static int wholePart(double value)
{
    return static_cast<int>(std::clamp(value, 0.0, double(std::numeric_limits<int>::max())));
}

HeightCheck checkTextHeight(int height, const SetupView &view)
{
    const QString where = view.paperSpace ? QStringLiteral("布局上") : QStringLiteral("模型内");
    const QString done = QStringLiteral("，已帮您自动设置为当前屏幕绘图区域高度的1/20.");
    const QString advice = QStringLiteral(
        "\n\n如果您觉得自动设置的不理想，请打开一张您的图纸，并让这张图纸完整充满屏幕显示之后，再来设置。");
    const double v = view.viewSize;
    const double d = view.diagonal;
    const bool isUnknown = d > 1e20;
    const int suitable = wholePart(v / 20.0);
    if (height <= 0)
        return {suitable, where + QStringLiteral("文字高度不能小于等于零") + done};
    if (isUnknown && height < v / 60.0)
        return {suitable,
                where + QStringLiteral("文字高度太小") + done + advice +
                    (view.paperSpace ? QStringLiteral("\n或者勾选右侧的自动靶区下文字高度。") : QString())};
    if (isUnknown && height > v / 5.0)
        return {suitable, view.paperSpace ? where + QStringLiteral("文字高度可能太大") + done + advice +
                                                QStringLiteral("\n\n或者勾选右侧的自动靶区下文字高度。")
                                          : where + QStringLiteral("文字高度可能太大，建议重新设置.\n")};
    if (isUnknown)
        return {};
    const QString judged =
        QStringLiteral("根据当前显示的图纸判断，%1文字高度设置的可能太%2，建议大概为 %3 左右比较合适。");
    if (height > d / 20.0)
        return {{}, judged.arg(where, QStringLiteral("大")).arg(wholePart(d / 20.0))};
    if (height < std::min(v / 100.0, d / 1000.0))
        return {{}, judged.arg(where, QStringLiteral("小")).arg(wholePart(v / 50.0))};
    return {};
}

// Report templates -------------------------------------------------------------------------------

TemplateCheck checkTemplate(QByteArrayView bytes)
{
    TemplateCheck check;
    check.hasByteOrderMark = !decodePhraseBytes(bytes);
    const base::TextCodec chinese("ANSI_936");
    const QString text = chinese.decode({bytes.data(), std::size_t(bytes.size())});
    if (!text.contains(u"$校审意见$"))
        check.message = QStringLiteral("文件< %1 >不是评图标签输出模板，未能选用。");
    else if (!text.contains(u"charset=gb2312"))
        check.message = QStringLiteral("文件< %1 >不是GB2312编码，不能作为评图标签输出模板，未选用。");
    else {
        check.isTemplate = true;
        check.message = QStringLiteral("已设置< %1 >为评图标签输出模板。");
    }
    return check;
}
