// Opening, closing, erasing: who may do what to an object, and who hears of it.
#include "host/acdb/dbapi.h"
#include "host/acdb/dbents.h"
#include "host/acdb/dbreactor.h"
#include "host/acdb/dbsymtb.h"
#include "tests/support/memory_drawing.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using tests::MemoryDrawing;

struct OpenTest : testing::Test {
    OpenTest()
    {
        drawing.layer("LOCKED", {.flags = 4});
        line = drawing.entity("LINE", {{8, "0"}, {10, AcGePoint3d(1, 2, 0)}, {11, AcGePoint3d(3, 4, 0)}});
        lockedLine = drawing.entity("LINE", {{8, "locked"}, {10, AcGePoint3d()}, {11, AcGePoint3d(1, 0, 0)}});
        insert = drawing.entity("INSERT", {{8, "0"}, {66, 1}, {2, "DOOR"}, {10, AcGePoint3d()}});
        attribute = drawing.subEntity("ATTRIB", {{8, "0"}, {1, "A1"}, {2, "TAG"}});
        drawing.subEntity("SEQEND", {{8, "0"}});
        text = drawing.entity("TEXT", {{8, "0"}, {10, AcGePoint3d()}, {40, 2.5}, {1, "hello"}});
        database = drawing.open();
    }
    AcDbObjectId id(std::uint64_t handle) const { return database->getAcDbObjectId({handle}); }

    MemoryDrawing drawing;
    std::unique_ptr<AcDbDatabase> database;
    std::uint64_t line = 0;
    std::uint64_t lockedLine = 0;
    std::uint64_t insert = 0;
    std::uint64_t attribute = 0;
    std::uint64_t text = 0;
};

TEST_F(OpenTest, OneWriterOrManyReaders)
{
    AcDbObjectPointer<AcDbEntity> reader(id(line), AcDb::kForRead);
    AcDbObjectPointer<AcDbEntity> second(id(line), AcDb::kForRead);
    ASSERT_TRUE(reader && second);
    EXPECT_EQ(AcDbObjectPointer<AcDbEntity>(id(line), AcDb::kForWrite).openStatus(), Acad::eWasOpenForRead);
    EXPECT_EQ(reader->upgradeOpen(), Acad::eWasOpenForRead);
    second.close();
    EXPECT_EQ(reader->upgradeOpen(), Acad::eOk);
    EXPECT_EQ(AcDbObjectPointer<AcDbEntity>(id(line), AcDb::kForRead).openStatus(), Acad::eWasOpenForWrite);
    EXPECT_EQ(reader->downgradeOpen(), Acad::eOk);
    EXPECT_TRUE(AcDbObjectPointer<AcDbEntity>(id(line), AcDb::kForRead));
}

TEST_F(OpenTest, RefusesWhatCannotBeOpened)
{
    AcDbText *asText = nullptr;
    EXPECT_EQ(acdbOpenObject(asText, {}, AcDb::kForRead), Acad::eNullObjectId);
    EXPECT_EQ(acdbOpenObject(asText, id(line), AcDb::kForRead), Acad::eNotThatKindOfClass);
    EXPECT_EQ(AcDbObjectPointer<AcDbEntity>(id(lockedLine), AcDb::kForWrite).openStatus(),
              Acad::eOnLockedLayer);
    AcDbObjectPointer<AcDbEntity> reader(id(lockedLine), AcDb::kForRead);
    EXPECT_EQ(reader->upgradeOpen(), Acad::eOnLockedLayer);
    // The refused attempts left nothing open.
    EXPECT_TRUE(AcDbObjectPointer<AcDbEntity>(id(line), AcDb::kForWrite));
    auto other = drawing.open();
    AcDbObject *object = nullptr;
    EXPECT_EQ(other->openObject(object, id(line), AcDb::kForRead), Acad::eWrongDatabase);
}

TEST_F(OpenTest, ReadingLeavesNothingBehind)
{
    {
        AcDbObjectPointer<AcDbText> opened(id(text), AcDb::kForRead);
        EXPECT_EQ(opened->textString(), "hello");
    }
    EXPECT_EQ(id(text).stub()->object, nullptr);
    EXPECT_FALSE(database->hasChanges());
    AcDbObjectPointer<AcDbText>(id(text), AcDb::kForWrite)->setTextString(QStringLiteral("bye"));
    EXPECT_THAT(database->changedStubs(), ElementsAre(id(text).stub()));
    EXPECT_EQ(AcDbObjectPointer<AcDbText>(id(text), AcDb::kForRead)->textString(), "bye");
}

TEST_F(OpenTest, ErasesWithAllItsParts)
{
    EXPECT_EQ(AcDbObjectPointer<AcDbEntity>(id(insert), AcDb::kForWrite)->erase(), Acad::eOk);
    EXPECT_TRUE(id(attribute).isErased());
    EXPECT_TRUE(id(text).isValid());
    EXPECT_EQ(AcDbObjectPointer<AcDbEntity>(id(insert), AcDb::kForRead).openStatus(), Acad::eWasErased);
    AcDbObjectPointer<AcDbEntity> erased(id(insert), AcDb::kForWrite, true);
    EXPECT_EQ(erased->erase(false), Acad::eOk);
    EXPECT_TRUE(id(attribute).isValid());
}

struct Recorder : AcDbDatabaseReactor {
    std::vector<QString> heard;
    bool upgrades = false;

    void objectAppended(const AcDbDatabase *, const AcDbObject *object) override
    {
        heard.push_back(QStringLiteral("appended ") + QString::fromLatin1(object->dxfName()));
        if (upgrades && const_cast<AcDbObject *>(object)->upgradeOpen() == Acad::eOk)
            const_cast<AcDbObject *>(object)->setGroup(62, std::int64_t(5), u"AcDbEntity");
    }
    void objectModified(const AcDbDatabase *, const AcDbObject *object) override
    {
        heard.push_back(QStringLiteral("modified ") + QString::fromLatin1(object->dxfName()));
    }
    void objectErased(const AcDbDatabase *, const AcDbObject *object, bool erased) override
    {
        heard.push_back((erased ? QStringLiteral("erased ") : QStringLiteral("unerased ")) +
                        QString::fromLatin1(object->dxfName()));
    }
};

TEST_F(OpenTest, ReactorsHearOnceAndMayChangeWhatTheyHear)
{
    Recorder recorder;
    recorder.upgrades = true;
    database->addReactor(&recorder);
    std::vector<AcDbObjectId> copies;
    ASSERT_EQ(acdbDeepCloneEntities({id(line)}, database->modelSpaceId(), copies), Acad::eOk);
    AcDbObjectPointer<AcDbEntity> copy(copies.at(0), AcDb::kForRead);
    EXPECT_EQ(copy->colorIndex(), 5);
    copy.close();
    AcDbObjectPointer<AcDbEntity>(id(line), AcDb::kForWrite)->setColorIndex(3);
    AcDbObjectPointer<AcDbEntity>(id(line), AcDb::kForWrite)->erase();
    EXPECT_THAT(recorder.heard, ElementsAre("appended LINE", "modified BLOCK_RECORD", "modified LINE",
                                            "erased LINE", "modified LINE"));
    database->removeReactor(&recorder);
}

/// Leaves when it hears of something, and takes the others along.
struct Leaver : AcDbDatabaseReactor {
    Leaver(AcDbDatabase &watched, std::vector<Leaver *> &all) : m_database(watched), m_all(all)
    {
        m_database.addReactor(this);
    }
    void objectModified(const AcDbDatabase *, const AcDbObject *) override
    {
        ++heard;
        for (Leaver *const each : m_all)
            m_database.removeReactor(each);
    }
    int heard = 0;

private:
    AcDbDatabase &m_database;
    std::vector<Leaver *> &m_all;
};

TEST_F(OpenTest, AReactorMayLeaveWhileItIsCalled)
{
    std::vector<Leaver *> all;
    Leaver first(*database, all), second(*database, all);
    all = {&first, &second};
    for (const int color : {3, 4})
        AcDbObjectPointer<AcDbEntity>(id(line), AcDb::kForWrite)->setColorIndex(color);
    EXPECT_EQ(first.heard, 1);
    EXPECT_EQ(second.heard, 0) << "it had left before its turn";
}

TEST_F(OpenTest, WhatIsAttachedGoesWhileTheDrawingIsWhole)
{
    struct Earlier {
        explicit Earlier(QStringList &into) : heard(into) {}
        ~Earlier() { heard.append(QStringLiteral("earlier")); }
        QStringList &heard;
    };
    struct Later {
        Later(AcDbDatabase &of, QStringList &into) : database(of), heard(into) {}
        ~Later()
        {
            heard.append(database.attachments().find<Earlier>() ? QStringLiteral("later") : QString());
            heard.append(QString::number(database.modelSpaceId().isValid()));
        }
        AcDbDatabase &database;
        QStringList &heard;
    };
    QStringList heard;
    base::Attachments &attachments = database->attachments();
    attachments.get<Earlier>(heard);
    const Later &later = attachments.get<Later>(*database, heard);
    EXPECT_EQ(&later, attachments.find<Later>());
    database.reset();
    EXPECT_EQ(heard, (QStringList{"later", "1", "earlier"}));
}
