// Reading again what was just written: damage keeps the file from being replaced, and nothing that opens is
// refused without it. Progress: stopping at any moment leaves things as they were.
#include "host/formats/dxf/dxfreread.h"

#include "tests/host/formats/dxf/dxf_support.h"
#include "tests/support/files.h"

#include <QDir>
#include <QFile>

#include <functional>
#include <random>

namespace
{

/// Changes the temporary file when all of it is written and the first megabyte was read again.
bool saveDamaged(AcDbDatabase &database, const tests::TempDir &folder,
                 const std::function<void(QByteArray &)> &damage, QString &error)
{
    const QString target = folder.write("plan.dxf", "old");
    bool done = false;
    const auto saved = writeDxf(database, target, [&](double share) {
        if (share > 0.6 && !std::exchange(done, true)) {
            const QStringList names =
                QDir(folder.path()).entryList({".quill-*.tmp"}, QDir::Files | QDir::Hidden);
            QByteArray bytes = tests::readFile(folder.path(names.value(0)));
            damage(bytes);
            tests::writeFile(folder.path(names.value(0)), bytes);
        }
        return true;
    });
    error = saved ? QString() : saved.error().text();
    EXPECT_TRUE(done);
    EXPECT_EQ(tests::readFile(target) == "old", !saved);
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList("plan.dxf"));
    return saved.ok();
}

/// Large enough that what is written leaves the gathering buffer before the end.
QByteArray largeDrawing()
{
    QByteArray circles;
    for (int i = 0; i < 90'000; ++i)
        circles += "  0\r\nCIRCLE\r\n  5\r\n" + QByteArray::number(0x1000 + i, 16) +
                   "\r\n  8\r\n0\r\n 10\r\n1.0\r\n 20\r\n2.0\r\n 40\r\n3.0\r\n";
    QByteArray drawing = tests::dxfText(tests::smallDrawing());
    const qsizetype entities = drawing.indexOf("ENTITIES\r\n");
    return drawing.insert(entities + 10, circles);
}

} // namespace

TEST(Reread, ADamagedFileIsNotPutInPlace)
{
    const tests::TempDir folder;
    const auto database = tests::openDxf(largeDrawing());
    const AcDbObjectId added = tests::appendCircle(database->modelSpaceId());
    const QByteArray handle = QByteArray::number(added.handle().value, 16).toUpper();
    struct Case {
        const char *name;
        std::function<void(QByteArray &)> damage;
        const char *reason;
    };
    const Case cases[] = {
        {"whole", [](QByteArray &) {}, ""},
        {"cut", [](QByteArray &bytes) { bytes.chop(40); }, "cannot be read again"},
        {"hole", [](QByteArray &bytes) { bytes.replace(bytes.size() / 2, 4096, QByteArray(4096, '\0')); },
         "cannot be read again"},
        {"another handle", [](QByteArray &bytes) { bytes.replace("\r\n9abc\r\n", "\r\n9ABD\r\n"); },
         "CIRCLE 9ABC"},
        {"another kind", [](QByteArray &bytes) { bytes.replace("INSERT", "INSECT"); }, "INSERT"},
        {"the new object", [&](QByteArray &bytes) { bytes.replace("\r\n" + handle + "\r\n", "\r\n0\r\n"); },
         handle.constData()},
    };
    for (const Case &c : cases) {
        QString error;
        const bool saved = saveDamaged(*database, folder, c.damage, error);
        EXPECT_EQ(saved, *c.reason == '\0') << c.name << ": " << qPrintable(error);
        EXPECT_TRUE(error.contains(c.reason)) << c.name << ": " << qPrintable(error);
    }
}

/// A refusal without a reason would keep the user from saving at all.
TEST(Reread, WhateverOpensCanBeSavedWithChanges)
{
    const tests::TempDir folder;
    const QString target = folder.path("out.dxf");
    std::mt19937 random(11);
    int opened = 0;
    const QDir corpus(tests::testDataPath("corpus/dxf"));
    for (const QString &name : corpus.entryList(QDir::Files)) {
        const QByteArray original = tests::readFile(corpus.filePath(name));
        for (int round = 0; round < 100; ++round) {
            QByteArray bytes = original;
            for (unsigned edits = round == 0 ? 0 : 1 + random() % 3; edits > 0; --edits) {
                const auto at = qsizetype(random() % std::size_t(bytes.size()));
                if (random() % 2 == 0)
                    bytes[at] = "\n0 A1{"[random() % 6];
                else
                    bytes.remove(at, qsizetype(random() % 60));
            }
            const auto database = readDxf(base::FileBytes::fromByteArray(bytes), name);
            if (!database)
                continue;
            ++opened;
            tests::appendCircle((*database)->modelSpaceId());
            const std::uint32_t victim = 1 + random() % ((*database)->stubCount() - 1);
            AcDbObjectPointer<AcDbObject> object(AcDbObjectId((*database)->stub(victim)), AcDb::kForWrite);
            if (object && object->objectId().isEntity())
                object->erase();
            object.close();
            const auto &source = dynamic_cast<const DxfSource &>(*(*database)->source());
            dxf::RereadCheck check(**database, source, dxf::SavePlan(**database, source));
            tests::writeFile(target, tests::saveDxf(**database));
            const auto reread = check.read(target);
            EXPECT_TRUE(reread) << qPrintable(name) << " round " << round << ": "
                                << qPrintable(reread.error());
        }
    }
    EXPECT_GT(opened, 500);
}

TEST(Progress, StoppingAnywhereLeavesThingsAsTheyWere)
{
    const tests::TempDir folder;
    const QByteArray bytes = largeDrawing();
    const QString target = folder.write("plan.dxf", "old");
    const auto database = tests::openDxf(bytes);
    for (const bool saving : {false, true}) {
        int steps = 0;
        for (int stopAt = 0; stopAt <= steps; ++stopAt) {
            int step = 0;
            double before = 0;
            const auto progress = [&](double share) {
                EXPECT_GE(share, before);
                EXPECT_LE(share, 1.0);
                before = share;
                return step++ != stopAt;
            };
            const bool done = saving ? writeDxf(*database, target, progress).ok()
                                     : readDxf(base::FileBytes::fromByteArray(bytes), "plan", progress).ok();
            EXPECT_EQ(done, step <= stopAt);
            EXPECT_EQ(tests::readFile(target), saving && done ? bytes : QByteArray("old"));
            EXPECT_EQ(folder.fileNames(), QStringList("plan.dxf"));
            steps = std::max(steps, step);
        }
        EXPECT_GT(steps, 3);
    }
}
