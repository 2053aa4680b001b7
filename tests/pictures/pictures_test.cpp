// What native entities look like: every drawing of this folder against its picture, and the comparison
// itself.
#include "tests/pictures/drawing_text.h"
#include "tests/support/files.h"
#include "tests/support/picture.h"

#include <QDir>
#include <QPainter>

struct NativePicture : testing::TestWithParam<std::string> {
};

TEST_P(NativePicture, LooksAsItDid)
{
    const QString name = QStringLiteral("pictures/") + QString::fromStdString(GetParam());
    const tests::DrawingText drawing =
        tests::readDrawingText(tests::readFile(tests::testDataPath(name + QStringLiteral(".txt"))));
    ASSERT_TRUE(drawing.database);
    const AcDbObjectId space = drawing.database->tableRecord(SymbolTable::block, drawing.space);
    ASSERT_FALSE(space.isNull());
    acgi::PaintOptions options;
    options.lineWeights = drawing.lineWeights;
    drawing.database->setFolder(tests::testDataPath(QStringLiteral("pictures/images")));
    const tests::Picture picture = tests::paintPicture(space, drawing.view, options);
    for (const auto &[what, count] : picture.report.undrawn)
        ADD_FAILURE() << "not drawn: " << qPrintable(what) << ", " << count;
    EXPECT_TRUE(tests::matchesPicture(picture.image, name + QStringLiteral(".png")));
}

static std::vector<std::string> drawingNames()
{
    std::vector<std::string> names;
    const QDir folder(tests::testDataPath(QStringLiteral("pictures")));
    for (const QString &name : folder.entryList({QStringLiteral("*.txt")}, QDir::Files, QDir::Name)) {
        if (name != u"CMakeLists.txt")
            names.push_back(name.chopped(4).toStdString());
    }
    return names;
}

INSTANTIATE_TEST_SUITE_P(Drawings, NativePicture, testing::ValuesIn(drawingNames()),
                         [](const auto &information) { return information.param; });

TEST(PictureComparison, ForgivesShadesButNotLines)
{
    QImage picture(100, 100, QImage::Format_RGB32);
    picture.fill(Qt::white);
    QImage shaded = picture;
    shaded.fill(QColor(255, 255, 255 - tests::kChannelTolerance));
    EXPECT_EQ(tests::differingPixels(picture, shaded), 0);
    QImage lined = picture;
    QPainter(&lined).drawLine(10, 10, 40, 10);
    EXPECT_EQ(tests::differingPixels(picture, lined), 31);
    EXPECT_EQ(tests::differingPixels(picture, picture.copy(0, 0, 100, 50)), 10000);
}
