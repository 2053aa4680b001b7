// Phrase files: what they hold, and phrases added to them, also by several programs at a time.
#include "quillnote/ui/phrase_folder.h"

#include "host/base/phrase_file.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>

#include <thread>

static QByteArray gbk(const char *utf8)
{
    return base::TextCodec("ANSI_936").encode(QString::fromUtf8(utf8));
}

TEST(PhraseFile, EntriesBeyondTheThirtiethAreLeftOut)
{
    QString text;
    for (int i = 1; i <= 30; ++i)
        text += QStringLiteral("条目%1\n").arg(i);
    EXPECT_FALSE(parsePhraseFile(text).hasMore);
    for (const QString &head : {QString(), QStringLiteral("ByLine=0\n")}) {
        QString entries = text + QStringLiteral("第31条\n又一条");
        if (!head.isEmpty())
            entries.replace(u'\n', QStringLiteral("\n------\n"));
        const PhraseFile file = parsePhraseFile(head + entries);
        EXPECT_TRUE(file.hasMore);
        ASSERT_EQ(file.phrases.size(), 30U);
        EXPECT_EQ(file.phrases.back().text, QStringLiteral("条目30"));
    }
}

struct Addition {
    QByteArray before;
    QString phrase;
    PhraseAddition result;
    QByteArray after; ///< Empty: as before.
};

TEST(PhraseFile, AddsInTheFilesOwnWay)
{
    using enum PhraseAddition;
    const Addition cases[] = {
        {gbk("甲\r\n乙\r\n"), QStringLiteral("丙"), added, gbk("甲\r\n乙\r\n丙\r\n")},
        {gbk("甲\n乙"), QStringLiteral("丙"), added, gbk("甲\n乙\n丙")},
        {"甲\n", QStringLiteral("岑²"), added, "甲\n岑²\n"},
        {"", QStringLiteral("甲"), added, gbk("甲\r\n")},
        // These would read as something else in code page 936, or do not exist there.
        {"abc\r\n", QStringLiteral("臧红波"), added, "abc\r\n臧红波\r\n"},
        {"abc", QStringLiteral("20 m²"), added, "abc\r\n20 m²"},
        {gbk("甲\r\n"), QStringLiteral("20 m²"), notInCodePage, {}},
        {gbk("Door 门 // 注\r\n"), QStringLiteral("door 门"), alreadyThere, {}},
        {gbk("甲\r\n"), QStringLiteral("两\n行"), added, gbk("甲\r\n两 行\r\n")},
        {gbk("甲\r\n两 行\r\n"), QStringLiteral("两\n行"), alreadyThere, {}},
        {gbk("ByLine 0\r\n甲\r\n乙\r\n"), QStringLiteral("两\n行"), added,
         gbk("ByLine 0\r\n甲\r\n乙\r\n------------\r\n两\r\n行\r\n")},
        {gbk("ByLine 0\r\n甲\r\n________"), QStringLiteral("丙"), added,
         gbk("ByLine 0\r\n甲\r\n________\r\n丙")},
        {gbk("ByLine 0\r\n甲\r\n乙\r\n"), QStringLiteral("甲\n乙"), alreadyThere, {}},
        {gbk("甲\r\n"), QStringLiteral("见 http://x"), commentInside, {}},
        {"\xEF\xBB\xBF甲\r\n", QStringLiteral("乙"), notReadable, {}},
    };
    for (const Addition &each : cases) {
        QByteArray bytes = each.before;
        EXPECT_EQ(addPhrase(bytes, each.phrase), each.result) << qPrintable(each.phrase);
        EXPECT_EQ(bytes, each.after.isEmpty() ? each.before : each.after) << qPrintable(each.phrase);
        if (each.result != added)
            continue;
        const PhraseFile file = parsePhraseFile(decodePhraseBytes(bytes)->text);
        QString read = each.phrase;
        EXPECT_EQ(file.phrases.back().text,
                  read.replace(u'\n', file.inParagraphs ? QStringLiteral("\r\n") : QStringLiteral(" ")));
    }
}

TEST(PhraseFile, SeveralProgramsAddWithoutLosingALine)
{
    const tests::TempDir folder;
    const QString path = folder.write(QStringLiteral("shared.txt"), gbk("甲\r\n"));
    constexpr int kEach = 20;
    std::vector<std::jthread> programs;
    for (int program = 0; program < 4; ++program) {
        programs.emplace_back([&path, program] {
            for (int i = 0; i < kEach; ++i)
                EXPECT_TRUE(storePhrase(path, QStringLiteral("门 %1-%2").arg(program).arg(i)));
        });
    }
    programs.clear();
    const PhraseFile file = parsePhraseFile(decodePhraseBytes(tests::readFile(path))->text, 1000);
    EXPECT_EQ(file.phrases.size(), 1U + 4 * kEach);
    EXPECT_EQ(folder.fileNames(), QStringList{QStringLiteral("shared.txt")});
}
