// Comparing, refreshing and deleting snapshots of all marks: what they say and what becomes of the marks.
#include "quillnote/snapshot/commands/changed_targets.h"
#include "quillnote/snapshot/commands/compare_snapshots.h"
#include "quillnote/snapshot/commands/compared_picture.h"
#include "quillnote/snapshot/commands/delete_pictures.h"
#include "quillnote/snapshot/commands/place_differences.h"
#include "quillnote/snapshot/commands/refresh_snapshots.h"

#include "quillnote/authoring/new_mark.h"
#include "quillnote/entity/mark_class.h"
#include "quillnote/entity/mark_record.h"
#include "quillnote/entity/password.h"
#include "quillnote/frame/settings/settings.h"

#include "host/aced/edspace.h"
#include "host/aced/hostcommands.h"
#include "host/acgi/query/install.h"
#include "tests/support/memory_drawing.h"
#include "tests/support/script_front_end.h"

#include <gmock/gmock.h>

static const QString kOk = QStringLiteral("ok");

struct SnapshotCommandsTest : testing::Test {
    SnapshotCommandsTest()
    {
        acgi::install();
        acedRegisterHostCommands();
        registerMarkClass();
        passwordState().reset();
        settings::setText(u"name", u"");
        tests::MemoryDrawing memory;
        memory.layer("LOCKED", {.flags = 4});
        line = memory.entity("LINE",
                             {{100, "AcDbLine"}, {10, AcGePoint3d(0, 5, 0)}, {11, AcGePoint3d(50, 5, 0)}});
        circle = memory.entity("CIRCLE", {{100, "AcDbCircle"}, {10, AcGePoint3d(105, 5, 0)}, {40, 1.0}});
        sheetLine = memory.entity(
            "LINE", {{67, 1}, {100, "AcDbLine"}, {10, AcGePoint3d(0, 5, 0)}, {11, AcGePoint3d(9, 5, 0)}},
            memory.paperSpace());
        drawing = std::make_unique<tests::OpenDrawing>(memory.open());
        drawing->document().view().centre = {50, 20, 0};
        drawing->document().view().height = 100;
    }
    ~SnapshotCommandsTest() override
    {
        drawing.reset();
        setPasswordPrompt({});
        passwordState().reset();
        unregisterMarkClass();
    }

    AcDbDatabase &database() const { return drawing->database(); }
    /// A mark over ten units from `x`.
    AcDbObjectId mark(double x, std::uint16_t number, std::uint16_t subNumber = 0) const
    {
        NewMark request;
        request.corner1 = {x, 0, 0};
        request.corner2 = {x + 10, 10, 0};
        const AcDbObjectId id = createMark(database(), request);
        const AcDbObjectPointer<QuillnoteObj3> made(id, AcDb::kForWrite);
        made->markNumber = number;
        made->subNumber = subNumber;
        return id;
    }
    void change(std::uint64_t entity, int code, resbuf::Value value) const
    {
        AcDbObjectPointer<AcDbEntity> opened(drawing->id(entity), AcDb::kForWrite);
        ASSERT_TRUE(opened);
        findGroup(opened->editGroups(), code)->assign(std::move(value));
    }
    void moveLine() const { change(line, 10, AcGePoint3d(1, 5, 0)); }
    static QString compare()
    {
        tests::ScriptFrontEnd script({}, {kOk});
        QN3_compareSnapshot();
        return script.printed;
    }
    static std::int16_t statusOf(AcDbObjectId id)
    {
        return AcDbObjectPointer<QuillnoteObj3>(id, AcDb::kForRead)->feedbackType;
    }
    static QString refresh(const QString &answer, const QStringList &dialogLines)
    {
        tests::ScriptFrontEnd script({answer}, dialogLines);
        QN3_freshSnapshot();
        return script.printed;
    }

    std::unique_ptr<tests::OpenDrawing> drawing;
    std::uint64_t line = 0;
    std::uint64_t circle = 0;
    std::uint64_t sheetLine = 0;
};

TEST_F(SnapshotCommandsTest, ComparingListsWhatWasModified)
{
    tests::ScriptFrontEnd nobody;
    QN3_compareSnapshot();
    EXPECT_EQ(nobody.printed, QStringLiteral("\n本图中无评图标签。"));

    const AcDbObjectId three = mark(0, 3);
    const AcDbObjectId answered = mark(10, 5, 2);
    const AcDbObjectId elsewhere = mark(100, 4);
    AcDbObjectPointer<QuillnoteObj3>(answered, AcDb::kForWrite)->feedbackType = 2;
    EXPECT_TRUE(
        compare().endsWith(QStringLiteral("本图中总共有3个评图标签，所有评图标签的靶区范围内都没有修改。")));
    EXPECT_EQ(statusOf(three), 0);

    moveLine();
    EXPECT_TRUE(
        compare().endsWith(QStringLiteral("本图中总共有3个评图标签，以下序号的靶区范围内已修改：\n  3,5.2")));
    EXPECT_EQ(statusOf(three), 3);
    EXPECT_EQ(statusOf(answered), 2);
    EXPECT_EQ(statusOf(elsewhere), 0);

    // A target that is empty now; one without a target of its own; the view turned.
    AcDbObjectPointer<AcDbEntity>(drawing->id(circle), AcDb::kForWrite)->erase();
    AcDbObjectPointer<QuillnoteObj3>(three, AcDb::kForWrite)->targetStyle = TargetStyle(-2);
    drawing->document().view().twist = 0.7;
    EXPECT_TRUE(compare().endsWith(QStringLiteral("\n  5.2,4")));
}

TEST_F(SnapshotCommandsTest, EveryMarkIsComparedInItsOwnSpace)
{
    acedMakeSpaceCurrent(drawing->document(), database().paperSpaceId());
    mark(0, 1);
    acedMakeSpaceCurrent(drawing->document(), database().modelSpaceId());
    EXPECT_TRUE(compare().endsWith(QStringLiteral("都没有修改。")));
    change(sheetLine, 10, AcGePoint3d(1, 5, 0));
    EXPECT_TRUE(compare().endsWith(QStringLiteral("\n  1")));
}

TEST_F(SnapshotCommandsTest, WhatHasNoSnapshotOrCannotBeWrittenIsNoFinding)
{
    const AcDbObjectId leader = mark(0, 1);
    {
        const AcDbObjectPointer<QuillnoteObj3> made(leader, AcDb::kForWrite);
        made->leaderMode = LeaderMode::leader;
        made->snapEntityIds.clear();
        made->snapChecksum.clear();
        made->snapImage.clear();
    }
    const AcDbObjectId locked = mark(0, 2);
    AcDbObjectPointer<QuillnoteObj3>(locked, AcDb::kForWrite)->setLayer(QStringLiteral("LOCKED"));
    moveLine();
    const QString said = compare();
    EXPECT_TRUE(said.endsWith(QStringLiteral("都没有修改。"))) << said.toStdString();
    EXPECT_TRUE(said.contains(QStringLiteral("1 个评图标签无法修改")));
    EXPECT_EQ(statusOf(locked), 0);
    EXPECT_EQ(compareTargets(database(), std::vector{leader, locked}).withoutSnapshot, 1U);
}

TEST_F(SnapshotCommandsTest, StoppingBetweenMarksDoesNoHarm)
{
    mark(0, 1);
    const AcDbObjectId second = mark(10, 2);
    moveLine();
    int asked = 0;
    const auto stopAtSecond = [&asked](double) { return ++asked < 2; };
    const auto ids = collectMarks(database()).ids;
    const TargetComparison found = compareTargets(database(), ids, stopAtSecond);
    EXPECT_TRUE(found.stopped);
    EXPECT_EQ(found.changed.size(), 1U);
    asked = 0;
    const RefreshResult refreshed = refreshSnapshots(
        ids, [](const QString &) { return true; }, stopAtSecond);
    EXPECT_TRUE(refreshed.stopped);
    EXPECT_EQ(refreshed.refreshed, 1);
    const auto left = compareTargets(database(), ids).changed;
    ASSERT_EQ(left.size(), 1U);
    EXPECT_EQ(left[0].mark, second);
}

TEST_F(SnapshotCommandsTest, RefreshingTakesEverythingAnew)
{
    const AcDbObjectId one = mark(0, 1);
    AcDbObjectPointer<QuillnoteObj3>(one, AcDb::kForWrite)->feedbackType = 2;
    moveLine();
    for (const char *no : {"n", "", "yess"})
        EXPECT_FALSE(refresh(QString::fromLatin1(no), {}).contains(QStringLiteral("快照。")));
    EXPECT_EQ(statusOf(one), 2);
    EXPECT_TRUE(refresh(QStringLiteral("y"), {kOk})
                    .contains(QStringLiteral("\n刷新或者重建了 1 个评图标签的快照。")));
    const AcDbObjectPointer<QuillnoteObj3> made(one, AcDb::kForRead);
    EXPECT_EQ(made->feedbackType, 0);
    EXPECT_FALSE(made->snapImage.isEmpty());
    EXPECT_FALSE(made->fullImage.isEmpty());
    EXPECT_TRUE(compareTargets(database(), std::vector{one}).changed.empty());
}

TEST_F(SnapshotCommandsTest, OnlyOwnMarksAreRefreshedAndPasswordsAskedFor)
{
    mark(0, 1);
    settings::setText(u"name", u"李工");
    EXPECT_TRUE(refresh({}, {}).endsWith(
        QStringLiteral("\n本图中没有<李工>的评图标签。不是自己创建的，或不同命名的标记不能刷新。")));
    settings::setText(u"name", u"");

    for (const double x : {10.0, 20.0}) {
        const AcDbObjectPointer<QuillnoteObj3> made(mark(x, 2), AcDb::kForWrite);
        made->chPwMD5 = hashPassword(QStringLiteral("right"));
    }
    int prompts = 0;
    QString password = QStringLiteral("wrong");
    setPasswordPrompt([&]() -> std::optional<QString> { return ++prompts, password; });
    const QString said = refresh(QStringLiteral("YES"), {kOk});
    EXPECT_TRUE(said.contains(QStringLiteral("\n密码校验错误。")));
    EXPECT_TRUE(said.contains(QStringLiteral("刷新或者重建了 1 个")));
    EXPECT_EQ(prompts, 4 + 1) << "three times more, once in a run of the program";
    password = QStringLiteral("right");
    EXPECT_TRUE(refresh(QStringLiteral("YES"), {kOk}).contains(QStringLiteral("刷新或者重建了 3 个")));
    EXPECT_EQ(prompts, 6) << "what is unlocked is not asked for again";
}

TEST_F(SnapshotCommandsTest, PicturesAreDeletedAndComparingGoesOn)
{
    const AcDbObjectId one = mark(0, 1);
    const qsizetype size = AcDbObjectPointer<QuillnoteObj3>(one, AcDb::kForRead)->snapImage.size();
    ASSERT_GT(size, 0);
    tests::ScriptFrontEnd no({QStringLiteral("y")}, {kOk});
    QN3_delSnapBitmapAll();
    EXPECT_TRUE(no.printed.endsWith(QStringLiteral("\n必须输入完整的 YES 才能继续！")));
    tests::ScriptFrontEnd yes({QStringLiteral("Yes")}, {kOk});
    QN3_delSnapBitmapAll();
    EXPECT_TRUE(
        yes.printed.endsWith(QStringLiteral("\n本图中所有评图标签中的快照图像都已清除 %1 字节。").arg(size)));
    EXPECT_TRUE(AcDbObjectPointer<QuillnoteObj3>(one, AcDb::kForRead)->snapImage.isEmpty());
    EXPECT_TRUE(compareTargets(database(), std::vector{one}).changed.empty());
    moveLine();
    EXPECT_EQ(compareTargets(database(), std::vector{one}).changed.size(), 1U);
}

// Pictures ----------------------------------------------------------------------------------------

static int countPixels(const QImage &picture, QColor color)
{
    int count = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            count += picture.pixel(x, y) == color.rgb() ? 1 : 0;
    }
    return count;
}

static const QColor kGone(230, 0, 0);
static const QColor kNew(0, 150, 0);

TEST_F(SnapshotCommandsTest, PicturesOfNowLieOnTheKeptOnes)
{
    // Somewhere between the pixels, and seen from elsewhere since.
    drawing->document().view().centre = {50.37, 20.19, 0};
    const AcDbObjectId one = mark(0.123, 1);
    drawing->document().view().height = 33;
    AcDbObjectPointer<QuillnoteObj3> opened(one, AcDb::kForRead);
    QImage both = sideBySide(storedAndNow(database(), *opened));
    ASSERT_FALSE(both.isNull());
    EXPECT_EQ(countPixels(both, kGone) + countPixels(both, kNew), 0);
    opened.close();

    change(line, 10, AcGePoint3d(0, 8, 0));
    const AcDbObjectPointer<QuillnoteObj3> again(one, AcDb::kForRead);
    both = sideBySide(storedAndNow(database(), *again));
    EXPECT_GT(countPixels(both, kGone), 20);
    EXPECT_GT(countPixels(both, kNew), 20);
}
