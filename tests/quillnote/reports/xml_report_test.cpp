// The XML document: its form to the letter, texts that XML does not take, and the road of the command.
#include "tests/quillnote/reports/reports_fixture.h"

#include "quillnote/reports/xml_report.h"

#include <QXmlStreamReader>

static std::vector<ReportedMark> reported(const AcDbDatabase &database)
{
    std::vector<ReportedMark> marks;
    for (const AcDbObjectId id : collectMarks(database).ids)
        marks.push_back(*readReportedMark(id));
    return marks;
}

/// The texts of all elements of that name; empty when the document cannot be read to its end.
static QStringList textsOf(const QByteArray &document, const QString &name)
{
    QXmlStreamReader reader(document);
    QStringList texts;
    while (!reader.atEnd()) {
        if (reader.readNext() == QXmlStreamReader::StartElement && reader.name() == name)
            texts.append(reader.readElementText());
    }
    return reader.hasError() ? QStringList() : texts;
}

TEST_F(ReportsTest, TheXmlRecordIsAsReadersExpectIt)
{
    const tests::OpenDrawing drawing(tests::MemoryDrawing().open());
    const AcDbObjectId id = mark(drawing.database(), {}, handling::kRefused, QStringLiteral("已改"));
    QString date;
    {
        AcDbObjectPointer<QuillnoteObj3> made(id, AcDb::kForWrite);
        made->markNumber = 7;
        made->suggestionContent = QStringLiteral("a < b && \"c\" 'd'\r\n\te ") + QChar(0x01) + u' ' +
                                  QChar(0xD83D) + QStringLiteral(" &#x0; 😀");
        made->feedbackName = QStringLiteral("李工");
        made->bigCategory = QStringLiteral("大类");
        made->smallCategory = QStringLiteral("小类");
        made->weight = 0;
        made->GUID = QStringLiteral("{G}");
        made->editVersion = 3;
        made->feedbackTime = made->createTime + 1;
        date = markDateText(made->createTime);
    }
    XmlReport report;
    report.add({.fileName = QStringLiteral("plan.dxf"),
                .projectName = QStringLiteral("泵房 <A>"),
                .subProjectName = QStringLiteral("子项"),
                .projectCode = QStringLiteral("P-1"),
                .projectManager = QStringLiteral("负责"),
                .discipline = QStringLiteral("给排水"),
                .designCompany = QStringLiteral("公司"),
                .designer = QStringLiteral("设计"),
                .designPhase = QStringLiteral("施工图"),
                .drawingName = QStringLiteral("平面图"),
                .drawingNumber = QStringLiteral("S-01")},
               reported(drawing.database()));
    EXPECT_TRUE(tests::matchesGolden(report.document().replace(date.toUtf8(), "<DATE>"),
                                     QStringLiteral("quillnote/reports/golden/record.xml")));
}

TEST_F(ReportsTest, XmlOfEveryKindOfMarkCanBeRead)
{
    const tests::OpenDrawing drawing(tests::MemoryDrawing().open());
    addEveryKind(drawing);
    QString allUnits;
    for (int unit = 0; unit < 0x10000; ++unit)
        allUnits += QChar(unit);
    mark(drawing.database(), allUnits + QStringLiteral("&#x1;&#xZZ &amp; ]]> <!-- <![CDATA["));
    XmlReport report;
    EXPECT_TRUE(report.isEmpty());
    report.add({}, reported(drawing.database()));
    const QByteArray document = report.document();
    const QStringList opinions = textsOf(document, QStringLiteral("suggestionContent"));
    ASSERT_EQ(opinions.size(), 8) << "all but the hidden one";
    EXPECT_TRUE(opinions.contains(QStringLiteral("<script>alert(1)</script> \"引号\" & 'x'")));
    const QString end = QStringLiteral("&#x1;&#xZZ &amp; ]]> <!-- <![CDATA[");
    EXPECT_TRUE(std::ranges::any_of(opinions, [&](const QString &text) { return text.endsWith(end); }));
    EXPECT_TRUE(textsOf(document, QStringLiteral("idNumber")).contains(QStringLiteral("5.2")));
}

struct XmlCommandTest : ReportsTest {
    XmlCommandTest() : drawing(tests::MemoryDrawing().open(), folder.path(QStringLiteral("plan.dwg")))
    {
        settings::setText(u"Yun_tmpXmlFn", u"old");
        for (int row = 1; row <= 10; ++row) {
            settings::setText(u"xmlList%d", row, u"");
            settings::setText(u"xmlTxt%d", row, u"");
        }
    }
    QString path(const char *name) const { return folder.path(QString::fromLatin1(name)); }
    tests::OpenDrawing drawing;
};

TEST_F(XmlCommandTest, WritesBesideTheDrawingAndHandsOver)
{
    mark(drawing.database(), QStringLiteral("甲"));
    tests::ScriptFrontEnd script({QString()}, {QStringLiteral("set 541 \"泵房\""), QStringLiteral("ok"),
                                               QStringLiteral("yes"), QStringLiteral("ok")});
    QN8_ToXml();
    const QByteArray first = tests::readFile(path("plan_dwg.xml"));
    EXPECT_EQ(textsOf(first, QStringLiteral("projectName")), QStringList{QStringLiteral("泵房")});
    EXPECT_EQ(textsOf(first, QStringLiteral("fileName")), QStringList{QStringLiteral("plan.dwg")});
    EXPECT_TRUE(script.printed.contains(QStringLiteral("程序文件未找到，请重新安装CAD评图标签软件云模块！")));
    EXPECT_EQ(settings::text(u"Yun_tmpXmlFn"), QString()) << "nobody got it";
    EXPECT_EQ(settings::text(u"xmlList%d", 1), QStringLiteral("泵房"));
    EXPECT_EQ(settings::text(u"xmlTxt%d", 1), QStringLiteral("泵房"));

    // What was typed is offered again; an earlier document stays.
    tests::ScriptFrontEnd again({QString()}, {QStringLiteral("ok"), QStringLiteral("no")});
    QN8_ToXml();
    EXPECT_EQ(textsOf(tests::readFile(path("plan_dwg_1.xml")), QStringLiteral("projectName")),
              QStringList{QStringLiteral("泵房")});
    EXPECT_EQ(tests::readFile(path("plan_dwg.xml")), first);
}

TEST_F(XmlCommandTest, CancelledItIsWrittenAndNotHandedOver)
{
    mark(drawing.database(), QStringLiteral("甲"));
    tests::ScriptFrontEnd script({QString()}, {QStringLiteral("cancel"), QStringLiteral("yes")});
    QN8_ToXml();
    EXPECT_TRUE(script.printed.contains(QStringLiteral("生成XML文件错误！")));
    EXPECT_TRUE(script.isUsedUp());
    EXPECT_EQ(textsOf(tests::readFile(path("plan_dwg.xml")), QStringLiteral("fileName")),
              QStringList{QString()});
    EXPECT_TRUE(requests.empty());
}

TEST_F(XmlCommandTest, WithoutMarksNothingIsWritten)
{
    tests::ScriptFrontEnd script({QString()});
    QN8_ToXml();
    EXPECT_TRUE(script.printed.endsWith(QStringLiteral("\n本图中无评图标签。")));
    EXPECT_FALSE(QFileInfo::exists(path("plan_dwg.xml")));
    EXPECT_EQ(settings::text(u"Yun_tmpXmlFn"), QString());
}
