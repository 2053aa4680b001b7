// Readers of settings, the table of values, and what start-up makes of stored values.
#include "quillnote/frame/settings/settings.h"
#include "quillnote/frame/settings/start_up_settings.h"

#include "host/os/settings_store.h"

#include <gtest/gtest.h>

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

static void store(const settings::Row &row, qint64 value)
{
    os::WriteNumber(os::Hive::currentUser, row.key, row.name, static_cast<std::uint32_t>(value));
}

TEST_F(Settings, NumbersAreSignedAndTextsAreCopies)
{
    EXPECT_TRUE(settings::setNumber(u"autoTargetTxtH", -1));
    EXPECT_EQ(os::ReadNumber(os::Hive::currentUser, settings::kKey, u"autoTargetTxtH"), 0xFFFFFFFFu);
    EXPECT_EQ(settings::number(u"autoTargetTxtH"), -1);

    EXPECT_TRUE(settings::setText(u"name", u"张三"));
    EXPECT_TRUE(settings::setText(u"List%d", 0, u"a|b"));
    const QString name = settings::text(u"name");
    EXPECT_EQ(settings::text(u"List%d", 0), u"a|b");
    EXPECT_EQ(os::SettingsStore::user().text(settings::kTemplateKey, u"List0"), u"a|b");
    EXPECT_EQ(name, u"张三");
}

TEST_F(Settings, TheOtherTypeReadsAsNothing)
{
    os::WriteText(os::Hive::currentUser, settings::kKey, u"ChineseVersion", u"3");
    os::WriteNumber(os::Hive::currentUser, settings::kKey, u"name", 7);
    EXPECT_EQ(settings::number(u"ChineseVersion"), 0);
    EXPECT_EQ(settings::text(u"name"), QString());
}

TEST_F(Settings, NumbersOutsideTheirRangeAreNone)
{
    for (const settings::Row &row : settings::table::kRows) {
        if (row.kind != settings::Kind::number)
            continue;
        const settings::Number name(row);
        const auto [low, high, otherwise] = row.range;
        SCOPED_TRACE(row.name.toString().toStdString());
        EXPECT_EQ(settings::number(name), otherwise) << "nothing is stored";
        for (const qint64 value : {qint64(low) - 1, qint64(low), qint64(high), qint64(high) + 1}) {
            if (value != qint64(int(value)))
                continue;
            store(row, value);
            const bool isIn = value >= low && value <= high;
            EXPECT_EQ(settings::number(name), isIn ? value : otherwise) << value;
            EXPECT_EQ(settings::stored(name).has_value(), isIn) << value;
        }
    }
}

TEST_F(Settings, TheTableNamesEachValueOnce)
{
    std::set<std::pair<QString, QString>> seen;
    for (const settings::Row &row : settings::table::kRows) {
        // Names of settings do not depend on letter case.
        EXPECT_TRUE(seen.emplace(row.key.toString(), row.name.toString().toLower()).second)
            << row.name.toString().toStdString();
        EXPECT_EQ(row.name.endsWith(u"%d"), row.indexes.last > row.indexes.first)
            << row.name.toString().toStdString();
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

TEST_F(Settings, StartUpTakesNumbersOfTheRangeOnly)
{
    struct Copy {
        settings::Number row;
        int StartUpSettings::*copy;
    };
    for (const auto &[row, copy] :
         {Copy{u"style", &StartUpSettings::style}, Copy{u"BKstyle", &StartUpSettings::BKstyle},
          Copy{u"color1", &StartUpSettings::color1}, Copy{u"color2", &StartUpSettings::color2},
          Copy{u"textHeight", &StartUpSettings::textHeight},
          Copy{u"textHeightPS", &StartUpSettings::textHeightPS}}) {
        for (const int value : {row->range.low, row->range.low - 1}) {
            settings::setNumber(row, value);
            readStartUpSettings();
            EXPECT_EQ(startUpSettings().*copy, value < row->range.low ? row->range.otherwise : value)
                << row->name.toString().toStdString();
        }
    }
}

TEST_F(Settings, StartUpReadsSwitches)
{
    struct Row {
        settings::Number name;
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
            SCOPED_TRACE(row.name->name.toString().toStdString() + " = " + std::to_string(stored));
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
        EXPECT_EQ(int(os::ReadNumber(os::Hive::currentUser, settings::kKey, u"textHeight")), stored)
            << "nothing is stored for the user";
    }
    settings::setNumber(u"textHeight", 35);
    readStartUpSettings();
    EXPECT_FALSE(startUpSettings().suitsTextHeight);
    EXPECT_EQ(startUpSettings().textHeight, 35);
}
