// The phrase bank: searching, ranking by a key, keeping, files in and out; its windows through the entries
// that the module calls.
#include "helpers/phrase_bank/bank_files.h"

#include "quillnote/frame/settings/settings.h"
#include "quillnote/ui/phrase_bank.h"

#include "host/acui/acuiinstall.h"
#include "tests/support/files.h"
#include "tests/support/script_front_end.h"

#include <gmock/gmock.h>

#include <QDir>

using namespace bank;
using testing::ElementsAre;

static Entry entry(const char *text, int weight = 0)
{
    return {QStringLiteral("类"), QString::fromUtf8(text), weight};
}

static QStringList texts(const std::vector<Found> &found)
{
    QStringList list;
    for (const Found &each : found)
        list.append(each.entry.text);
    return list;
}

TEST(PhraseBank, FindsAnyPieceOfAText)
{
    Bank bank(QStringLiteral(":memory:"));
    EXPECT_EQ(bank.add(QStringLiteral("建筑"),
                       {entry("疏散门净宽不足"), entry("防火门等级未注 FM"), entry("say \"no\" 100%")}),
              3);
    EXPECT_EQ(bank.add(QStringLiteral("建筑"), {entry("疏散门净宽不足"), entry("新")}), 1) << "each once";
    const auto find = [&](const char *search) { return texts(bank.find(QString::fromUtf8(search), {}, 0)); };
    EXPECT_EQ(find("散门净"), QStringList{QStringLiteral("疏散门净宽不足")});
    EXPECT_EQ(find("宽"), QStringList{QStringLiteral("疏散门净宽不足")});
    EXPECT_EQ(find("门 fm"), QStringList{QStringLiteral("防火门等级未注 FM")})
        << "every word, whatever its letter case";
    EXPECT_EQ(find("\"no\""), QStringList{QStringLiteral("say \"no\" 100%")});
    EXPECT_EQ(find("没有"), QStringList());
    EXPECT_EQ(find("* OR 净宽"), QStringList()) << "words, not an expression";
    EXPECT_EQ(find("").size(), 4);
}

TEST(PhraseBank, WhatTheTargetSaysStandsFirst)
{
    Bank bank(QStringLiteral(":memory:"));
    bank.add(QStringLiteral("甲"), {entry("梁截面偏小", 9), entry("卫生间未做防水"), entry("防火门等级未注"),
                                    entry("楼梯净高不足")});
    bank.setKeyword({QStringLiteral("防火门"), {QStringLiteral("FM"), QStringLiteral("甲级门")}});
    const auto found = bank.find({}, QStringLiteral(",AcDbText,0,FM甲1021,卫生间,3600"), 0);
    EXPECT_THAT(texts(found), ElementsAre(QStringLiteral("防火门等级未注"), QStringLiteral("卫生间未做防水"),
                                          QStringLiteral("梁截面偏小"), QStringLiteral("楼梯净高不足")));
    EXPECT_EQ(found[0].hits, QStringList{QStringLiteral("防火门")});
    EXPECT_EQ(found[1].hits, QStringList{QStringLiteral("卫生间")});
    bank.countChoice(found[3].id);
    EXPECT_EQ(bank.find({}, {}, 0)[0].entry.text, QStringLiteral("楼梯净高不足"))
        << "what is chosen most, without a key";
    bank.removeKeyword(QStringLiteral("防火门"));
    EXPECT_TRUE(bank.keywords().empty());
}

TEST(PhraseBank, KeepsAndComesBack)
{
    const tests::TempDir folder;
    const QString file = folder.path(QStringLiteral("a/bank.sqlite"));
    {
        Bank bank(file);
        EXPECT_TRUE(bank.isNew());
        bank.keep(QStringLiteral(" 两\n行 "));
        bank.keep(QStringLiteral("两\r\n行"));
        EXPECT_THROW(bank.keep(QStringLiteral(" \n")), Trouble);
        bank.setSearched(bank.banks()[0].id);
    }
    Bank bank(file);
    EXPECT_FALSE(bank.isNew());
    ASSERT_EQ(bank.banks().size(), 1U);
    EXPECT_EQ(bank.banks()[0].phrases, 1);
    EXPECT_EQ(bank.searched(), bank.banks()[0].id);
    bank.remove(bank.banks()[0].id);
    EXPECT_EQ(bank.banks().size(), 1U) << "the own bank stays";
    EXPECT_TRUE(bank.find(QStringLiteral("两"), {}, 0).empty());
    const QString damaged =
        folder.write(QStringLiteral("b.sqlite"), "no database at all, only some text that is long enough");
    EXPECT_THROW(Bank{damaged}, Trouble);
}

TEST(PhraseBank, PhraseFilesGoInAndOut)
{
    const tests::TempDir folder;
    for (const char *const text : {"m² 二次\n两行", "// 注释 '''[[[x]]] ------ ///// ———", "臧红波"}) {
        QString lines = QString::fromUtf8(text);
        lines.replace(u'\n', QStringLiteral("\r\n"));
        const QString path = folder.path(QStringLiteral("外.txt"));
        writePhraseFile(path, {{{}, lines, 7}, {{}, QStringLiteral("末"), 0}});
        const std::vector<Entry> read = readPhraseFile(path);
        ASSERT_EQ(read.size(), 2U) << text;
        EXPECT_EQ(QString(read[0].text).remove(u' '), lines.remove(u' ')) << text;
        EXPECT_EQ(read[0].weight, 7);
        EXPECT_EQ(read[1].category, QStringLiteral("外"));
    }
    const QString zero = folder.write(QStringLiteral("zero.txt"), QByteArrayLiteral("wide\0door\n\1\0\0\1\n"));
    Bank bank(QStringLiteral(":memory:"));
    EXPECT_EQ(bank.add(QStringLiteral("z"), readPhraseFile(zero)), 1);
    EXPECT_EQ(texts(bank.find(QStringLiteral("door"), {}, 0)), QStringList{QStringLiteral("wide door")});
    EXPECT_THROW(readPhraseFile(folder.write(QStringLiteral("utf16.txt"), "\xFF\xFEx")), Trouble);
    EXPECT_THROW(readPhraseFile(folder.path(QStringLiteral("none.txt"))), Trouble);
}

// Through the module's calls ---------------------------------------------------------------------

struct PhraseBankWindows : testing::Test {
    PhraseBankWindows()
    {
        acuiInstall();
        qputenv("XDG_DATA_HOME", QFile::encodeName(folder.path()));
        settings::setText(u"Location", u"");
    }
    ~PhraseBankWindows() override
    {
        acuiUninstall();
        qputenv("XDG_DATA_HOME", dataBefore);
    }
    QByteArray dataBefore = qgetenv("XDG_DATA_HOME");
    tests::TempDir folder;
};

TEST_F(PhraseBankWindows, AreWorkedByScripts)
{
    const QString file = folder.write(QStringLiteral("防水.txt"), "屋面防水层漏注\n地下室防水等级未注\n");
    tests::ScriptFrontEnd script({}, {"click 1102", "file \"" + file + "\"", "set 1100 \"防水\"", "click 1",
                                      "set 1202 \"屋面\"", "set 1203 \"ROOF，屋顶\"", "click 1204", "ok",
                                      "set 1001 \"防水\"", "ok", "set 1003 \"地下室防水等级未注\"", "ok",
                                      "cancel"});
    callLibSetup();
    callKeywordsDef();
    EXPECT_EQ(callPhraseBank(QStringLiteral(",AcDbLine,A-ROOF")), QStringLiteral("屋面防水层漏注"));
    EXPECT_EQ(callPhraseBank({}), QStringLiteral("地下室防水等级未注"));
    EXPECT_EQ(callPhraseBank({}), QString());
    EXPECT_TRUE(script.isUsedUp());
    EXPECT_EQ(script.refusals, QStringList());
    EXPECT_TRUE(callAddToSelfDefLib(QStringLiteral("自己的")));
    EXPECT_FALSE(callAddToSelfDefLib({}));
    EXPECT_TRUE(script.printed.contains(QStringLiteral("成功入库.")));
}

TEST_F(PhraseBankWindows, ABankThatCannotBeOpenedIsTold)
{
    QDir().mkpath(folder.path(QStringLiteral("quillnote")));
    folder.write(QStringLiteral("quillnote/phrase-bank.sqlite"),
                 "no database at all, only some text that is long enough");
    tests::ScriptFrontEnd script;
    EXPECT_EQ(callPhraseBank({}), QString());
    EXPECT_TRUE(script.printed.contains(QStringLiteral("callPhraseBank错误！")));
    EXPECT_FALSE(callAddToSelfDefLib(QStringLiteral("x")));
    callLibSetup();
    EXPECT_TRUE(script.isUsedUp());
}
