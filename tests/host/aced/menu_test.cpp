// Menu files and the menu bar.
#include "host/aced/edmenu.h"

#include "host/aced/edfrontend.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>

namespace
{

QByteArray corpus(const char *name)
{
    return tests::readFile(tests::testDataPath(QStringLiteral("corpus/menu/") + QLatin1String(name)));
}

QByteArray inGroup(const QByteArray &content)
{
    return "<menu-file version=\"1\">\n<group name=\"G\">\n" + content + "\n</group></menu-file>";
}

QString refusal(const QByteArray &bytes)
{
    const auto group = acedReadMenuFile(bytes, QStringLiteral("m.mnu"));
    return group ? QStringLiteral("accepted") : group.error();
}

QString bar(const AcEdMenus &menus)
{
    QStringList entries;
    for (const auto &entry : menus.bar())
        entries << QStringLiteral("%1:%2.%3").arg(entry.place).arg(entry.group, entry.popup);
    return entries.join(u' ');
}

} // namespace

TEST(MenuFile, HoldsMenusToolbarsAndDoubleClicks)
{
    const auto group = acedReadMenuFile(corpus("review.mnu"), QStringLiteral("review.mnu"));
    ASSERT_TRUE(group) << qPrintable(group.error());
    EXPECT_EQ(group->name, u"审查");
    ASSERT_EQ(group->popups.size(), 2u);
    const AcEdMenuItem &popup = group->popups[0];
    EXPECT_EQ(popup.id, u"POP1");
    EXPECT_EQ(popup.label, u"审查(&R)");
    ASSERT_EQ(popup.children.size(), 3u);
    EXPECT_EQ(popup.children[0].macro, u"^C^C_MARK "); // The blank at the end is the Enter.
    EXPECT_EQ(popup.children[0].help, u"画一个标签");
    EXPECT_EQ(popup.children[0].icon, u"mark.png");
    EXPECT_EQ(popup.children[1].kind, AcEdMenuItem::separator);
    const AcEdMenuItem &submenu = popup.children[2];
    EXPECT_EQ(submenu.kind, AcEdMenuItem::popup);
    ASSERT_EQ(submenu.children.size(), 1u); // Without the element of a later version.
    EXPECT_EQ(submenu.children[0].id, u"ID_TXT");
    ASSERT_EQ(group->toolbars.size(), 1u);
    EXPECT_EQ(group->toolbars[0].children.size(), 1u);
    ASSERT_EQ(group->doubleClicks.size(), 1u);
    EXPECT_EQ(group->doubleClicks[0].dxfName, u"REVIEWMARK");
    EXPECT_FALSE(group->toolbarsShown);
    EXPECT_TRUE(acedReadMenuFile("\xEF\xBB\xBF" + corpus("review.mnu"), QStringLiteral("x")));
}

TEST(MenuFile, SaysWhereABadFileIsBad)
{
    const QByteArray manyItems = QByteArray("<item label=\"a\" macro=\"b\"/>").repeated(10'001);
    const QByteArray deep =
        QByteArray("<submenu label=\"a\">").repeated(20) + QByteArray("</submenu>").repeated(20);
    const auto popup = [](const QByteArray &content) {
        return inGroup("<popup id=\"POP1\" label=\"p\">" + content + "</popup>");
    };
    const struct {
        QByteArray bytes;
        const char *start;
    } cases[] = {
        {"", "m.mnu:1: not well-formed XML"},
        {"***MENUGROUP=G", "m.mnu:1: not well-formed XML"},
        {"<menu-file version=\"1\">\n<group name=\"G\">\n</menu-file>", "m.mnu:2: not well-formed XML"},
        {"<other/>", "m.mnu:1: this is no menu file"},
        {"<menu-file/>", "m.mnu:1: menu file version"},
        {"<menu-file version=\"2\"/>", "m.mnu:1: menu file version 2 is not supported"},
        {"<menu-file version=\"1\"/>", "m.mnu:1: <group> is missing"},
        {"<menu-file version=\"1\"><group name=\"A\"/>\n<group name=\"B\"/></menu-file>",
         "m.mnu:2: a menu file holds one <group>"},
        {"<menu-file version=\"1\"><group/></menu-file>", "m.mnu:1: <group> lacks its attribute \"name\""},
        {inGroup("<popup label=\"p\"/>"), "m.mnu:3: <popup> lacks its attribute \"id\""},
        {popup("\n<item label=\"p\"/>"), "m.mnu:4: <item> lacks its attribute \"macro\""},
        {inGroup("<double-click entity=\"\" macro=\"x\"/>"),
         "m.mnu:3: <double-click> lacks its attribute \"entity\""},
        {popup("<item label=\"" + QByteArray(2000, 'a') + "\" macro=\"m\"/>"),
         "m.mnu:3: the attribute \"label\" is longer"},
        {popup(manyItems), "m.mnu:3: more than 10000 menu items"},
        {popup(deep), "m.mnu:3: menus are nested deeper than 16 levels"},
        {QByteArray("<x>").repeated(2000), "m.mnu:1: not well-formed XML"},
        {QByteArray((4 << 20) + 1, ' '), "m.mnu:1: the file is larger than 4 MiB"},
    };
    for (const auto &row : cases)
        EXPECT_TRUE(refusal(row.bytes).startsWith(QLatin1String(row.start)))
            << row.start << "\n"
            << qPrintable(refusal(row.bytes));
}

TEST(MenuFile, RefusesEveryTruncation)
{
    const QByteArray whole = corpus("review.mnu").trimmed();
    for (qsizetype length = 0; length < whole.size(); ++length)
        EXPECT_NE(refusal(whole.left(length)), u"accepted") << length;
}

TEST(Menus, LoadAndUnloadGroups)
{
    const tests::TempDir folder;
    AcEdMenus menus;
    const auto missing = menus.load(folder.path(QStringLiteral("missing.mnu")));
    ASSERT_FALSE(missing);
    EXPECT_TRUE(missing.error().contains(u"missing.mnu")) << qPrintable(missing.error());

    // The ending does not matter.
    const QString path = folder.write(QStringLiteral("review.cuix"), corpus("review.mnu"));
    const auto loaded = menus.load(path);
    ASSERT_TRUE(loaded) << qPrintable(loaded.error());
    EXPECT_EQ((*loaded)->file, path);
    EXPECT_EQ(menus.group(QStringLiteral("审查")), *loaded);
    const auto again = menus.load(path);
    ASSERT_FALSE(again);
    EXPECT_TRUE(again.error().contains(u"loaded already"));

    EXPECT_TRUE(menus.showToolbars(QStringLiteral("审查"), true));
    EXPECT_TRUE(menus.group(QStringLiteral("审查"))->toolbarsShown);
    EXPECT_FALSE(menus.showToolbars(QStringLiteral("other"), true));

    ASSERT_TRUE(menus.menuCommand(QStringLiteral("P12=+审查.POP1")));
    EXPECT_TRUE(menus.unload(QStringLiteral("审查")));
    EXPECT_FALSE(menus.unload(QStringLiteral("审查")));
    EXPECT_EQ(menus.group(QStringLiteral("审查")), nullptr);
    EXPECT_EQ(bar(menus), u""); // The pull-downs of a group go with it.
}

TEST(Menus, CommandsArrangeTheMenuBar)
{
    const tests::TempDir folder;
    AcEdMenus menus;
    for (const char *name : {"A", "B.C"}) {
        const QByteArray text =
            "<menu-file version=\"1\"><group name=\"" + QByteArray(name) +
            "\"><popup id=\"POP1\" label=\"x\"/><popup id=\"POP2\" label=\"y\"/></group></menu-file>";
        ASSERT_TRUE(menus.load(folder.write(QLatin1String(name) + QStringLiteral(".mnu"), text)));
    }
    const int before = menus.revision();
    const struct {
        const char *command;
        bool accepted;
        const char *bar;
    } steps[] = {
        {"P12=+A.POP1", true, "12:A.POP1"},
        {"p12=+a.pop1", true, "12:A.POP1"},
        {"P12=+B.C.POP2", true, "12:B.C.POP2 13:A.POP1"},
        {"P5=+A.POP2", true, "5:A.POP2 12:B.C.POP2 13:A.POP1"},
        {"P13=B.C.POP1", true, "5:A.POP2 12:B.C.POP2 13:B.C.POP1"},
        {"P1=+B.C.POP1", true, "1:B.C.POP1 5:A.POP2 12:B.C.POP2"},
        {"P5=-", true, "1:B.C.POP1 12:B.C.POP2"},
        {"P5=-", false, "1:B.C.POP1 12:B.C.POP2"},
        {"P2=+NONE.POP1", false, "1:B.C.POP1 12:B.C.POP2"},
        {"P2=+A.POP9", false, "1:B.C.POP1 12:B.C.POP2"},
        {"nonsense", false, "1:B.C.POP1 12:B.C.POP2"},
    };
    for (const auto &step : steps) {
        EXPECT_EQ(menus.menuCommand(QString::fromUtf8(step.command)), step.accepted) << step.command;
        EXPECT_EQ(bar(menus), QLatin1String(step.bar)) << step.command;
    }
    EXPECT_EQ(menus.revision() - before, 7);
}
