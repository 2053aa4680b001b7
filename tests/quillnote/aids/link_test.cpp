// Hot links as entities: their bytes, how they are drawn, what dragging and transforming makes of them.
#include "quillnote/aids/links/link_fields.h"
#include "quillnote/aids/links/link_grips.h"
#include "quillnote/aids/links/link_layout.h"

#include "host/acdb/dbsymtb.h"
#include "tests/support/golden.h"
#include "tests/support/memory_drawing.h"
#include "tests/support/picture.h"
#include "tests/support/recorder.h"
#include "tests/support/script_front_end.h"

#include <gmock/gmock.h>

#include <numbers>
#include <random>

namespace
{

struct HotLink : testing::Test {
    HotLink() { registerLinkClass(); }

    Acad::ErrorStatus read(QuillLinkObj &link, const QByteArray &stream) const
    {
        AcDbMemoryFiler filer(AcDb::kFileFiler, database.get(), stream);
        return link.dwgInFields(&filer);
    }
    QByteArray written(const QuillLinkObj &link, AcDb::FilerType type = AcDb::kFileFiler) const
    {
        AcDbMemoryFiler filer(type, database.get());
        EXPECT_EQ(link.dwgOutFields(&filer), Acad::eOk);
        return filer.stream();
    }
    AcDbObjectId append(std::unique_ptr<QuillLinkObj> link) const
    {
        const AcDbObjectPointer<AcDbBlockTableRecord> space(database->modelSpaceId(), AcDb::kForWrite);
        AcDbObjectId id;
        EXPECT_EQ(space->appendAcDbEntity(id, link.get()), Acad::eOk);
        link.release()->close();
        return id;
    }
    static std::unique_ptr<QuillLinkObj> linkOver(const AcGePoint3d &low, const AcGePoint3d &high)
    {
        auto link = std::make_unique<QuillLinkObj>();
        link->setCorners(cornersInView(low, high, {}));
        return link;
    }
    static QStringList drawn(const QuillLinkObj &link)
    {
        tests::Recorder recorder;
        recorder.withPen = true;
        AcGiWorldDraw context(recorder, kAcGiStandardDisplay);
        EXPECT_TRUE(link.subWorldDraw(&context));
        return recorder.lines;
    }
    std::unique_ptr<AcDbDatabase> database = [] {
        tests::MemoryDrawing made;
        while (made.entity("LINE", {{10, AcGePoint3d()}, {11, AcGePoint3d(1, 1, 0)}}) < 0x1F)
            ;
        return made.open();
    }();
    tests::ScriptFrontEnd script;
};

/// By hand from docs/formats/link-stream.md; every field has a value of its own.
QByteArray goldenStream()
{
    return QByteArray::fromHex("0100"           // formatVersion
                               "00"             // erasable: no
                               "ffff"           // displayMode -1
                               "0300 0700 0200" // linkNumber, reserved1, linkRole
                               "000000000000f03f 0000000000000000 0000000000000000" // normal (1 0 0)
                               "0000000000000000 000000000000f03f 0000000000000000" // xDirection (0 1 0)
                               "000000000000f03f 0000000000000040 0000000000000840" // corner1 (1 2 3)
                               "0000000000001040 0000000000001440 0000000000001840" // corner2 (4 5 6)
                               "0000000000000840 0000000000000040 000000000000f03f" // corner3 (3 2 1)
                               "0000000000001840 0000000000001440 0000000000001040" // corner4 (6 5 4)
                               "feff 0400 0300"     // reserved2, colorIndex, linkKind
                               "1f00000000000000"   // partnerId 1F
                               "efcdab9078563412"   // partnerHandle
                               "02000000 6256 2e00" // partnerPath
                               "01000000 4e00"      // partnerName
                               "00000000");         // reserved3
}

} // namespace

TEST_F(HotLink, ReadsAndWritesTheGoldenBytes)
{
    QuillLinkObj link;
    ASSERT_EQ(read(link, goldenStream()), Acad::eOk);
    EXPECT_EQ(link.partnerId.handle().value, 0x1FU);
    EXPECT_EQ(link.partnerHandle.value, 0x1234567890ABCDEFU);
    EXPECT_EQ(link.partnerPath, QStringLiteral("噢."));
    EXPECT_EQ(link.corner4, AcGePoint3d(6, 5, 4));
    EXPECT_EQ(link.colorIndex, 4);
    EXPECT_TRUE(tests::sameBytes(written(link), goldenStream()));
    EXPECT_EQ(written(link, AcDb::kIdXlateFiler), QByteArray());
    QuillLinkObj again;
    ASSERT_EQ(read(again, written(link)), Acad::eOk);
    EXPECT_EQ(differingLinkFields(link, again), QStringList());
}

TEST_F(HotLink, RefusesTruncatedAndNewerRecords)
{
    const QByteArray whole = goldenStream();
    for (qsizetype size = 0; size < whole.size(); ++size) {
        QuillLinkObj link;
        ASSERT_EQ(read(link, whole.left(size)), Acad::eEndOfFile) << size;
        const QString line = std::exchange(script.printed, {});
        ASSERT_TRUE(line.startsWith(u"\n!QuillLink@") && line.endsWith(u": eEndOfFile")) << qPrintable(line);
    }
    QByteArray newer = whole;
    newer[0] = 2;
    QuillLinkObj link;
    EXPECT_EQ(read(link, newer), Acad::eMakeMeProxy);
    EXPECT_TRUE(script.printed.startsWith(u"请安装更高版本评图标签软件！\nhttp"));
}

TEST_F(HotLink, DxfHoldsTheVersionOnly)
{
    QuillLinkObj link;
    AcDbDxfFiler out(nullptr);
    ASSERT_EQ(link.dxfOutFields(&out), Acad::eOk);
    EXPECT_EQ(out.groups(), (ResbufList{{100, kLinkClassName.toString()}, {70, std::int64_t(1)}}));
    const auto readGroups = [&link](const ResbufList &groups) {
        AcDbDxfFiler in(nullptr, groups);
        return link.dxfInFields(&in);
    };
    EXPECT_EQ(readGroups(out.groups()), Acad::eOk);
    for (const auto &[version, status] :
         {std::pair{2, Acad::eMakeMeProxy}, std::pair{0, Acad::eBadDxfSequence}})
        EXPECT_EQ(readGroups({{100, kLinkClassName.toString()}, {70, std::int64_t(version)}}), status);
    EXPECT_EQ(readGroups({{70, std::int64_t(1)}}), Acad::eBadDxfSequence);
}

TEST_F(HotLink, ListsAndRefusesToBeErased)
{
    const AcDbObjectId id = append(linkOver({0, 0, 0}, {4, 3, 0}));
    const AcDbObjectPointer<QuillLinkObj> link(id, AcDb::kForWrite);
    link->partnerName = QStringLiteral("/图/b.dxf");
    link->subList();
    EXPECT_EQ(script.printed, QStringLiteral("\n热点链接[1][/图/b.dxf]"));
    link->erasable = false;
    EXPECT_EQ(link->erase(), Acad::eInvalidInput);
    link->erasable = true;
    EXPECT_EQ(link->erase(), Acad::eOk);
}

// Drawing -----------------------------------------------------------------------------------------

TEST_F(HotLink, SidesAreChainsOfNarrowAndWideLinks)
{
    // Diagonal 75, so the step is 5: sides of 60 have 12 links, those of 45 nine.
    const LinkLayout layout = layOutLink(*linkOver({0, 0, 0}, {60, 45, 0}));
    ASSERT_EQ(layout.chain.size(), 2U * (12 + 9));
    EXPECT_FALSE(layout.arc || layout.leadsOut);
    const ChainLink &narrow = layout.chain[0];
    EXPECT_EQ(std::pair(narrow.start, narrow.end), std::pair(AcGePoint3d(0, 0, 0), AcGePoint3d(5, 0, 0)));
    EXPECT_DOUBLE_EQ(narrow.radius, 5.0 / 8);
    const ChainLink &wide = layout.chain[1];
    EXPECT_DOUBLE_EQ(wide.radius, 5.0 / 4);
    EXPECT_TRUE(wide.start.isEqualTo({5 - 5.0 / 8, 0, 0}) && wide.end.isEqualTo({10 + 5.0 / 8, 0, 0}));
    // The second side runs up at x = 60; the pattern begins anew.
    EXPECT_TRUE(layout.chain[12].start.isEqualTo({60, 0, 0}) && !layout.chain[12].isWide);
}

TEST_F(HotLink, PointsOnASideAreTwoToAHundred)
{
    // The narrow side is shorter than the step: one link.
    EXPECT_EQ(layOutLink(*linkOver({0, 0, 0}, {1000, 1, 0})).chain.size(), 2U * (15 + 1));
    auto long_ = linkOver({0, 0, 0}, {10, 10, 0});
    long_->corner3 = {0, 100000, 0};
    EXPECT_EQ(layOutLink(*long_).chain.size(), 2U * 11 + 2 * 99);
    EXPECT_TRUE(layOutLink(*linkOver({5, 5, 0}, {5, 5, 0})).chain.empty());
    auto endless = linkOver({0, 0, 0}, {10, 10, 0});
    endless->corner3.x = std::numeric_limits<double>::infinity();
    EXPECT_LT(layOutLink(*endless).chain.size(), 400U);
}

TEST_F(HotLink, ShowsWhereItLeads)
{
    auto away = linkOver({0, 0, 0}, {60, 45, 0});
    away->linkKind = QuillLinkObj::otherDrawing;
    const LinkLayout leading = layOutLink(*away);
    EXPECT_EQ(leading.chain.size(), 2U * (12 + 9) + 2);
    EXPECT_NEAR(leading.leadsOut->distanceTo({60, 45, 0}), 10, 1e-12);
    EXPECT_DOUBLE_EQ(leading.leadsOut->x - 60, leading.leadsOut->y - 45);

    const AcDbObjectId target = append(linkOver({100, 0, 0}, {160, 45, 0}));
    const auto source = linkOver({0, 0, 0}, {60, 45, 0});
    source->partnerId = target;
    const auto arc = layOutLink(*source).arc;
    ASSERT_TRUE(arc);
    EXPECT_TRUE((*arc)[1].isEqualTo({80, 22.5 + 100.0 / 6, 0}));
    source->linkRole = QuillLinkObj::target;
    EXPECT_FALSE(layOutLink(*source).arc);
    source->linkRole = QuillLinkObj::source;
    AcDbObjectPointer<QuillLinkObj>(target, AcDb::kForWrite)->erase();
    EXPECT_FALSE(layOutLink(*source).arc);
}

TEST_F(HotLink, NarrowLinksHaveTheirOwnColourAndHiddenOnesNothing)
{
    const auto link = linkOver({0, 0, 0}, {60, 45, 0});
    link->colorIndex = 3;
    link->setColorIndex(1);
    const QStringList lines = drawn(*link);
    // Two arcs and two lines for each; the pen is the recorder's own, which draws by layer.
    ASSERT_EQ(lines.size(), 4 * 42);
    EXPECT_TRUE(lines[0].startsWith(u"3 ")) << qPrintable(lines[0]);
    EXPECT_FALSE(lines[4].startsWith(u"3 ")) << qPrintable(lines[4]);
    link->displayMode = -1;
    EXPECT_EQ(drawn(*link), QStringList());
}

TEST_F(HotLink, LooksLikeTheGolden)
{
    auto source = linkOver({20, 20, 0}, {120, 80, 0});
    source->setColorIndex(1);
    const auto target = linkOver({220, 90, 0}, {300, 190, 0});
    source->partnerId = append(std::make_unique<QuillLinkObj>());
    {
        const AcDbObjectPointer<QuillLinkObj> partner(source->partnerId, AcDb::kForWrite);
        partner->setCorners(target->corners());
        partner->linkRole = QuillLinkObj::target;
        partner->colorIndex = 3;
        partner->setColorIndex(5);
    }
    append(std::move(source));
    auto away = linkOver({30, 120, 0}, {110, 180, 0});
    away->linkKind = QuillLinkObj::otherDrawing;
    away->setColorIndex(2);
    append(std::move(away));
    const tests::Picture picture =
        tests::paintPicture(database->modelSpaceId(), tests::planView(0, 0, 960, 630, 3.0));
    EXPECT_TRUE(tests::matchesPicture(picture.image, QStringLiteral("quillnote/aids/links.png")));
}

// Dragging ----------------------------------------------------------------------------------------

TEST_F(HotLink, DraggedAreasStayRectanglesOfTheView)
{
    std::mt19937 random(9);
    std::uniform_real_distribution<double> place(-100, 100);
    const auto point = [&] { return AcGePoint3d(place(random), place(random), 0); };
    constexpr double kTwists[] = {0, 0.3, std::numbers::pi / 2, -2.5};
    for (int i = 0; i < 400; ++i) {
        const AcGeMatrix3d toView = AcGeMatrix3d::rotation(kTwists[i % 4], AcGeVector3d::kZAxis);
        MarkCorners before = cornersInView(point(), point(), toView);
        // Quarter turns and mirroring give corners 3 and 4 each other's place.
        const AcGeMatrix3d turn = i % 3 == 0 ? AcGeMatrix3d()
                                  : i % 3 == 1
                                      ? AcGeMatrix3d::rotation(std::numbers::pi / 2, AcGeVector3d::kZAxis)
                                      : toView.inverse() * AcGeMatrix3d::mirroring({}, {1, 1, 0}) * toView;
        for (AcGePoint3d *const corner : {&before.corner1, &before.corner2, &before.corner3, &before.corner4})
            corner->transformBy(turn);
        const AcGePoint3d *const all[] = {&before.corner1, &before.corner2, &before.corner3, &before.corner4};
        const int grip = i % 5;
        const AcGeVector3d offset = point().asVector();
        const auto after = dragLinkGrips(before, std::array{grip}, offset, toView);
        ASSERT_TRUE(after);
        const AcGePoint3d *const now[] = {&after->corner1, &after->corner2, &after->corner3, &after->corner4};
        for (int corner = 0; corner < 4; ++corner) {
            const bool moves = grip == 0 || corner == grip - 1;
            const bool stays = grip > 0 && corner == ((grip - 1) ^ 1);
            const AcGePoint3d expected = moves ? *all[corner] + offset : *all[corner];
            EXPECT_TRUE(!(moves || stays) || now[corner]->isEqualTo(expected, 1e-9)) << i;
        }
        for (const AcGePoint3d &third : {after->corner3, after->corner4}) {
            const AcGeVector3d side = toView * (third - after->corner1);
            EXPECT_NEAR(side.x * side.y, 0, 1e-7) << i;
        }
        EXPECT_TRUE((after->corner1 + (after->corner2 - after->corner3)).isEqualTo(after->corner4, 1e-9))
            << i;
    }
    EXPECT_FALSE(dragLinkGrips({}, std::array{5}, {1, 0, 0}, {}));
}

TEST_F(HotLink, GripsAndTransformsOfTheEntity)
{
    const auto link = linkOver({10, 20, 0}, {50, 40, 0});
    EXPECT_THAT(link->getGripPoints(),
                testing::ElementsAre(AcGePoint3d(30, 30, 0), AcGePoint3d(10, 20, 0), AcGePoint3d(50, 40, 0),
                                     AcGePoint3d(10, 40, 0), AcGePoint3d(50, 20, 0)));
    EXPECT_EQ(link->moveGripPointsAt(std::array{2}, {0.0005, 0, 0}), Acad::eOk);
    EXPECT_EQ(link->corner2, AcGePoint3d(50, 40, 0));
    EXPECT_EQ(link->moveGripPointsAt(std::array{1, 3}, {5, 7, 0}), Acad::eOk);
    AcDbExtents box;
    ASSERT_EQ(link->getGeomExtents(box), Acad::eOk);
    EXPECT_EQ(box.minPoint(), AcGePoint3d(15, 27, 0));
    EXPECT_EQ(box.maxPoint(), AcGePoint3d(50, 47, 0));
    ASSERT_EQ(link->transformBy(AcGeMatrix3d::scaling(2)), Acad::eOk);
    EXPECT_EQ(link->corner2, AcGePoint3d(100, 94, 0));
    EXPECT_EQ(link->xDirection, AcGeVector3d::kXAxis);
}
