// The settings dialog: what it shows and stores, its checks, its buttons, and what takes effect at once.
#include "quillnote/ui/setup_values.h"

#include "host/acui/acuiinstall.h"
#include "host/base/text_codec.h"
#include "tests/quillnote/authoring/authoring_fixture.h"
#include "tests/support/files.h"

#include <cmath>

struct SetupTest : AuthoringTest {
    SetupTest()
    {
        acuiInstall();
        for (const settings::Number row : std::initializer_list<settings::Number>{
                 u"style", u"BKstyle", u"doubleClick", u"autoFlagRefresh", u"SnapRecord", u"SnapReview"})
            settings::setNumber(row, 0);
        settings::setNumber(u"textHeight", 20);
        settings::setNumber(u"textHeightPS", 3);
        drawing->document().view().height = 1000;
    }
    ~SetupTest() override
    {
        run(QStringLiteral("QN3_AutoOFF"));
        acuiUninstall();
    }
    static QString setUp(const QStringList &lines) { return run(QStringLiteral("QN3_Setup"), {}, lines); }
};

TEST_F(SetupTest, StoresWhatIsChosen)
{
    make();
    const QString printed =
        setUp({"set 1013 1",  "set 1027 1",  "set 1003 \" 王工 \"", "set 1031 秘密", "set 1062 秘密",
               "set 1050 25", "set 1056 -4", "set 1069 1",          "set 1052 1",    "set 1051 \" 审图 \"",
               "set 1057 1",  "set 1153 1",  "set 1155 1",          "set 1072 0",    "set 1071 1",
               "set 1061 1",  "set 1054 1",  "set 1150 1",          "set 1154 1",    "set 1059 0",
               "set 1019 1",  "ok"});
    struct Stored {
        settings::Number row;
        int value;
    };
    const Stored numbers[] = {{u"style", 5},          {u"BKstyle", 105},
                              {u"textHeight", 25},    {u"textHeightPS", 10},
                              {u"autoTargetTxtH", 1}, {u"useLayer", 1},
                              {u"noPlotLayer", 1},    {u"SnapRecord", 0},
                              {u"SnapReview", 1},     {u"applyAll", 1},
                              {u"NoDisplayText", 1},  {u"viewName", 1},
                              {u"viewFlag", 1},       {u"viewDateTime", 1},
                              {u"useTemplet", 1},     {u"DisplayFlagWithFreehandDraw", 1},
                              {u"autoFlagSize", -1},  {u"doubleClick", 2},
                              {u"autoFlagRefresh", 0}};
    const auto expectStored = [&] {
        for (const auto &[row, value] : numbers)
            EXPECT_EQ(settings::number(row), value) << row->name.toString().toStdString();
    };
    expectStored();
    EXPECT_EQ(settings::text(u"name"), QStringLiteral("王工"));
    EXPECT_EQ(settings::text(u"LayerName"), QStringLiteral("审图"));
    EXPECT_EQ(settings::text(u"chPwMD5"), hashPassword(QStringLiteral("秘密")));
    StartUpSettings read;
    std::swap(read, startUpSettings());
    readStartUpSettings();
    read.chineseVersion = startUpSettings().chineseVersion;
    EXPECT_EQ(read, startUpSettings()) << "the running program uses what the next one will read";

    // Opening and confirming changes nothing but the password, which has to be typed each time.
    setUp({"ok"});
    expectStored();
    EXPECT_EQ(settings::text(u"chPwMD5"), QString());
    setUp({"set 1003 \"别人\"", "cancel"});
    EXPECT_EQ(settings::text(u"name"), QStringLiteral("王工"));
}

TEST_F(SetupTest, ShowsUnknownValuesAsTheFirstOrUsualChoice)
{
    settings::setNumber(u"BKstyle", 99);
    settings::setNumber(u"doubleClick", 7);
    setUp({"ok"});
    EXPECT_EQ(settings::number(u"style"), 1);
    EXPECT_EQ(settings::number(u"BKstyle"), 103);
    EXPECT_EQ(settings::number(u"doubleClick"), 1);
}

TEST_F(SetupTest, PasswordsMustAgree)
{
    EXPECT_EQ(
        setUp({"set 1031 a", "set 1062 b", "set 1003 x", "ok", "ok"}).count(QStringLiteral("两次密码不同！")),
        1);
    EXPECT_EQ(settings::text(u"chPwMD5"), QString());
}

TEST_F(SetupTest, ColoursAreStoredAtOnce)
{
    settings::setNumber(u"color1", 300);
    setUp({"click 1005", "set 10 6", "ok", "click 1006", "set 10 4", "cancel", "cancel"});
    EXPECT_EQ(settings::number(u"color1"), 6);
    EXPECT_EQ(startUpSettings().color1, 6);
}

TEST_F(SetupTest, FlagRefreshStartsAndStops)
{
    const QString printed = setUp({"set 1059 0", "set 1070 1", "ok"});
    EXPECT_TRUE(
        printed.contains(QStringLiteral("您勾选了旗帜实时刷新，有可能导致显示卡顿。如果卡顿，可以关闭此。")));
    EXPECT_EQ(settings::number(u"autoFlagRefresh"), 1);
    EXPECT_EQ(settings::number(u"autoFlagSize"), 1);
    EXPECT_TRUE(markDrawingState().flagRefreshRunning);
    setUp({"set 1070 0", "ok"});
    EXPECT_EQ(settings::number(u"autoFlagRefresh"), 0);
    EXPECT_FALSE(markDrawingState().flagRefreshRunning);
}

TEST_F(SetupTest, ATemplateIsCheckedBeforeItIsUsed)
{
    const tests::TempDir folder;
    const base::TextCodec codec("ANSI_936");
    const QString good = folder.write(QStringLiteral("好.html"),
                                      codec.encode(QStringLiteral("charset=gb2312\n<td>$校审意见$")));
    const QString bare =
        folder.write(QStringLiteral("b.html"), codec.encode(QStringLiteral("<td>$校审意见$")));
    const QString other = folder.write(QStringLiteral("c.html"), "\xEF\xBB\xBF charset=gb2312");
    settings::setText(u"TempleteHTML", u"");
    const auto choose = [](const QString &path) {
        return setUp({"click 1065", "file \"" + path + "\"", "cancel"});
    };
    EXPECT_TRUE(choose(bare).contains(
        QStringLiteral("文件< %1 >不是GB2312编码，不能作为评图标签输出模板，未选用。").arg(bare)));
    const QString printed = choose(other);
    EXPECT_TRUE(printed.contains(QStringLiteral("< %1 >文件不是ANSI编码。").arg(other)));
    EXPECT_TRUE(printed.contains(QStringLiteral("文件< %1 >不是评图标签输出模板，未能选用。").arg(other)));
    EXPECT_EQ(settings::text(u"TempleteHTML"), QString());
    EXPECT_TRUE(choose(good).contains(QStringLiteral("已设置< %1 >为评图标签输出模板。").arg(good)));
    EXPECT_EQ(settings::text(u"TempleteHTML"), good);
    EXPECT_TRUE(
        setUp({"click 1065", "cancel", "cancel"}).contains(QStringLiteral("未选中评图标签输出模板文件！")));
}

TEST_F(SetupTest, ZeroInTheModelBoxIsExplainedAndThenReplaced)
{
    const QString printed = setUp({"set 1050 0", "set 1003 x", "ok"});
    EXPECT_TRUE(printed.contains(
        QStringLiteral("模型内文字高度不能小于等于零，已帮您自动设置为当前屏幕绘图区域高度的1/20.")));
    EXPECT_EQ(settings::number(u"textHeight"), 50);
}

struct HeightCase {
    int height;
    SetupView view;
    std::optional<int> replaced;
    const char *part; ///< Of the message; empty: no message.
};

TEST(SetupValues, TextHeightsAreJudgedByTheView)
{
    constexpr double kNone = 2e20;
    const HeightCase cases[] = {
        {0, {false, 999, kNone}, 49, "模型内文字高度不能小于等于零"},
        {-1, {true, 999, 500}, 49, "布局上文字高度不能小于等于零"},
        {1, {false, 999, kNone}, 49, "之后，再来设置。"},
        {1, {true, 999, kNone}, 49, "或者勾选右侧的自动靶区下文字高度。"},
        {300, {false, 999, kNone}, 49, "模型内文字高度可能太大，建议重新设置.\n"},
        {300, {true, 999, kNone}, 49, "布局上文字高度可能太大，已帮您"},
        {100, {false, 999, kNone}, {}, ""},
        {101, {false, 999, 2000}, {}, "模型内文字高度设置的可能太大，建议大概为 100 左右"},
        {1, {true, 999, 2000}, {}, "布局上文字高度设置的可能太小，建议大概为 19 左右"},
        {2, {false, 999, 2000}, {}, ""},
    };
    for (const HeightCase &each : cases) {
        const HeightCheck check = checkTextHeight(each.height, each.view);
        EXPECT_EQ(check.replaced, each.replaced) << each.height;
        const QString part = QString::fromUtf8(each.part);
        EXPECT_TRUE(part.isEmpty() ? check.message.isEmpty() : check.message.contains(part))
            << qPrintable(check.message);
    }
    EXPECT_EQ(leadingInteger(QStringLiteral(" 12.7 mm")), 12);
    EXPECT_EQ(leadingInteger(QStringLiteral("0即为")), 0);
    EXPECT_EQ(leadingInteger(QStringLiteral("-3")), -3);
    EXPECT_EQ(leadingInteger(QStringLiteral("99999999999")), std::numeric_limits<int>::max());
}
