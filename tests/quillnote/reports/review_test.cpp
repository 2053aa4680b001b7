// The page to send and the tables: what they hold, and that texts of drawings stay texts.
#include "tests/quillnote/reports/reports_fixture.h"

#include "quillnote/reports/review_page.h"
#include "quillnote/reports/review_table.h"

#include "quillnote/entity/mark_state.h"

#include <QCryptographicHash>
#include <QImage>
#include <QRegularExpression>

/// The first row whose middle is not background.
static int rowOfLine(const QImage &image)
{
    int row = 0;
    while (row + 1 < image.height() && image.pixel(image.width() / 2, row) == image.pixel(0, 0))
        ++row;
    return row;
}

struct ReviewTest : ReportsTest {
    static Review review(const tests::OpenDrawing &drawing, ReviewPictures pictures)
    {
        return takeReview(drawing.document(), pictures);
    }
};

TEST_F(ReviewTest, RowsAreSortedAndHiddenMarksCounted)
{
    const tests::OpenDrawing drawing(tests::MemoryDrawing().open(), folder.path(QStringLiteral("a.dxf")));
    addEveryKind(drawing);
    const Review taken = review(drawing, ReviewPictures::none);
    QStringList numbers;
    for (const ReviewRow &row : taken.rows)
        numbers.append(row.mark.number);
    EXPECT_EQ(numbers.join(u' '), "1 3 4 5 5.2 7 8");
    EXPECT_EQ(taken.hidden, 1U);
    EXPECT_EQ(taken.name, "a.dxf");
    EXPECT_TRUE(taken.overviews.empty());
    EXPECT_TRUE(taken.rows[0].now.png.isEmpty());
    tests::ScriptFrontEnd script;
    tellHiddenMarks(taken);
    EXPECT_EQ(script.printed, QStringLiteral("\na.dxf 中有 1 个评图标签是隐藏的，没有列入。"));
}

// A picture of then is laid over one of now: same size, same place, same background, and no mark in it.
TEST_F(ReviewTest, PicturesOfThenAndNowLieOverEachOther)
{
    tests::MemoryDrawing memory;
    memory.entity("LINE", {{62, 1}, {10, AcGePoint3d(-50, 5, 0)}, {11, AcGePoint3d(50, 5, 0)}});
    const tests::OpenDrawing drawing(memory.open(), folder.path(QStringLiteral("a.dxf")));
    drawing.document().view().centre = {10, 5, 0};
    drawing.document().view().height = 40;
    mark(drawing.database(), QStringLiteral("x"));
    mark(drawing.database(), QStringLiteral("without picture"));
    AcDbObjectPointer<QuillnoteObj3>(collectMarks(drawing.database()).ids[1], AcDb::kForWrite)->snapImage =
        "no picture";
    const Review taken = review(drawing, ReviewPictures::all);
    const auto image = [](const ReviewPicture &picture) { return QImage::fromData(picture.png, "PNG"); };
    const QImage then = image(taken.rows[0].then).convertToFormat(QImage::Format_RGB32);
    const QImage now = image(taken.rows[0].now).convertToFormat(QImage::Format_RGB32);
    EXPECT_EQ(then.size(), QSize(500, 250));
    EXPECT_EQ(now.size(), then.size());
    EXPECT_EQ(now.pixel(0, 0), then.pixel(0, 0));
    // The stored one was cut out of the view at whole pixels.
    EXPECT_NEAR(rowOfLine(now), rowOfLine(then), 1);

    EXPECT_TRUE(taken.rows[1].then.png.isEmpty());
    EXPECT_FALSE(image(taken.rows[1].now).isNull());
    ASSERT_EQ(taken.overviews.size(), 1U);
    const ReviewOverview &overview = taken.overviews[0];
    EXPECT_EQ(image(overview.picture).size(), overview.picture.size);
    ASSERT_EQ(overview.places.size(), 2U);
    EXPECT_NEAR(overview.places[0].box.width(), overview.picture.size.width() * 20 / 104.0, 1.0);
}

// The colour that fills most of a picture may be that of a column.
TEST_F(ReviewTest, BackgroundsAreToldFromWhatFillsThePicture)
{
    tests::MemoryDrawing memory;
    memory.entity("SOLID", {{62, 3},
                            {10, AcGePoint3d(-50, -50, 0)},
                            {11, AcGePoint3d(14, -50, 0)},
                            {12, AcGePoint3d(-50, 50, 0)},
                            {13, AcGePoint3d(14, 50, 0)}});
    const tests::OpenDrawing drawing(memory.open(), folder.path(QStringLiteral("a.dxf")));
    drawing.document().view().centre = {10, 5, 0};
    drawing.document().view().height = 40;
    mark(drawing.database(), QStringLiteral("x"));
    const Review taken = review(drawing, ReviewPictures::targets);
    const QImage then = QImage::fromData(taken.rows[0].then.png, "PNG");
    const QImage now = QImage::fromData(taken.rows[0].now.png, "PNG");
    for (const int x : {10, then.width() - 10})
        EXPECT_EQ(now.pixel(x, 100), then.pixel(x, 100));
    EXPECT_NE(now.pixel(10, 100), now.pixel(then.width() - 10, 100));
}

TEST_F(ReviewTest, NothingOfADrawingBecomesMarkup)
{
    Review hostile;
    hostile.name = QStringLiteral("<script>1</script>.dxf");
    ReviewRow row;
    const QString text =
        QStringLiteral("</p></article><script>alert(1)</script>\"'><img src=x onerror=alert(2)>\u0001&amp;😀");
    row.mark.number = QStringLiteral("1");
    row.mark.opinion = row.mark.feedback = row.mark.reviewer = row.mark.designer = row.layout = text;
    hostile.rows = {row};
    hostile.overviews = {{text, {"png", {100, 100}, 96.0}, {{0, QRectF(1, 2, 3, 4)}}}};
    const QString page = QString::fromUtf8(reviewPage({hostile, {}}));

    EXPECT_EQ(page.count(u"<script>"), 1);
    EXPECT_FALSE(page.contains(u"<img src=x"));
    EXPECT_FALSE(page.contains(QChar(1)));
    EXPECT_TRUE(page.contains(u"&lt;/p&gt;&lt;/article&gt;&lt;script&gt;alert(1)&lt;/script&gt;&quot;'&gt;"));
    EXPECT_TRUE(page.contains(u"data-reviewer=\"&lt;/p&gt;"));
    EXPECT_TRUE(page.contains(u"本图中无评图标签。"));
    EXPECT_FALSE(page.contains(u"http:")) << "nothing comes from elsewhere";

    // The policy names the very texts of the page's own style and script.
    for (const char *tag : {"style", "script"}) {
        const QRegularExpression inside(QStringLiteral("<%1>(.*?)</%1>").arg(QLatin1String(tag)),
                                        QRegularExpression::DotMatchesEverythingOption);
        const QByteArray own = inside.match(page).captured(1).toUtf8();
        const QByteArray hash = QCryptographicHash::hash(own, QCryptographicHash::Sha256).toBase64();
        EXPECT_TRUE(
            page.contains(QStringLiteral("%1-src 'sha256-%2'").arg(QLatin1String(tag), QLatin1String(hash))));
    }
    EXPECT_TRUE(page.contains(u"content=\"default-src 'none'; img-src data:;"));
}

TEST_F(ReviewTest, CsvQuotesWhatNeedsItAndRunsNothing)
{
    Review first;
    first.name = QStringLiteral("a,b.dxf");
    ReviewRow row;
    row.layout = QStringLiteral("Model");
    row.mark.number = QStringLiteral("5.10");
    row.mark.opinion = QStringLiteral("=cmd|'/c calc'!A0");
    row.mark.feedback = QStringLiteral("第一行\r\n\"二\"");
    row.mark.reviewer = QStringLiteral("-5");
    row.mark.designer = QStringLiteral("@x");
    row.mark.status = handling::kCorrected;
    first.rows = {row};
    const QString path = folder.path(QStringLiteral("t.csv"));
    ASSERT_TRUE(writeReviewCsv({first}, path));
    EXPECT_EQ(tests::readFile(path).left(3), "\xEF\xBB\xBF");
    EXPECT_EQ(
        QString::fromUtf8(tests::readFile(path).mid(3)),
        QStringLiteral(
            "图纸,布局,序号,校审人,校审日期,校审意见,处理方式,反馈意见,设计师,修订日期\r\n"
            "\"a,b.dxf\",Model,5.10,-5,,'=cmd|'/c calc'!A0,完全修正,\"第一行\r\n\"\"二\"\"\",'@x,\r\n"));
    EXPECT_FALSE(writeReviewCsv({first}, folder.path(QStringLiteral("no/such/t.csv"))));
}

TEST_F(ReviewTest, WorkbookCutsWhatNoCellHoldsAndIsCompleteOrAbsent)
{
    Review first;
    ReviewRow row;
    row.mark.opinion = QString(64 * 1024, u'长');
    row.mark.feedback = QStringLiteral("\u0001=1+1\n") + QString(QChar(0)) + QStringLiteral("😀");
    first.rows = {row, row};
    const QString path = folder.path(QStringLiteral("t.xlsx"));
    tests::ScriptFrontEnd script;
    ASSERT_TRUE(writeReviewWorkbook({first}, path));
    EXPECT_TRUE(tests::readFile(path).startsWith("PK"));
    EXPECT_EQ(script.printed, QStringLiteral("\n有 2 段文字超过表格单元的上限，已截短。"));
    EXPECT_FALSE(writeReviewWorkbook({first}, folder.path(QStringLiteral("no/such/t.xlsx"))));
    EXPECT_EQ(folder.fileNames(), QStringList{QStringLiteral("t.xlsx")});
}
