#include "quillnote/frame/small_commands.h"

#include "host/aced/edfrontend.h"
#include "host/aced/edinput.h"
#include "host/aced/edsysvar.h"

void QN3_ShowType()
{
    acutPrintf(QStringLiteral("【显示样式】命令不再使用，请在【设置】中设置，并勾选设置面板顶部那个选项。"));
}

void qn3_wantReturn()
{
    int ignored = 0;
    acedGetInt(QStringLiteral("\n请按回车或空格键继续..."), ignored);
}

void ptbq0()
{
    acedSetIntVar(QStringLiteral("MENUBAR"), 1);
}
