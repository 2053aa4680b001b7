// The report by template: the rules of filling, the dialog and what it remembers, and the whole road to the
// file.
#include "tests/quillnote/reports/reports_fixture.h"

#include "quillnote/reports/mark_selection.h"
#include "quillnote/reports/review_sheet.h"
#include "quillnote/reports/template_fields.h"
#include "quillnote/reports/template_fill.h"
#include "quillnote/reports/template_report.h"
#include "quillnote/ui/template_dialog.h"

#include "host/base/text_codec.h"

static QByteArray inCodePage(const QString &text)
{
    return base::TextCodec("ANSI_936").encode(text);
}

static QString fromCodePage(const QByteArray &bytes)
{
    return base::TextCodec("ANSI_936").decode({bytes.constData(), std::size_t(bytes.size())});
}

// Filling ------------------------------------------------------------------------------------------------

static QString filled(const QString &text, const std::vector<ReportedMark> &marks,
                      const std::vector<TemplateField> &fields = {
                          {{}, QStringLiteral("$图纸编号$"), QStringLiteral("A-1")},
                          {{}, QStringLiteral("$项目名称$"), QStringLiteral("泵房")}})
{
    QString result;
    fillTemplate(text, fields, marks, [&result](const QString &piece) { result += piece; });
    return result;
}

static ReportedMark numbered(const char *number)
{
    ReportedMark mark;
    mark.number = QString::fromLatin1(number);
    mark.opinion = QStringLiteral("意见") + mark.number;
    return mark;
}

TEST(TemplateFill, LinesAreJoinedAndMarkersReplaced)
{
    const std::vector<ReportedMark> marks{numbered("1"), numbered("5.2")};
    struct Case {
        const char16_t *text;
        const char16_t *filled;
    };
    const Case cases[] = {
        {u"", u""},
        {u" a \r\n\r\n\t$项目名称$ b\r\n$无此栏$", u"a泵房 b$无此栏$"},
        {u"$序号$", u"$序号$"}, // Outside the block it means nothing.
        {u"<!--$开始重复$-->\n[$序号$ $校审意见$ $图纸编号$ $项目名称$]\n x \n<!--$结束重复$-->\nend",
         u"<!--$开始重复$-->[1 意见1 A-1 $项目名称$]x[5.2 意见5.2 A-1 $项目名称$]xend"},
        {u"$开始重复$\n$序号$;", u"$开始重复$1;5.2;"},
        {u"$开始重复$ $结束重复$\n$序号$,\n$结束重复$", u"$开始重复$ $结束重复$1,5.2,"},
    };
    for (const Case &each : cases)
        EXPECT_EQ(filled(QString::fromUtf16(each.text), marks), QString::fromUtf16(each.filled));

    const QString explanation = QStringLiteral(
        "$开始重复$$结束重复$$项目名称$$图纸名称$$项目编号$$图纸编号$$设计阶段$$设计日期$$设计人$$审核日期$"
        "$审核人$$序号$$校审意见$$反馈意见$$处理方式$");
    EXPECT_EQ(filled(explanation + QStringLiteral("\n$项目名称$"), marks),
              explanation + QStringLiteral("泵房"));
}

TEST(TemplateFill, EveryMarkerOfAMark)
{
    ReportedMark mark = numbered("7");
    mark.feedback = QStringLiteral("已改");
    mark.status = handling::kDisputed;
    mark.reviewer = QStringLiteral("王工");
    mark.designer = QStringLiteral("李工");
    mark.reviewDate = QStringLiteral("2024-05-06 07:08:09");
    mark.revisionDate = QStringLiteral("2024-05-07 00:00:00");
    ReportedMark hidden = numbered("8");
    hidden.isHidden = true;
    EXPECT_EQ(filled(QStringLiteral("$开始重复$\n$序号$|$校审意见$|$反馈意见$|$处理方式$|$审核人$|$审核日期$|"
                                    "$修订人$|$修订日期$"),
                     {mark, hidden}),
              QStringLiteral(
                  "$开始重复$7|意见7|已改|有争议，未修正|王工|2024-05-06 07:08:09|李工|2024-05-07 00:00:00"));
    EXPECT_EQ(filled(QStringLiteral("$开始重复$\n($处理方式$$修订日期$)"), {numbered("1")}),
              QStringLiteral("$开始重复$()"));
}

TEST(TemplateFill, MarksSortByNumber)
{
    EXPECT_LT(markOrder(4, 0), markOrder(5, 0));
    EXPECT_LT(markOrder(5, 2), markOrder(5, 10));
    EXPECT_LT(markOrder(5, 10), markOrder(5, 12));
    EXPECT_LT(markOrder(5, 999), markOrder(6, 0));
}

// The whole road -----------------------------------------------------------------------------------------

struct TemplateReportTest : ReportsTest {
    TemplateReportTest()
    {
        settings::setText(u"tipList", u"");
        settings::setText(u"fieldList", u"");
        for (int row = 0; row < 20; ++row) {
            settings::setText(u"List%d", row, u"");
            settings::setText(u"txt%d", row, u"");
        }
        useTemplate(inCodePage(
            QStringLiteral("<p>$项目名称$ $文件名$</p>\r\n$开始重复$\r\n<li>$序号$ $校审意见$</li>\r\n"
                           "$结束重复$\r\n<hr>\r\n")));
        settings::setNumber(u"useTemplet", 1);
    }
    void useTemplate(const QByteArray &bytes) const
    {
        settings::setText(u"TempleteHTML", u' ' + folder.write(QStringLiteral("form.html"), bytes));
    }
};

TEST_F(TemplateReportTest, WritesASeriesOfReportsAndRemembersWhatWasTyped)
{
    const QString path = folder.path(QStringLiteral("a#1.DWG"));
    const tests::OpenDrawing drawing(tests::MemoryDrawing().open(), path);
    for (const char *text : {"4", "5.12", "5.2"}) {
        const AcDbObjectId id = mark(drawing.database(), QStringLiteral("a\r\nb²"));
        AcDbObjectPointer<QuillnoteObj3> made(id, AcDb::kForWrite);
        made->markNumber = std::uint16_t(QByteArray(text).split('.')[0].toInt());
        made->subNumber = std::uint16_t(QByteArray(text).split('.').value(1).toInt());
    }
    for (const char *value : {"泵房", "泵站", "泵"}) {
        tests::ScriptFrontEnd script({QString()},
                                     {QStringLiteral("set 541 \"  %1 \"").arg(QString::fromUtf8(value)),
                                      QStringLiteral("set 540 typed"), QStringLiteral("ok")});
        QN3_outputHtmlWithNoPng();
        EXPECT_TRUE(script.isUsedUp());
    }
    const QString rows = QStringLiteral("<li>4 a\r\nb2</li><li>5.2 a\r\nb2</li><li>5.12 a\r\nb2</li><hr>");
    EXPECT_EQ(fromCodePage(tests::readFile(folder.path(QStringLiteral("a#1_dwg.html")))),
              QStringLiteral("<p>泵房 %1</p>$开始重复$").arg(path) + rows);
    EXPECT_TRUE(
        fromCodePage(tests::readFile(folder.path(QStringLiteral("a#1_dwg_1.html")))).contains(u"泵站"));
    EXPECT_TRUE(QFileInfo::exists(folder.path(QStringLiteral("a#1_dwg_2.html"))));
    EXPECT_EQ(settings::text(u"List%d", 1), "泵站|泵房"); // "泵" stands in one of them.
    EXPECT_EQ(settings::text(u"txt%d", 1), "泵");
    EXPECT_EQ(requests.size(), 3U);
}

TEST_F(TemplateReportTest, AskingForTheTemplateAndGivingItUp)
{
    const tests::OpenDrawing drawing(tests::MemoryDrawing().open(), folder.path(QStringLiteral("p.dxf")));
    mark(drawing.database(), QStringLiteral("x"));
    settings::setNumber(u"useTemplet", 0);
    const auto run = [](const QStringList &answers, const QStringList &lines) {
        tests::ScriptFrontEnd script(answers, lines);
        QN3_outputHtmlWithNoPng();
        EXPECT_TRUE(script.isUsedUp());
        return script.printed;
    };
    EXPECT_TRUE(run({QStringLiteral("N")}, {}).contains(u"p_dxfN.html"));
    EXPECT_TRUE(run({QStringLiteral("^C")}, {}).contains(u"p_dxfN.html"));
    EXPECT_TRUE(
        run({QString(), QString()}, {QStringLiteral("cancel"), QStringLiteral("ok")}).contains(u"放弃！"));
    EXPECT_FALSE(QFileInfo::exists(folder.path(QStringLiteral("p_dxf.html"))));
    EXPECT_FALSE(run({QStringLiteral("Y"), QStringLiteral("^C")}, {}).contains(u"已输出"));
    EXPECT_EQ(settings::text(u"txt%d", 1), "");
}

TEST_F(TemplateReportTest, TemplatesOfOtherEncodingsAreRefused)
{
    const tests::OpenDrawing drawing(tests::MemoryDrawing().open(), folder.path(QStringLiteral("p.dxf")));
    mark(drawing.database(), QStringLiteral("x"));
    const auto refused = [this] {
        tests::ScriptFrontEnd script({QString()}, {QStringLiteral("ok")});
        writeTemplateReport();
        return script.printed.contains(
            QStringLiteral("< %1 >文件不是ANSI编码").arg(folder.path(QStringLiteral("form.html"))));
    };
    for (const char *start : {"\xEF\xBB\xBF<p>", "\xFF\xFE\x2D\x00", "\xFE\xFF\x4E\x00"}) {
        useTemplate(start);
        EXPECT_TRUE(refused());
    }
    useTemplate("\xFF\xFE\x3C"); // Begins like none of them.
    EXPECT_FALSE(refused());
    settings::setText(u"TempleteHTML", u"");
    tests::ScriptFrontEnd script({QString()}, {QStringLiteral("ok")});
    writeTemplateReport();
    EXPECT_TRUE(script.printed.contains(u"未定义评图标签输出模板！"));
}

TEST_F(TemplateReportTest, TextsArePickedFromTheDrawing)
{
    tests::MemoryDrawing memory;
    const auto text = memory.entity("TEXT", {{10, AcGePoint3d(0, 0, 0)}, {40, 2.5}, {1, "图号 12"}});
    const auto mtext = memory.entity("MTEXT", {{10, AcGePoint3d(9, 9, 0)}, {40, 2.5}, {3, "前"}, {1, "后"}});
    const tests::OpenDrawing drawing(memory.open(), folder.path(QStringLiteral("p.dxf")));
    mark(drawing.database(), QStringLiteral("x"));
    tests::ScriptFrontEnd script({QString()});
    script.addDialogLine(QStringLiteral("set 542 kept"));
    script.addDialogLine(QStringLiteral("click 501"));
    script.addEntity(drawing.id(text), {0, 0, 0});
    script.addEntity(drawing.id(mtext), {9, 9, 0});
    script.add({});
    script.addDialogLine(QStringLiteral("click 503"));
    script.add({}); // Nothing: the row stays as it is.
    script.addDialogLine(QStringLiteral("click 1"));
    QN3_outputHtmlWithNoPng();
    EXPECT_TRUE(script.isUsedUp());
    EXPECT_EQ(settings::text(u"txt%d", 1), "图号 12\r\n前后");
    EXPECT_EQ(settings::text(u"txt%d", 2), "kept");
    EXPECT_EQ(settings::text(u"txt%d", 3), "");
}

TEST_F(TemplateReportTest, FieldsComeFromTheSettingsInPairs)
{
    EXPECT_EQ(templateFields().size(), 10U);
    EXPECT_EQ(templateFields()[6].placeholder, "$设计日期$");
    settings::setText(u"tipList", u" 甲, ,丙");
    settings::setText(u"fieldList", u"$甲$,");
    const std::vector<TemplateField> fields = templateFields();
    ASSERT_EQ(fields.size(), 2U);
    EXPECT_EQ(fields[0].caption, "甲");
    EXPECT_EQ(fields[1].placeholder, "$空白$");
    CTmpExcel dialog({{fields[0].caption, {QStringLiteral("v")}, QStringLiteral("t"), false},
                      {fields[1].caption, {}, {}, true}},
                     QStringLiteral("/p/a.dwg"));
    EXPECT_EQ(dialog.itemText(520), "甲");
    EXPECT_EQ(dialog.itemText(521), "不能空白！");
    EXPECT_EQ(dialog.texts(), (QStringList{QStringLiteral("t"), QStringLiteral("/p/a.dwg")}));
    EXPECT_FALSE(dialog.item(542)->isVisibleTo(&dialog));
    settings::setText(u"tipList", QStringLiteral("x,").repeated(30));
    settings::setText(u"fieldList", QStringLiteral("y,").repeated(30));
    EXPECT_EQ(templateFields().size(), 20U);
}

TEST_F(TemplateReportTest, ShippedTemplatesTakeEveryMark)
{
    const QString root = tests::samplePath(QStringLiteral("../quillnote/resources/templates/"));
    for (const char *name : {"review-form.html", "plain-table.html"}) {
        const QString text = fromCodePage(tests::readFile(root + QLatin1String(name)));
        const QString report = filled(text, {numbered("1"), numbered("5.2")}, templateFields());
        EXPECT_EQ(report.count(u"意见1") + report.count(u"意见5.2"), 2) << name;
        EXPECT_TRUE(report.endsWith(u"</html>")) << name;
        // No marker is left but those of the explanation and the beginning of the block.
        const QString body = report.mid(report.indexOf(u"<body>")).remove(QStringLiteral("$开始重复$"));
        EXPECT_FALSE(body.contains(u'$')) << name;
    }
}
