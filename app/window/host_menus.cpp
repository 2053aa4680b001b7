#include "app/window/host_menus.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>

namespace window
{

using enum WindowAction;

// clang-format off
static constexpr HostMenuItem kSeparator{};

static constexpr std::array kFileItems{
    HostMenuItem{QT_TRANSLATE_NOOP("window::HostMenus", "新建(&N)"), QT_TRANSLATE_NOOP("window::HostMenus", "新建图形"), none, "^C^C_NEW ", "Ctrl+N", "new", false, true},
    HostMenuItem{QT_TRANSLATE_NOOP("window::HostMenus", "打开(&O)…"), QT_TRANSLATE_NOOP("window::HostMenus", "打开图形文件"), none, "^C^C_OPEN ", "Ctrl+O", "open", false, true},
    HostMenuItem{QT_TRANSLATE_NOOP("window::HostMenus", "最近的文件(&R)"), QT_TRANSLATE_NOOP("window::HostMenus", "最近打开过的图形"), recentFiles, "", "", "", false},
    HostMenuItem{QT_TRANSLATE_NOOP("window::HostMenus", "关闭(&C)"), QT_TRANSLATE_NOOP("window::HostMenus", "关闭当前图形"), none, "^C^C_CLOSE ", "Ctrl+W", "close"},
    kSeparator,
    HostMenuItem{QT_TRANSLATE_NOOP("window::HostMenus", "保存(&S)"), QT_TRANSLATE_NOOP("window::HostMenus", "保存当前图形"), none, "^C^C_QSAVE ", "Ctrl+S", "save", true, true},
    HostMenuItem{QT_TRANSLATE_NOOP("window::HostMenus", "另存为(&A)…"), QT_TRANSLATE_NOOP("window::HostMenus", "以另一个名称保存当前图形"), none, "^C^C_SAVEAS ", "Ctrl+Shift+S"},
    kSeparator,
    HostMenuItem{QT_TRANSLATE_NOOP("window::HostMenus", "打印为 PDF(&P)…"), QT_TRANSLATE_NOOP("window::HostMenus", "把布局或窗口打印到 PDF 文件"), none, "^C^C_PLOT ", "Ctrl+P", "plot", true, true},
    kSeparator,
    HostMenuItem{QT_TRANSLATE_NOOP("window::HostMenus", "退出(&Q)"), QT_TRANSLATE_NOOP("window::HostMenus", "退出程序"), none, "^C^C_QUIT ", "Ctrl+Q", "", false},
};

static constexpr std::array kEditItems{
    HostMenuItem{QT_TRANSLATE_NOOP("window::HostMenus", "撤销(&U)"), QT_TRANSLATE_NOOP("window::HostMenus", "撤销上一步操作"), undo, "^C^C_U ", "Ctrl+Z", "undo", true, true},
    HostMenuItem{QT_TRANSLATE_NOOP("window::HostMenus", "重做(&R)"), QT_TRANSLATE_NOOP("window::HostMenus", "重做撤销的操作"), redo, "^C^C_REDO ", "Ctrl+Y Ctrl+Shift+Z", "redo", true, true},
    kSeparator,
    HostMenuItem{QT_TRANSLATE_NOOP("window::HostMenus", "全部选择(&A)"), QT_TRANSLATE_NOOP("window::HostMenus", "选择当前空间中的全部可见图元"), selectAll, "", "Ctrl+A"},
    HostMenuItem{QT_TRANSLATE_NOOP("window::HostMenus", "删除(&D)"), QT_TRANSLATE_NOOP("window::HostMenus", "删除选中的图元"), none, "^C^C_ERASE ", "Del", "erase"},
    kSeparator,
    HostMenuItem{QT_TRANSLATE_NOOP("window::HostMenus", "查找文字(&F)…"), QT_TRANSLATE_NOOP("window::HostMenus", "查找图中的文字"), find, "", "Ctrl+F", "find", true, true},
};

static constexpr std::array kViewItems{
    HostMenuItem{QT_TRANSLATE_NOOP("window::HostMenus", "范围缩放(&E)"), QT_TRANSLATE_NOOP("window::HostMenus", "显示全部图元"), none, "^C^C_ZOOM _E ", "", "zoom-extents", true, true},
    HostMenuItem{QT_TRANSLATE_NOOP("window::HostMenus", "窗口缩放(&W)"), QT_TRANSLATE_NOOP("window::HostMenus", "放大由两个角点框住的部分"), none, "^C^C_ZOOM _W ", "", "zoom-window", true, true},
    HostMenuItem{QT_TRANSLATE_NOOP("window::HostMenus", "上一个视图(&P)"), QT_TRANSLATE_NOOP("window::HostMenus", "回到前一个视图"), none, "^C^C_ZOOM _P ", "", "zoom-previous"},
    HostMenuItem{QT_TRANSLATE_NOOP("window::HostMenus", "平移(&N)"), QT_TRANSLATE_NOOP("window::HostMenus", "按两点之间的距离移动视图"), none, "^C^C_PAN ", "", "pan"},
    kSeparator,
    HostMenuItem{QT_TRANSLATE_NOOP("window::HostMenus", "重生成(&G)"), QT_TRANSLATE_NOOP("window::HostMenus", "重新生成全部图元的显示"), none, "^C^C_REGEN ", "F5", "regen"},
    kSeparator,
    HostMenuItem{QT_TRANSLATE_NOOP("window::HostMenus", "黑白背景(&B)"), QT_TRANSLATE_NOOP("window::HostMenus", "在黑色背景与白色背景之间切换"), background, "", "", "background", false},
    HostMenuItem{QT_TRANSLATE_NOOP("window::HostMenus", "命令历史(&H)"), QT_TRANSLATE_NOOP("window::HostMenus", "展开或收起命令历史"), history, "", "F2", "", false},
};

static constexpr std::array kModifyItems{
    HostMenuItem{QT_TRANSLATE_NOOP("window::HostMenus", "移动(&M)"), QT_TRANSLATE_NOOP("window::HostMenus", "移动图元"), none, "^C^C_MOVE ", "", "move"},
    HostMenuItem{QT_TRANSLATE_NOOP("window::HostMenus", "复制(&C)"), QT_TRANSLATE_NOOP("window::HostMenus", "复制图元"), none, "^C^C_COPY ", "", "copy"},
    HostMenuItem{QT_TRANSLATE_NOOP("window::HostMenus", "旋转(&R)"), QT_TRANSLATE_NOOP("window::HostMenus", "绕基点旋转图元"), none, "^C^C_ROTATE ", "", "rotate"},
    HostMenuItem{QT_TRANSLATE_NOOP("window::HostMenus", "缩放(&S)"), QT_TRANSLATE_NOOP("window::HostMenus", "放大或缩小图元"), none, "^C^C_SCALE ", "", "scale"},
    HostMenuItem{QT_TRANSLATE_NOOP("window::HostMenus", "镜像(&I)"), QT_TRANSLATE_NOOP("window::HostMenus", "沿镜像线翻转图元"), none, "^C^C_MIRROR ", "", "mirror"},
    kSeparator,
    HostMenuItem{QT_TRANSLATE_NOOP("window::HostMenus", "删除(&E)"), QT_TRANSLATE_NOOP("window::HostMenus", "删除图元"), none, "^C^C_ERASE ", "", "erase"},
};

static constexpr std::array kDrawItems{
    HostMenuItem{QT_TRANSLATE_NOOP("window::HostMenus", "直线(&L)"), QT_TRANSLATE_NOOP("window::HostMenus", "画直线"), none, "^C^C_LINE ", "", "line"},
    HostMenuItem{QT_TRANSLATE_NOOP("window::HostMenus", "圆(&C)"), QT_TRANSLATE_NOOP("window::HostMenus", "按圆心与半径画圆"), none, "^C^C_CIRCLE ", "", "circle"},
    HostMenuItem{QT_TRANSLATE_NOOP("window::HostMenus", "文字(&T)"), QT_TRANSLATE_NOOP("window::HostMenus", "写一行文字"), none, "^C^C_TEXT ", "", "text"},
};

static constexpr std::array kWindowItems{
    HostMenuItem{QT_TRANSLATE_NOOP("window::HostMenus", "下一个图形(&N)"), QT_TRANSLATE_NOOP("window::HostMenus", "切换到下一个打开的图形"), nextDrawing, "", "Ctrl+Tab"},
    HostMenuItem{QT_TRANSLATE_NOOP("window::HostMenus", "上一个图形(&P)"), QT_TRANSLATE_NOOP("window::HostMenus", "切换到上一个打开的图形"), previousDrawing, "", "Ctrl+Shift+Tab"},
};

static constexpr std::array kHelpItems{
    HostMenuItem{QT_TRANSLATE_NOOP("window::HostMenus", "帮助(&H)"), QT_TRANSLATE_NOOP("window::HostMenus", "打开帮助"), help, "", "F1", "help", false},
    kSeparator,
    HostMenuItem{QT_TRANSLATE_NOOP("window::HostMenus", "关于 Quillnote(&A)"), QT_TRANSLATE_NOOP("window::HostMenus", "版本与说明"), about, "", "", "", false},
};

static constexpr std::array kMenus{
    HostMenu{QT_TRANSLATE_NOOP("window::HostMenus", "文件(&F)"), kFileItems}, HostMenu{QT_TRANSLATE_NOOP("window::HostMenus", "编辑(&E)"), kEditItems},
    HostMenu{QT_TRANSLATE_NOOP("window::HostMenus", "视图(&V)"), kViewItems}, HostMenu{QT_TRANSLATE_NOOP("window::HostMenus", "修改(&M)"), kModifyItems},
    HostMenu{QT_TRANSLATE_NOOP("window::HostMenus", "绘图(&D)"), kDrawItems}, HostMenu{QT_TRANSLATE_NOOP("window::HostMenus", "窗口(&W)"), kWindowItems},
    HostMenu{QT_TRANSLATE_NOOP("window::HostMenus", "帮助(&H)"), kHelpItems},
};
// clang-format on

std::span<const HostMenu> hostMenus()
{
    return kMenus;
}

QString hostText(const char *text)
{
    return QCoreApplication::translate("window::HostMenus", text);
}

} // namespace window
