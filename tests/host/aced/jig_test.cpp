// Jigs: what the cursor shows, what an answer makes of it; filters of window messages.
#include "host/aced/edjig.h"

#include "host/acdb/dbentity.h"
#include "host/aced/edinput.h"
#include "host/aced/edwinmsg.h"
#include "tests/support/memory_drawing.h"
#include "tests/support/script_front_end.h"

#include <gmock/gmock.h>

namespace
{

/// A line from its base to the cursor.
class LineJig : public AcEdJig
{
public:
    explicit LineJig(const AcGePoint3d &from)
        : m_line(acdbNewEntity("LINE", {{100, QStringLiteral("AcDbLine")}, {10, from}, {11, from}})),
          m_end(from)
    {
        setBasePoint(from);
        setDispPrompt(QStringLiteral("\nnext: "));
        setUserInputControls(kAccept3dCoordinates | kNullResponseAccepted);
    }
    DragStatus sampler() override
    {
        AcGePoint3d point;
        const DragStatus status = acquirePoint(point);
        if (status == kNormal && point == m_end)
            return kNoChange;
        m_end = point;
        return status;
    }
    bool update() override
    {
        ++updates;
        m_line->setGroup(11, m_end);
        return true;
    }
    AcDbEntity *entity() const override { return m_line.get(); }
    const AcGePoint3d &end() const { return m_end; }
    int updates = 0;

private:
    std::unique_ptr<AcDbEntity> m_line;
    AcGePoint3d m_end;
};

/// Moves the cursor about before it answers.
class MovingFrontEnd : public tests::ScriptFrontEnd
{
public:
    using ScriptFrontEnd::ScriptFrontEnd;
    std::optional<AcEdAnswer> answer(const AcEdPrompt &prompt) override
    {
        for (const AcGePoint3d &place : path) {
            moved.push_back(prompt.tracker && prompt.tracker->cursorMoved(place));
            shown.push_back(prompt.tracker ? prompt.tracker->shown().size() : 0);
        }
        return ScriptFrontEnd::answer(prompt);
    }
    std::vector<AcGePoint3d> path;
    std::vector<bool> moved;
    std::vector<std::size_t> shown;
};

} // namespace

TEST(Jig, FollowsTheCursorAndTakesTheAnswer)
{
    const tests::OpenDrawing drawing(tests::MemoryDrawing().open());
    MovingFrontEnd front({"@5,0", "", "^C"});
    front.path = {{1, 1, 0}, {1, 1, 0}, {2, 1, 7}};
    LineJig jig({10, 10, 0});
    EXPECT_EQ(jig.drag(), AcEdJig::kNormal);
    EXPECT_EQ(front.moved, (std::vector<bool>{true, false, true}));
    EXPECT_EQ(front.shown, (std::vector<std::size_t>{1, 1, 1}));
    EXPECT_EQ(jig.end(), AcGePoint3d(15, 10, 0));
    EXPECT_EQ(jig.updates, 3);
    EXPECT_TRUE(front.prompts[0].hasBase);
    front.path.clear();
    EXPECT_EQ(jig.drag(), AcEdJig::kNull);
    EXPECT_EQ(jig.drag(), AcEdJig::kCancel);
}

TEST(Jig, AnswersInTheUserSystemBecomeWorldPoints)
{
    const tests::OpenDrawing drawing(tests::MemoryDrawing().open());
    drawing.document().ucs().origin = {100, 0, 0};
    drawing.document().ucs().xAxis = AcGeVector3d::kYAxis;
    drawing.document().ucs().yAxis = -AcGeVector3d::kXAxis;
    tests::ScriptFrontEnd script({"5,0"});
    LineJig jig({0, 0, 0});
    EXPECT_EQ(jig.drag(), AcEdJig::kNormal);
    EXPECT_TRUE(jig.end().isEqualTo({100, 5, 0}, 1e-9));
}

static int heard = 0;
static bool swallows(const AcEdWindowMessage &)
{
    ++heard;
    return true;
}
static bool leavesWhileCalled(const AcEdWindowMessage &)
{
    ++heard;
    EXPECT_TRUE(acedRemoveFilterWinMsg(leavesWhileCalled));
    EXPECT_TRUE(acedRegisterFilterWinMsg(leavesWhileCalled));
    return false;
}

TEST(WindowMessages, FiltersHearTheNewestFirst)
{
    ASSERT_TRUE(acedRegisterFilterWinMsg(swallows));
    EXPECT_FALSE(acedRegisterFilterWinMsg(swallows));
    ASSERT_TRUE(acedRegisterFilterWinMsg(leavesWhileCalled));
    heard = 0;
    EXPECT_TRUE(acedFilterWindowMessage({WM_PAINT, 1}));
    EXPECT_EQ(heard, 2);
    EXPECT_TRUE(acedRemoveFilterWinMsg(swallows));
    EXPECT_FALSE(acedRemoveFilterWinMsg(swallows));
    EXPECT_FALSE(acedFilterWindowMessage({WM_MOUSEWHEEL, 1}));
    EXPECT_TRUE(acedRemoveFilterWinMsg(leavesWhileCalled));
}
