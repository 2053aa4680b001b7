// Settings as text: the golden form, and imports that are all or nothing.
#include "host/os/settings_store.h"

#include "tests/support/files.h"

#include <gtest/gtest.h>

using os::exportSettings;
using os::importSettings;
using os::SettingsStore;

namespace
{
class SettingsText : public testing::Test
{
protected:
    tests::TempDir folder;
    SettingsStore store{folder.path(QStringLiteral("settings.sqlite"))};
};
} // namespace

static const QByteArray kGolden = "quillnote settings 1\n"
                                  "\n"
                                  "[Software\\Quillnote3]\n"
                                  "\"name\" = text \"张三 \\\"QA\\\" \\\\ \\n\\u0009\\ud83d\"\n"
                                  "\"style\" = number 4294967295\n"
                                  "\n"
                                  "[Software\\Quillnote3\\Templete]\n"
                                  "\"\" = text \"\"\n";

TEST_F(SettingsText, WritesAndReadsTheGoldenForm)
{
    const QString key = QStringLiteral("Software\\Quillnote3");
    const QString name = QStringLiteral("张三 \"QA\" \\ \n\t") + QChar(0xD83D);
    store.setNumber(key, u"style", 0xFFFFFFFF);
    store.setText(key, u"name", name);
    store.setText(u"Software\\Quillnote3\\Templete", u"", u"");
    EXPECT_EQ(exportSettings(store), kGolden);

    SettingsStore other(folder.path(QStringLiteral("other.sqlite")));
    const auto count = importSettings(other, kGolden);
    ASSERT_TRUE(count) << qPrintable(count.error().reason);
    EXPECT_EQ(count->count, 3);
    EXPECT_EQ(other.entries(), store.entries());
    EXPECT_EQ(exportSettings(other, u"software\\quillnote3\\TEMPLETE"), "quillnote settings 1\n\n"
                                                                        "[Software\\Quillnote3\\Templete]\n"
                                                                        "\"\" = text \"\"\n");
}

TEST_F(SettingsText, ReadsWhatPeopleType)
{
    ASSERT_TRUE(importSettings(store, "quillnote settings 1\r\n; note\r\n  [A]\r\n \"n\"=number  -1\r\n"));
    EXPECT_EQ(store.number(u"a", u"N"), 0xFFFFFFFFu);
}

TEST_F(SettingsText, OneWrongLineStoresNothing)
{
    const std::pair<const char *, int> rows[] = {
        {"[A]\n\"n\" = number 1\n", 1},
        {"quillnote settings 2\n", 1},
        {"quillnote settings 1\n\"n\" = number 1", 2},
        {"quillnote settings 1\n[A]\n\"n\" = number 1\n\"m\" = number 4294967296\n", 4},
        {"quillnote settings 1\n[A]\n\"n\" = number 1\n\"m\" = number one\n", 4},
        {"quillnote settings 1\n[A]\n\"n\" = number 1\n\"m\" = text \"open\n", 4},
        {"quillnote settings 1\n[A]\n\"n\" = number 1\n\"m\" = text \"x\" y\n", 4},
        {"quillnote settings 1\n[A]\n\"n\" = number 1\n\"m\" = text \"\\u00g0\"\n", 4},
        {"quillnote settings 1\n[A]\n\"n\" = number 1\n\"m\" = text \"\\\n", 4},
        {"quillnote settings 1\n[A]\n\"n\" = number 1\nm = number 1\n", 4},
        {"quillnote settings 1\n[A]\n\"n\" = number 1\n\"\\u0007\" = number 1\n", 0}, // Refused by the store.
    };
    for (const auto &[text, line] : rows) {
        const auto result = importSettings(store, text);
        ASSERT_FALSE(result) << text;
        EXPECT_EQ(result.error().line, line) << text;
        EXPECT_TRUE(store.entries().empty()) << text;
    }
    EXPECT_FALSE(importSettings(store, "quillnote settings 1\n[\xFF]\n"));
    EXPECT_FALSE(importSettings(store, ""));
}

TEST_F(SettingsText, NothingThatMakesProgramsRunComesInUnasked)
{
    const QByteArray text = "quillnote settings 1\n"
                            "[software\\QUILLNOTEHOST\\Applications\\Evil]\n"
                            "\"Loader\" = text \"/tmp/evil.so\"\n\"LoadReasons\" = number 2\n"
                            "[Software\\QuillnoteHost\\Applications]\n\"Names\" = text \"Evil\"\n"
                            "[Software\\Quillnote3]\n\"LOCATION\" = text \"/tmp\"\n\"style\" = number 1\n";
    const auto imported = importSettings(store, text);
    ASSERT_TRUE(imported);
    EXPECT_EQ(imported->count, 1);
    EXPECT_EQ(imported->leftOut.size(), 4);
    EXPECT_EQ(store.entries().size(), 1u);
    const auto asked = importSettings(store, text, {QStringLiteral("location")});
    ASSERT_TRUE(asked);
    EXPECT_EQ(asked->leftOut.size(), 3);
    EXPECT_EQ(store.text(u"Software\\Quillnote3", u"Location"), QStringLiteral("/tmp"));
}
