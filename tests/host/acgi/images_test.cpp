// Raster images: where they are found and what is read of them.
#include "host/acgi/giimages.h"

#include "tests/support/files.h"

#include <gtest/gtest.h>

// 139 megabytes once it is read: a little more than a sheet of A1 in colour has at 200 dots an inch.
TEST(Images, ReadsLargeScans)
{
    const tests::TempDir folder;
    QImage scan(5900, 5900, QImage::Format_RGB32);
    scan.fill(0xFF00FF00u);
    ASSERT_TRUE(scan.save(folder.path(QStringLiteral("scan.png")), "PNG", 89)); // Quickly.

    AcGiImages images;
    const QString named = QStringLiteral("C:\\plans\\scan.png");
    images.find(named, folder.path());
    const QImage &pixels = images.load(named).pixels;
    ASSERT_EQ(pixels.size(), scan.size());
    EXPECT_EQ(pixels.pixel(5000, 5000), 0xFF00FF00u);
}
