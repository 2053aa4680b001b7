// Hot links by their commands: drawing pairs in one drawing and in two, jumping, copies, what is gone or
// moved.
#include "quillnote/aids/link_pair.h"
#include "quillnote/aids/links/link_fields.h"
#include "quillnote/aids/links/link_set.h"

#include "host/acdb/dbapi.h"
#include "host/acdb/dbsymtb.h"
#include "host/aced/edsysvar.h"
#include "host/base/path_name.h"
#include "tests/quillnote/authoring/authoring_fixture.h"
#include "tests/support/files.h"

#include <QDir>

namespace
{

struct LinkCommands : AuthoringTest {
    LinkCommands() { pendingLink().reset(); }

    static std::vector<AcDbObjectId> links() { return linkIds(*acdbCurDwg()); }
    static AcDbObjectPointer<QuillLinkObj> open(AcDbObjectId id, AcDb::OpenMode mode = AcDb::kForRead)
    {
        return AcDbObjectPointer<QuillLinkObj>(id, mode);
    }
    /// Two links in the current drawing, the source at the origin.
    static void drawPair()
    {
        run("qn8_drawlink", {"0,0", "60,45", "1000,1000", "1100,1060"});
        ASSERT_EQ(links().size(), 2U);
    }
    static QString jump(AcDbObjectId link)
    {
        curDoc()->pickSet() = {link};
        return run("qn8_LinkDblClick");
    }
    static AcGePoint3d centreOfView() { return curDoc()->view().centre; }
    static QString save(const QString &path)
    {
        const auto saved = acDocManager()->saveDocument(curDoc(), path);
        EXPECT_TRUE(saved) << qPrintable(saved ? QString() : saved.error());
        return curDoc()->fileName();
    }
    static void closeAll()
    {
        for (AcApDocument *const document : acDocManager()->allDocuments())
            acDocManager()->closeDocument(document);
    }
    /// Saves two drawings whose links point at each other, a/plan.dxf and b/detail.dxf, and closes them.
    void makeFiles()
    {
        drawing.reset();
        for (const char *const folder : {"work/a", "work/b"})
            QDir(files.path()).mkpath(folder);
        acDocManager()->newDocument();
        plan = save(files.path("work/a/plan.dxf"));
        EXPECT_TRUE(run("qn8_drawlink", {"0,0", "60,45", "^C"}).contains(u"未获取点，放弃!"));
        AcApDocument *const first = curDoc();
        acDocManager()->newDocument();
        detail = save(files.path("work/b/detail.dxf"));
        run("qn8_drawlink", {"1000,1000", "1100,1060"});
        EXPECT_FALSE(pendingLink().isWaiting());
        save({});
        acDocManager()->activateDocument(first);
        save({});
        closeAll();
    }
    AcApDocument *openFile(const QString &path) const
    {
        const auto opened = acDocManager()->openDocument(path);
        EXPECT_TRUE(opened);
        return opened ? *opened : nullptr;
    }
    tests::TempDir files;
    QString plan;
    QString detail;
};

} // namespace

TEST_F(LinkCommands, APairPointsAtEachOtherAndIsOneStep)
{
    settings::setNumber(u"useLayer", 1);
    const QString printed = runAndBack("qn8_drawlink", {"0,0", "60,45", "1000,1000", "1100,1060"});
    EXPECT_EQ(printed.count(u"最好请先命名并保存本文件后"), 2);
    ASSERT_EQ(links().size(), 2U);
    const auto source = open(links()[0]);
    const auto target = open(links()[1]);
    EXPECT_EQ(source->partnerId, target->objectId());
    EXPECT_EQ(target->partnerId, source->objectId());
    EXPECT_EQ(target->partnerHandle, source->handle());
    EXPECT_EQ(source->linkRole, QuillLinkObj::source);
    EXPECT_EQ(target->linkRole, QuillLinkObj::target);
    EXPECT_EQ(source->linkKind, QuillLinkObj::sameDrawing);
    EXPECT_EQ(source->partnerPath, curDoc()->docTitle());
    EXPECT_EQ(source->layer(), QStringLiteral("评图标签"));
    EXPECT_EQ(source->corner4, AcGePoint3d(60, 0, 0));
}

TEST_F(LinkCommands, ASourceWaitsForItsTarget)
{
    EXPECT_TRUE(run("qn8_drawlink", {"^C"}).endsWith(u"未获取点，放弃!"));
    EXPECT_TRUE(run("qn8_drawlink", {"0,0", "^C"}).endsWith(u"未获取对角点，放弃!"));
    EXPECT_TRUE(links().empty());
    run("qn8_drawlink", {"0,0", "60,45", "100,100", "^C"});
    ASSERT_EQ(links().size(), 1U);
    tests::ScriptFrontEnd script({"100,100", "200,200"});
    acedEditor()->runCommand("qn8_drawlink");
    ASSERT_EQ(script.prompts.size(), 2U);
    EXPECT_TRUE(script.prompts[0].hasBase);
    EXPECT_EQ(script.prompts[0].base, AcGePoint3d(30, 22.5, 0));
    EXPECT_EQ(links().size(), 2U);

    // One that was taken back waits no longer, and neither does one whose drawing was closed.
    run("qn8_drawlink", {"0,0", "60,45", "^C"});
    database().undo().undo();
    run("qn8_drawlink", {"0,0", "60,45", "^C"});
    EXPECT_TRUE(pendingLink().isWaiting());
    drawing.reset();
    EXPECT_FALSE(pendingLink().isWaiting());
}

TEST_F(LinkCommands, ATargetThatCannotBeJoinedLeavesNothing)
{
    run("qn8_drawlink", {"0,0", "60,45", "^C"});
    AcDbObjectPointer<AcDbLayerTableRecord>(database().tableRecord(SymbolTable::layer, "0"), AcDb::kForWrite)
        ->setIsLocked(true);
    EXPECT_TRUE(run("qn8_drawlink", {"100,100", "200,200"}).contains(u"链接源无法修改：eOnLockedLayer"));
    EXPECT_EQ(links().size(), 1U);
    EXPECT_TRUE(pendingLink().isWaiting());
}

TEST_F(LinkCommands, JumpsThereAndBack)
{
    drawPair();
    const auto [source, target] = std::pair(links()[0], links()[1]);
    curDoc()->view().twist = 0.5;
    const int before = acedIntVar(QStringLiteral("VTENABLE"));
    EXPECT_EQ(jump(source), QString());
    EXPECT_TRUE(centreOfView().isEqualTo({1050, 1030, 0}, 1e-6));
    // Without a pick set it is asked for.
    curDoc()->pickSet().clear();
    run("qn8_LinkDblClick", {QStringLiteral("handle %1").arg(target.handle().value, 0, 16)});
    EXPECT_TRUE(centreOfView().isEqualTo({30, 22.5, 0}, 1e-6));
    EXPECT_EQ(acedIntVar(QStringLiteral("VTENABLE")), before);

    // A partner on a sheet: the sheet becomes current.
    const AcDbObjectId sheet = database().paperSpaceId();
    run("_LAYOUT", {"_Set", acdbLayoutName(sheet)});
    run("qn8_drawlink", {"0,0", "60,45", "^C"});
    EXPECT_EQ(open(pendingLink().source.link)->blockId(), sheet);
}

TEST_F(LinkCommands, CopiesPointAtCopiesOrSayThatTheyAreSome)
{
    drawPair();
    const std::vector<AcDbObjectId> pair = links();
    std::vector<AcDbObjectId> copies;
    {
        const AcDbUndoGroup step(database(), {});
        acdbDeepCloneEntities(pair, database().modelSpaceId(), copies);
        acdbDeepCloneEntities({pair[0]}, database().modelSpaceId(), copies);
        for (const AcDbObjectId id : copies)
            open(id, AcDb::kForWrite)->transformBy(AcGeMatrix3d::mirroring({0, 0, 0}, {0, 1, 0}));
    }
    ASSERT_EQ(copies.size(), 3U);
    EXPECT_EQ(open(copies[0])->partnerId, copies[1]);
    EXPECT_EQ(open(copies[1])->partnerHandle, copies[0].handle());
    EXPECT_EQ(open(pair[0])->partnerId, pair[1]);
    EXPECT_EQ(jump(copies[0]), QString());
    EXPECT_TRUE(centreOfView().isEqualTo({-1050, 1030, 0}, 1e-6));
    EXPECT_TRUE(jump(copies[2]).contains(u"可能是复制品"));
    EXPECT_TRUE(centreOfView().isEqualTo({1050, 1030, 0}, 1e-6));

    open(pair[1], AcDb::kForWrite)->erase();
    EXPECT_TRUE(jump(pair[0]).contains(u"没有热点链接的另一端"));
    EXPECT_TRUE(centreOfView().isEqualTo({1050, 1030, 0}, 1e-6));
}

TEST_F(LinkCommands, LinksTwoDrawings)
{
    makeFiles();
    AcApDocument *const first = openFile(plan);
    ASSERT_EQ(links().size(), 1U);
    const AcDbObjectId source = links()[0];
    {
        const auto link = open(source);
        EXPECT_EQ(link->linkKind, QuillLinkObj::otherDrawing);
        EXPECT_EQ(link->partnerPath, detail);
        EXPECT_TRUE(link->partnerId.isNull());
        EXPECT_EQ(link->corner2, AcGePoint3d(60, 45, 0));
    }
    EXPECT_EQ(jump(source), QString());
    ASSERT_EQ(curDoc()->fileName(), detail);
    EXPECT_TRUE(centreOfView().isEqualTo({1050, 1030, 0}, 1e-6));
    const AcDbObjectId target = links()[0];
    EXPECT_EQ(jump(target), QString());
    EXPECT_EQ(curDoc(), first) << "open drawings are activated";
    EXPECT_EQ(acDocManager()->documents().size(), 2U);

    // What has the handle now is no link, or none that points back.
    acDocManager()->activateDocument(acDocManager()->document(target.database()));
    open(target, AcDb::kForWrite)->erase();
    acDocManager()->activateDocument(first);
    EXPECT_TRUE(jump(source).contains(u"中没有热点链接的另一端"));
    closeAll();
}

TEST_F(LinkCommands, FindsDrawingsThatMovedTogetherAndNamesThoseThatAreGone)
{
    makeFiles();
    ASSERT_TRUE(QDir(files.path()).rename("work", "moved"));
    openFile(files.path("moved/a/plan.dxf"));
    EXPECT_TRUE(jump(links()[0]).contains(u"不在原处，改用"));
    EXPECT_EQ(curDoc()->fileName(), base::fullPath(files.path("moved/b/detail.dxf")));
    closeAll();
    ASSERT_TRUE(QFile::remove(files.path("moved/b/detail.dxf")));
    AcApDocument *const only = openFile(files.path("moved/a/plan.dxf"));
    EXPECT_TRUE(jump(links()[0]).contains(QStringLiteral("没有找到热点链接另一端所在的图形：") + detail));
    EXPECT_EQ(curDoc(), only);
    closeAll();
}

TEST_F(LinkCommands, HideShowAndDelete)
{
    drawPair();
    const std::vector<AcDbObjectId> pair = links();
    const auto modes = [&] { return std::pair(open(pair[0])->displayMode, open(pair[1])->displayMode); };
    using Modes = std::pair<std::int16_t, std::int16_t>;
    EXPECT_TRUE(runAndBack("QN8_LinksHide", {"C", "-1,-1", "70,50", ""}).contains(u"隐藏热点链接，请选择>>"));
    EXPECT_EQ(modes(), Modes(-1, 1));
    runAndBack("QN3_allMarksHide");
    EXPECT_EQ(modes(), Modes(-1, -1));
    runAndBack("QN3_allMarksShow");
    EXPECT_EQ(modes(), Modes(1, 1));
    open(pair[1], AcDb::kForWrite)->erasable = false;
    EXPECT_TRUE(runAndBack("QN8_LinksDel", {"All", ""}).contains(u"1 个热点链接无法修改"));
    EXPECT_EQ(links(), std::vector{pair[1]});
}
