// Custom entities: bytes without their class, objects with it, and the fields that DXF does not carry.
#include "host/acdb/dbapi.h"
#include "host/acdb/dbdict.h"
#include "host/acdb/dbload.h"
#include "host/acdb/dbsymtb.h"
#include "host/acdb/dbundo.h"
#include "host/acdb/dwgcarrier.h"
#include "tests/host/acdb/custom_note.h"
#include "tests/support/memory_drawing.h"

#include <gmock/gmock.h>

using tests::MemoryDrawing;

static MemoryDrawing drawingWithNote(std::uint64_t &note)
{
    MemoryDrawing drawing;
    note = drawing.entity("TESTNOTE", {{100, "AcDbEntity"},
                                       {8, "0"},
                                       {100, "TestNote"},
                                       {1, "from file"},
                                       {40, 7.5},
                                       {1001, "ACAD"},
                                       {1000, "kept"}});
    return drawing;
}

TEST(Custom, StaysAsItCameWithoutItsClass)
{
    std::uint64_t handle = 0;
    const auto database = drawingWithNote(handle).open();
    const AcDbObjectId id = database->getAcDbObjectId({handle});
    AcDbObjectPointer<AcDbEntity> kept(id, AcDb::kForWrite);
    ASSERT_TRUE(kept);
    kept->setColorIndex(3);
    kept.close();
    const ResbufList groups = database->fileGroups(*id.stub());
    EXPECT_TRUE(findGroup(groups, 40));
    EXPECT_EQ(groups.back(), resbuf(1000, QStringLiteral("kept")));
}

TEST(Custom, ComesAndGoesWithItsClass)
{
    std::uint64_t handle = 0;
    const auto database = drawingWithNote(handle).open();
    const AcDbObjectId id = database->getAcDbObjectId({handle});
    AcDbObjectPointer<AcDbEntity>(id, AcDb::kForWrite)->setColorIndex(3);
    {
        NoteClass known;
        AcDbObjectPointer<NoteEntity> note(id, AcDb::kForWrite);
        ASSERT_TRUE(note);
        EXPECT_EQ(note->text, "from file");
        EXPECT_EQ(note->colorIndex(), 3);
        EXPECT_EQ(note->xData().size(), 2U);
        note->secret = "hidden";
    }
    {
        AcDbObjectPointer<AcDbEntity> proxy(id, AcDb::kForRead);
        ASSERT_TRUE(proxy);
        EXPECT_EQ(proxy->colorIndex(), 3);
    }
    NoteClass again;
    EXPECT_EQ(AcDbObjectPointer<NoteEntity>(id, AcDb::kForRead)->secret, "hidden");
}

TEST(Custom, ARefusedRecordIsKeptAsAProxy)
{
    NoteClass known;
    MemoryDrawing drawing;
    const auto handle = drawing.entity("TESTNOTE", {{8, "0"}, {100, "OtherMarker"}, {1, "x"}});
    const auto database = drawing.open();
    const AcDbObjectId id = database->getAcDbObjectId({handle});
    EXPECT_EQ(AcDbObjectPointer<NoteEntity>(id, AcDb::kForRead).openStatus(), Acad::eNotThatKindOfClass);
    EXPECT_TRUE(AcDbObjectPointer<AcDbEntity>(id, AcDb::kForRead));
    EXPECT_TRUE(findGroup(database->fileGroups(*id.stub()), 1));
    // The drawing has no record of the class, but the class is here, refused it and allows nothing.
    EXPECT_EQ(AcDbObjectPointer<AcDbEntity>(id, AcDb::kForWrite).openStatus(), Acad::eNotAllowedForThisProxy);
}

/// What saving would write, opened again.
static std::unique_ptr<AcDbDatabase> reopened(AcDbDatabase &saved)
{
    class Copy : public DrawingSource
    {
    public:
        std::vector<ResbufList> objects;
        DrawingForm form() const override { return DrawingForm::dxfText; }
        DrawingVersion version() const override { return DrawingVersion::r2000; }
        ResbufList read(const AcDbStub &stub) const override { return objects[std::size_t(stub.begin)]; }
    };
    const AcDbDwgCarriers carriers(saved);
    auto source = std::make_unique<Copy>();
    std::vector<const AcDbStub *> written;
    for (std::uint32_t i = 1; i < saved.stubCount(); ++i) {
        if (!saved.stub(i)->has(AcDbStub::kErased)) {
            written.push_back(saved.stub(i));
            source->objects.push_back(saved.fileGroups(*saved.stub(i)));
        }
    }
    auto database = std::make_unique<AcDbDatabase>();
    AcDbLoader loader(*database, std::move(source));
    std::uint64_t place = 0;
    for (const AcDbStub *stub : written)
        loader.addObject(stub->kind, stub->handle, place++, 1,
                         std::uint16_t(stub->flags & AcDbStub::kEntity));
    loader.finish();
    return database;
}

TEST(Custom, TheCarrierBringsBackWhatDxfDoesNotCarry)
{
    NoteClass known;
    const auto database = MemoryDrawing().open();
    QByteArray picture(100'000, Qt::Uninitialized);
    for (int i = 0; i < picture.size(); ++i)
        picture[i] = char(i * 7);
    const AcDbObjectId id = addNote(*database, QStringLiteral("图纸"), picture);

    const auto second = reopened(*database);
    AcDbObjectPointer<NoteEntity> note(second->getAcDbObjectId(id.handle()), AcDb::kForWrite);
    ASSERT_TRUE(note);
    EXPECT_EQ(note->text, QStringLiteral("图纸"));
    EXPECT_EQ(note->secret, picture);
    // A second save keeps one carrier and follows the change.
    note->secret = "short";
    note.close();
    const std::uint32_t before = second->stubCount();
    const auto third = reopened(*second);
    EXPECT_EQ(second->stubCount(), before);
    EXPECT_EQ(AcDbObjectPointer<NoteEntity>(third->getAcDbObjectId(id.handle()), AcDb::kForRead)->secret,
              "short");
}

TEST(Custom, DxfFieldsWinOverTheCarrierAndADamagedOneIsIgnored)
{
    NoteClass known;
    const auto database = MemoryDrawing().open();
    const AcDbObjectId id = addNote(*database, QStringLiteral("new"), "secret");
    const AcDbDwgCarriers carriers(*database);
    const AcDbObjectId dictionaryId = id.stub()->object->extensionDictionary();
    AcDbObjectPointer<AcDbDictionary> dictionary(dictionaryId, AcDb::kForRead);
    AcDbObjectPointer<AcDbXrecord> record(dictionary->entries().at(0).id, AcDb::kForWrite);
    ResbufList chain = record->rbChain();

    AcDbMemoryFiler other(AcDb::kFileFiler, database.get());
    other.writeString(QStringLiteral("old text"));
    other.writeUInt32(6);
    other.writeBytes("secret");
    chain[1].assign(std::int64_t(other.stream().size()));
    chain[2].assign(std::int64_t(qChecksum(other.stream())));
    chain[3].assign(other.stream());
    record->setFromRbChain(chain);
    record.close();
    dictionary.close();
    const ResbufList groups = id.stub()->object->groups();
    EXPECT_EQ(acdbCarriedFields(*database, groups), other.stream());

    AcDbObjectPointer<AcDbXrecord> damaged(
        AcDbObjectPointer<AcDbDictionary>(dictionaryId, AcDb::kForRead)->entries().at(0).id, AcDb::kForWrite);
    chain[3].assign(QByteArray("garbage"));
    damaged->setFromRbChain(chain);
    damaged.close();
    EXPECT_TRUE(acdbCarriedFields(*database, groups).isEmpty());
}

TEST(Custom, ANewerCarrierMakesAProxyThatNobodyChanges)
{
    NoteClass known;
    const auto first = MemoryDrawing().open();
    const AcDbHandle handle = addNote(*first, QStringLiteral("newer"), "of a newer program").handle();
    const auto database = reopened(*first);
    const AcDbObjectId id = database->getAcDbObjectId(handle);
    EXPECT_EQ(AcDbObjectPointer<NoteEntity>(id, AcDb::kForRead).openStatus(), Acad::eNotThatKindOfClass);
    AcDbObjectPointer<AcDbEntity> proxy(id, AcDb::kForRead);
    ASSERT_TRUE(proxy);
    EXPECT_EQ(proxy->upgradeOpen(), Acad::eNotAllowedForThisProxy);
    EXPECT_FALSE(acdbCarriedFields(*database, proxy->groups()).isEmpty());
}

TEST(Custom, AnUndoneEditTakesTheCarriedFieldsBackToo)
{
    NoteClass known;
    const auto first = MemoryDrawing().open();
    const AcDbHandle handle = addNote(*first, QStringLiteral("n"), "old").handle();
    const auto database = reopened(*first);
    const AcDbObjectId id = database->getAcDbObjectId(handle);
    {
        AcDbUndoGroup group(*database, QStringLiteral("EDIT"));
        AcDbObjectPointer<NoteEntity>(id, AcDb::kForWrite)->secret = "new";
    }
    const auto saved = reopened(*database);
    EXPECT_EQ(AcDbObjectPointer<NoteEntity>(saved->getAcDbObjectId(handle), AcDb::kForRead)->secret, "new");
    database->undo().undo();
    EXPECT_EQ(AcDbObjectPointer<NoteEntity>(id, AcDb::kForRead)->secret, "old");
    EXPECT_FALSE(database->hasChanges());
    database->undo().redo();
    EXPECT_EQ(AcDbObjectPointer<NoteEntity>(id, AcDb::kForRead)->secret, "new");
}

TEST(Custom, CarriedFieldsOutliveTheirClass)
{
    AcDbHandle handle;
    const auto database = MemoryDrawing().open();
    {
        NoteClass known;
        handle = addNote(*database, QStringLiteral("n"), "secret").handle();
    }
    const auto saved = reopened(*database);
    NoteClass again;
    EXPECT_EQ(AcDbObjectPointer<NoteEntity>(saved->getAcDbObjectId(handle), AcDb::kForRead)->secret,
              "secret");
}

TEST(Custom, ACopyKeepsWhatOthersHungOnIt)
{
    NoteClass known;
    const auto first = MemoryDrawing().open();
    const AcDbObjectId id = addNote(*first, QStringLiteral("n"), "secret");
    {
        AcDbObjectPointer<NoteEntity> note(id, AcDb::kForWrite);
        AcDbObjectPointer<AcDbDictionary> dictionary(note->createExtensionDictionary(), AcDb::kForWrite);
        AcDbObjectId record;
        auto *const theirs = new AcDbXrecord;
        dictionary->setAt(QStringLiteral("THEIRS"), theirs, record);
        theirs->close();
    }
    const AcDbDwgCarriers saving(*first);
    std::vector<AcDbObjectId> copies;
    acdbDeepCloneEntities({id}, first->modelSpaceId(), copies);
    AcDbObjectPointer<AcDbDictionary> dictionary(
        AcDbObjectPointer<NoteEntity>(copies.at(0), AcDb::kForRead)->extensionDictionary(), AcDb::kForRead);
    ASSERT_TRUE(dictionary);
    EXPECT_TRUE(dictionary->getAt(QStringLiteral("THEIRS")).isValid());
    EXPECT_TRUE(dictionary->getAt(kDwgCarrierKey.toString()).isNull());
}

TEST(Custom, CarriedFieldsArePackedAndClaimNoMoreThanTheyHold)
{
    NoteClass known;
    const auto first = MemoryDrawing().open();
    const QByteArray secret(100'000, 'x');
    const AcDbHandle handle = addNote(*first, QStringLiteral("n"), secret).handle();
    const auto database = reopened(*first);
    const AcDbObjectId id = database->getAcDbObjectId(handle);
    ASSERT_EQ(AcDbObjectPointer<NoteEntity>(id, AcDb::kForRead)->secret, secret);
    const ResbufList groups = id.stub()->object->groups();
    const AcDbObjectId dictionary = id.stub()->object->extensionDictionary();
    AcDbObjectPointer<AcDbXrecord> record(
        AcDbObjectPointer<AcDbDictionary>(dictionary, AcDb::kForRead)->entries().at(0).id, AcDb::kForWrite);
    const ResbufList packed = record->rbChain();
    std::size_t bytes = 0;
    for (const resbuf &group : packed)
        bytes += group.restype == 310 ? std::size_t(group.bytes().size()) : 0;
    EXPECT_LT(bytes, 2000U);
    for (const auto &[code, value] :
         {std::pair(90, std::int64_t(4'000'000'000)), std::pair(90, std::int64_t(-1)),
          std::pair(70, std::int64_t(2)), std::pair(91, std::int64_t(0))}) {
        ResbufList damaged = packed;
        findGroup(damaged, code)->assign(value);
        record->setFromRbChain(damaged);
        EXPECT_TRUE(acdbCarriedFields(*database, groups).isEmpty()) << code << ' ' << value;
    }
}

/// Notes whose extension dictionaries name the notes given, by place.
static std::unique_ptr<AcDbDatabase> notesNaming(const std::vector<int> &named,
                                                 std::vector<AcDbObjectId> &notes)
{
    MemoryDrawing drawing;
    const auto first = drawing.entity("POINT", {{10, AcGePoint3d()}});
    for (const int each : named)
        drawing.entity("TESTNOTE", {{102, "{ACAD_XDICTIONARY"},
                                    {360, AcDbHandle{first + 1 + std::uint64_t(each)}},
                                    {102, "}"},
                                    {100, "TestNote"},
                                    {1, "text"}});
    auto database = drawing.open();
    for (std::size_t i = 0; i < named.size(); ++i)
        notes.push_back(database->getAcDbObjectId({first + 1 + i}));
    return database;
}

TEST(Custom, ACarrierThatLeadsBackIsNone)
{
    NoteClass known;
    for (const std::vector<int> &named : {std::vector<int>{0}, std::vector<int>{1, 0}}) {
        std::vector<AcDbObjectId> notes;
        const auto database = notesNaming(named, notes);
        for (const AcDbObjectId note : notes) {
            AcDbObjectPointer<AcDbEntity> opened(note, AcDb::kForWrite);
            ASSERT_TRUE(opened) << acadErrorStatusText(opened.openStatus()).toStdString();
            EXPECT_TRUE(opened->extensionDictionary().isNull());
            opened->setColorIndex(3);
        }
        const AcDbDwgCarriers saving(*database);
        for (const AcDbObjectId note : notes)
            EXPECT_TRUE(note.isValid());
    }
}
