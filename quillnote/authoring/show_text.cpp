#include "quillnote/authoring/show_text.h"

#include "quillnote/authoring/redraw_marks.h"
#include "quillnote/frame/settings/start_up_settings.h"

#include "host/aced/edinput.h"

void QN3_ShowText()
{
    acedInitGet(0, QStringLiteral("Yes No"));
    QString keyword;
    const int answer = acedGetKword(QStringLiteral("是否在标记框下方显示标记文字(Y/N)[Y]? "), keyword);
    if (answer != RTNORM && answer != RTNONE)
        return;
    startUpSettings().showMarkText = answer == RTNONE || keyword == QLatin1String("Yes");
    QN3_Redraw();
}
