#include "quillnote/frame/setup.h"

#include "quillnote/authoring/all_marks.h"
#include "quillnote/authoring/flag_refresh.h"
#include "quillnote/entity/mark_state.h"
#include "quillnote/frame/settings/settings.h"
#include "quillnote/frame/settings/start_up_settings.h"
#include "quillnote/ui/setup_dialog.h"

#include "host/aced/edmessage.h"

static void setFlagRefresh(bool on)
{
    if (!on) {
        settings::setNumber(u"autoFlagRefresh", 0);
        stopFlagRefresh();
        return;
    }
    const bool wasRunning = markDrawingState().flagRefreshRunning;
    const bool runs = startFlagRefresh();
    settings::setNumber(u"autoFlagRefresh", runs);
    if (!runs)
        return;
    startUpSettings().autoFlagSize = true;
    if (!wasRunning)
        acedAlert(QStringLiteral("您勾选了旗帜实时刷新，有可能导致显示卡顿。如果卡顿，可以关闭此。"));
}

void QN3_Setup()
{
    const std::optional<SetupValues> values = runSetup(readSetup());
    // Colours are stored by their buttons, whatever becomes of the rest.
    startUpSettings().color1 = settings::number(u"color1");
    startUpSettings().color2 = settings::number(u"color2");
    if (!values)
        return;
    storeSetup(*values);
    setFlagRefresh(values->autoFlagRefresh);
    QN3_Redraw();
}
