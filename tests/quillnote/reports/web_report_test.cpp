// The text report, the web report and the review sheet over a drawing with marks of every kind, byte by byte.
#include "tests/quillnote/reports/reports_fixture.h"

#include "quillnote/reports/report_path.h"
#include "quillnote/reports/reported_mark.h"
#include "quillnote/reports/review_sheet.h"
#include "quillnote/reports/text_report.h"
#include "quillnote/reports/web_report.h"

#include <QDir>
#include <QImage>

TEST_F(ReportsTest, TextReportListsEveryMark)
{
    const QString path = folder.path(QStringLiteral("a#1.dwg"));
    const tests::OpenDrawing drawing(tests::MemoryDrawing().open(), path);
    addEveryKind(drawing);
    tests::ScriptFrontEnd script;
    QN3_QuillnoteOutputTxt();
    EXPECT_TRUE(tests::matchesGolden(shortened(folder.path(QStringLiteral("a#1_dwg.txt")), path),
                                     QStringLiteral("quillnote/reports/golden/text.txt")));
    EXPECT_THAT(script.printed.toStdString(), testing::HasSubstr("没有其中 3 个字符"));
}

TEST_F(ReportsTest, WebReportHasAPictureAndATableForEachMark)
{
    const QString path = folder.path(QStringLiteral("a#1.dwg"));
    const tests::OpenDrawing drawing(tests::MemoryDrawing().open(), path);
    addEveryKind(drawing);
    folder.write(QStringLiteral("a_1-10.png"), {}); // Beside the drawing: in nobody's way.
    QDir(folder.path()).mkdir(QStringLiteral("PNG"));
    folder.write(QStringLiteral("PNG/a_1-10.png"), "an earlier picture");
    tests::ScriptFrontEnd script({}, {QStringLiteral("ok")});
    QN3_outputHtml();

    const QString page = folder.path(QStringLiteral("a_1_dwg.html"));
    EXPECT_TRUE(
        tests::matchesGolden(shortened(page, path), QStringLiteral("quillnote/reports/golden/web.html")));
    EXPECT_THAT(script.printed.toStdString(), testing::HasSubstr("为了在网页中排版合理"));
    EXPECT_THAT(script.printed.toStdString(), testing::HasSubstr("评图标签 4 的文字中有浏览器会执行的标记"));
    EXPECT_THAT(script.printed.toStdString(),
                testing::EndsWith(QStringLiteral("\n网页版标记已输出为<%1>。").arg(page).toStdString()));
    EXPECT_THAT(requests, testing::ElementsAre(os::ShellRequest{page, {}, {}, false}));
    EXPECT_EQ(tests::readFile(folder.path(QStringLiteral("PNG/a_1-10.png"))), "an earlier picture");
    const AcGeView &view = drawing.document().view();
    for (const int number : {9, 11, 16}) {
        const QImage picture(folder.path(QStringLiteral("PNG/a_1-%1.png").arg(number)));
        EXPECT_EQ(picture.size(), QSize(int(view.pixelWidth), int(view.pixelHeight))) << number;
    }
    // The last mark stands on a sheet, and the sheet is on the screen.
    EXPECT_FALSE(acedIsModelSpaceCurrent(drawing.document()));
}

TEST_F(ReportsTest, PicturesGoBesideTheDrawingWhereThereCanBeNoFolder)
{
    const QString path = folder.path(QStringLiteral("plan.dxf"));
    const tests::OpenDrawing drawing(tests::MemoryDrawing().open(), path);
    mark(drawing.database(), QStringLiteral("x"));
    folder.write(QStringLiteral("PNG"), "a file of that name");
    tests::ScriptFrontEnd script({}, {QStringLiteral("ok")});
    QN3_outputHtml();
    EXPECT_TRUE(QFileInfo::exists(folder.path(QStringLiteral("plan-2.png"))));
    EXPECT_THAT(tests::readFile(folder.path(QStringLiteral("plan_dxf.html"))).toStdString(),
                testing::HasSubstr("<img src=\"\r\nPNG\\plan-2.png\">"));
}

TEST_F(ReportsTest, SheetHasARowForEachMark)
{
    const QString path = folder.path(QStringLiteral("a#1.dwg"));
    const tests::OpenDrawing drawing(tests::MemoryDrawing().open(), path);
    addEveryKind(drawing);
    tests::ScriptFrontEnd script;
    QN3_outputHtmlWithNoPng();
    const QString page = folder.path(QStringLiteral("a_1_dwgN.html"));
    EXPECT_TRUE(
        tests::matchesGolden(shortened(page, path), QStringLiteral("quillnote/reports/golden/sheet.html")));
    EXPECT_THAT(script.printed.toStdString(),
                testing::EndsWith(QStringLiteral("\n图纸校审单已输出为<%1>。").arg(page).toStdString()));

    // The viewer of its own, when it is installed.
    QDir(folder.path()).mkdir(QStringLiteral("installed"));
    const QString viewer = folder.write(QStringLiteral("installed/openSheet.exe"), "program");
    script.printed.clear();
    QN3_outputHtmlWithNoPng();
    EXPECT_THAT(script.printed.toStdString(),
                testing::EndsWith(
                    QStringLiteral("\n图纸校审单已输出为<%1>, 马上会自动打开。").arg(page).toStdString()));
    EXPECT_EQ(requests.back(), (os::ShellRequest{viewer, {page}, {}, true}));
}

TEST_F(ReportsTest, NothingIsWrittenWithoutMarksOrAName)
{
    const QString path = folder.path(QStringLiteral("plan.dxf"));
    {
        const tests::OpenDrawing drawing(tests::MemoryDrawing().open(), path);
        for (const auto command : {QN3_QuillnoteOutputTxt, QN3_outputHtml, QN3_outputHtmlWithNoPng}) {
            tests::ScriptFrontEnd script;
            command();
            EXPECT_EQ(script.printed, QStringLiteral("\n本图中无评图标签。"));
        }
    }
    const tests::OpenDrawing drawing(tests::MemoryDrawing().open());
    mark(drawing.database(), QStringLiteral("x"));
    for (const auto command : {QN3_QuillnoteOutputTxt, QN3_outputHtml, QN3_outputHtmlWithNoPng}) {
        tests::ScriptFrontEnd script;
        command();
        EXPECT_EQ(script.printed, QStringLiteral("\n本图尚未命名存盘，请先存盘。然后重新执行本命令。"));
    }
    EXPECT_EQ(folder.fileNames(), QStringList());

    const tests::OpenDrawing lost(tests::MemoryDrawing().open(),
                                  folder.path(QStringLiteral("no/such/plan.dxf")));
    mark(lost.database(), QStringLiteral("x"));
    for (const auto command : {QN3_QuillnoteOutputTxt, QN3_outputHtml, QN3_outputHtmlWithNoPng}) {
        tests::ScriptFrontEnd script;
        command();
        EXPECT_THAT(script.printed.toStdString(), testing::HasSubstr("创建文件<"));
        EXPECT_TRUE(script.isUsedUp());
    }
    EXPECT_TRUE(requests.empty());
}

TEST(ReportPath, EveryEndingOfTheOwnNameIsTurned)
{
    EXPECT_EQ(textReportPath(QStringLiteral("/a.dwg/plan.dwg")), "/a.dwg/plan_dwg.txt");
    EXPECT_EQ(textReportPath(QStringLiteral("/a/PLAN.DwG")), "/a/PLAN_dwg.txt");
    EXPECT_EQ(textReportPath(QStringLiteral("/a#/p#1.dxf")), "/a#/p#1_dxf.txt");
    EXPECT_EQ(webReportPath(QStringLiteral("/a#/p#1.dwg")), "/a#/p_1_dwg.html");
    EXPECT_EQ(sheetPath(QStringLiteral("/a#/p#1.dwg.Dxf")), "/a#/p_1_dwg_dxfN.html");
}

TEST(ReportedMark, MarkupThatRunsIsToldFromMarkupThatDoesNot)
{
    for (const char *text :
         {"<script>", "a <SCRIPT src=x>", "<img src=x onerror=alert(1)", "<img/onload=\"x\"",
          "<a href=javascript:x>", "<iframe src=x>", "<svg/onload=x>", "<b\nonclick = x>",
          "<a href='java&#115;cript:x'>", "<meta http-equiv=refresh>", "<style>@import x"}) {
        ReportedMark mark;
        mark.feedback = QString::fromUtf8(text);
        EXPECT_TRUE(holdsRunnableMarkup(mark)) << text;
    }
    for (const char *text :
         {"", "宽 < 900 且 on=1", "<b>粗</b>", "a<b, script", "门 <M1023>", "2 > 1 & 3", "<basement>"}) {
        ReportedMark mark;
        mark.opinion = QString::fromUtf8(text);
        EXPECT_FALSE(holdsRunnableMarkup(mark)) << text;
    }
}
