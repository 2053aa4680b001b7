// Pictures of targets and views: sizes, what they show, where they fail, which mark gets which.
#include "quillnote/entity/mark_class.h"
#include "quillnote/entity/mark_record.h"
#include "quillnote/frame/settings/settings.h"
#include "quillnote/frame/settings/start_up_settings.h"
#include "quillnote/snapshot/capture.h"
#include "quillnote/snapshot/full_snapshot_view.h"
#include "quillnote/snapshot/pending_snapshot.h"
#include "quillnote/snapshot/temporary_picture.h"

#include "host/acdb/dbsymtb.h"
#include "host/aced/edsysvar.h"
#include "host/aced/hostcommands.h"
#include "host/acgi/query/install.h"
#include "tests/support/memory_drawing.h"
#include "tests/support/script_front_end.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QImage>
#include <QTemporaryDir>

struct CaptureTest : testing::Test {
    CaptureTest()
    {
        acgi::install();
        acedRegisterHostCommands();
        registerMarkClass();
        startUpSettings().reset();
        qputenv("TMPDIR", QFile::encodeName(folder.path()));
        tests::MemoryDrawing memory;
        memory.layer("LOCKED", {.flags = 4});
        // A red line through the middle of the target 0,0 20,10.
        memory.entity(
            "LINE",
            {{62, 1}, {100, "AcDbLine"}, {10, AcGePoint3d(-500, 5, 0)}, {11, AcGePoint3d(500, 5, 0)}});
        drawing = std::make_unique<tests::OpenDrawing>(memory.open());
        drawing->document().view() = AcGeView();
        drawing->document().view().height = 100; // 10 pixels a unit; the view is 160 wide.
    }
    ~CaptureTest() override
    {
        drawing.reset();
        unregisterMarkClass();
        pendingSnapshot().reset();
        EXPECT_EQ(files(), QStringList());
        qunsetenv("TMPDIR");
    }
    QStringList files() const { return QDir(folder.path()).entryList(QDir::Files); }
    static QImage takenImage(const std::optional<QString> &path)
    {
        return QImage::fromData(takeTemporaryPicture(path.value_or(QString())), "PNG");
    }
    AcDbObjectId append(const char *layer = "0") const
    {
        auto mark = std::make_unique<QuillnoteObj3>();
        mark->setLayer(QString::fromLatin1(layer));
        AcDbObjectPointer<AcDbBlockTableRecord> space(drawing->database().modelSpaceId(), AcDb::kForWrite);
        AcDbObjectId id;
        EXPECT_EQ(space->appendAcDbEntity(id, mark.get()), Acad::eOk);
        mark.release()->close();
        return id;
    }
    QTemporaryDir folder;
    std::unique_ptr<tests::OpenDrawing> drawing;
};

// A line between two rows of pixels gives half of its colour to each.
static bool isRed(QRgb color)
{
    return qRed(color) > 60 && qGreen(color) < 30 && qBlue(color) < 30;
}

TEST_F(CaptureTest, TheTargetIsCutFromTheViewPixelByPixel)
{
    // The middle of the view is pixel 800, 500.
    EXPECT_EQ(targetPixels({20, 10, 0}, {0, 0, 0}), QRect(800, 400, 200, 100));
    const auto path = captureTargetImage({20, 10, 0}, {0, 0, 0});
    ASSERT_TRUE(path);
    EXPECT_TRUE(QFileInfo(*path).fileName().startsWith(QStringLiteral("QNS")));
    EXPECT_TRUE(path->endsWith(QStringLiteral(".TMP.PNG")));
    EXPECT_TRUE(QFileInfo::exists(path->chopped(4)));
    const QImage image = takenImage(path);
    ASSERT_EQ(image.size(), QSize(200, 100));
    EXPECT_TRUE(isRed(image.pixel(0, 50)) || isRed(image.pixel(0, 49)));
    EXPECT_FALSE(isRed(image.pixel(0, 10)));

    // Seen from elsewhere the same place looks the same.
    drawing->document().view().centre = {3, 2, 0};
    EXPECT_EQ(takenImage(captureTargetImage({0, 0, 0}, {20, 10, 0})), image);
}

TEST_F(CaptureTest, WhatLiesBeyondTheViewIsThereToo)
{
    const QImage image = takenImage(captureTargetImage({70, 0, 0}, {90, 10, 0}));
    ASSERT_EQ(image.size(), QSize(200, 100));
    const auto isRedAt = [&image](int x) { return isRed(image.pixel(x, 50)) || isRed(image.pixel(x, 49)); };
    EXPECT_TRUE(isRedAt(95));
    EXPECT_TRUE(isRedAt(105));
    EXPECT_FALSE(takenImage(captureTargetImage({900, 0, 0}, {910, 10, 0})).isNull());
}

TEST_F(CaptureTest, TargetsThatHaveNoPictureFail)
{
    EXPECT_FALSE(captureTargetImage({1, 1, 0}, {1, 9, 0}));
    EXPECT_FALSE(captureTargetImage({0, 0, 0}, {1e9, 1e9, 0})) << "more pixels than numbers";
    EXPECT_FALSE(captureTargetImage({0, 0, 0}, {1e5, 1e5, 0})) << "more pixels than memory";
}

TEST_F(CaptureTest, WithoutATemporaryFolderPicturesStayInMemory)
{
    const QImage expected = takenImage(captureTargetImage({0, 0, 0}, {20, 10, 0}));
    const QString onDisk = captureFullView();
    const QImage cut = takenImage(cropTargetImage({0, 0, 0}, {20, 10, 0}, onDisk));
    const QImage view = takenImage(onDisk);
    qputenv("TMPDIR", "/nowhere/at/all");
    const auto path = captureTargetImage({0, 0, 0}, {20, 10, 0});
    EXPECT_EQ(takenImage(path), expected);
    EXPECT_TRUE(takenImage(path).isNull()) << "taken once";
    const QString full = captureFullView();
    EXPECT_EQ(takenImage(cropTargetImage({0, 0, 0}, {20, 10, 0}, full)), cut);
    EXPECT_EQ(takenImage(full), view);
    const AcDbObjectId mark = append();
    recordFullSnapshot(mark);
    EXPECT_FALSE(AcDbObjectPointer<QuillnoteObj3>(mark, AcDb::kForRead)->fullImage.isEmpty());
    qputenv("TMPDIR", QFile::encodeName(folder.path()));
}

TEST_F(CaptureTest, TheTargetIsCutOutOfAFullView)
{
    const QString full = newTemporaryPicture();
    QImage view(1600, 1000, QImage::Format_RGB32);
    view.fill(Qt::white);
    view.setPixelColor(800, 400, Qt::blue);
    view.setPixelColor(999, 499, Qt::green);
    ASSERT_TRUE(view.save(full));
    const QImage image = takenImage(cropTargetImage({0, 0, 0}, {20, 10, 0}, full));
    ASSERT_EQ(image.size(), QSize(200, 100));
    EXPECT_EQ(image.pixelColor(0, 0), QColor(Qt::blue));
    EXPECT_EQ(image.pixelColor(199, 99), QColor(Qt::green));
    removeTemporaryPicture(full);
    EXPECT_FALSE(cropTargetImage({0, 0, 0}, {20, 10, 0}, full));
}

TEST_F(CaptureTest, AMarkGetsTheSnapshotOfItsOwnTarget)
{
    QuillnoteObj3 mark;
    mark.targetCorner1 = {0, 0, 0};
    mark.targetCorner2 = {20, 10, 0};
    capturePendingSnapshot(
        {.corner1 = {}, .corner2 = {20, 10, 0}, .corner3 = {0, 10, 0}, .corner4 = {20, 0, 0}});
    EXPECT_EQ(files().size(), 2);
    // The line goes before the mark comes; what waits was taken before.
    const AcDbObjectId line = pendingSnapshot().fingerprint.ids.at(0);
    AcDbObjectPointer<AcDbEntity>(line, AcDb::kForWrite)->erase();
    storeSnapshot(drawing->database(), mark);
    EXPECT_EQ(mark.snapEntityIds, std::vector{line});
    EXPECT_TRUE(mark.snapChecksum.startsWith(QStringLiteral("SUM=")));
    EXPECT_EQ(QImage::fromData(mark.snapImage).size(), QSize(200, 100));
    EXPECT_EQ(files(), QStringList());

    // A mark that nobody took a snapshot for gets its own, not the one that waits for another place.
    AcDbObjectPointer<AcDbEntity>(line, AcDb::kForWrite, true)->erase(false);
    capturePendingSnapshot(
        {.corner1 = {}, .corner2 = {20, 10, 0}, .corner3 = {0, 10, 0}, .corner4 = {20, 0, 0}});
    QuillnoteObj3 other;
    other.targetCorner1 = {0, 20, 0};
    other.targetCorner2 = {10, 25, 0};
    storeSnapshot(drawing->database(), other);
    EXPECT_TRUE(other.snapEntityIds.empty() && other.snapChecksum.isEmpty());
    EXPECT_EQ(QImage::fromData(other.snapImage).size(), QSize(100, 50));
}

TEST_F(CaptureTest, TheFullViewIsRecordedInMarksThatCanBeWritten)
{
    acedSetIntVar(QStringLiteral("CMDECHO"), 0);
    tests::ScriptFrontEnd script;
    const AcDbObjectId mark = append();
    recordFullSnapshot(mark);
    EXPECT_EQ(QImage::fromData(AcDbObjectPointer<QuillnoteObj3>(mark, AcDb::kForRead)->fullImage).size(),
              QSize(1600, 1000));
    EXPECT_EQ(acedIntVar(QStringLiteral("CMDECHO")), 1);
    const QString refusal = QStringLiteral("\n记录全屏快照失败，请注意是不是评图标签所在图层本锁定或冻结。");
    EXPECT_FALSE(script.printed.contains(refusal));
    recordFullSnapshot(append("LOCKED"));
    EXPECT_TRUE(script.printed.contains(refusal));
}

TEST_F(CaptureTest, EverythingButNoTurnsTheSecondScreenOn)
{
    for (const char *answer : {"", "Y", "yes", "^C"}) {
        startUpSettings().snapshotMode = 0;
        settings::setNumber(u"SnapRecord", 0);
        tests::ScriptFrontEnd script({QString::fromLatin1(answer)});
        QN3_FullSnapshotView();
        EXPECT_EQ(startUpSettings().snapshotMode, 3) << answer;
        EXPECT_EQ(settings::number(u"SnapRecord"), 1) << answer;
        EXPECT_EQ(settings::number(u"SnapReview"), 1) << answer;
        EXPECT_TRUE(recordsFullView());
        EXPECT_EQ(script.prompts.at(0).message, QStringLiteral("是否双屏显示(Y/N)[Y]? "));
    }
    tests::ScriptFrontEnd script({QStringLiteral("n")});
    QN3_FullSnapshotView();
    EXPECT_EQ(startUpSettings().snapshotMode, 0);
    EXPECT_EQ(settings::number(u"SnapRecord"), 0);
    EXPECT_EQ(settings::number(u"SnapReview"), 0);
}
