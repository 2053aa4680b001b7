#include "quillnote/reports/review_table.h"

#include "quillnote/entity/mark_values.h"
#include "quillnote/reports/report_workbook.h"

#include "host/aced/edfrontend.h"
#include "host/base/atomic_file.h"

#include <array>

namespace
{

/// A column of text.
struct Column {
    const char16_t *title;
    double width; ///< Of a sheet: characters.
    QString (*text)(const Review &, const ReviewRow &);
};

constexpr std::array kColumns{
    Column{u"图纸", 18, [](const Review &review, const ReviewRow &) { return review.name; }},
    Column{u"布局", 10, [](const Review &, const ReviewRow &row) { return row.layout; }},
    Column{u"序号", 7, [](const Review &, const ReviewRow &row) { return row.mark.number; }},
    Column{u"校审人", 10, [](const Review &, const ReviewRow &row) { return row.mark.reviewer; }},
    Column{u"校审日期", 19, [](const Review &, const ReviewRow &row) { return row.mark.reviewDate; }},
    Column{u"校审意见", 50, [](const Review &, const ReviewRow &row) { return row.mark.opinion; }},
    Column{u"处理方式", 15,
           [](const Review &, const ReviewRow &row) { return handling::statusText(row.mark.status); }},
    Column{u"反馈意见", 40, [](const Review &, const ReviewRow &row) { return row.mark.feedback; }},
    Column{u"设计师", 10, [](const Review &, const ReviewRow &row) { return row.mark.designer; }},
    Column{u"修订日期", 19, [](const Review &, const ReviewRow &row) { return row.mark.revisionDate; }},
};
constexpr const char16_t *kPictureTitles[] = {u"标记时", u"现在"};

} // namespace

// CSV ----------------------------------------------------------------------------------------------------

/// Numbers begin with a sign too, and no text that is none of both does harm.
static bool looksLikeFormula(const QString &text)
{
    bool isNumber = false;
    text.toDouble(&isNumber);
    return !text.isEmpty() && !isNumber && QStringLiteral("=+-@\t\r").contains(text.front());
}

static QByteArray csvCell(QString text)
{
    if (looksLikeFormula(text))
        text.prepend(u'\'');
    const bool needsQuotes =
        text.contains(u'"') || text.contains(u',') || text.contains(u'\n') || text.contains(u'\r');
    return needsQuotes ? '"' + text.replace(u'"', QStringLiteral("\"\"")).toUtf8() + '"' : text.toUtf8();
}

base::Result<void, QString> writeReviewCsv(const std::vector<Review> &reviews, const QString &path)
{
    QByteArray csv = "\xEF\xBB\xBF";
    const auto endCell = [&csv](const Column &column) { csv += &column == &kColumns.back() ? "\r\n" : ","; };
    for (const Column &column : kColumns) {
        csv += csvCell(QString::fromUtf16(column.title));
        endCell(column);
    }
    for (const Review &review : reviews) {
        for (const ReviewRow &row : review.rows) {
            for (const Column &column : kColumns) {
                csv += csvCell(column.text(review, row));
                endCell(column);
            }
        }
    }
    if (const auto written = base::writeFileAtomically(path, csv); !written)
        return base::Failure{written.error().text()};
    return {};
}

// Workbook -----------------------------------------------------------------------------------------------

static void writeHead(ReportWorkbook &workbook)
{
    for (const Column &column : kColumns)
        workbook.addColumn(QString::fromUtf16(column.title), column.width);
    for (const char16_t *const title : kPictureTitles)
        workbook.addPictureColumn(QString::fromUtf16(title));
}

base::Result<void, QString> writeReviewWorkbook(const std::vector<Review> &reviews, const QString &path)
{
    auto workbook = ReportWorkbook::create(path);
    if (!workbook)
        return base::Failure{workbook.error()};
    writeHead(*workbook);
    for (const Review &review : reviews) {
        for (const ReviewRow &row : review.rows) {
            workbook->beginRow();
            for (const Column &column : kColumns)
                workbook->addText(column.text(review, row));
            workbook->addPicture(row.then);
            workbook->addPicture(row.now);
        }
    }
    if (workbook->cutTexts() > 0)
        acutPrintf(QStringLiteral("\n有 %1 段文字超过表格单元的上限，已截短。").arg(workbook->cutTexts()));
    return workbook->finish();
}
