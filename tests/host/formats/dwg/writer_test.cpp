// Saving drawings that came from DWG files: what changed is in the file, everything else keeps its bits.
#include "host/acdb/dbdict.h"
#include "host/acdb/dbentity.h"
#include "host/acdb/dbsymtb.h"
#include "host/formats/dwg/dwgmap.h"
#include "host/formats/dwg/dwgpacker.h"
#include "host/formats/dwg/dwgreader.h"
#include "host/formats/dwg/dwgsource.h"
#include "host/formats/dwg/dwgwriter.h"
#include "tests/host/acdb/custom_note.h"
#include "tests/host/formats/dwg/dwg_support.h"
#include "tests/support/files.h"

#include <gmock/gmock.h>

#include <random>

namespace
{

constexpr DrawingVersion kVersions[] = {DrawingVersion::r2000, DrawingVersion::r2004, DrawingVersion::r2007,
                                        DrawingVersion::r2010, DrawingVersion::r2013, DrawingVersion::r2018};

std::unique_ptr<AcDbDatabase> opened(const QByteArray &bytes)
{
    auto database = readDwg(base::FileBytes::fromByteArray(bytes), QStringLiteral("test.dwg"));
    EXPECT_TRUE(database) << qPrintable(database.error());
    return *std::move(database);
}

base::Result<base::WrittenFile, QString> save(const AcDbDatabase &database, const QString &path)
{
    return writeDwg(database, dynamic_cast<const DwgSource &>(*database.source()), path, {}, {});
}

template <class Edit>
void change(AcDbDatabase &database, std::uint64_t handle, Edit edit)
{
    AcDbObjectPointer<AcDbObject> object(database.getAcDbObjectId({handle}), AcDb::kForWrite);
    ASSERT_TRUE(object);
    edit(*object);
}

AcDbObjectId append(AcDbDatabase &database, ResbufList groups)
{
    auto *const entity =
        static_cast<AcDbEntity *>(acdbKindClass(acdbKind(groups.front().text().toLatin1()), true)->create());
    entity->editGroups() = std::move(groups);
    AcDbObjectPointer<AcDbBlockTableRecord> space(database.modelSpaceId(), AcDb::kForWrite);
    AcDbObjectId id;
    EXPECT_EQ(space->appendAcDbEntity(id, entity), Acad::eOk);
    entity->close();
    return id;
}

AcDbObjectId appendLine(AcDbDatabase &database, double x)
{
    return append(database, {{0, QStringLiteral("LINE")},
                             {100, QStringLiteral("AcDbEntity")},
                             {8, QStringLiteral("0")},
                             {100, QStringLiteral("AcDbLine")},
                             {10, AcGePoint3d(x, 2.0, 3.0)},
                             {11, AcGePoint3d(4.0, 5.0, 6.0)}});
}

std::map<std::uint64_t, QByteArray> recordsOf(const QByteArray &file)
{
    dwg::Container container = *dwg::openContainer(dwg::viewOf(file));
    std::map<std::uint64_t, QByteArray> records;
    for (const dwg::PackedObject &object : dwg::storedObjects(container))
        records[object.handle] = QByteArray(object.record.data(), qsizetype(object.record.size()));
    return records;
}

std::vector<std::uint64_t> modelSpaceOf(const AcDbDatabase &database)
{
    std::vector<std::uint64_t> handles;
    for (const std::uint32_t index : database.blockContents(database.modelSpaceId())->entities)
        handles.push_back(database.stub(index)->handle);
    return handles;
}

TEST(DwgWriter, CopiesADrawingThatNobodyChanged)
{
    const tests::TempDir folder;
    for (const DrawingVersion version : kVersions) {
        const QByteArray bytes = tests::smallDwg(version);
        const auto database = opened(bytes);
        ASSERT_TRUE(save(*database, folder.path("copy.dwg")));
        EXPECT_EQ(tests::readFile(folder.path("copy.dwg")), bytes);
    }
}

TEST(DwgWriter, WritesWhatChangedAndKeepsTheBitsOfAllElse)
{
    enum : std::uint64_t { line = 0x30, text = 0x31, circle = 0x32, custom = 0x33, layer = 0x11, root = 0xC };
    for (const DrawingVersion version : kVersions) {
        SCOPED_TRACE(int(version));
        const tests::TempDir folder;
        const QByteArray before = tests::smallDwg(version, true);
        const QString path = folder.write("plan.dwg", before);
        const auto database = opened(before);
        change(*database, circle, [](AcDbObject &object) { object.erase(); });
        change(*database, text,
               [](AcDbObject &object) { object.setGroup(62, std::int64_t(5), u"AcDbEntity"); });
        change(*database, layer, [](AcDbObject &object) { object.setGroup(62, std::int64_t(1)); });
        const std::uint64_t added = appendLine(*database, 1.0).handle().value;
        AcDbObjectId record;
        change(*database, root, [&record](AcDbObject &object) {
            auto *const made = new AcDbXrecord;
            ASSERT_EQ(made->setFromRbChain({{1, QStringLiteral("gr\u00fcn")}, {70, std::int64_t(7)}}),
                      Acad::eOk);
            ASSERT_EQ(static_cast<AcDbDictionary &>(object).setAt("MARKS", made, record), Acad::eOk);
            made->close();
        });
        const auto saved = save(*database, path);
        ASSERT_TRUE(saved) << qPrintable(saved.error());
        EXPECT_EQ(folder.fileNames(), (QStringList{"plan.bak", "plan.dwg"}));
        EXPECT_EQ(tests::readFile(folder.path("plan.bak")), before);

        const QByteArray after = tests::readFile(path);
        const auto again = opened(after);
        EXPECT_EQ(again->version(), version);
        EXPECT_EQ(modelSpaceOf(*again), (std::vector<std::uint64_t>{line, text, custom, added}));
        EXPECT_GT(again->handseed().value, record.handle().value);
        for (const std::uint64_t handle :
             {std::uint64_t(text), std::uint64_t(layer), added, record.handle().value})
            EXPECT_EQ(again->fileGroups(*again->getAcDbObjectId({handle}).stub()),
                      database->fileGroups(*database->getAcDbObjectId({handle}).stub()))
                << handle;
        EXPECT_TRUE(again->getAcDbObjectId({circle}).isNull());
        std::map<std::uint64_t, QByteArray> kept = recordsOf(before);
        for (const std::uint64_t handle : {std::uint64_t(text), std::uint64_t(circle), std::uint64_t(layer),
                                           std::uint64_t(root), std::uint64_t(0x1F)})
            kept.erase(handle);
        if (version == DrawingVersion::r2000)
            kept.erase(custom); // Its neighbours are others now.
        const std::map<std::uint64_t, QByteArray> records = recordsOf(after);
        for (const auto &[handle, bits] : kept)
            EXPECT_EQ(records.at(handle), bits) << handle;

        // Saved again after another change, nothing else moves.
        appendLine(*again, 9.0);
        ASSERT_TRUE(save(*again, path));
        std::map<std::uint64_t, QByteArray> twice = recordsOf(tests::readFile(path));
        EXPECT_EQ(twice.size(), records.size() + 1);
        EXPECT_EQ(twice.at(text), records.at(text));
        EXPECT_EQ(twice.at(layer), records.at(layer));
    }
}

TEST(DwgWriter, RefusesTheWholeWhenAnObjectCannotBeEncoded)
{
    const tests::TempDir folder;
    const QByteArray before = tests::smallDwg(DrawingVersion::r2013, true);
    const QString path = folder.write("plan.dwg", before);
    const auto database = opened(before);
    append(*database,
           {{0, QStringLiteral("UNHEARD")}, {100, QStringLiteral("AcDbEntity")}, {8, QStringLiteral("0")}});
    const auto saved = save(*database, path);
    ASSERT_FALSE(saved);
    EXPECT_THAT(saved.error().toStdString(), testing::HasSubstr("UNHEARD"));
    EXPECT_EQ(tests::readFile(path), before);
    EXPECT_EQ(folder.fileNames(), QStringList{"plan.dwg"});
}

TEST(DwgWriter, KeepsCustomObjectsThatAreOnlyNeighbours)
{
    const NoteClass noteClass;
    for (const DrawingVersion version : kVersions) {
        const tests::TempDir folder;
        const QString path = folder.write("plan.dwg", tests::smallDwg(version, true));
        const auto database = opened(tests::readFile(path));
        const std::uint64_t note =
            addNote(*database, QStringLiteral("\u8bc4\u56fe"), "secret").handle().value;
        ASSERT_TRUE(save(*database, path));

        const auto again = opened(tests::readFile(path));
        const AcDbObjectPointer<NoteEntity> reader(again->getAcDbObjectId({note}), AcDb::kForRead);
        ASSERT_TRUE(reader);
        appendLine(*again, 1.0);
        const auto saved = save(*again, path);
        ASSERT_TRUE(saved) << qPrintable(saved.error());

        const auto last = opened(tests::readFile(path));
        const AcDbObjectPointer<NoteEntity> kept(last->getAcDbObjectId({note}), AcDb::kForRead);
        ASSERT_TRUE(kept);
        EXPECT_EQ(kept->text, reader->text);
        EXPECT_EQ(kept->secret, "secret");
    }
}

/// What damage opens as is either saved whole or refused, and a refusal writes nothing.
TEST(DwgWriter, SavesOrRefusesWhatWasDamaged)
{
    const tests::TempDir folder;
    std::mt19937 random(1);
    int saves = 0;
    for (const DrawingVersion version : kVersions) {
        const QByteArray whole = tests::smallDwg(version, true);
        for (int i = 0; i < 15; ++i) {
            QByteArray changed = whole;
            changed[qsizetype(random() % std::size_t(whole.size()))] = char(random());
            const QString path = folder.write("damaged.dwg", changed);
            auto database = readDwg(base::FileBytes::fromByteArray(changed), path);
            if (!database || (*database)->modelSpaceId().isNull())
                continue;
            const std::uint64_t added = appendLine(**database, 1.0).handle().value;
            if (!save(**database, path)) {
                EXPECT_EQ(tests::readFile(path), changed);
                continue;
            }
            ++saves;
            EXPECT_FALSE(opened(tests::readFile(path))->getAcDbObjectId({added}).isNull());
        }
    }
    EXPECT_GT(saves, 5);
}

} // namespace
