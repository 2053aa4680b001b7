// Readers of settings, the table of values, and what start-up makes of stored values.
#include "quillnote/frame/settings/settings.h"
#include "quillnote/frame/settings/start_up_settings.h"

#include "host/os/settings_store.h"

#include <gtest/gtest.h>

#include <limits>
#include <set>

static void forgetEverything()
{
    os::SettingsStore &store = os::SettingsStore::user();
    for (const auto &entry : store.entries())
        store.remove(entry.key, entry.name);
    startUpSettings().reset();
}

class Settings : public testing::Test
{
protected:
    Settings() { forgetEverything(); }
};

TEST_F(Settings, NumbersAreSignedAndTextsAreCopies)
{
    EXPECT_TRUE(settings::setNumber(u"autoTargetTxtH", -1));
    EXPECT_EQ(os::ReadNumber(os::Hive::currentUser, settings::kKey, u"autoTargetTxtH"), 0xFFFFFFFFu);
    EXPECT_EQ(settings::number(u"autoTargetTxtH"), -1);

    EXPECT_TRUE(settings::setText(u"name", u"张三"));
    EXPECT_TRUE(settings::setText(u"List0", u"a|b", settings::kTemplateKey));
    const QString name = settings::text(u"name");
    EXPECT_EQ(settings::text(u"List0", settings::kTemplateKey), u"a|b");
    EXPECT_EQ(settings::text(u"List0"), QString());
    EXPECT_EQ(name, u"张三");
}

TEST_F(Settings, TheOtherTypeAndNothingReadAsZeroOrEmpty)
{
    settings::setText(u"style", u"3");
    settings::setNumber(u"name", 7);
    EXPECT_EQ(settings::number(u"style"), 0);
    EXPECT_EQ(settings::text(u"name"), QString());
    EXPECT_EQ(settings::number(u"viewScale"), 0);
    EXPECT_EQ(settings::numberInRange(u"viewScale", 30, 90, 50), 50);
}

TEST_F(Settings, TheTableNamesEachValueOnce)
{
    std::set<std::pair<QString, QString>> seen;
    for (const settings::Value &value : settings::table()) {
        // Names of settings do not depend on letter case.
        EXPECT_TRUE(seen.emplace(value.key.toString(), value.name.toString().toLower()).second)
            << value.name.toString().toStdString();
        EXPECT_EQ(value.name.endsWith(u"%d"), value.last > value.first)
            << value.name.toString().toStdString();
        EXPECT_FALSE(value.meaning.isEmpty());
    }
}

TEST_F(Settings, StartUpTakesDefaultsWhenNothingIsStored)
{
    readStartUpSettings();
    StartUpSettings defaults;
    defaults.suitsTextHeight = true;
    EXPECT_EQ(startUpSettings(), defaults);
    EXPECT_FALSE(os::SettingsStore::user().number(settings::kKey, u"textHeight"));
    EXPECT_FALSE(os::SettingsStore::user().number(settings::kKey, u"textHeightPS"));
}

TEST_F(Settings, StartUpReplacesNumbersOutOfRange)
{
    struct Row {
        QStringView name;
        int StartUpSettings::*copy;
        int stored;
        int expected;
    };
    const Row rows[] = {
        {u"style", &StartUpSettings::style, -6, -6},
        {u"style", &StartUpSettings::style, -7, 0},
        {u"style", &StartUpSettings::style, 6, 6},
        {u"style", &StartUpSettings::style, 7, 0},
        {u"BKstyle", &StartUpSettings::BKstyle, 98, 103},
        {u"BkStyle", &StartUpSettings::BKstyle, 99, 99},
        {u"BKstyle", &StartUpSettings::BKstyle, 105, 105},
        {u"BKstyle", &StartUpSettings::BKstyle, 106, 103},
        {u"color1", &StartUpSettings::color1, 0, 2},
        {u"color1", &StartUpSettings::color1, 1, 1},
        {u"color2", &StartUpSettings::color2, 255, 255},
        {u"color2", &StartUpSettings::color2, 256, 2},
        {u"textHeight", &StartUpSettings::textHeight, 35, 35},
        {u"textHeight", &StartUpSettings::textHeight, -35, 1000},
        {u"textHeightPS", &StartUpSettings::textHeightPS, 0, 10},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.name.toString().toStdString() + " = " + std::to_string(row.stored));
        settings::setNumber(row.name, row.stored);
        readStartUpSettings();
        EXPECT_EQ(startUpSettings().*row.copy, row.expected);
    }
}

TEST_F(Settings, StartUpReadsSwitches)
{
    struct Row {
        QStringView name;
        bool StartUpSettings::*copy;
        std::vector<std::pair<int, bool>> cases;
    };
    const std::vector<std::pair<int, bool>> fromOne{{-1, false}, {0, false}, {1, true}, {2, true}};
    const std::vector<std::pair<int, bool>> notZero{{-1, true}, {0, false}, {1, true}};
    const Row rows[] = {
        {u"ChineseVersion", &StartUpSettings::chineseVersion, notZero},
        {u"DisplayFlagWithFreehandDraw", &StartUpSettings::displayFlagWithFreehandDraw, notZero},
        {u"autoFlagSize", &StartUpSettings::autoFlagSize, fromOne},
        {u"applyAll", &StartUpSettings::applyAll, fromOne},
        {u"viewDateTime", &StartUpSettings::viewDateTime, fromOne},
        {u"viewName", &StartUpSettings::viewName, fromOne},
        {u"viewFlag", &StartUpSettings::viewFlag, fromOne},
        {u"NoDisplayText", &StartUpSettings::showMarkText, {{0, true}, {1, false}, {2, true}, {-1, true}}},
        {u"autoTargetTxtH", &StartUpSettings::autoTargetTextHeight, {{-1, false}, {0, true}, {1, true}}},
    };
    for (const Row &row : rows) {
        for (const auto &[stored, expected] : row.cases) {
            SCOPED_TRACE(row.name.toString().toStdString() + " = " + std::to_string(stored));
            settings::setNumber(row.name, stored);
            readStartUpSettings();
            EXPECT_EQ(startUpSettings().*row.copy, expected);
        }
    }
}

TEST_F(Settings, TheSnapshotModeAddsUpBothSwitches)
{
    for (const auto &[record, review, mode] :
         {std::tuple{0, 0, 0}, std::tuple{5, 0, 1}, std::tuple{0, -1, 2}, std::tuple{1, 1, 3}}) {
        settings::setNumber(u"SnapRecord", record);
        settings::setNumber(u"SnapReview", review);
        readStartUpSettings();
        EXPECT_EQ(startUpSettings().snapshotMode, mode);
    }
}

TEST_F(Settings, ATextHeightThatNobodySetSuitsEachDrawing)
{
    for (const int stored : {0, -3}) {
        settings::setNumber(u"textHeight", stored);
        readStartUpSettings();
        EXPECT_TRUE(startUpSettings().suitsTextHeight);
        EXPECT_EQ(settings::number(u"textHeight"), stored) << "nothing is stored for the user";
    }
    settings::setNumber(u"textHeight", 35);
    readStartUpSettings();
    EXPECT_FALSE(startUpSettings().suitsTextHeight);
    EXPECT_EQ(startUpSettings().textHeight, 35);
}
