// What the palette knows of the marks of a drawing that was just opened: read past their pictures, and the
// same as opening each of them tells.
#include "quillnote/review/mark_index.h"
#include "tests/quillnote/authoring/authoring_fixture.h"

#include "host/formats/dxf/dxfreader.h"
#include "host/formats/dxf/dxftemplate.h"
#include "host/formats/dxf/dxfwriter.h"

static std::unique_ptr<AcDbDatabase> opened(const QByteArray &bytes)
{
    return std::move(readDxf(base::FileBytes::fromByteArray(bytes), QStringLiteral("test"))).value();
}

static auto valuesOf(const MarkSummary &mark)
{
    return std::tuple(mark.id, mark.markNumber, mark.subNumber, mark.feedbackType, mark.reviewer,
                      mark.opinion, mark.feedback);
}

TEST_F(AuthoringTest, AnOpenedDrawingIsReadPastItsPictures)
{
    const tests::OpenDrawing made(opened(newDrawingDxf()));
    const char *const opinions[] = {"", "门宽不足", "两\n行\r\n^J \\U+0041 %%c", "newer", "no marker"};
    for (const char *opinion : opinions) {
        NewMark request;
        request.corner2 = {20, 10, 0};
        request.reviewerName = QStringLiteral(" 张工 ");
        request.opinionText = QString::fromUtf8(opinion);
        AcDbObjectPointer<QuillnoteObj3> mark(createMark(made.database(), request), AcDb::kForWrite);
        mark->subNumber = std::uint16_t(mark->markNumber % 3);
        mark->feedbackContent = QString::fromUtf8(opinion) + u'!';
        mark->feedbackType = std::int16_t(mark->markNumber % 5 - 1);
        mark->snapImage = QByteArray(3000, 'x');
    }
    QByteArray bytes = writeDxf(made.database()).value();
    // One record of a later program, one that is damaged.
    const qsizetype newer = bytes.lastIndexOf("QuillnoteObj3", bytes.indexOf("newer"));
    bytes.replace(bytes.indexOf("\n7\r", newer), 2, "\n8");
    const qsizetype damaged = bytes.lastIndexOf("QuillnoteObj3", bytes.indexOf("no marker"));
    bytes.replace(damaged, 13, "QuillnoteObjX");

    const auto reopened = opened(bytes);
    MarkIndex index([] {});
    index.watch(reopened.get());
    const std::vector<MarkSummary> read = index.marks();
    ASSERT_EQ(read.size(), 3U);
    for (const MarkSummary &mark : read)
        EXPECT_EQ(mark.id.stub()->object, nullptr) << "only its bytes were looked at";
    for (const MarkSummary &mark : read)
        EXPECT_EQ(valuesOf(mark),
                  valuesOf(summaryOf(*AcDbObjectPointer<QuillnoteObj3>(mark.id, AcDb::kForRead))));
    EXPECT_EQ(read[1].opinion, QStringLiteral("门宽不足"));

    AcDbObjectPointer<QuillnoteObj3>(read[0].id, AcDb::kForWrite)->feedbackType = 2;
    EXPECT_EQ(index.marks()[0].feedbackType, 2) << "what was changed since is read again";
    EXPECT_EQ(valuesOf(index.marks()[1]), valuesOf(read[1]));
}
