// The tests' own tools: a comparison that cannot fail would hide every fault behind it.
#include "tests/support/files.h"
#include "tests/support/golden.h"

#include <QDir>
#include <QStandardPaths>

TEST(Golden, NamesTheFirstDifference)
{
    struct Case {
        QByteArray actual;
        QByteArray expected;
        const char *message;
    };
    const Case cases[] = {
        {"one\ntwo\n", "one\ntwo \n", "line 2\n  actual:   \"two\"\n  expected: \"two \""},
        {"one\ntwo\r\n", "one\ntwo\n", "line 2\n  actual:   \"two\\r\"\n  expected: \"two\""},
        {"one\n", "one\ntwo\n", "line 2\n  actual:   (end)\n  expected: \"two\""},
        {QByteArray("\0\1\2", 3), QByteArray("\0\1\3\4", 4), "byte 2\n  actual:   02\n  expected: 03 04"},
        {"", "x", "line 1\n  actual:   (end)\n  expected: \"x\""},
    };
    for (const Case &c : cases) {
        const auto result = tests::sameBytes(c.actual, c.expected);
        EXPECT_FALSE(result);
        EXPECT_NE(std::string(result.message()).find(c.message), std::string::npos) << result.message();
        EXPECT_TRUE(tests::sameBytes(c.expected, c.expected));
    }
}

TEST(Golden, RefusesAMissingReferenceAndKeepsTheSourceTree)
{
    const QString reference = QStringLiteral("support/no_such_reference.txt");
    EXPECT_FALSE(tests::matchesGolden("text", reference));
    EXPECT_FALSE(QFile::exists(tests::testDataPath(reference)));
    EXPECT_TRUE(
        tests::matchesGolden(tests::readFile(tests::testDataPath(QStringLiteral("support/fonts.conf"))),
                             QStringLiteral("support/fonts.conf")));
}

TEST(Environment, SettingsAndTemporaryFilesAreScratch)
{
    const QString config = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    EXPECT_FALSE(config.startsWith(QDir::homePath() + QLatin1Char('/'))) << qPrintable(config);
    EXPECT_TRUE(QDir(config).isEmpty());

    const tests::TempDir folder;
    folder.write(QStringLiteral("b"), "2");
    EXPECT_EQ(tests::readFile(folder.write(QStringLiteral("a"), "1")), "1");
    EXPECT_EQ(folder.fileNames(), (QStringList{QStringLiteral("a"), QStringLiteral("b")}));
}
