// Dragging grips by the command, as a script does.
#include "host/acdb/dbentity.h"
#include "host/acdb/dbundo.h"
#include "host/aced/edcommands.h"
#include "host/aced/hostcommands.h"
#include "tests/support/memory_drawing.h"
#include "tests/support/script_front_end.h"

#include <gmock/gmock.h>

#include <cmath>

namespace
{

/// Two lines that meet at (10,0), and one from there on a locked layer.
class Grips : public testing::Test
{
protected:
    Grips()
    {
        tests::MemoryDrawing content;
        content.layer("LOCKED", {.flags = 4});
        acedRegisterHostCommands();
        m_left = line(content, "0", {0, 0, 0}, {10, 0, 0});
        m_right = line(content, "0", {10, 0, 0}, {20, 5, 0});
        m_locked = line(content, "LOCKED", {10, 0, 0}, {10, 30, 0});
        m_drawing.emplace(content.open());
        view() = {.centre = {10, 0, 0}, .height = 100, .pixelWidth = 100, .pixelHeight = 100};
    }

    static std::uint64_t line(tests::MemoryDrawing &content, const char *layer, AcGePoint3d from,
                              AcGePoint3d to)
    {
        return content.entity("LINE", {{8, layer}, {100, "AcDbLine"}, {10, from}, {11, to}});
    }
    AcDbObjectId id(std::uint64_t handle) const { return m_drawing->id(handle); }
    AcGeView &view() const { return m_drawing->document().view(); }
    std::vector<AcDbObjectId> &pickSet() const { return m_drawing->document().pickSet(); }

    QString drag(const QStringList &answers)
    {
        tests::ScriptFrontEnd script(answers);
        acedEditor()->runCommand(QStringLiteral("GRIP"));
        EXPECT_TRUE(script.isUsedUp());
        return script.printed;
    }
    void expectPoint(std::uint64_t handle, int code, const AcGePoint3d &expected) const
    {
        const ResbufList groups = m_drawing->database().fileGroups(*id(handle).stub());
        EXPECT_TRUE(findGroup(groups, code)->point().isEqualTo(expected, 1e-9)) << handle << " " << code;
    }

    std::uint64_t m_left = 0;
    std::uint64_t m_right = 0;
    std::uint64_t m_locked = 0;
    std::optional<tests::OpenDrawing> m_drawing;
};

} // namespace

TEST_F(Grips, OneDragMovesAllThatMeetAtThePlaceInOneStep)
{
    pickSet() = {id(m_left), id(m_right)};
    drag({"11,1", "@5,7"});
    expectPoint(m_left, 10, {0, 0, 0});
    expectPoint(m_left, 11, {15, 7, 0});
    expectPoint(m_right, 10, {15, 7, 0});
    expectPoint(m_right, 11, {20, 5, 0});
    EXPECT_THAT(pickSet(), testing::ElementsAre(id(m_left), id(m_right)));
    EXPECT_EQ(m_drawing->database().undo().position(), 1u);
    EXPECT_TRUE(m_drawing->database().undo().undo());
    expectPoint(m_left, 11, {10, 0, 0});
    expectPoint(m_right, 10, {10, 0, 0});
}

TEST_F(Grips, AsksForEntitiesWhenNoneAreChosenAndLeavesLockedOnes)
{
    const QString printed = drag({QStringLiteral("handle %1").arg(m_left, 0, 16),
                                  QStringLiteral("handle %1").arg(m_locked, 0, 16), "", "10,0", "12,0"});
    expectPoint(m_left, 11, {12, 0, 0});
    expectPoint(m_locked, 10, {10, 0, 0});
    EXPECT_TRUE(printed.contains(QStringLiteral("1 个对象不能改动"))) << qPrintable(printed);
    EXPECT_TRUE(pickSet().empty());
}

TEST_F(Grips, PlacesWithoutGripsChangeNothing)
{
    pickSet() = {id(m_left)};
    EXPECT_TRUE(drag({"3,20"}).contains(QStringLiteral("没有夹点")));
    drag({"0,0", "^C"});
    EXPECT_EQ(m_drawing->database().undo().position(), 0u);
}

TEST_F(Grips, ThePreviewFollowsAndLeavesTheDrawingAlone)
{
    struct Watching : tests::ScriptFrontEnd {
        using ScriptFrontEnd::ScriptFrontEnd;
        std::optional<AcEdAnswer> answer(const AcEdPrompt &prompt) override
        {
            if (prompt.tracker) {
                for (const AcGePoint3d place : {AcGePoint3d(90, 90, 0), AcGePoint3d(14, 3, 0)})
                    EXPECT_TRUE(prompt.tracker->cursorMoved(place));
                for (const AcDbEntity *const entity : prompt.tracker->shown())
                    ends.push_back(findGroup(entity->groups(), 11)->point());
            }
            return ScriptFrontEnd::answer(prompt);
        }
        std::vector<AcGePoint3d> ends;
    };
    pickSet() = {id(m_left)};
    Watching script({"10,0", "^C"});
    acedEditor()->runCommand(QStringLiteral("GRIP"));
    ASSERT_EQ(script.ends.size(), 1u);
    EXPECT_TRUE(script.ends[0].isEqualTo({14, 3, 0}, 1e-9));
    expectPoint(m_left, 11, {10, 0, 0});
}
