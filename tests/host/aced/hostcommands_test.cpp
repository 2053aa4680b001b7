// The host's own commands, typed line by line.
#include "host/aced/hostcommands.h"

#include "host/acdb/dbapi.h"
#include "host/acdb/dbsymtb.h"
#include "host/acdb/dbundo.h"
#include "host/aced/edcommands.h"
#include "host/aced/edinput.h"
#include "host/aced/edmenu.h"
#include "host/aced/edmessage.h"
#include "host/aced/edsysvar.h"
#include "host/aced/edview.h"
#include "tests/support/files.h"
#include "tests/support/memory_drawing.h"
#include "tests/support/script_front_end.h"
#include "tests/support/whole_drawing.h"

#include <gtest/gtest.h>

#include <cmath>

using tests::MemoryDrawing;

namespace
{

QStringList lines(std::initializer_list<const char *> texts)
{
    QStringList all;
    for (const char *text : texts)
        all << QString::fromUtf8(text);
    return all;
}

/// Types the lines at the command prompt; what the host printed.
QString type(std::initializer_list<const char *> typed)
{
    tests::ScriptFrontEnd script(lines(typed));
    acedEditor()->processInput();
    EXPECT_TRUE(script.isUsedUp()) << qPrintable(script.printed);
    return script.printed;
}

/// A drawing with a line (0,0)-(10,0) and a circle at (20,0) radius 5 on model space, layers 0, WALLS,
/// LOCKED, COLD.
class HostCommands : public testing::Test
{
protected:
    HostCommands() : HostCommands(MemoryDrawing()) {}

    explicit HostCommands(MemoryDrawing content)
    {
        content.layer("WALLS");
        content.layer("LOCKED", {.flags = 4});
        content.layer("COLD", {.flags = 1});
        content.record(SymbolTable::linetype, "LTYPE", "DASHED", {{70, 0}});
        content.headerVariable("$CLAYER", {{8, "0"}});
        m_line = content.entity("LINE",
                                {{100, "AcDbLine"}, {10, AcGePoint3d(0, 0, 0)}, {11, AcGePoint3d(10, 0, 0)}});
        m_circle = content.entity("CIRCLE", {{100, "AcDbCircle"}, {10, AcGePoint3d(20, 0, 0)}, {40, 5.0}});
        m_locked = content.entity(
            "LINE",
            {{8, "LOCKED"}, {100, "AcDbLine"}, {10, AcGePoint3d(0, 50, 0)}, {11, AcGePoint3d(10, 50, 0)}});
        acedRegisterHostCommands();
        m_drawing.emplace(content.open());
        acedSetVar(QStringLiteral("CMDECHO"), resbuf(5003, std::int64_t(0)));
    }

    /// A run that has ended does not end the next one.
    ~HostCommands() override { type({}); }

    AcDbDatabase &database() const { return m_drawing->database(); }
    AcApDocument &document() const { return m_drawing->document(); }
    AcDbObjectId id(std::uint64_t handle) const { return m_drawing->id(handle); }

    ResbufList groups(AcDbObjectId entity) const { return database().fileGroups(*entity.stub()); }
    AcGePoint3d point(AcDbObjectId entity, int code) const
    {
        const ResbufList list = groups(entity);
        const resbuf *const group = findGroup(list, code);
        return group ? group->point() : AcGePoint3d(NAN, NAN, NAN);
    }
    double real(AcDbObjectId entity, int code) const
    {
        const ResbufList list = groups(entity);
        const resbuf *const group = findGroup(list, code);
        return group ? group->real() : NAN;
    }
    std::vector<AcDbObjectId> entities() const
    {
        AcDbObjectPointer<AcDbBlockTableRecord> space(database().currentSpaceId(), AcDb::kForRead);
        return space->entities();
    }
    AcDbObjectId last() const { return entities().back(); }

    /// Everything that undo must bring back: the state of all objects.
    std::vector<std::pair<bool, ResbufList>> snapshot() const
    {
        std::vector<std::pair<bool, ResbufList>> all;
        for (std::uint32_t i = 1; i < database().stubCount(); ++i) {
            const AcDbObjectId object(database().stub(i));
            all.emplace_back(object.isErased(), object.isErased() ? ResbufList() : groups(object));
        }
        while (!all.empty() && all.back().first)
            all.pop_back(); // What is gone at the end was never there.
        return all;
    }

    std::optional<tests::OpenDrawing> m_drawing;
    std::uint64_t m_line = 0;
    std::uint64_t m_circle = 0;
    std::uint64_t m_locked = 0;
};

void expectNear(const AcGePoint3d &point, double x, double y, double z = 0.0)
{
    EXPECT_TRUE(point.isEqualTo({x, y, z}, 1e-9)) << point.x << "," << point.y << "," << point.z;
}

} // namespace

// Drawing ----------------------------------------------------------------------------------------------

TEST_F(HostCommands, DrawsWithTheCurrentProperties)
{
    type({"-LAYER", "S", "WALLS", "", "CECOLOR", "3", "L", "1,1", "@10<90", "u", "5,1", "5,9", "c"});
    const auto drawn = entities();
    ASSERT_EQ(drawn.size(), 6u);
    expectNear(point(drawn[3], 10), 1, 1);
    expectNear(point(drawn[3], 11), 5, 1);
    expectNear(point(drawn[5], 10), 5, 9);
    expectNear(point(drawn[5], 11), 1, 1);
    const ResbufList data = acdbEntGetX(drawn[3]);
    EXPECT_EQ(findGroup(data, 8)->text(), u"WALLS");
    EXPECT_EQ(findGroup(data, 62)->integer(), 3);
    EXPECT_EQ(subclassBegin(data, u"AcDbLine") < data.size(), true);

    type({"C", "1,2", "D", "5"});
    EXPECT_EQ(real(last(), 40), 2.5);
    type({"TEXT", "1,2", "3", "90", "第一行", "second line", ""});
    expectNear(point(last(), 10), 6, 2); // The second line lies to the right of the upright first one.
    EXPECT_EQ(real(last(), 50), 90.0);
    EXPECT_EQ(real(last(), 40), 3.0);
}

TEST_F(HostCommands, DrawsInTheCurrentCoordinateSystem)
{
    // Origin 100,0,0; X along world Y; Y along world Z: the normal is world X.
    type({"UCS", "3", "100,0,0", "100,1,0", "100,0,1", "LINE", "1,2", "3,4,5", ""});
    expectNear(point(last(), 10), 100, 1, 2);
    expectNear(point(last(), 11), 105, 3, 4);
    type({"CIRCLE", "1,2", "7"});
    const AcGePoint3d normal = point(last(), 210);
    expectNear(normal, 1, 0, 0);
    const AcGeMatrix3d plane = AcGeMatrix3d::planeToWorld({normal.x, normal.y, normal.z});
    expectNear(plane * point(last(), 10), 100, 1, 2);
    type({"UCS", "", "POINT", "*1,2,3"});
    expectNear(point(last(), 10), 1, 2, 3);
    EXPECT_EQ(findGroup(groups(last()), 210), nullptr);
}

TEST(HostCommandsR12, DrawWithoutSubclassMarkers)
{
    acedRegisterHostCommands();
    const tests::OpenDrawing drawing(MemoryDrawing(DrawingVersion::r12).open());
    type({"LINE", "0,0", "1,1", "", "TEXT", "0,0", "1", "0", "abc", ""});
    AcDbObjectPointer<AcDbBlockTableRecord> space(drawing.database().currentSpaceId(), AcDb::kForRead);
    ASSERT_EQ(space->entities().size(), 2u);
    for (const AcDbObjectId id : space->entities()) {
        const ResbufList groups = drawing.database().fileGroups(*id.stub());
        EXPECT_EQ(findGroup(groups, 100), nullptr);
        EXPECT_NE(findGroup(groups, 8), nullptr);
    }
}

// Editing ----------------------------------------------------------------------------------------------

TEST_F(HostCommands, MovesTurnsAndScales)
{
    type({"M", "0,0", "", "1,2", "3,5"});
    expectNear(point(id(m_line), 10), 2, 3);
    type({"MOVE", "L", "", "1,1", ""}); // The last entity is locked; nothing is selected to move.
    type({"UCS", "Z", "90", "MOVE", "*2,3", "", "D", "1,0"}); // One along the turned X axis.
    expectNear(point(id(m_line), 10), 2, 4);
    type({"UCS", "W", "ROTATE", "2,4", "", "2,4", "90"});
    expectNear(point(id(m_line), 11), 2, 14);
    type({"SCALE", "20,5", "", "20,0", "R", "2", "4"});
    EXPECT_EQ(real(id(m_circle), 40), 10.0);
    expectNear(point(id(m_circle), 10), 20, 0);
    type({"MIRROR", "20,10", "", "0,0", "0,1", "Y"});
    expectNear(point(id(m_circle), 10), -20, 0);
}

TEST_F(HostCommands, StoppedWithManyEntitiesLeaveTheDrawingAsItWas)
{
    struct Impatient : tests::ScriptFrontEnd {
        using ScriptFrontEnd::ScriptFrontEnd;
        bool progress(const QString &what, double) override { return what.isEmpty(); }
    };
    MemoryDrawing many;
    for (int i = 0; i < 1200; ++i)
        many.entity("LINE", {{100, "AcDbLine"}, {10, AcGePoint3d(i, 0, 0)}, {11, AcGePoint3d(i, 1, 0)}});
    const tests::OpenDrawing drawing(many.open());
    const auto before = tests::wholeDrawing(drawing.database());
    for (const auto &typed : {lines({"ERASE", "ALL", ""}), lines({"MOVE", "ALL", "", "0,0", "5,5"}),
                              lines({"COPY", "ALL", "", "0,0", "5,5", ""})}) {
        Impatient front(typed);
        acedEditor()->processInput();
        EXPECT_TRUE(front.printed.contains(u"已停止")) << qPrintable(front.printed);
        EXPECT_EQ(tests::wholeDrawing(drawing.database()), before) << qPrintable(typed.front());
        EXPECT_TRUE(drawing.database().undo().undoLabels().isEmpty());
    }

    // What came before in the same step stays.
    Impatient front(lines({"UNDO", "BE", "MOVE", "L", "", "0,0", "0,7", "POINT", "3,3"}));
    acedEditor()->processInput();
    const auto between = tests::wholeDrawing(drawing.database());
    Impatient stopped(lines({"MOVE", "ALL", "", "0,0", "5,5"}));
    acedEditor()->processInput();
    EXPECT_TRUE(stopped.printed.contains(u"已停止")) << qPrintable(stopped.printed);
    EXPECT_EQ(tests::wholeDrawing(drawing.database()), between);
    tests::ScriptFrontEnd end(lines({"UNDO", "E", "U"}));
    acedEditor()->processInput();
    EXPECT_EQ(tests::wholeDrawing(drawing.database()), before);
}

TEST_F(HostCommands, CopiesUntilEnter)
{
    type({"CO", "20,5", "", "20,0", "30,0", "40,0", ""});
    const auto all = entities();
    ASSERT_EQ(all.size(), 5u);
    expectNear(point(all[3], 10), 30, 0);
    expectNear(point(all[4], 10), 40, 0);
    EXPECT_EQ(real(all[4], 40), 5.0);
    expectNear(point(id(m_circle), 10), 20, 0);
    type({"MIRROR", "20,5", "", "0,0", "0,1", ""});
    EXPECT_EQ(entities().size(), 6u);
    expectNear(point(last(), 10), -20, 0);
}

TEST_F(HostCommands, LeaveLockedLayersAlone)
{
    const auto before = snapshot();
    for (const char *command : {"ERASE", "MOVE", "COPY", "ROTATE", "SCALE"}) {
        tests::ScriptFrontEnd script(lines({command, "0,50", "", "0,0", "2", ""}));
        acedEditor()->processInput();
        EXPECT_TRUE(script.printed.contains(u"锁定")) << command << qPrintable(script.printed);
    }
    EXPECT_TRUE(snapshot() == before);
}

TEST_F(HostCommands, EraseAndBringBack)
{
    type({"E", "0,0", "20,5", ""});
    EXPECT_TRUE(id(m_line).isErased());
    EXPECT_TRUE(id(m_circle).isErased());
    type({"OOPS"});
    EXPECT_FALSE(id(m_line).isErased());
    EXPECT_FALSE(id(m_circle).isErased());
}

// Undo -------------------------------------------------------------------------------------------------

TEST_F(HostCommands, UndoTakesBackWholeCommands)
{
    std::vector<std::vector<std::pair<bool, ResbufList>>> states{snapshot()};
    const std::initializer_list<const char *> steps[] = {
        {"LINE", "0,0", "1,1", "2,0", ""},
        {"MOVE", "0,0", "", "0,0", "0,7"},
        {"ERASE", "20,5", ""},
        {"OOPS"},
        {"COPY", "20,5", "", "0,0", "9,9", ""},
        {"LAYER", "N", "FRESH,OTHER", "M", "THIRD", "F", "WALLS", ""},
    };
    for (const auto &step : steps) {
        type(step);
        states.push_back(snapshot());
    }
    for (std::size_t i = states.size() - 1; i-- > 0;) {
        type({"U"});
        EXPECT_TRUE(snapshot() == states[i]) << i;
    }
    EXPECT_TRUE(type({"U"}).contains(u"所有操作都已放弃"));
    for (std::size_t i = 1; i < states.size(); ++i) {
        type({"REDO"});
        EXPECT_TRUE(snapshot() == states[i]) << i;
    }
    EXPECT_TRUE(type({"REDO"}).contains(u"没有可重做"));
    EXPECT_TRUE(type({"UNDO", "3"}).contains(u"LAYER COPY OOPS"));
    EXPECT_TRUE(snapshot() == states[3]);
}

TEST_F(HostCommands, UndoKnowsGroupsAndMarks)
{
    const std::size_t drawn = entities().size();
    type({"UNDO", "BE", "POINT", "1,1", "POINT", "2,2", "UNDO", "E"});
    EXPECT_EQ(database().undo().position(), 1u);
    type({"U"});
    EXPECT_EQ(entities().size(), drawn);

    EXPECT_TRUE(type({"UNDO", "BE", "POINT", "1,1", "U", "UNDO", "E"}).contains(u"编组"));
    EXPECT_EQ(entities().size(), drawn + 1);
    EXPECT_TRUE(type({"UNDO", "E"}).contains(u"没有打开的编组"));

    type({"UNDO", "M", "POINT", "1,1", "POINT", "2,2", "UNDO", "B"});
    EXPECT_EQ(entities().size(), drawn + 1);
    type({"UNDO", "B", "N"}); // Without a mark it asks before it takes everything back.
    EXPECT_EQ(entities().size(), drawn + 1);
    type({"UNDO", "B", "Y"});
    EXPECT_EQ(entities().size(), drawn);
}

// Layers -----------------------------------------------------------------------------------------------

TEST_F(HostCommands, LayerDoesOneOptionAfterTheOther)
{
    const auto layer = [this](const char *name) {
        return AcDbObjectPointer<AcDbLayerTableRecord>(
            database().tableRecord(SymbolTable::layer, QLatin1String(name)), AcDb::kForRead);
    };
    type({"_-LAYER", "_N", "PIPES,PIPES_OLD", "C", "red", "PIPES*", "LT", "dashed", "PIPES", "P", "N",
          "PIPES", "LO", "pipes_*", "OFF", "PIPES", ""});
    EXPECT_EQ(layer("PIPES")->colorIndex(), 1);
    EXPECT_EQ(layer("PIPES")->linetype(), u"DASHED");
    EXPECT_FALSE(layer("PIPES")->isPlottable());
    EXPECT_TRUE(layer("PIPES")->isOff());
    EXPECT_FALSE(layer("PIPES")->isLocked());
    EXPECT_TRUE(layer("PIPES_OLD")->isLocked());
    EXPECT_TRUE(layer("PIPES_OLD")->isPlottable());
    EXPECT_FALSE(layer("WALLS")->isLocked());
    type({"LA", "ON", "PIPES", "F", "PIPES,WALLS", "T", "WALLS", "U", "*", "C", "5", "", ""});
    EXPECT_FALSE(layer("PIPES")->isOff());
    EXPECT_EQ(layer("PIPES")->colorIndex(), 1);
    EXPECT_TRUE(layer("PIPES")->isFrozen());
    EXPECT_FALSE(layer("WALLS")->isFrozen());
    EXPECT_FALSE(layer("LOCKED")->isLocked());
    EXPECT_EQ(layer("0")->colorIndex(), 5); // Enter means the current layer.

    acedCommandS({QStringLiteral("_LAYER"), QStringLiteral("SET"), QStringLiteral("walls"), QString()});
    EXPECT_EQ(acedTextVar(QStringLiteral("CLAYER")), u"WALLS");
}

TEST_F(HostCommands, LayerRefusesWhatMakesNoSense)
{
    const auto before = snapshot();
    const struct {
        std::initializer_list<const char *> typed;
        const char16_t *says;
    } cases[] = {
        {{"LAYER", "S", "COLD", ""}, u"已冻结"},    {{"LAYER", "S", "NONE", ""}, u"没有图层"},
        {{"LAYER", "F", "0", ""}, u"不能冻结当前"}, {{"LAYER", "N", "a|b", ""}, u"无效"},
        {{"LAYER", "C", "256", ""}, u"无效"},       {{"LAYER", "L", "NONE", ""}, u"没有加载线型"},
        {{"LAYER", "ON", "NO*", ""}, u"没有与"},    {{"LAYER", "OFF", "0", "N", ""}, u"要关闭当前图层"},
    };
    for (const auto &row : cases) {
        tests::ScriptFrontEnd script(lines(row.typed));
        acedEditor()->processInput();
        QString said = script.printed;
        for (const AcEdPrompt &prompt : script.prompts)
            said += prompt.message;
        EXPECT_TRUE(said.contains(QStringView(row.says))) << qPrintable(said);
    }
    EXPECT_TRUE(snapshot() == before);
    EXPECT_EQ(acedTextVar(QStringLiteral("CLAYER")), u"0");
    EXPECT_TRUE(type({"LAYER", "?", "c*", ""}).contains(u"COLD  开 冻结"));
}

// Views and coordinate systems -------------------------------------------------------------------------

TEST_F(HostCommands, ZoomChangesTheView)
{
    AcGeView &view = document().view();
    view.pixelWidth = 200;
    view.pixelHeight = 100;
    type({"ZOOM", "W", "0,0", "10,10"});
    expectNear(view.centre, 5, 5);
    EXPECT_DOUBLE_EQ(view.height, 10);
    type({"Z", "100,0", "140,10"}); // Corners at once; the width decides.
    expectNear(view.centre, 120, 5);
    EXPECT_DOUBLE_EQ(view.height, 20);
    type({"Z", "2x"});
    EXPECT_DOUBLE_EQ(view.height, 10);
    type({"Z", "S", "0.5X"});
    EXPECT_DOUBLE_EQ(view.height, 20);
    type({"Z", "C", "1,2", "30"});
    expectNear(view.centre, 1, 2);
    EXPECT_DOUBLE_EQ(view.height, 30);
    type({"Z", "C", "", "3x"});
    expectNear(view.centre, 1, 2);
    EXPECT_DOUBLE_EQ(view.height, 10);
    type({"Z", "P", "Z", "P"});
    expectNear(view.centre, 120, 5);
    EXPECT_DOUBLE_EQ(view.height, 20);
    view.pixelWidth = 50; // In another window all of it is seen all the same.
    type({"Z", "P"});
    EXPECT_DOUBLE_EQ(view.height, 40);
    view.pixelWidth = 200;
    type({"P", "0,0", "5,1"});
    expectNear(view.centre, 115, 4);
    type({"_ZOOM W 0.000000,0.000000 20.000000,10.000000 "});
    expectNear(view.centre, 10, 5);
    EXPECT_DOUBLE_EQ(view.height, 10);
    const double roomAround = 1.02;
    type({"Z", "E"}); // 0,-5 to 25,50
    expectNear(view.centre, 12.5, 22.5);
    EXPECT_DOUBLE_EQ(view.height, 55 * roomAround);
    type({"DVIEW", "", "TW", "330", "", "Z", "E"}); // The box around the turned box.
    EXPECT_NEAR(view.height, (25 * 0.5 + 55 * std::sqrt(0.75)) * roomAround, 1e-9);
    expectNear(view.centre, 12.5, 22.5);
    const AcGeView before = view;
    EXPECT_TRUE(type({"Z", "nonsense"}).contains(u"比例因子"));
    EXPECT_TRUE(type({"Z", "W", "1,1", "1,1"}).contains(u"窗口太小"));
    EXPECT_EQ(view.height, before.height);
    EXPECT_EQ(database().undo().position(), 0u); // Views make no steps.
}

TEST_F(HostCommands, TwistAndPlanTurnTheView)
{
    type({"DVIEW", "", "TW", "30", ""});
    EXPECT_NEAR(document().view().twist, kGePi / 6, 1e-12);
    type({"UCS", "Z", "40", "PLAN", ""});
    const AcGeVector3d onScreen = document().view().getWorldToEyeTransform() * document().ucs().xAxis;
    EXPECT_NEAR(onScreen.x, 1.0, 1e-12);
    type({"PLAN", "W"});
    EXPECT_NEAR(document().view().twist, 0.0, 1e-12);
}

TEST_F(HostCommands, UcsMovesTurnsAndComesBack)
{
    const auto world = [] { return acedTrans(AcGePoint3d(1, 0, 0), AcEdSpace::ucs, AcEdSpace::world); };
    type({"UCS", "10,20", ""});
    expectNear(world(), 11, 20);
    type({"UCS", "Z", "90"});
    expectNear(world(), 10, 21);
    type({"UCS", "O", "5,0"}); // Counts in the turned system.
    expectNear(world(), 10, 26);
    type({"UCS", "P"});
    expectNear(world(), 10, 21);
    type({"UCS", "P"});
    expectNear(world(), 11, 20);
    acedCommandS({QStringLiteral("UCS"), QStringLiteral("W")});
    expectNear(world(), 1, 0);
    type({"UCS", "5,5", "5,9", ""}); // X axis through the second point.
    expectNear(world(), 5, 6);
    EXPECT_TRUE(type({"UCS", "3", "0,0", "1,0", "2,0"}).contains(u"一条直线"));
    expectNear(world(), 5, 6);
}

TEST_F(HostCommands, LayoutsChangeTheSpace)
{
    const QString name = acdbLayoutName(database().paperSpaceId());
    tests::ScriptFrontEnd script({QStringLiteral("LAYOUT"), QStringLiteral("S"), name,
                                  QStringLiteral("POINT"), QStringLiteral("1,1")});
    acedEditor()->processInput();
    EXPECT_EQ(database().currentSpaceId(), database().paperSpaceId());
    EXPECT_EQ(entities().size(), 1u);
    EXPECT_TRUE(type({"LAYOUT", "", "NoSuchLayout"}).contains(u"没有名为"));
    type({"MODEL"});
    EXPECT_EQ(database().currentSpaceId(), database().modelSpaceId());
    EXPECT_TRUE(type({"LAYOUT", "?"}).contains(name));
}

// Telling ----------------------------------------------------------------------------------------------

TEST_F(HostCommands, ListsWhatIsKnown)
{
    const QString listed = type({"LIST", "20,5", "", "ID", "1,2", "DI", "0,0", "3,4"});
    for (const char16_t *text :
         {u"CIRCLE  图层: 0", u"模型空间", u"半径 = 5", u"X = 1  Y = 2  Z = 0", u"距离 = 5"})
        EXPECT_TRUE(listed.contains(QStringView(text))) << qPrintable(listed);
    EXPECT_TRUE(listed.contains(QStringLiteral("句柄 = ") + QString::number(m_circle, 16).toUpper()));
    EXPECT_TRUE(type({"AUDIT"}).contains(u"修复了 0 处"));
    EXPECT_EQ(database().undo().position(), 0u);
}

TEST_F(HostCommands, SetsVariablesByNameAndBySetvar)
{
    type({"SETVAR", "osmode", "33", "EXPERT", "2"});
    EXPECT_EQ(acedIntVar(QStringLiteral("OSMODE")), 33);
    EXPECT_EQ(acedIntVar(QStringLiteral("EXPERT")), 2);
    type({"EXPERT 0", "OSMODE", "0"});
    EXPECT_EQ(acedIntVar(QStringLiteral("EXPERT")), 0);
    EXPECT_TRUE(type({"EXPERT", "77"}).contains(u"不接受"));
    EXPECT_TRUE(type({"CDATE", "1"}).contains(u"只读"));
    EXPECT_TRUE(type({"SETVAR", "NOSUCH"}).contains(u"未知变量"));
    EXPECT_TRUE(type({"SETVAR", "?", "EXP*"}).contains(u"EXPERT  0"));
}

// Menus and messages -----------------------------------------------------------------------------------

TEST_F(HostCommands, LoadMenusAndShowToolbars)
{
    const QString menu = tests::testDataPath(QStringLiteral("corpus/menu/review.mnu"));
    const QString bad = tests::testDataPath(QStringLiteral("corpus/menu/cut.mnu"));
    const auto run = [](const QStringList &typed) {
        tests::ScriptFrontEnd script(typed);
        acedEditor()->processInput();
        return script.printed;
    };
    acedSetIntVar(QStringLiteral("CMDECHO"), 1);
    EXPECT_TRUE(run({QStringLiteral("MENULOAD"), menu}).contains(u"菜单组: 审查"));
    EXPECT_TRUE(run({QStringLiteral("_MENULOAD"), menu}).contains(u"loaded already"));
    EXPECT_TRUE(run({QStringLiteral("CUILOAD"), bad}).contains(u"cut.mnu:1: "));
    const AcEdMenuGroup *const group = acedMenus().group(QStringLiteral("审查"));
    ASSERT_NE(group, nullptr);
    acedCommandS({QStringLiteral("_TOOLBAR"), QStringLiteral("审查"), QStringLiteral("Show")});
    EXPECT_TRUE(group->toolbarsShown);
    type({"-TOOLBAR", "审查.TB1", "H"});
    EXPECT_FALSE(group->toolbarsShown);
    EXPECT_TRUE(type({"TOOLBAR", "nothing"}).contains(u"没有工具栏"));
    acedCommandS({QStringLiteral("_CUIUNLOAD"), QStringLiteral("审查")});
    EXPECT_FALSE(acedIsMenuGroupLoaded(QStringLiteral("审查")));
    EXPECT_TRUE(type({"MENUUNLOAD", "审查"}).contains(u"没有加载菜单组"));
}

TEST_F(HostCommands, MessageBoxesAreAnsweredByTheScript)
{
    type({});
    tests::ScriptFrontEnd script({}, lines({"ok", "YES", "no", "cancel", "yes"}));
    acedAlert(QStringLiteral("first"));
    EXPECT_EQ(acedAsk(QStringLiteral("a?"), AcEdButtons::yesNo), AcEdButton::yes);
    EXPECT_EQ(acedAsk(QStringLiteral("b?"), AcEdButtons::yesNoCancel), AcEdButton::no);
    EXPECT_EQ(acedAsk(QStringLiteral("c?"), AcEdButtons::okCancel), AcEdButton::cancel);
    EXPECT_EQ(script.dialogs, lines({"first", "a?", "b?", "c?"}));
    EXPECT_TRUE(script.refusals.isEmpty());
    EXPECT_FALSE(acedEditor()->isQuitting());
    // A button that is not there, and no line at all: the one that changes nothing, and the end of the run.
    EXPECT_EQ(acedAsk(QStringLiteral("d?"), AcEdButtons::okCancel), AcEdButton::cancel);
    EXPECT_EQ(script.refusals.size(), 1);
    EXPECT_TRUE(acedEditor()->isQuitting());
    EXPECT_EQ(acedAsk(QStringLiteral("e?"), AcEdButtons::yesNo), AcEdButton::no);
}

// Files ------------------------------------------------------------------------------------------------

TEST(HostFileCommands, SaveOpenAndClose)
{
    acedRegisterHostCommands();
    const tests::TempDir folder;
    const QString path = folder.path(QStringLiteral("plan one"));
    const auto run = [](const QStringList &typed) {
        tests::ScriptFrontEnd script(typed);
        acedEditor()->processInput();
        EXPECT_TRUE(script.isUsedUp()) << qPrintable(script.printed);
        return script.printed;
    };
    const QString none;
    const std::size_t opened = acDocManager()->documents().size();
    run({QStringLiteral("NEW"), QStringLiteral("POINT"), QStringLiteral("1,2"), QStringLiteral("QSAVE"),
         path});
    EXPECT_EQ(folder.fileNames(), QStringList{QStringLiteral("plan one.dxf")});
    EXPECT_FALSE(curDoc()->isModified());
    EXPECT_EQ(curDoc()->fileName(), path + QStringLiteral(".dxf"));

    const QString second = folder.write(QStringLiteral("other.dxf"), "not to be lost");
    run({QStringLiteral("SAVEAS"), second, QStringLiteral("N")});
    EXPECT_EQ(tests::readFile(second), "not to be lost");
    EXPECT_EQ(curDoc()->fileName(), path + QStringLiteral(".dxf"));
    run({QStringLiteral("SAVE"), second, QStringLiteral("Y")}); // A copy; the document keeps its name.
    EXPECT_NE(tests::readFile(second), "not to be lost");
    EXPECT_EQ(curDoc()->fileName(), path + QStringLiteral(".dxf"));
    run({QStringLiteral("EXPERT"), QStringLiteral("2"), QStringLiteral("SAVEAS"), second,
         QStringLiteral("EXPERT"), QStringLiteral("0")});
    EXPECT_EQ(curDoc()->fileName(), second);

    run({QStringLiteral("POINT"), QStringLiteral("3,4"), QStringLiteral("CLOSE"), QStringLiteral("N")});
    ASSERT_EQ(acDocManager()->documents().size(), opened + 1);
    tests::ScriptFrontEnd quitting({QStringLiteral("QUIT"), none});
    acedEditor()->processInput();
    EXPECT_FALSE(acedEditor()->isQuitting());
    tests::ScriptFrontEnd agreed({QStringLiteral("QUIT"), QStringLiteral("Y"), QStringLiteral("never read")});
    acedEditor()->processInput();
    EXPECT_TRUE(acedEditor()->isQuitting());
    EXPECT_FALSE(agreed.isUsedUp());

    run({QStringLiteral("CLOSE"), QStringLiteral("Y"), QStringLiteral("OPEN"),
         path + QStringLiteral(".dxf")});
    ASSERT_EQ(acDocManager()->documents().size(), opened + 1);
    AcDbObjectPointer<AcDbBlockTableRecord> space(acdbCurDwg()->currentSpaceId(), AcDb::kForRead);
    EXPECT_EQ(space->entities().size(), 1u);
    space.close();
    EXPECT_TRUE(
        run({QStringLiteral("OPEN"), folder.path(QStringLiteral("missing.dxf"))}).contains(u"missing.dxf"));
    run({QStringLiteral("CLOSE")});
    EXPECT_EQ(acDocManager()->documents().size(), opened);
    EXPECT_TRUE(run({QStringLiteral("LINE")}).contains(u"没有打开的图形"));
    EXPECT_TRUE(run({QStringLiteral("APPLOAD"), folder.path(QStringLiteral("no.so"))}).contains(u"no.so"));
}

TEST_F(HostCommands, WhatCannotBeDoneEndsAScript)
{
    const std::initializer_list<const char *> cases[] = {
        {"OPEN", "no such file.dxf"},
        {"SAVEAS", "no/such/folder/a.dxf"},
        {"NOSUCH"},
        {"(nosuch)"},
        {"ZOOM", "nonsense"},
        {"SETVAR", "OSMODE", "blue"},
        {"SETVAR", "NO"},
        {"LAYER", "S", "NO"},
        {"LAYOUT", "S", "NO"},
        {"VIEW", "R", "NO"},
        {"TOOLBAR", "NO"},
        {"MSPACE"},
    };
    for (const auto &typed : cases) {
        tests::ScriptFrontEnd script(lines(typed));
        acedEditor()->processInput();
        EXPECT_EQ(script.refusals.size(), 1) << *typed.begin() << qPrintable(script.printed);
    }
}

TEST_F(HostCommands, WhatTheDrawingKeeperLeavesUndoneEndsTheLine)
{
    struct Reluctant : AcEdDrawingKeeper {
        bool open(const QString &) override { return false; }
        bool save(AcApDocument *, const QString &) override { return false; }
        bool mayClose(const std::vector<AcApDocument *> &) override { return false; }
    };
    struct Kept : tests::ScriptFrontEnd {
        using ScriptFrontEnd::ScriptFrontEnd;
        AcEdDrawingKeeper *drawingKeeper() override { return &keeper; }
        Reluctant keeper;
    };
    const std::size_t before = entities().size();
    Kept script(lines({"(command \"OPEN\" \"other.dxf\" \"POINT\" \"1,2\")",
                       "(command \"SAVEAS\" \"other.dxf\" \"POINT\" \"1,2\")"}));
    acedEditor()->processInput();
    EXPECT_EQ(script.refusals.size(), 2) << qPrintable(script.printed);
    EXPECT_EQ(entities().size(), before) << "in the wrong drawing";
}

// Every command ----------------------------------------------------------------------------------------

TEST_F(HostCommands, EndWhateverTheScriptLacks)
{
    // Nothing at all, Enter again and again, a cancel at each prompt: no command hangs or falls over, and
    // none leaves the drawing locked or an undo group open.
    const QStringList tails[] = {{},
                                 QStringList(30, QString()),
                                 {QStringLiteral("^C")},
                                 {QStringLiteral("1,1"), QStringLiteral("^C")}};
    const std::vector<AcEdCommand> commands = acedRegCmds()->commands();
    std::size_t tried = 0;
    for (const AcEdCommand &command : commands) {
        if (command.group != u"HOST" || command.globalName == u"NEW" || command.globalName == u"CLOSE")
            continue;
        for (const QStringList &tail : tails) {
            tests::ScriptFrontEnd script(tail);
            acedEditor()->runCommand(command.globalName);
            EXPECT_EQ(document().lockMode(), AcAp::kNone) << qPrintable(command.globalName);
            EXPECT_FALSE(database().undo().isOpen()) << qPrintable(command.globalName);
            EXPECT_EQ(acedEditor()->activeCommands(), u"") << qPrintable(command.globalName);
            ++tried;
        }
    }
    EXPECT_GT(tried, 100u);
}
