// The text report: its words, its file, and what it says when there is nothing to write.
#include "quillnote/reports/text_report.h"

#include "quillnote/authoring/collect_marks.h"
#include "quillnote/authoring/new_mark.h"
#include "quillnote/entity/mark_class.h"
#include "quillnote/entity/mark_record.h"

#include "host/os/shell.h"
#include "tests/support/files.h"
#include "tests/support/memory_drawing.h"
#include "tests/support/script_front_end.h"

#include <gtest/gtest.h>

struct ReportTest : testing::Test {
    ReportTest() { registerMarkClass(); }
    ~ReportTest() override { unregisterMarkClass(); }

    static void mark(AcDbDatabase &database, const QString &text, const QString &feedback,
                     std::int16_t status)
    {
        NewMark request;
        request.opinionText = text;
        AcDbObjectPointer<QuillnoteObj3> made(createMark(database, request), AcDb::kForWrite);
        made->feedbackContent = feedback;
        made->feedbackType = status;
        made->displayMode = DisplayMode::hidden;
    }
    tests::TempDir folder;
};

TEST_F(ReportTest, NumbersByPositionAndLeavesOutWhatIsNotThere)
{
    const tests::OpenDrawing drawing(tests::MemoryDrawing().open());
    mark(drawing.database(), QStringLiteral("甲"), {}, 0);
    mark(drawing.database(), QStringLiteral("乙"), QStringLiteral("已改"), 3);
    mark(drawing.database(), QStringLiteral("丙"), {}, -1);
    mark(drawing.database(), QStringLiteral("丁"), {}, 9);
    AcDbObjectPointer<QuillnoteObj3>(collectMarks(drawing.database()).ids[0], AcDb::kForWrite)->erase();
    EXPECT_EQ(textReport(drawing.database()),
              QStringLiteral("第 1 个审图意见：\n    乙\n反馈意见：\n    已改\n处理方式：完全修正。\n\n"
                             "第 2 个审图意见：\n    丙\n处理方式：拒绝修正。\n\n"
                             "第 3 个审图意见：\n    丁\n处理方式：\n\n"));
}

TEST_F(ReportTest, WritesBesideTheDrawingInTheReportCodePage)
{
    const QString path = folder.path(QStringLiteral("a#1.dxf"));
    const tests::OpenDrawing drawing(tests::MemoryDrawing().open(), path);
    mark(drawing.database(), QStringLiteral("门€\nx\r\ny😀"), {}, 0);
    QStringList opened;
    os::setShellRecorder([&opened](const os::ShellRequest &request) { opened.append(request.target); });
    tests::ScriptFrontEnd script;
    QN3_QuillnoteOutputTxt();
    os::setShellRecorder({});
    const QString report = folder.path(QStringLiteral("a#1_dxf.txt"));
    EXPECT_EQ(opened, QStringList{report});
    EXPECT_EQ(script.printed,
              QStringLiteral("\n报告的编码（代码页 936）没有其中 1 个字符，已改为相近的写法或“?”。"
                             "\n标记文本已输出为<%1>。")
                  .arg(report));
    EXPECT_EQ(tests::readFile(report).toHex(), QByteArray("b5da203120b8f6c9f3cdbcd2e2bcfba3ba0d0a20202020"
                                                          "c3c5800d0a780d0a793f0d0a0d0a"));
}
