// Copies that stand in no drawing: they read as the original does, and changing them changes nothing else.
#include "host/acdb/dbtransient.h"

#include "host/acdb/dbapi.h"
#include "host/acdb/dbundo.h"
#include "tests/host/acdb/custom_note.h"
#include "tests/support/memory_drawing.h"
#include "tests/support/whole_drawing.h"

#include <gmock/gmock.h>

TEST(Transient, ChangesStayOutOfTheDrawing)
{
    tests::MemoryDrawing made;
    made.layer("WALLS");
    const auto line =
        made.entity("LINE", {{8, "WALLS"}, {10, AcGePoint3d(1, 2, 0)}, {11, AcGePoint3d(3, 4, 0)}});
    const auto database = made.open();
    const auto before = tests::wholeDrawing(*database);
    {
        const auto copy = AcDbTransient::copyOf(database->getAcDbObjectId({line}));
        ASSERT_TRUE(copy);
        EXPECT_TRUE(copy->entity().layerId().isValid());
        EXPECT_EQ(copy->entity().transformBy(AcGeMatrix3d::translation({10, 0, 0})), Acad::eOk);
        EXPECT_EQ(findGroup(copy->entity().groups(), 10)->point(), AcGePoint3d(11, 2, 0));
    }
    EXPECT_EQ(tests::wholeDifference(before, tests::wholeDrawing(*database)), QStringList());
    EXPECT_FALSE(database->hasChanges());
    EXPECT_EQ(database->undo().position(), 0U);
}

TEST(Transient, ErasedEntitiesAndOnesBeingWrittenHaveNone)
{
    tests::MemoryDrawing made;
    const auto point = made.entity("POINT", {{10, AcGePoint3d()}});
    const auto database = made.open();
    const AcDbObjectId id = database->getAcDbObjectId({point});
    {
        AcDbObjectPointer<AcDbEntity> writer(id, AcDb::kForWrite);
        EXPECT_FALSE(AcDbTransient::copyOf(id));
        writer->erase();
    }
    EXPECT_FALSE(AcDbTransient::copyOf(id));
    EXPECT_FALSE(AcDbTransient::copyOf({}));
}

TEST(Transient, CustomEntitiesKeepWhatDxfDoesNotCarry)
{
    NoteClass noteClass;
    const auto database = tests::MemoryDrawing().open();
    const auto copy = AcDbTransient::copyOf(addNote(*database, QStringLiteral("n"), "secret"));
    ASSERT_TRUE(copy);
    EXPECT_EQ(static_cast<const NoteEntity &>(copy->entity()).secret, "secret");
}
