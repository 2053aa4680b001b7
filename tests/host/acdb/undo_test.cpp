// Undo and redo, compared as whole drawings.
#include "host/acdb/dbapi.h"
#include "host/acdb/dbdict.h"
#include "host/acdb/dbents.h"
#include "host/acdb/dbsymtb.h"
#include "host/acdb/dbundo.h"
#include "host/acdb/dwgcarrier.h"
#include "tests/host/acdb/custom_note.h"
#include "tests/support/memory_drawing.h"
#include "tests/support/whole_drawing.h"

#include <gmock/gmock.h>

#include <functional>
#include <random>

using tests::MemoryDrawing;

using tests::wholeDrawing;

struct UndoTest : testing::Test {
    UndoTest()
    {
        drawing.layer("WALLS");
        line = drawing.entity("LINE", {{8, "0"}, {10, AcGePoint3d(1, 2, 0)}, {11, AcGePoint3d(3, 4, 0)}});
        text = drawing.entity("TEXT", {{8, "0"}, {10, AcGePoint3d()}, {40, 2.5}, {1, "hello"}});
        drawing.headerVariable("$LTSCALE", {{40, 1.0}});
        database = drawing.open();
    }
    AcDbObjectId id(std::uint64_t handle) const { return database->getAcDbObjectId({handle}); }

    void checkUndoRedo(const std::function<void()> &action)
    {
        const auto before = wholeDrawing(*database);
        const bool hadChanges = database->hasChanges();
        {
            AcDbUndoGroup group(*database, QStringLiteral("ACTION"));
            action();
        }
        const auto after = wholeDrawing(*database);
        ASSERT_NE(before, after);
        for (int round = 0; round < 2; ++round) {
            ASSERT_TRUE(database->undo().undo());
            EXPECT_EQ(wholeDrawing(*database), before);
            EXPECT_EQ(database->hasChanges(), hadChanges);
            ASSERT_TRUE(database->undo().redo());
            EXPECT_EQ(wholeDrawing(*database), after);
        }
        ASSERT_TRUE(database->undo().undo());
    }

    NoteClass noteClass;
    MemoryDrawing drawing;
    std::unique_ptr<AcDbDatabase> database;
    std::uint64_t line = 0;
    std::uint64_t text = 0;
};

TEST_F(UndoTest, ChangesOfEveryKindComeBack)
{
    checkUndoRedo(
        [&] { AcDbObjectPointer<AcDbText>(id(text), AcDb::kForWrite)->setTextString(QStringLiteral("x")); });
    checkUndoRedo([&] { AcDbObjectPointer<AcDbEntity>(id(line), AcDb::kForWrite)->erase(); });
    checkUndoRedo([&] { addNote(*database, QStringLiteral("n"), "secret"); });
    checkUndoRedo([&] { database->setHeaderVariable("$LTSCALE", {{40, 2.0}}); });
    checkUndoRedo([&] { database->setHeaderVariable("$NEWVAR", {{70, std::int64_t(1)}}); });
    checkUndoRedo([&] {
        AcDbObjectId added;
        AcDbSymbolTable(*database, SymbolTable::layer)
            .addLike(QStringLiteral("WALLS"), QStringLiteral("DOORS"), added);
        AcDbObjectPointer<AcDbLayerTableRecord> layer(
            static_cast<AcDbLayerTableRecord *>(added.stub()->object));
        layer->setColorIndex(3);
    });
    checkUndoRedo([&] {
        std::vector<AcDbObjectId> copies;
        acdbDeepCloneEntities({id(line), id(text)}, database->modelSpaceId(), copies);
    });
    EXPECT_FALSE(database->hasChanges());
}

TEST_F(UndoTest, NamesFollowUndo)
{
    AcDbObjectId added;
    {
        AcDbUndoGroup group(*database, QStringLiteral("LAYER"));
        AcDbSymbolTable(*database, SymbolTable::layer)
            .addLike(QStringLiteral("0"), QStringLiteral("NEW"), added);
        added.stub()->object->close();
    }
    EXPECT_EQ(database->tableRecord(SymbolTable::layer, QStringLiteral("new")), added);
    database->undo().undo();
    EXPECT_TRUE(database->tableRecord(SymbolTable::layer, QStringLiteral("NEW")).isNull());
    database->undo().redo();
    EXPECT_EQ(database->tableRecord(SymbolTable::layer, QStringLiteral("NEW")), added);
}

TEST_F(UndoTest, AGroupIsOneStepAndAnEmptyOneIsNone)
{
    {
        AcDbUndoGroup outer(*database, QStringLiteral("OUTER"));
        AcDbUndoGroup inner(*database, QStringLiteral("INNER"));
        AcDbObjectPointer<AcDbEntity>(id(line), AcDb::kForWrite)->setColorIndex(1);
        AcDbObjectPointer<AcDbEntity>(id(line), AcDb::kForWrite)->setColorIndex(2);
        EXPECT_FALSE(database->undo().undo());
    }
    {
        AcDbUndoGroup nothing(*database, QStringLiteral("NOTHING"));
    }
    EXPECT_EQ(database->undo().undoLabels(), QStringList{"OUTER"});
    database->undo().undo();
    EXPECT_EQ(database->undo().redoLabels(), QStringList{"OUTER"});
    EXPECT_EQ(AcDbObjectPointer<AcDbEntity>(id(line), AcDb::kForRead)->colorIndex(), 256);
    // A new change ends the way forward.
    AcDbObjectPointer<AcDbEntity>(id(line), AcDb::kForWrite)->setColorIndex(7);
    database->undo().beginGroup({});
    database->undo().endGroup();
    EXPECT_FALSE(database->undo().redo());
}

TEST_F(UndoTest, SavingInBetweenLeavesNoTrace)
{
    const AcDbObjectId note = addNote(*database, QStringLiteral("n"), "secret");
    const auto before = wholeDrawing(*database);
    std::vector<tests::WholeObject> saved;
    for (int save = 0; save < 2; ++save) {
        const AcDbDwgCarriers carriers(*database);
        EXPECT_FALSE(acdbCarriedFields(*database, note.stub()->object->groups()).isEmpty());
        if (save == 0)
            saved = wholeDrawing(*database);
        EXPECT_EQ(wholeDrawing(*database), saved);
    }
    EXPECT_EQ(wholeDrawing(*database), before);
    database->undo().undo();
    {
        const AcDbDwgCarriers carriers(*database);
        EXPECT_FALSE(database->hasChanges());
    }
    database->undo().redo();
    const AcDbDwgCarriers carriers(*database);
    EXPECT_EQ(wholeDrawing(*database), saved);
}

TEST_F(UndoTest, RandomChangesUndoneToTheStartGiveTheDrawingBack)
{
    const auto start = wholeDrawing(*database);
    for (unsigned seed = 1; seed <= 20; ++seed) {
        std::mt19937 random(seed);
        std::vector<AcDbObjectId> known{id(line), id(text)};
        int steps = 0;
        for (int command = 0; command < 40; ++command) {
            AcDbUndoGroup group(*database, QStringLiteral("STEP"));
            const AcDbObjectId target = known[random() % known.size()];
            switch (random() % 5) {
            case 0:
                known.push_back(
                    addNote(*database, QString::number(command), QByteArray(int(random() % 9), 's')));
                break;
            case 1:
                if (AcDbObjectPointer<AcDbEntity> entity(target, AcDb::kForWrite); entity)
                    entity->setColorIndex(int(random() % 256));
                break;
            case 2:
                if (AcDbObjectPointer<AcDbEntity> entity(target, AcDb::kForWrite); entity)
                    entity->erase();
                break;
            case 3:
                acdbDeepCloneEntities({target}, database->modelSpaceId(), known);
                break;
            default:
                AcDbDwgCarriers saving(*database);
            }
        }
        const auto end = wholeDrawing(*database);
        while (database->undo().undo())
            ++steps;
        EXPECT_EQ(wholeDrawing(*database), start) << "seed " << seed;
        EXPECT_FALSE(database->hasChanges()) << "seed " << seed;
        while (steps-- > 0)
            ASSERT_TRUE(database->undo().redo());
        while (database->undo().undo()) {
        }
        database->undo().clear();
    }
}
