// Marks into plain entities: what becomes of each mark, what is kept, and that it is one step. That the
// result looks like the marks is checked where their pictures are (tests/quillnote/pictures).
#include "quillnote/authoring/native_conversion.h"

#include "quillnote/entity/native_entities.h"

#include "host/acdb/dbents.h"
#include "host/acdb/dbsymtb.h"
#include "host/aced/edsysvar.h"
#include "tests/quillnote/authoring/authoring_fixture.h"

using testing::ElementsAre;

struct NativeConversionTest : AuthoringTest {
    NativeConversionTest()
    {
        drawing.reset();
        tests::MemoryDrawing made;
        made.record(SymbolTable::textStyle, "STYLE", "Standard",
                    {{100, "AcDbTextStyleTableRecord"}, {2, "Standard"}, {70, 0}, {41, 0.7}, {3, "txt.shx"}});
        drawing = std::make_unique<tests::OpenDrawing>(made.open());
        startUpSettings().viewFlag = true;
    }
    /// Of model space or of a block.
    std::vector<AcDbObjectId> entities(const QString &block = QStringLiteral("*Model_Space")) const
    {
        return AcDbObjectPointer<AcDbBlockTableRecord>(database().tableRecord(SymbolTable::block, block),
                                                       AcDb::kForRead)
            ->entities();
    }
    static QStringList kinds(const std::vector<AcDbObjectId> &ids)
    {
        QStringList names;
        for (const AcDbObjectId id : ids)
            names << QString::fromLatin1(acdbKindName(id.stub()->kind));
        return names;
    }
    template <class Change>
    void change(AcDbObjectId id, Change apply) const
    {
        AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForWrite);
        apply(*mark);
    }
    ResbufList style(const char *name) const
    {
        const AcDbObjectId id = database().tableRecord(SymbolTable::textStyle, QString::fromLatin1(name));
        return id.isNull() ? ResbufList() : AcDbObjectPointer<AcDbObject>(id, AcDb::kForRead)->groups();
    }
};

TEST_F(NativeConversionTest, AMarkBecomesABlockReferenceWhereItStood)
{
    const AcDbObjectId id = make({}, QStringLiteral("a%%c{b}\\P^J"));
    change(id, [](QuillnoteObj3 &mark) {
        mark.targetCorner1 = {5, 6, 0};
        mark.targetCorner2 = {905, 606, 0};
        mark.targetStyle = TargetStyle::bevel;
        mark.cornersValid = false;
        mark.color1 = 3;
        mark.textHeight = 20;
    });
    runAndBack(QStringLiteral("toNativeEnt"));

    ASSERT_THAT(kinds(entities()), ElementsAre("INSERT"));
    AcDbObjectPointer<AcDbBlockReference> reference(entities().front(), AcDb::kForRead);
    EXPECT_EQ(reference->blockName(), "*U1");
    EXPECT_EQ(findGroup(reference->groups(), 10)->point(), AcGePoint3d(5, 6, 0));
    EXPECT_TRUE(reference->blockTransform().isIdentity());
    const std::vector<AcDbObjectId> parts = entities(QStringLiteral("*U1"));
    EXPECT_THAT(kinds(parts),
                ElementsAre("MTEXT", "SOLID", "SOLID", "SOLID", "SOLID", "LWPOLYLINE", "HATCH", "TEXT"));
    EXPECT_TRUE(AcDbObjectPointer<AcDbMText>(parts[0], AcDb::kForRead)
                    ->contents()
                    .endsWith(QStringLiteral("a%{}%c\\{b\\}\\\\P^ J}")));
    AcDbObjectPointer<AcDbEntity> outline(parts[5], AcDb::kForRead);
    EXPECT_EQ(outline->colorIndex(), 3);
    EXPECT_EQ(findGroup(outline->groups(), 70)->integer(), 1);
    EXPECT_EQ(findGroup(outline->groups(), 90)->integer(), 4);

    EXPECT_EQ(findGroup(style("Standard"), 4)->text(), "gbcbig.shx");
    EXPECT_EQ(findGroup(style("QN_TIMES"), 3)->text(), "TIMES.TTF");
    EXPECT_EQ(findGroup(style("QN_TIMES"), 41)->real(), 1.0);
}

TEST_F(NativeConversionTest, WhatMayNotGoStays)
{
    change(make(), [](QuillnoteObj3 &mark) { mark.displayMode = DisplayMode::hidden; });
    change(make(), [](QuillnoteObj3 &mark) { mark.erasable = false; });
    change(make(), [](QuillnoteObj3 &mark) { mark.chPwMD5 = hashPassword(QStringLiteral("open")); });
    make();
    tests::ScriptFrontEnd script({}, {"cancel"});
    const NativeConversion result = convertMarks(database());
    EXPECT_EQ(result.converted, 3U);
    EXPECT_EQ(result.hidden, 1U);
    EXPECT_EQ(result.notErased, 2U);
    EXPECT_TRUE(script.isUsedUp());
    EXPECT_THAT(kinds(entities()),
                ElementsAre("QUILLNOTE3", "QUILLNOTE3", "QUILLNOTE3", "INSERT", "INSERT", "INSERT"));
}

TEST_F(NativeConversionTest, MarksOfSheetsStayOnTheirSheet)
{
    acedSetIntVar(QStringLiteral("TILEMODE"), 0);
    make();
    acedSetIntVar(QStringLiteral("TILEMODE"), 1);
    EXPECT_EQ(convertMarks(database()).converted, 1U);
    EXPECT_THAT(kinds(entities(QStringLiteral("*Paper_Space"))), ElementsAre("INSERT"));
    EXPECT_THAT(kinds(entities()), ElementsAre());
}

TEST_F(NativeConversionTest, MarksTooSmallToSeeKeepTheirOutline)
{
    change(make(), [](QuillnoteObj3 &mark) { mark.targetStyle = TargetStyle::thinWaves; });
    drawing->document().view().height = 1e6;
    EXPECT_EQ(convertMarks(database()).converted, 1U);
    EXPECT_TRUE(kinds(entities(QStringLiteral("*U1"))).contains(QStringLiteral("LWPOLYLINE")));
}

TEST_F(NativeConversionTest, NothingToConvertChangesNothing)
{
    EXPECT_EQ(convertMarks(database()).converted, 0U);
    EXPECT_FALSE(database().hasChanges());
}

static double areaOf(std::span<const std::array<AcGePoint3d, 4>> pieces)
{
    double twice = 0.0;
    for (const auto &piece : pieces) {
        for (std::size_t i = 0; i < 4; ++i)
            twice += piece[i].x * piece[(i + 1) % 4].y - piece[i].y * piece[(i + 1) % 4].x;
    }
    return twice / 2.0;
}

TEST(SolidPieces, CoverBandsAndPennants)
{
    const AcGePoint3d band[] = {{0, 0, 0}, {0, 4, 0}, {4, 4, 0}, {4, 5, 0}, {-1, 5, 0}, {-1, 0, 0}};
    EXPECT_EQ(solidPieces(band).size(), 2U);
    EXPECT_DOUBLE_EQ(std::abs(areaOf(solidPieces(band))), 9.0);
    const AcGePoint3d pennant[] = {{0, 0, 0}, {4, 0, 0}, {3, -1, 0}, {4, -2, 0}, {0, -2, 0}, {0, 0, 0}};
    EXPECT_DOUBLE_EQ(std::abs(areaOf(solidPieces(pennant))), 7.0);
    const AcGePoint3d line[] = {{0, 0, 0}, {1, 1, 0}, {2, 2, 0}};
    EXPECT_TRUE(solidPieces(line).empty());
}
