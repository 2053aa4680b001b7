// Hashes and the password check.
#include "quillnote/entity/password.h"
#include "quillnote/frame/settings/start_up_settings.h"

#include "tests/support/script_front_end.h"

#include <gtest/gtest.h>

class Password : public testing::Test
{
protected:
    Password()
    {
        passwordState().reset();
        startUpSettings().chineseVersion = true;
        setPasswordPrompt([this] {
            ++asked;
            return typed;
        });
    }
    ~Password() override
    {
        setPasswordPrompt({});
        startUpSettings().reset();
        passwordState().reset();
    }

    tests::ScriptFrontEnd frontEnd;
    std::optional<QString> typed;
    int asked = 0;
    const QString secret = QStringLiteral("5ebe2294ecd0e0f08eab7690d2a6ee69"); // "secret"
};

TEST_F(Password, TheHashIsMd5OfTheCodePageBytes)
{
    EXPECT_EQ(hashPassword(QStringLiteral("secret")), secret);
    EXPECT_EQ(hashPassword(QString()), u"d41d8cd98f00b204e9800998ecf8427e");
    // "中" is D6 D0 in code page 936.
    EXPECT_EQ(hashPassword(QStringLiteral("中")), u"5301da37e5ffca1823a5cef67488d4bf");
    // What the code page lacks does not become a question mark, which would open for every such word.
    EXPECT_EQ(hashPassword(QStringLiteral("ñandú")), u"97e5094e8302a2129151f075165779e2");
    EXPECT_NE(hashPassword(QStringLiteral("🔒🔑")), hashPassword(QStringLiteral("🔑🔒")));
    EXPECT_NE(hashPassword(QStringLiteral("ééé")), hashPassword(QStringLiteral("???")));
}

TEST_F(Password, ARightPasswordUnlocksForGood)
{
    typed = QStringLiteral("  secret\t");
    EXPECT_TRUE(checkPassword(secret.toUpper()));
    EXPECT_TRUE(mayChangeProtected(secret));
    EXPECT_EQ(asked, 1);

    // Another password typed in between does not lock it again, and opens what has its hash.
    typed = QStringLiteral("other");
    EXPECT_FALSE(checkPassword(QString(32, u'0')));
    EXPECT_FALSE(checkPassword(QString(32, u'0')));
    EXPECT_EQ(asked, 3);
    EXPECT_TRUE(checkPassword(hashPassword(QStringLiteral("other"))));
    EXPECT_TRUE(mayChangeProtected(secret.toUpper()));
    EXPECT_TRUE(mayChangeProtected(QString()));
    EXPECT_TRUE(checkPassword(QString()));
    EXPECT_EQ(asked, 3);
    setPasswordPrompt({});
    EXPECT_FALSE(checkPassword(secret)) << "nobody to ask";
}

TEST_F(Password, MessagesFollowTheLanguage)
{
    struct Row {
        bool chinese;
        std::optional<QString> typed;
        QString message;
    };
    const Row rows[] = {
        {true, QStringLiteral("  "), QStringLiteral("\n密码不能为空！")},
        {false, QString(), QStringLiteral("\nPassword null, Error!")},
        {true, QStringLiteral("x"), QStringLiteral("\n密码错误！")},
        {false, QStringLiteral("x"), QStringLiteral("\nPassword Error!")},
        {true, std::nullopt, QString()},
    };
    for (const Row &row : rows) {
        startUpSettings().chineseVersion = row.chinese;
        typed = row.typed;
        EXPECT_FALSE(checkPassword(secret));
        EXPECT_EQ(std::exchange(frontEnd.printed, {}), row.message);
    }
}
