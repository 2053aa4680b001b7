// Raster images: where they are found and what is read of them.
#include "host/acgi/display/images.h"

#include "tests/support/files.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>

// 139 megabytes once it is read: a little more than a sheet of A1 in colour has at 200 dots an inch.
TEST(Images, ReadsLargeScans)
{
    const tests::TempDir folder;
    QImage scan(5900, 5900, QImage::Format_RGB32);
    scan.fill(0xFF00FF00u);
    ASSERT_TRUE(scan.save(folder.path(QStringLiteral("scan.png")), "PNG", 89)); // Quickly.

    acgi::Images images;
    const QString named = QStringLiteral("C:\\plans\\scan.png");
    images.find(named, folder.path());
    const QImage &pixels = images.load(named).pixels;
    ASSERT_EQ(pixels.size(), scan.size());
    EXPECT_EQ(pixels.pixel(5000, 5000), 0xFF00FF00u);
}

TEST(Images, AreLookedForFromTheFolderOfTheDrawing)
{
    const tests::TempDir shell;
    const tests::TempDir folder;
    QImage picture(4, 4, QImage::Format_RGB32);
    picture.fill(Qt::red);
    QDir(folder.path()).mkpath(QStringLiteral("img"));
    for (const QString &file : {shell.path("a.png"), folder.path("a.png"), folder.path("img/b.png"),
                                shell.path("c.png"), shell.path("img.png")})
        ASSERT_TRUE(picture.save(file));
    const QString started = QDir::currentPath();
    QDir::setCurrent(shell.path());
    struct Row {
        QString named;
        QString found;
    };
    for (const Row &row :
         {Row{QStringLiteral("a.png"), folder.path("a.png")},
          Row{QStringLiteral(".\\img\\b.png"), folder.path("img/b.png")},
          Row{QStringLiteral("D:\\plans\\a.png"), folder.path("a.png")},
          Row{shell.path("img.png"), shell.path("img.png")}, Row{QStringLiteral("c.png"), QString()}}) {
        acgi::Images images;
        images.find(row.named, folder.path());
        const QString file = images.load(row.named).file;
        EXPECT_EQ(file.isEmpty() ? file : QFileInfo(file).canonicalFilePath(),
                  row.found.isEmpty() ? row.found : QFileInfo(row.found).canonicalFilePath())
            << row.named.toStdString();
    }
    acgi::Images images;
    images.find(QStringLiteral("a.png"), QString());
    EXPECT_TRUE(images.load(QStringLiteral("a.png")).file.isEmpty()) << "the drawing has no folder yet";
    images.find(QStringLiteral("a.png"), folder.path());
    EXPECT_FALSE(images.load(QStringLiteral("a.png")).pixels.isNull());
    QDir::setCurrent(started);
}
