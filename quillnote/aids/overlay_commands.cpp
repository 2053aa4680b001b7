#include "quillnote/aids/overlay_commands.h"

#include "quillnote/aids/recolouring.h"
#include "quillnote/frame/settings/settings.h"

#include "host/acap/docman.h"
#include "host/acdb/dbundo.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edinput.h"

static constexpr int kPaleGrey = 254;

/// 1 to 255; a pale grey when nothing sensible is set.
static int colorSetting(QStringView name)
{
    return settings::numberInRange(name, 1, 255, kPaleGrey);
}

// Painting ----------------------------------------------------------------------------------------

/// A stopped one leaves everything as it was.
static void recolour(const std::function<Recoloured(AcDbDatabase &)> &work)
{
    AcDbDatabase &database = *acdbCurDwg();
    Recoloured result;
    database.undo().attempt([&] {
        result = work(database);
        return !result.isStopped;
    });
    if (result.isStopped)
        acutPrintf(QStringLiteral("\n已停止，图形保持原样。"));
    else if (result.skipped > 0)
        acutPrintf(QStringLiteral("\n%1 个图元无法修改（所在图层可能已锁定），已跳过。").arg(result.skipped));
}

void QN3_whiteAll()
{
    recolour([](AcDbDatabase &database) {
        return paintEverything(database, colorSetting(u"WhiteAllColor"), acDocManager()->progress());
    });
}

void QN3_restoreColorAll()
{
    recolour([](AcDbDatabase &database) { return restoreColors(database, acDocManager()->progress()); });
}

// Overlays ----------------------------------------------------------------------------------------

void QN8_setDiTuColor()
{
    int color = colorSetting(u"DiTuColor");
    int typed = 0;
    acedInitGet(RSG_NONEG);
    const QString prompt = QStringLiteral("\n请输入叠图色彩号(1-254)[%1]：").arg(color);
    if (acedGetInt(prompt, typed) == RTNORM && typed >= 1 && typed <= 255)
        color = typed;
    settings::setNumber(u"DiTuColor", color);
}
