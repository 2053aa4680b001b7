// Menus and toolbars: the window's own table, those of modules, and what undo is called.
#include "app/window/command_names.h"
#include "app/window/menu_bar.h"
#include "tests/app/front_end/window_session.h"
#include "tests/support/files.h"
#include "tests/support/script_front_end.h"

#include "host/acdb/dbundo.h"
#include "host/aced/edcommands.h"
#include "host/acui/acuixref.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <QSet>
#include <QToolBar>
#include <QTranslator>

namespace
{

constexpr const char *kMenuFile = R"xml(<?xml version="1.0" encoding="UTF-8"?>
<menu-file version="1"><group name="TESTMENU">
  <popup id="POP1" label="评图(&amp;Q)">
    <item label="画墙(&amp;W)" macro="^C^C_LINE " help="画一道墙"/>
    <separator/>
    <submenu label="更多"><item label="点" macro="^C^C_POINT 4,5 "/></submenu>
  </popup>
  <toolbar id="TB1" label="评图">
    <item label="画墙" macro="^C^C_LINE " icon="flag.strokes"/>
    <item label="点" macro="^C^C_POINT 4,5 " icon="other_word.strokes"/>
    <item label="圆" macro="^C^C_CIRCLE " icon="number_missing.strokes"/>
    <item label="弧" macro="^C^C_ARC " icon="nowhere.strokes"/>
  </toolbar>
</group></menu-file>)xml";

class MenuBarTest : public testing::Test
{
protected:
    MenuBarTest()
    {
        EXPECT_TRUE(acedMenus().load(folder.write(QStringLiteral("test.mnu"), kMenuFile)));
        EXPECT_TRUE(acedMenus().menuCommand(QStringLiteral("P12=+TESTMENU.POP1")));
    }
    ~MenuBarTest() override { acedMenus().unload(QStringLiteral("TESTMENU")); }

    QStringList titles() const
    {
        QStringList list;
        for (const QAction *menu : mainWindow.menuBar()->actions())
            list += window::withoutMnemonic(menu->text());
        return list;
    }
    QString undoText(const window::MenuBar &menus) const
    {
        return window::withoutMnemonic(menus.action(window::WindowAction::undo)->text());
    }

    tests::TempDir folder;
    tests::OpenDrawing drawing{tests::MemoryDrawing().open()};
    tests::WindowSession session;
    QMainWindow mainWindow;
};

} // namespace

TEST_F(MenuBarTest, ModulesStandBetweenTheWindowsOwn)
{
    window::MenuBar menus(session.front, mainWindow);
    EXPECT_EQ(titles(), QStringLiteral("文件 编辑 视图 修改 绘图 评图 窗口 帮助").split(u' '));
    const QMenu *const popup = mainWindow.menuBar()->actions()[5]->menu();
    ASSERT_EQ(popup->actions().size(), 3);
    EXPECT_EQ(popup->actions()[0]->statusTip(), u"画一道墙");
    EXPECT_TRUE(popup->actions()[1]->isSeparator());
    EXPECT_EQ(mainWindow.findChildren<QToolBar *>().size(), 2) << "what a module brings is shown";

    session.play({[&] { popup->actions()[2]->menu()->actions()[0]->trigger(); }});
    EXPECT_EQ(tests::currentEntities().size(), 1u);

    acedMenus().showToolbars(QStringLiteral("TESTMENU"), false);
    menus.refresh();
    EXPECT_EQ(mainWindow.findChildren<QToolBar *>().size(), 1);
    {
        QMainWindow laterWindow;
        window::MenuBar later(session.front, laterWindow);
        later.refresh();
        EXPECT_EQ(laterWindow.findChildren<QToolBar *>().size(), 1) << "what was sent away stays away";
        acedMenus().showToolbars(QStringLiteral("TESTMENU"), true);
        later.refresh();
        EXPECT_EQ(laterWindow.findChildren<QToolBar *>().size(), 2);
    }
    menus.refresh();
    acedMenus().unload(QStringLiteral("TESTMENU"));
    menus.refresh();
    EXPECT_EQ(titles().size(), 7);
    EXPECT_EQ(mainWindow.findChildren<QToolBar *>().size(), 1);
}

TEST_F(MenuBarTest, IconsLieBesideTheMenuFile)
{
    for (const char *name : {"flag.strokes", "other_word.strokes", "number_missing.strokes"})
        folder.write(name,
                     tests::readFile(tests::testDataPath(QStringLiteral("corpus/strokes/%1").arg(name))));
    const window::MenuBar menus(session.front, mainWindow);
    const QList<QAction *> buttons = mainWindow.findChildren<QToolBar *>().constLast()->actions();
    ASSERT_EQ(buttons.size(), 4);
    for (const QAction *const button : buttons)
        EXPECT_EQ(button->icon().isNull(), button != buttons.constFirst()) << button->text().toStdString();
    const QImage flag = buttons.constFirst()->icon().pixmap(32, 32).toImage();
    EXPECT_EQ(flag.pixelColor(7, 15).rgb(), QApplication::palette().color(QPalette::WindowText).rgb());
    EXPECT_EQ(flag.pixelColor(31, 31).alpha(), 0);
}

TEST_F(MenuBarTest, UndoTellsWhatItWouldUndo)
{
    window::MenuBar menus(session.front, mainWindow);
    EXPECT_FALSE(menus.action(window::WindowAction::undo)->isEnabled());
    const auto run = [&](const char *macro) {
        return [this, macro] { session.front.runMacro(QString::fromLatin1(macro)); };
    };
    QStringList undone, redone;
    const auto look = [&] {
        menus.refresh();
        undone += undoText(menus);
        redone += window::withoutMnemonic(menus.action(window::WindowAction::redo)->text());
        session.front.giveText({});
    };
    session.play({run("_LINE 0,0 1,1 ;"), look, run("_CIRCLE 0,0 5 "), look, run("_U "), look});
    EXPECT_EQ(undone, (QStringList{QStringLiteral("撤销 直线"), QStringLiteral("撤销 圆"),
                                   QStringLiteral("撤销 直线")}));
    EXPECT_EQ(redone,
              (QStringList{QStringLiteral("重做"), QStringLiteral("重做"), QStringLiteral("重做 圆")}));
}

TEST_F(MenuBarTest, UndoGoesBackAHundredSteps)
{
    tests::WindowSession::Steps steps;
    for (int i = 0; i < 100; ++i)
        steps.push_back([this, i] { session.front.runMacro(QStringLiteral("_POINT %1,0 ").arg(i)); });
    for (int i = 0; i < 100; ++i)
        steps.push_back([this] { session.front.runMacro(QStringLiteral("^C^C_U ")); });
    session.play(steps);
    EXPECT_TRUE(tests::currentEntities().empty());
    EXPECT_EQ(drawing.database().undo().redoLabels().size(), 100);
}

TEST_F(MenuBarTest, TableNamesCommandsThatAreThereAndKeysThatAreFree)
{
    QTranslator english;
    ASSERT_TRUE(english.load(QStringLiteral("quillnote_en"), QCoreApplication::applicationDirPath() +
                                                                 QStringLiteral("/../share/translations")));
    acuiRegisterXrefCommand();
    QSet<QString> keys;
    for (const window::HostMenu &menu : window::hostMenus()) {
        for (const window::HostMenuItem &item : menu.items) {
            if (!item.label)
                continue;
            EXPECT_FALSE(english.translate("window::HostMenus", item.label).isEmpty()) << item.label;
            EXPECT_FALSE(english.translate("window::HostMenus", item.help).isEmpty()) << item.label;
            for (const QString &key : QString::fromLatin1(item.shortcut).split(u' ', Qt::SkipEmptyParts)) {
                EXPECT_FALSE(keys.contains(key)) << qPrintable(key);
                keys.insert(key);
            }
            for (const auto &answer : window::readMacro(QString::fromLatin1(item.macro))) {
                if (!answer || answer->kind != AcEdAnswer::text)
                    continue;
                EXPECT_TRUE(acedRegCmds()->lookup(answer->typed)) << item.macro;
                break;
            }
        }
    }
}
