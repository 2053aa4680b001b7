#include "app/canvas/idle_menu.h"

#include "app/canvas/drawing_view.h"

#include <QMenu>

namespace window
{

static void addRepeat(QMenu &menu, WindowFrontEnd &frontEnd)
{
    const QString last = frontEnd.lastCommand();
    if (last.isEmpty())
        return;
    QString shown = last.section(u' ', 0, 0);
    while (shown.startsWith(u'_') || shown.startsWith(u'.'))
        shown.remove(0, 1);
    menu.addAction(DrawingView::tr("重复 %1").arg(shown.toUpper()), &frontEnd,
                   [&frontEnd, last] { frontEnd.giveText(last); });
    menu.addSeparator();
}

static void addPickSetItems(QMenu &menu, WindowFrontEnd &frontEnd)
{
    AcApDocument *const document = curDoc();
    if (!document || document->pickSet().empty())
        return;
    const std::pair<QString, QString> items[] = {
        {DrawingView::tr("移动"), QStringLiteral("_MOVE")},
        {DrawingView::tr("复制"), QStringLiteral("_COPY")},
        {DrawingView::tr("删除"), QStringLiteral("_ERASE")},
    };
    for (const auto &[label, command] : items)
        menu.addAction(label, &frontEnd, [&frontEnd, command = command] { frontEnd.giveText(command); });
    menu.addSeparator();
}

void showIdleMenu(WindowFrontEnd &frontEnd, DrawingView &view, QPoint globalPlace, AcDbObjectId under)
{
    auto *const menu = new QMenu(&view);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    addRepeat(*menu, frontEnd);
    const QString macro = under.isNull() ? QString() : doubleClickMacro(under);
    if (!macro.isEmpty()) {
        menu->addAction(DrawingView::tr("编辑"), &view, [&frontEnd, &view, under, macro] {
            if (!curDoc() || !under.isValid() || under.database() != curDoc()->database())
                return;
            curDoc()->pickSet() = {under};
            view.refresh();
            frontEnd.runMacro(macro);
        });
        menu->addSeparator();
    }
    addPickSetItems(*menu, frontEnd);
    menu->addAction(DrawingView::tr("放弃"), &frontEnd,
                    [&frontEnd] { frontEnd.giveText(QStringLiteral("_U")); });
    menu->addAction(DrawingView::tr("范围缩放"), &view, [&view] { view.zoomExtents(); });
    menu->popup(globalPlace);
}

} // namespace window
