// Fingerprints: the text that is counted, the sum, and what changes them in a drawing.
#include "quillnote/entity/mark_class.h"
#include "quillnote/entity/mark_record.h"
#include "quillnote/snapshot/fingerprint.h"

#include "host/acdb/dbapi.h"
#include "host/acdb/dbsymtb.h"
#include "host/acdb/owngroups.h"
#include "host/acgi/query/install.h"
#include "tests/support/memory_drawing.h"
#include "tests/support/script_front_end.h"

#include <gmock/gmock.h>

#include <random>

using testing::ElementsAre;

TEST(FingerprintText, WritesEachGroupByItsCode)
{
    const ResbufList data{{-1, AcDbObjectId()},
                          {0, QStringLiteral("LINE")},
                          {330, AcDbObjectId()},
                          {5, QStringLiteral("2A")},
                          {100, QStringLiteral("AcDbEntity")},
                          {67, std::int64_t(0)},
                          {410, QStringLiteral("Model")},
                          {8, resbuf::Value()},
                          {62, std::int64_t(3)},
                          {10, AcGePoint3d(0.0000001, -1234567, 1e100)},
                          {11, AcGePoint2d(1.5, 2)},
                          {18, AcGePoint3d()},
                          {39, 0.1234567},
                          {70, std::int64_t(65535)},
                          {80, std::int64_t(1)},
                          {90, std::int64_t(4294967295)},
                          {1001, QStringLiteral("APP")}};
    EXPECT_EQ(fingerprintText(data),
              QStringLiteral("(0,\"LINE\")(5,\"2A\")(67,0)(8,(NULL))"
                             "(10,(1e-007, -1.23457e+006, 1e+100))(11,(1.5, 2, 0))"
                             "(18,*Unknown*)(39,0.123457)(70,-1)(80,*Unknown*)(90,-1)"));
}

TEST(FingerprintSum, AddsCodeUnitsAndWraps)
{
    EXPECT_EQ(fingerprintSum(QStringLiteral("AB")), 131);
    EXPECT_EQ(fingerprintSum(QStringLiteral("BA"), 1), 132);
    EXPECT_EQ(fingerprintSum(QStringLiteral("\u95E8")), 0x95E8);
    // 40000 x 65535 = 2621400000, which is 2^32 - 1673567296.
    EXPECT_EQ(fingerprintSum(QString(40000, QChar(0xFFFF))), -1673567296);
}

static MarkCorners box(const AcGePoint3d &low, const AcGePoint3d &high)
{
    return {.corner1 = low, .corner2 = high, .corner3 = {low.x, high.y, 0}, .corner4 = {high.x, low.y, 0}};
}

struct FingerprintTest : testing::Test {
    FingerprintTest()
    {
        acgi::install();
        registerMarkClass();
        tests::MemoryDrawing memory;
        memory.layer("FROZEN", {.flags = 1});
        line = memory.entity("LINE",
                             {{100, "AcDbLine"}, {10, AcGePoint3d(0, 5, 0)}, {11, AcGePoint3d(50, 5, 0)}});
        circle = memory.entity("CIRCLE", {{100, "AcDbCircle"}, {10, AcGePoint3d(5, 5, 0)}, {40, 1.0}});
        memory.entity("POINT", {{8, "FROZEN"}, {100, "AcDbPoint"}, {10, AcGePoint3d(5, 5, 0)}});
        memory.entity("CIRCLE", {{100, "AcDbCircle"}, {10, AcGePoint3d(40, 40, 0)}, {40, 1.0}});
        drawing = std::make_unique<tests::OpenDrawing>(memory.open());
    }
    ~FingerprintTest() override
    {
        drawing.reset();
        unregisterMarkClass();
    }
    TargetFingerprint taken(double x = 10, double y = 10) const
    {
        return computeTargetFingerprint(box({}, AcGePoint3d(x, y, 0)));
    }
    void change(std::uint64_t entity, int code, resbuf::Value value) const
    {
        AcDbObjectPointer<AcDbEntity> opened(drawing->id(entity), AcDb::kForWrite);
        ASSERT_TRUE(opened);
        ResbufList &groups = opened->editGroups();
        if (resbuf *const group = findGroup(groups, code))
            group->assign(std::move(value));
        else
            groups.insert(groups.begin() + std::ptrdiff_t(subclassBegin(groups, u"AcDbEntity")),
                          {code, std::move(value)});
    }
    std::unique_ptr<tests::OpenDrawing> drawing;
    std::uint64_t line = 0;
    std::uint64_t circle = 0;
};

TEST_F(FingerprintTest, CountsWhatCrossesTheTargetButNoMarks)
{
    const TargetFingerprint before = taken();
    EXPECT_THAT(before.ids, ElementsAre(drawing->id(circle), drawing->id(line)));
    EXPECT_TRUE(before.checksum.startsWith(QStringLiteral("SUM=")));
    {
        auto mark = std::make_unique<QuillnoteObj3>();
        mark->targetCorner2 = {9, 9, 0};
        AcDbObjectPointer<AcDbBlockTableRecord> space(drawing->database().modelSpaceId(), AcDb::kForWrite);
        AcDbObjectId id;
        ASSERT_EQ(space->appendAcDbEntity(id, mark.get()), Acad::eOk);
        mark.release()->close();
    }
    EXPECT_EQ(taken().checksum, before.checksum);
    const TargetFingerprint nothing = computeTargetFingerprint(box({100, 100, 0}, {110, 110, 0}));
    EXPECT_FALSE(nothing.isFound());
    EXPECT_EQ(nothing.checksum, QString());
}

TEST_F(FingerprintTest, TellsChangesButOfColour)
{
    const QString before = taken().checksum;
    change(line, 62, std::int64_t(1));
    EXPECT_EQ(taken().checksum, before);
    change(line, 62, std::int64_t(256));
    EXPECT_EQ(taken().checksum, before);
    change(circle, 210, AcGePoint3d(0, 0, 1)); // The default, said.
    EXPECT_EQ(taken().checksum, before);

    change(line, 8, QStringLiteral("WALLS"));
    const QString otherLayer = taken().checksum;
    EXPECT_NE(otherLayer, before);
    change(line, 11, AcGePoint3d(60, 5, 0));
    EXPECT_NE(taken().checksum, otherLayer);
    AcDbObjectPointer<AcDbEntity>(drawing->id(circle), AcDb::kForWrite)->erase();
    EXPECT_EQ(taken().ids.size(), 1U);
}

TEST_F(FingerprintTest, CornersAreOfTheWorldWhateverTheUcs)
{
    const QString before = taken().checksum;
    drawing->document().ucs().origin = {1000, 0, 0};
    EXPECT_EQ(taken().checksum, before);
}

TEST_F(FingerprintTest, ATargetHasItsOwnSidesHoweverItIsSeen)
{
    const TargetFingerprint before = taken(30, 10);
    EXPECT_EQ(before.ids.size(), 2U);
    for (const double twist : {0.5, kGePi / 4, kGePi / 2, -2.0}) {
        drawing->document().view().twist = twist;
        const TargetFingerprint after = taken(30, 10);
        EXPECT_EQ(after.ids, before.ids) << twist;
        EXPECT_EQ(after.checksum, before.checksum) << twist;
    }
    // A target that lies askew itself: its corners enclose the circle, the world's box around them more.
    const MarkCorners askew{
        .corner1 = {5, 2, 0}, .corner2 = {5, 8, 0}, .corner3 = {2, 5, 0}, .corner4 = {8, 5, 0}};
    EXPECT_EQ(computeTargetFingerprint(askew).ids.size(), 2U);
    const MarkCorners beside{
        .corner1 = {40, 20, 0}, .corner2 = {40, 60, 0}, .corner3 = {20, 40, 0}, .corner4 = {60, 40, 0}};
    EXPECT_EQ(computeTargetFingerprint(beside).ids.size(), 1U) << "the circle in its middle";
}

/// A drawing of many kinds in a square of 100, some of them changed since it was opened.
static std::unique_ptr<tests::OpenDrawing> crowdedDrawing(std::mt19937 &random, int entities)
{
    std::uniform_real_distribution<double> place(0.0, 100.0);
    tests::MemoryDrawing memory;
    memory.entity("LINE", {{100, "AcDbLine"}, {10, AcGePoint3d()}, {11, AcGePoint3d(3, 1, 0)}},
                  memory.block("B"));
    std::vector<std::uint64_t> handles;
    for (int i = 0; i < entities; ++i) {
        const tests::Group at(10, AcGePoint3d(place(random), place(random), 0));
        const tests::Group to(11, AcGePoint3d(place(random), place(random), 0));
        if (i % 5 == 0)
            handles.push_back(memory.entity("LINE", {{100, "AcDbLine"}, at, to, {1001, "APP"}, {1000, "x"}}));
        else if (i % 5 == 1)
            handles.push_back(memory.entity("CIRCLE", {{100, "AcDbCircle"}, at, {40, place(random) / 20}}));
        else if (i % 5 == 2)
            handles.push_back(
                memory.entity("INSERT", {{100, "AcDbBlockReference"}, {2, "B"}, at, {50, 40.0}}));
        else if (i % 5 == 3)
            handles.push_back(memory.entity("TEXT", {{100, "AcDbText"}, {1, "门 %%c"}, at, {40, 1.0}}));
        else
            handles.push_back(memory.entity("STRANGE_KIND", {{100, "AcDbStrange"}, at, {90, i}}));
    }
    auto drawing = std::make_unique<tests::OpenDrawing>(memory.open());
    for (std::size_t i = 0; i < handles.size(); i += 7)
        AcDbObjectPointer<AcDbEntity>(drawing->id(handles[i]), AcDb::kForWrite)
            ->transformBy(AcGeMatrix3d::translation({1.0 / 3, 0, 0}));
    return drawing;
}

/// Each entity of the drawing is looked at, and its whole text is made.
static TargetFingerprint takenSlowly(AcDbDatabase &database, const acgi::Window &window)
{
    TargetFingerprint taken;
    std::int32_t sum = 0;
    for (const std::uint32_t index : database.blockContents(database.modelSpaceId())->entities) {
        const AcDbObjectId id(database.stub(index));
        bool crosses = false;
        readEntity(id, [&](const AcDbEntity &entity) { crosses = acgi::crosses(entity, window); });
        if (!crosses)
            continue;
        taken.ids.insert(taken.ids.begin(), id);
        sum = fingerprintSum(fingerprintText(acdbEntGetX(id, QStringLiteral("*"))), sum);
    }
    if (!taken.ids.empty())
        taken.checksum = QStringLiteral("SUM=%1").arg(sum);
    return taken;
}

TEST_F(FingerprintTest, ManyTakenTogetherAreThoseTakenOneByOne)
{
    std::mt19937 random(13);
    std::uniform_real_distribution<double> place(-10.0, 100.0);
    std::uniform_real_distribution<double> size(0.5, 15.0);
    const auto crowded = crowdedDrawing(random, 600);
    AcDbDatabase &database = crowded->database();
    const AcGePoint3d beyond(-1000, -1000, 0);
    std::vector<acgi::Window> targets;
    for (int i = 0; i < 60; ++i) {
        const AcGePoint3d low(place(random), place(random), 0);
        targets.push_back(acgi::Window::fromCorners(low, low + AcGeVector3d(size(random), size(random), 0),
                                                    i % 2 ? 0.0 : 0.5));
    }
    // More than one batch holds.
    targets.insert(targets.end(), 400, acgi::Window::fromCorners(beyond, {1000, 1000, 0}));

    std::vector<TargetFingerprint> together(targets.size());
    const auto keep = [&](std::size_t target, TargetFingerprint taken) {
        together[target] = std::move(taken);
        return true;
    };
    EXPECT_TRUE(FingerprintTaker(database).takeEach(database.modelSpaceId(), targets, keep));
    for (std::size_t i = 0; i < 61; ++i) {
        const TargetFingerprint slowly = takenSlowly(database, targets[i]);
        EXPECT_EQ(together[i].ids, slowly.ids) << i;
        EXPECT_EQ(together[i].checksum, slowly.checksum) << i;
    }
    for (std::size_t i = 61; i < targets.size(); ++i) {
        EXPECT_EQ(together[i].ids, together[60].ids) << i;
        EXPECT_EQ(together[i].checksum, together[60].checksum) << i;
    }
    std::size_t heard = 0;
    EXPECT_FALSE(FingerprintTaker(database).takeEach(
        database.modelSpaceId(), targets,
        [&](std::size_t, const TargetFingerprint &) { return ++heard < 3; }));
    EXPECT_EQ(heard, 3U);
}
