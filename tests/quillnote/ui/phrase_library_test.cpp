// The phrase library from a folder and from an XML file, the menus that come of it, and the recent phrases.
#include "quillnote/frame/settings/settings.h"
#include "quillnote/ui/phrase_folder.h"
#include "quillnote/ui/phrase_menu.h"
#include "quillnote/ui/recent_phrases.h"

#include "tests/support/files.h"
#include "tests/support/golden.h"
#include "tests/support/script_front_end.h"

#include <gmock/gmock.h>

static QByteArray menusAsText(const PhraseLibrary &library, const QStringList &recent)
{
    QString text = QStringLiteral("大类 %1\n").arg(library.bigCategory);
    std::vector<PhrasePopup> popups{recentPopup(recent)};
    for (std::size_t menu = 0; menu < phrasePopupCount(library); ++menu)
        popups.push_back(phrasePopup(library, menu));
    for (const PhrasePopup &popup : popups) {
        text += popup.title + u'\n';
        for (const PhraseItem &item : popup.items) {
            text += item.number ? QStringLiteral("  %1 %2").arg(item.number).arg(item.label)
                                : QStringLiteral("  ----");
            if (item.number >= kFirstPhraseItem && item.number < kFirstPlusItem)
                if (const int weight = library.phrases[std::size_t(item.number - kFirstPhraseItem)].weight)
                    text += QStringLiteral(" (%1)").arg(weight);
            text += u'\n';
        }
    }
    return text.toUtf8();
}

TEST(PhraseLibrary, AFolderBecomesMenus)
{
    PhraseTroubles troubles;
    const QString folder = tests::testDataPath(QStringLiteral("corpus/phrases"));
    const PhraseLibrary library = loadPhraseFolder(folder + u'/', troubles);
    QStringList recent;
    for (int i = 1; i <= 12; ++i)
        recent.append(QStringLiteral("近%1").arg(i));
    EXPECT_TRUE(
        tests::matchesGolden(menusAsText(library, recent), QStringLiteral("quillnote/ui/golden/folder.txt")));
    EXPECT_TRUE(troubles.showsFolder);
    EXPECT_THAT(
        troubles.messages,
        testing::ElementsAre(
            QStringLiteral("以文件名作为菜单名，但< a-very-long-title >文字较多，建议减少文件名的字数。"),
            QStringLiteral("< %1/utf16.txt >文件不是ANSI编码，请用记事本打开并以ANSI格式保存。")
                .arg(folder)));
}

TEST(PhraseLibrary, TellsWhatAFolderLacksOrHasTooMuchOf)
{
    const tests::TempDir folder;
    PhraseTroubles none;
    EXPECT_TRUE(loadPhraseFolder(folder.path(), none).menus.empty());
    EXPECT_EQ(none.messages.size(), 1);
    for (int i = 10; i < 42; ++i)
        folder.write(QStringLiteral("%1.txt").arg(i), QByteArray("a\nb\n").repeated(i == 11 ? 16 : 1));
    PhraseTroubles many;
    const PhraseLibrary library = loadPhraseFolder(folder.path(), many);
    EXPECT_EQ(library.menus.size(), 30U);
    EXPECT_EQ(library.phrases.size(), 30U * 2 + 28);
    ASSERT_EQ(many.messages.size(), 2);
    EXPECT_TRUE(many.messages[0].contains(QStringLiteral("中有 32 个.TXT"))) << qPrintable(many.messages[0]);
    EXPECT_TRUE(many.messages[1].contains(QStringLiteral("/11.txt >文件中多于30个")))
        << qPrintable(many.messages[1]);
}

TEST(PhraseLibrary, AnXmlFileBecomesMenus)
{
    for (const char *const name : {"gbk", "utf8"}) {
        const auto library = loadPhraseXml(
            tests::testDataPath(QStringLiteral("corpus/phrase_xml/%1.xml").arg(QLatin1String(name))));
        ASSERT_TRUE(library) << name;
        EXPECT_TRUE(
            tests::matchesGolden(menusAsText(*library, {}), QStringLiteral("quillnote/ui/golden/xml.txt")))
            << name;
        EXPECT_EQ(library->phrases.back().category, QStringLiteral("一个很长很长很长很长的小类名称"));
        // What is exported for the cloud comes back, but for what the format does not carry.
        const auto again = parsePhraseXml(exportPhraseXml(*library, QStringLiteral("张&工")));
        ASSERT_TRUE(again);
        EXPECT_EQ(menusAsText(*again, {}), menusAsText(*library, {}));
    }
    for (const char *const name : {"cut", "deep"})
        EXPECT_FALSE(loadPhraseXml(
            tests::testDataPath(QStringLiteral("corpus/phrase_xml/%1.xml").arg(QLatin1String(name)))))
            << name;
}

TEST(PhraseLibrary, AnXmlLibraryThatFailsGivesWayToTheFolder)
{
    settings::setNumber(u"useXmlMenu", 1);
    settings::setText(u"XmlMenuFile", u"/nowhere.xml");
    settings::setText(u"CYZSLocation", tests::testDataPath(QStringLiteral("corpus/phrases")));
    tests::ScriptFrontEnd script;
    const PhraseLibrary library = loadPhraseLibrary();
    settings::setText(u"CYZSLocation", u"");
    EXPECT_FALSE(library.fromXml);
    EXPECT_FALSE(library.menus.empty());
    EXPECT_EQ(settings::number(u"useXmlMenu"), 0);
    EXPECT_TRUE(script.printed.contains(QStringLiteral("文件 /nowhere.xml 未找到！")));
    EXPECT_TRUE(
        script.printed.contains(QStringLiteral("加载来自评图云的常用知识失败！\n\n改用本地常用知识.")));
}

TEST(PhraseLibrary, WhatIsShippedIsWhole)
{
    PhraseTroubles troubles;
    const PhraseLibrary library = loadPhraseFolder(phraseFolder(), troubles);
    EXPECT_EQ(troubles.messages, QStringList());
    EXPECT_EQ(library.bigCategory, QStringLiteral("常用知识"));
    QStringList names;
    int begin = 0;
    for (const PhraseMenu &menu : library.menus) {
        names.append(menu.name);
        EXPECT_GE(menu.end - begin, 15) << qPrintable(menu.name);
        EXPECT_LE(menu.end - begin, 30) << qPrintable(menu.name);
        begin = menu.end;
    }
    EXPECT_THAT(names, testing::UnorderedElementsAre(QStringLiteral("建筑"), QStringLiteral("结构"),
                                                     QStringLiteral("给排水"), QStringLiteral("暖通"),
                                                     QStringLiteral("电气"), QStringLiteral("总图"),
                                                     QStringLiteral("制图")));
    for (const Phrase &phrase : library.phrases)
        EXPECT_FALSE(phrase.text.contains(QChar::ReplacementCharacter)) << qPrintable(phrase.text);
}

TEST(RecentPhrases, TheNewestStandsFirstAfterEveryOpening)
{
    for (int i = 0; i < 15; ++i)
        settings::setText(u"savedNearTxt%d", i, u"");
    QStringList expected;
    for (int i = 0; i < 17; ++i) {
        keepRecentPhrase(QStringLiteral("词%1").arg(i));
        expected.prepend(QStringLiteral("词%1").arg(i));
    }
    expected.resize(15);
    EXPECT_EQ(recentPhrases(), expected);
    keepRecentPhrase(QStringLiteral("词9"));
    expected.move(expected.indexOf(QStringLiteral("词9")), 0);
    EXPECT_EQ(recentPhrases(), expected);
    EXPECT_EQ(settings::text(u"savedNearTxt%d", 14), QStringLiteral("词9"));
    keepRecentPhrase(QString(5000, u'x')); // Settings do not hold it.
    EXPECT_EQ(recentPhrases(), expected);
}
