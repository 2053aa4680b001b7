// The settings store: types and spelling, two programs at once, and files that cannot be used.
#include "host/os/settings_store.h"

#include "tests/support/files.h"

#include <gtest/gtest.h>

#include <QFile>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using os::Hive;
using os::SettingsStore;

static const QString kKey = QStringLiteral("Software\\Quillnote3");

namespace
{
class Settings : public testing::Test
{
protected:
    Settings()
    {
        SettingsStore::setMessageHandler([this](const QString &message) { messages << message; });
    }
    ~Settings() override { SettingsStore::setMessageHandler({}); }

    tests::TempDir folder;
    QString file = folder.path(QStringLiteral("config/settings.sqlite"));
    QStringList messages;
};
} // namespace

TEST_F(Settings, NumbersAndTextsAreDifferentThings)
{
    SettingsStore store(file);
    EXPECT_EQ(store.number(kKey, u"style"), std::nullopt);
    ASSERT_TRUE(store.setNumber(kKey, u"style", 0xFFFFFFFF));
    ASSERT_TRUE(store.setText(kKey, u"name", u"张三"));
    EXPECT_EQ(store.number(kKey, u"style"), 0xFFFFFFFFu);
    EXPECT_EQ(store.text(kKey, u"style"), std::nullopt);
    EXPECT_EQ(store.text(kKey, u"name"), QStringLiteral("张三"));
    EXPECT_EQ(store.number(kKey, u"name"), std::nullopt);

    ASSERT_TRUE(store.setText(kKey, u"style", u"3")); // A write changes the type.
    EXPECT_EQ(store.number(kKey, u"style"), std::nullopt);
    EXPECT_EQ(store.text(kKey, u"style"), QStringLiteral("3"));
    EXPECT_TRUE(store.remove(kKey, u"STYLE"));
    EXPECT_TRUE(store.remove(kKey, u"style"));
    EXPECT_EQ(store.text(kKey, u"style"), std::nullopt);
    EXPECT_TRUE(messages.isEmpty()) << qPrintable(messages.join(u'\n'));
}

TEST_F(Settings, LetterCaseIsIgnoredAndTheFirstSpellingKept)
{
    SettingsStore store(file);
    store.setNumber(kKey, u"BKstyle", 100);
    store.setNumber(u"SOFTWARE\\quillnote3", u"BkStyle", 105);
    store.setNumber(u"software\\quillnote3", u"Äther", 1);
    store.setNumber(u"Software\\Quillnote3\\Templete", u"List0", 2);
    store.setNumber(u"Software\\Quillnote30", u"other", 3);
    EXPECT_EQ(store.number(kKey, u"bkSTYLE"), 105u);
    EXPECT_EQ(store.number(kKey, u"äTHER"), 1u);
    const std::vector<SettingsStore::Entry> expected = {
        {kKey, QStringLiteral("BKstyle"), 105u},
        {kKey, QStringLiteral("Äther"), 1u},
        {kKey + QStringLiteral("\\Templete"), QStringLiteral("List0"), 2u}};
    EXPECT_EQ(store.entries(u"software\\QUILLNOTE3"), expected)
        << "the key and the keys below it, no neighbours";
    EXPECT_EQ(store.entries().size(), 4u);
    EXPECT_EQ(store.keys().size(), 3);
}

TEST_F(Settings, TextsComeBackUnitForUnit)
{
    SettingsStore store(file);
    const QString rows[] = {QString(),
                            QStringLiteral("'; DROP TABLE setting; --"),
                            QStringLiteral("a\tb\r\nc😀"),
                            QString(QChar(0xD83D)),
                            QStringLiteral(u"\uFEFFmarked"),
                            QChar(0xFFFE) + QStringLiteral("turned"),
                            QString(100'000, QChar(u'长'))};
    for (const QString &text : rows) {
        ASSERT_TRUE(store.setText(kKey, u"t", text));
        SettingsStore other(file); // Not from a cache.
        EXPECT_EQ(other.text(kKey, u"t"), text);
    }
    store.setText(kKey, u"t", QStringView(u"ab\0cd", 5));
    EXPECT_EQ(store.text(kKey, u"t"), QStringLiteral("ab"));
    EXPECT_FALSE(store.setText(u"Soft\nware", u"t", u"x"));
    EXPECT_FALSE(store.setNumber(kKey, QStringView(u"a\0b", 3), 1));
}

TEST_F(Settings, EachReadSeesWhatAnotherProgramWrote)
{
    SettingsStore mine(file);
    SettingsStore theirs(file);
    mine.setNumber(kKey, u"color1", 1);
    for (std::uint32_t value = 2; value < 20; ++value) {
        EXPECT_EQ(theirs.number(kKey, u"color1"), value - 1);
        ASSERT_TRUE(mine.setNumber(kKey, u"color1", value));
    }
    theirs.remove(kKey, u"color1");
    EXPECT_EQ(mine.number(kKey, u"color1"), std::nullopt);
}

TEST_F(Settings, ProgramsThatWriteAtOnceLoseNothing)
{
    constexpr int kPrograms = 4;
    constexpr int kWrites = 25;
    for (int program = 0; program < kPrograms; ++program) {
        if (::fork() != 0)
            continue;
        SettingsStore store(file); // They also race to create the file.
        bool good = true;
        for (int i = 0; i < kWrites; ++i)
            good = store.setNumber(kKey, QStringLiteral("%1-%2").arg(program).arg(i), 1) && good;
        ::_exit(good ? 0 : 1);
    }
    for (int program = 0; program < kPrograms; ++program) {
        int status = 1;
        ::wait(&status);
        EXPECT_EQ(status, 0) << "a write was refused";
    }
    EXPECT_EQ(SettingsStore(file).entries(kKey).size(), std::size_t(kPrograms * kWrites));
}

TEST_F(Settings, ADamagedFileIsSetAsideAndReported)
{
    const QByteArray garbage = QByteArray("not a database ").repeated(500);
    folder.write(QStringLiteral("damaged.sqlite"), garbage);
    SettingsStore store(folder.path(QStringLiteral("damaged.sqlite")));
    EXPECT_TRUE(store.setNumber(kKey, u"style", 3));
    EXPECT_EQ(store.number(kKey, u"style"), 3u);
    EXPECT_EQ(messages.size(), 1);
    const QStringList aside = folder.fileNames().filter(QStringLiteral("damaged.sqlite.damaged-"));
    ASSERT_EQ(aside.size(), 1);
    EXPECT_EQ(tests::readFile(folder.path(aside.first())), garbage);
}

TEST_F(Settings, DamageThatShowsLaterIsHandledTheSame)
{
    {
        SettingsStore store(file);
        std::vector<SettingsStore::Entry> many;
        for (int i = 0; i < 2000; ++i)
            many.push_back({kKey, QStringLiteral("name%1").arg(i), QStringLiteral("value")});
        ASSERT_TRUE(store.setEntries(many));
    }
    QByteArray bytes = tests::readFile(file);
    for (qsizetype page = 4096; page < bytes.size(); page += 4096)
        bytes.replace(page, 4096, QByteArray(4096, '\x55')); // The first page, with the schema, stays sound.
    tests::writeFile(file, bytes);

    SettingsStore store(file);
    EXPECT_EQ(store.text(kKey, u"name77"), std::nullopt);
    EXPECT_EQ(messages.size(), 1);
    EXPECT_TRUE(store.setText(kKey, u"name77", u"again"));
    EXPECT_EQ(store.text(kKey, u"name77"), QStringLiteral("again"));
}

TEST_F(Settings, AFileThatCannotBeMadeIsReportedOnce)
{
    folder.write(QStringLiteral("config"), "a file where the folder should be");
    SettingsStore store(file);
    EXPECT_FALSE(store.isOpen());
    EXPECT_FALSE(store.setNumber(kKey, u"style", 3));
    EXPECT_FALSE(store.setEntries({{kKey, QStringLiteral("style"), 3u}}));
    EXPECT_FALSE(store.remove(kKey, u"style"));
    EXPECT_EQ(store.number(kKey, u"style"), std::nullopt);
    EXPECT_TRUE(store.entries().empty());
    EXPECT_EQ(messages.size(), 1);
}

TEST_F(Settings, AFileOfANewerProgramIsLeftAlone)
{
    SettingsStore(file).setNumber(kKey, u"style", 3);
    QByteArray bytes = tests::readFile(file);
    bytes[63] = 2; // The schema version, big-endian at 60.
    tests::writeFile(file, bytes);
    SettingsStore store(file);
    EXPECT_FALSE(store.isOpen());
    EXPECT_FALSE(store.setNumber(kKey, u"style", 4));
    EXPECT_EQ(tests::readFile(file), bytes);
    EXPECT_EQ(messages.size(), 1);
}

TEST_F(Settings, TheFourCallsKeepTheirPromises)
{
    const auto text = [](QStringView name) {
        return QString::fromUtf16(os::ReadText(Hive::currentUser, kKey, name));
    };
    EXPECT_TRUE(SettingsStore::userFile().startsWith(qEnvironmentVariable("XDG_CONFIG_HOME")));
    EXPECT_TRUE(os::WriteNumber(Hive::currentUser, kKey, u"auto", std::uint32_t(-1)));
    EXPECT_EQ(static_cast<std::int32_t>(os::ReadNumber(Hive::currentUser, kKey, u"AUTO")), -1);
    EXPECT_EQ(os::ReadNumber(Hive::currentUser, kKey, u"missing"), 0u);
    EXPECT_EQ(text(u"missing"), QString());
    EXPECT_EQ(text(u"auto"), QString()) << "a number is no text";

    os::WriteText(Hive::currentUser, kKey, u"a", u"first");
    os::WriteText(Hive::currentUser, kKey, u"b", u"second");
    EXPECT_EQ(os::ReadNumber(Hive::currentUser, kKey, u"a"), 0u);
    const char16_t *a = os::ReadText(Hive::currentUser, kKey, u"a");
    EXPECT_EQ(a, os::ReadText(Hive::currentUser, kKey, u"b"));
    EXPECT_EQ(QString::fromUtf16(a), QStringLiteral("second")) << "one shared buffer";

    const QString longest(4095, QChar(u'图'));
    os::WriteText(Hive::currentUser, kKey, u"long", longest);
    EXPECT_EQ(text(u"long"), longest);
    os::WriteText(Hive::currentUser, kKey, u"long", longest + u'x');
    EXPECT_EQ(text(u"long"), QString());
}
