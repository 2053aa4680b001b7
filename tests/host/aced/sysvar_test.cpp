// System variables: types, ranges, where they are kept, and those that follow from the drawing.
#include "host/aced/edsysvar.h"

#include "host/acdb/dbundo.h"
#include "host/os/clock.h"
#include "host/os/settings_store.h"
#include "tests/support/memory_drawing.h"
#include "tests/support/script_front_end.h"

#include <gtest/gtest.h>

using tests::MemoryDrawing;

static std::string shown(const QString &name)
{
    resbuf value;
    if (acedGetVar(name, value) != RTNORM)
        return "none";
    const AcGePoint3d point = value.point();
    switch (value.restype) {
    case 5003:
    case 5010:
        return std::to_string(value.integer());
    case 5001:
        return QString::number(value.real()).toStdString();
    case 5002:
        return QStringLiteral("%1,%2").arg(point.x).arg(point.y).toStdString();
    case 5009:
        return QStringLiteral("%1,%2,%3").arg(point.x).arg(point.y).arg(point.z).toStdString();
    default:
        return value.text().toStdString();
    }
}

TEST(SystemVariables, EveryOneCanBeRead)
{
    const tests::OpenDrawing drawing(MemoryDrawing().open());
    for (const QString &name : acedVarNames()) {
        resbuf value;
        ASSERT_EQ(acedGetVar(name.toLower(), value), RTNORM) << qPrintable(name);
        const std::size_t kind = value.resval.index();
        const resbuf::Value samples[] = {std::int64_t(0), std::int64_t(0), 0.0,
                                         QString(),       AcGePoint2d(),   AcGePoint3d()};
        const int codes[] = {5003, 5010, 5001, 5005, 5002, 5009};
        const auto *const code = std::find(std::begin(codes), std::end(codes), value.restype);
        ASSERT_NE(code, std::end(codes)) << qPrintable(name);
        EXPECT_EQ(kind, samples[code - codes].index())
            << qPrintable(name) << " has a value of another type than it says";
    }
    resbuf value;
    EXPECT_EQ(acedGetVar("NOSUCH", value), RTERROR);
}

TEST(SystemVariables, DrawingVariablesNeedADrawing)
{
    resbuf value;
    ASSERT_EQ(curDoc(), nullptr);
    for (const char *name : {"CLAYER", "VIEWSIZE", "TILEMODE", "DIMSCALE", "USERI1"}) {
        EXPECT_EQ(acedGetVar(name, value), RTERROR) << name;
        EXPECT_EQ(acedSetVar(name, resbuf(5003, std::int64_t(1))), RTERROR) << name;
    }
    EXPECT_EQ(acedGetVar("CMDECHO", value), RTNORM);
    EXPECT_EQ(acedIntVar("TILEMODE", 42), 42);
}

TEST(SystemVariables, SettingChecksTypeRangeAndRights)
{
    acedSetIntVar(QStringLiteral("CMDECHO"), 1); // Whatever other tests left.
    MemoryDrawing memory;
    memory.layer("WALLS");
    memory.layer("ICE", {.flags = 1});
    memory.record(SymbolTable::textStyle, "STYLE", "Notes", {});
    memory.headerVariable("$DIMSCALE", {{40, 2.0}});
    memory.headerVariable("$DIMBLK", {{1, "arrow"}});
    const tests::OpenDrawing drawing(memory.open());
    struct Case {
        const char *name;
        const char *typed;
        int result;
        const char *value; ///< Afterwards.
    };
    acedSetIntVar("CMDECHO", 1);
    const Case cases[] = {
        {"OSMODE", "35", RTNORM, "35"},
        {"OSMODE", "-1", RTREJ, "35"},
        {"OSMODE", "1.5", RTREJ, "35"},
        {"OSMODE", "x", RTREJ, "35"},
        {"CMDECHO", "2", RTREJ, "1"},
        {"LTSCALE", "2", RTNORM, "2"},
        {"LTSCALE", "0", RTREJ, "2"},
        {"USERI3", "32768", RTREJ, "0"},
        {"USERR2", "-1.5", RTNORM, "-1.5"},
        {"CLAYER", "walls", RTNORM, "walls"},
        {"CLAYER", "ICE", RTREJ, "walls"},
        {"CLAYER", "NOSUCH", RTREJ, "walls"},
        {"TEXTSTYLE", "Notes", RTNORM, "Notes"},
        {"TEXTSTYLE", "NOSUCH", RTREJ, "Notes"},
        {"CELTYPE", "byblock", RTNORM, "byblock"},
        {"CELTYPE", "NOSUCH", RTREJ, "byblock"},
        {"CECOLOR", "ByBlock", RTNORM, "BYBLOCK"},
        {"CECOLOR", "3", RTNORM, "3"},
        {"CECOLOR", "256", RTREJ, "3"},
        {"CECOLOR", "bylayer", RTNORM, "BYLAYER"},
        {"LIMMAX", "841,594", RTNORM, "841,594"},
        {"LIMMAX", "841", RTREJ, "841,594"},
        {"LASTPOINT", "1,2,3", RTNORM, "1,2,3"},
        {"DIMSCALE", "50", RTNORM, "50"},
        {"DIMBLK", "x", RTERROR, "arrow"},
        {"DIMNOSUCH", "1", RTERROR, "none"},
        {"VIEWSIZE", "1", RTERROR, "297"},
        {"CVPORT", "2", RTNORM, "2"},
        {"CVPORT", "3", RTREJ, "2"},
        {"NOSUCH", "1", RTERROR, "none"},
    };
    for (const Case &c : cases) {
        EXPECT_EQ(acedSetVarText(c.name, c.typed), c.result) << c.name << ' ' << c.typed;
        EXPECT_EQ(shown(c.name), c.value) << c.name << ' ' << c.typed;
    }
    EXPECT_EQ(acedSetVar("LTSCALE", resbuf(5005, QStringLiteral("3"))), RTREJ);
    EXPECT_EQ(acedSetVar("LTSCALE", resbuf(5003, std::int64_t(3))), RTNORM) << "a whole number is a number";
    EXPECT_EQ(acedSetVar("CMDECHO", resbuf(5001, 1.0)), RTREJ);
}

TEST(SystemVariables, StandWhereTheyBelong)
{
    MemoryDrawing memory;
    memory.headerVariable("$ANGBASE", {{50, 90.0}});
    {
        const tests::OpenDrawing drawing(memory.open());
        EXPECT_DOUBLE_EQ(acedRealVar("ANGBASE"), kGePi / 2) << "degrees in the file, radians here";
        EXPECT_EQ(acedSetVarText("ANGBASE", "0"), RTNORM);
        {
            const AcDbUndoGroup group(drawing.database(), "SETVAR");
            acedSetIntVar("USERI1", 12);
        }
        acedSetIntVar("PICKBOX", 7);
        acedSetVarText("USERS1", "for this run");
        EXPECT_EQ(drawing.database().headerInteger("$USERI1"), 12);
        EXPECT_EQ(drawing.database().undo().undoLabels().value(0), "SETVAR");
        EXPECT_EQ(acedIntVar("DBMOD"), 1);
    }
    const tests::OpenDrawing other(memory.open());
    EXPECT_EQ(acedIntVar("USERI1"), 0) << "the drawing keeps it";
    EXPECT_EQ(acedIntVar("PICKBOX"), 7) << "the user keeps it";
    EXPECT_EQ(os::SettingsStore::user().number(u"Software\\QuillnoteHost\\Variables", u"PICKBOX"), 7u);
    EXPECT_EQ(acedTextVar("USERS1"), "for this run");
    EXPECT_EQ(acedIntVar("DBMOD"), 0);
    acedSetIntVar("PICKBOX", 3);
}

TEST(SystemVariables, FollowFromDrawingAndClock)
{
    os::setFixedTime(QDateTime(QDate(2024, 5, 6), QTime(7, 8, 9)));
    MemoryDrawing memory;
    memory.entity("LINE", {{10, AcGePoint3d(1, 2, 0)}, {11, AcGePoint3d(11, 7, 0)}});
    memory.layer("OFF", {.color = -1});
    memory.entity("LINE", {{8, "OFF"}, {10, AcGePoint3d(0, 0, 0)}, {11, AcGePoint3d(500, 500, 0)}});
    const tests::OpenDrawing drawing(memory.open(), "/plans/house.dxf");
    AcApDocument &document = drawing.document();
    document.view() = {
        .centre = {10, 20, 0}, .height = 50, .twist = 0.5, .pixelWidth = 800, .pixelHeight = 600};
    document.ucs() = {{10, 0, 0}, {0, 1, 0}, {-1, 0, 0}};

    const std::pair<const char *, const char *> expected[] = {
        {"DWGNAME", "house.dxf"}, {"DWGPREFIX", "/plans/"}, {"DWGTITLED", "1"},        {"VIEWSIZE", "50"},
        {"VIEWTWIST", "0.5"},     {"VIEWCTR", "20,0,0"},    {"SCREENSIZE", "800,600"}, {"UCSORG", "10,0,0"},
        {"UCSXDIR", "0,1,0"},     {"UCSYDIR", "-1,0,0"},    {"WORLDUCS", "0"},         {"EXTMIN", "1,2,0"},
        {"EXTMAX", "11,7,0"},     {"CMDNAMES", ""},         {"CMDACTIVE", "0"},        {"UNDOCTL", "5"},
        {"CTAB", "Model"},        {"CVPORT", "2"},          {"TILEMODE", "1"}};
    for (const auto &[name, value] : expected)
        EXPECT_EQ(shown(name), value) << name;
    EXPECT_DOUBLE_EQ(acedRealVar("DATE"), os::julianNow());
    EXPECT_DOUBLE_EQ(acedRealVar("CDATE"), 20240506.070809);
    os::setFixedTime(std::nullopt);
}

TEST(SystemVariables, FiledExtentsHoldUntilTheDrawingChanges)
{
    struct Case {
        AcGePoint3d low;
        AcGePoint3d high;
        const char *before;
    };
    const Case cases[] = {
        {{-5, -5, 0}, {50, 60, 0}, "50,60,0"},
        {{1e20, 1e20, 1e20}, {-1e20, -1e20, -1e20}, "11,7,0"}, // Never computed by its writer.
        {{5, 5, 0}, {-5, -5, 0}, "11,7,0"},
    };
    for (const Case &c : cases) {
        MemoryDrawing memory;
        memory.entity("LINE", {{10, AcGePoint3d(1, 2, 0)}, {11, AcGePoint3d(11, 7, 0)}});
        memory.headerVariable("$EXTMIN", {{10, c.low}});
        memory.headerVariable("$EXTMAX", {{10, c.high}});
        const tests::OpenDrawing drawing(memory.open());
        EXPECT_EQ(shown("EXTMAX"), c.before);
        acedSetIntVar("USERI1", 3);
        EXPECT_EQ(shown("EXTMAX"), "11,7,0");
    }
}
