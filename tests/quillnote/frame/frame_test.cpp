// The module as its host sees it: messages, commands, LISP functions, menu, notices, unload.
#include "quillnote/frame/command_table.h"
#include "quillnote/frame/entry_point.h"
#include "quillnote/frame/helper_programs.h"
#include "quillnote/frame/menu_loading.h"
#include "quillnote/frame/settings/install_folder.h"
#include "quillnote/frame/settings/settings.h"

#include "quillnote/authoring/flag_refresh.h"
#include "quillnote/entity/mark_class.h"
#include "quillnote/entity/mark_state.h"

#include "host/aced/edcommands.h"
#include "host/aced/edlisp.h"
#include "host/aced/edmenu.h"
#include "host/aced/edsysvar.h"
#include "host/aced/edverbs.h"
#include "host/aced/hostcommands.h"
#include "host/os/shell.h"
#include "tests/support/files.h"
#include "tests/support/memory_drawing.h"
#include "tests/support/script_front_end.h"

#include <QDir>

#include <gtest/gtest.h>

#include <algorithm>

static const QString kModule = QStringLiteral("test-module");

struct FrameTest : testing::Test {
    FrameTest()
    {
        acedRegisterHostCommands();
        settings::setText(u"Location", folder.path());
        settings::setText(u"NoticeString", u"");
        settings::setNumber(u"LOADTOOLBAR", 0);
    }
    ~FrameTest() override { unload(); }
    void load()
    {
        acrxDynamicLinker()->attachModule(kModule, acrxEntryPoint);
        loaded = true;
    }
    void unload()
    {
        if (std::exchange(loaded, false)) {
            EXPECT_TRUE(acrxDynamicLinker()->unloadModule(kModule));
        }
        acedMenus().unload(QStringLiteral("评图标签"));
    }
    void shipMenu() const
    {
        folder.write(QStringLiteral("quillnote3_chn2010.cuix"),
                     "<menu-file version='1'><group name='评图标签'><popup id='POP1' label='Q'>"
                     "<item label='a' macro='^C^C_QN3_Quillnote '/></popup>"
                     "<toolbar id='TB1' label='Q'><item label='a' macro='x'/></toolbar></group></menu-file>");
    }
    tests::TempDir folder;
    bool loaded = false;
};

TEST_F(FrameTest, LoadsAndLeavesWithoutATrace)
{
    const std::size_t commandsBefore = acedRegCmds()->commands().size();
    const std::size_t verbsBefore = acedVerbs().size();
    for (int round = 0; round < 2; ++round) {
        tests::ScriptFrontEnd script;
        load();
        EXPECT_TRUE(script.printed.endsWith(QStringLiteral("\n评图标签软件Quillnote加载成功！")));
        EXPECT_EQ(acedRegCmds()->commands().size(), commandsBefore + commandTable().size());
        EXPECT_NE(markClass(), nullptr);
        unload();
        EXPECT_EQ(acedRegCmds()->commands().size(), commandsBefore);
        EXPECT_EQ(acedVerbs().size(), verbsBefore);
        EXPECT_EQ(acrxClassDictionary().at(kMarkClassName.toString()), nullptr);
    }
}

TEST_F(FrameTest, TheDemandLoadRecordNamesTheRecordedCommands)
{
    tests::ScriptFrontEnd script;
    load();
    const std::vector<AcadAppInfo> all = AcadAppInfo::readAll();
    const auto ours = std::ranges::find(all, QStringLiteral("Quillnote3"), &AcadAppInfo::appName);
    ASSERT_NE(ours, all.end());
    EXPECT_EQ(ours->moduleName, kModule);
    EXPECT_EQ(ours->loadReasons, 7);
    EXPECT_EQ(ours->description, "Quillnote version 7.0");
    const auto localName = [&](const char *global) {
        const auto found =
            std::ranges::find(ours->commands, QString::fromLatin1(global), &AcadAppInfo::Command::globalName);
        return found == ours->commands.end() ? QString() : found->localName;
    };
    EXPECT_EQ(ours->commands.size(), 47U);
    EXPECT_EQ(localName("QN3_Quillnote"), "QN3_Quillnote");
    EXPECT_EQ(localName("QN3_QuillnoteOutputTxt"), "QN3_txt");
    EXPECT_EQ(localName("QN3_DataFileOut"), "QN3f1");
    EXPECT_EQ(localName("QN3_Setup"), "QN3_Setup");
    EXPECT_EQ(localName("QN3_Show"), "QN3_allMarksShow");
    EXPECT_EQ(localName("QN8_editNumber"), QString());
}

TEST_F(FrameTest, TheSettingSwitchesTheFlagRefreshOnWithADrawing)
{
    tests::ScriptFrontEnd script;
    for (const int setting : {0, 1}) {
        settings::setNumber(u"autoFlagRefresh", setting);
        load();
        const tests::OpenDrawing drawing(tests::MemoryDrawing().open());
        EXPECT_EQ(markDrawingState().flagRefreshRunning, setting == 1);
        unload();
        EXPECT_FALSE(markDrawingState().flagRefreshRunning);
    }
    // Unloading has taken the filter back, or it could not be registered again.
    EXPECT_TRUE(startFlagRefresh());
    stopFlagRefresh();
    settings::setNumber(u"autoFlagRefresh", 0);
}

TEST_F(FrameTest, LispCallsItsTwoFunctionsOnly)
{
    tests::ScriptFrontEnd script;
    load();
    const tests::OpenDrawing drawing(tests::MemoryDrawing().open());
    acrxDynamicLinker()->broadcast(AcRx::kLoadDwgMsg);
    const auto on = acedEvaluateLisp(QStringLiteral("(qnnk_SynningOn)"));
    ASSERT_TRUE(on) << on.error().toStdString();
    EXPECT_EQ(*on, "1");
    EXPECT_TRUE(acedEvaluateLisp(QStringLiteral("(qnnk_synningoff)")));
    EXPECT_FALSE(acedEvaluateLisp(QStringLiteral("(qnnk_other)")));
}

TEST_F(FrameTest, TheMenuFileFollowsTheHostAndTheFolder)
{
    for (const QString &location :
         {folder.path(), folder.path() + QLatin1Char('/'), folder.path() + QLatin1Char('\\')}) {
        settings::setText(u"Location", location);
        EXPECT_EQ(menuFilePath(16), folder.path(QStringLiteral("quillnote3_chn2004.mnu")));
        EXPECT_EQ(menuFilePath(17), folder.path(QStringLiteral("quillnote3_chn2008.cui")));
        EXPECT_EQ(menuFilePath(18), folder.path(QStringLiteral("quillnote3_chn2010.cuix")));
    }
    EXPECT_EQ(hostRelease(), 20);
}

TEST_F(FrameTest, EachDrawingQueuesTheMenuAndItIsLoadedOnce)
{
    shipMenu();
    tests::ScriptFrontEnd script;
    load();
    const tests::OpenDrawing drawing(tests::MemoryDrawing().open());
    for (int round = 0; round < 2; ++round) {
        acrxDynamicLinker()->broadcast(AcRx::kLoadDwgMsg);
        acedEditor()->runQueue();
        EXPECT_TRUE(acedIsMenuGroupLoaded(QStringLiteral("评图标签")));
        EXPECT_EQ(acedMenus().bar().size(), 1U);
    }
    ptbq();
    EXPECT_TRUE(script.printed.contains(QStringLiteral("\n评图标签菜单已经加载！现在重新加载.")));
    EXPECT_TRUE(acedMenus().group(QStringLiteral("评图标签"))->toolbarsShown);
    EXPECT_EQ(settings::number(u"LOADTOOLBAR"), 1);
    ptbq();
    EXPECT_FALSE(acedMenus().group(QStringLiteral("评图标签"))->toolbarsShown);
}

TEST_F(FrameTest, AMissingMenuFileIsTold)
{
    tests::ScriptFrontEnd script({}, {"ok", "ok"});
    ptbq();
    EXPECT_TRUE(script.printed.contains(folder.path(QStringLiteral("quillnote3_chn2010.cuix")) +
                                        QStringLiteral(" 未找到！")));
    EXPECT_FALSE(acedIsMenuGroupLoaded(QStringLiteral("评图标签")));
}

/// Answers like a script, but is a person's.
struct PersonalFrontEnd : tests::ScriptFrontEnd {
    using ScriptFrontEnd::ScriptFrontEnd;
    bool isScripted() const override { return false; }
};

TEST_F(FrameTest, ANoticeIsShownTenTimesToAPersonAndToNoScript)
{
    settings::setText(u"NoticeString", u"新版本");
    settings::setNumber(u"NoticeStringN", 0);
    const auto start = [&](auto &&frontEnd) {
        load();
        const bool shown = frontEnd.printed.contains(QStringLiteral("新版本"));
        unload();
        return shown;
    };
    EXPECT_FALSE(start(tests::ScriptFrontEnd({}, {"ok"})));
    int shown = 0;
    for (int i = 0; i < 12; ++i)
        shown += start(PersonalFrontEnd({}, {"ok"}));
    EXPECT_EQ(shown, 10);
}

TEST_F(FrameTest, HelpersAreStartedFromTheInstallFolder)
{
    std::vector<os::ShellRequest> requests;
    os::setShellRecorder([&](const os::ShellRequest &request) { requests.push_back(request); });
    tests::ScriptFrontEnd script({}, {"ok"});
    qn8_runPush();
    EXPECT_TRUE(requests.empty());
    EXPECT_TRUE(script.printed.contains(
        QStringLiteral("qcpush.exe程序文件未找到，请重新安装CAD评图标签软件云模块！")));
    QDir(folder.path()).mkpath(QStringLiteral("Yun"));
    const QString program = folder.write(QStringLiteral("Yun/qcpush.exe"), "");
    qn8_runPush();
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_EQ(requests[0].target, program);
    EXPECT_EQ(requests[0].workingFolder, folder.path() + QLatin1Char('/'));
    QN8_menuToYun();
    EXPECT_TRUE(requests.back().target.endsWith(QStringLiteral("phrase-menus.html#A")));
    os::setShellRecorder({});
}
