#include "quillnote/reports/review_page.h"

#include "quillnote/entity/mark_values.h"
#include "quillnote/reports/report_path.h"
#include "quillnote/reports/report_start.h"

#include "host/acap/docman.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edmessage.h"
#include "host/aced/edshell.h"
#include "host/base/assert.h"
#include "host/base/atomic_file.h"
#include "host/os/clock.h"

#include <QCryptographicHash>
#include <QFile>

#include <algorithm>
#include <cmath>

// Resources of a static library stay out of the program unless it names them.
static void loadPageResources()
{
    Q_INIT_RESOURCE(review_page);
}

// Pieces -------------------------------------------------------------------------------------------------

/// A text of a drawing as a text of the page, also between double quotes. Characters that HTML forbids show
/// as what stands for the unreadable.
static QByteArray escaped(QString text)
{
    for (QChar &unit : text) {
        const bool isControl = unit.unicode() < 0x20 && unit != u'\n' && unit != u'\t' && unit != u'\r';
        if (isControl || unit.unicode() == 0x7F)
            unit = QChar::ReplacementCharacter;
    }
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    text.replace(u'\r', u'\n');
    return text.toHtmlEscaped().toUtf8();
}

static QByteArray number(double value)
{
    return QByteArray::number(value, 'f', 1);
}

static QByteArray dataAddress(const ReviewPicture &picture)
{
    return "data:image/png;base64," + picture.png.toBase64();
}

static QByteArray pageResource(const QString &name)
{
    loadPageResources();
    QFile file(QStringLiteral(":/review_page/") + name);
    QUILL_ASSERT(file.open(QIODevice::ReadOnly));
    return file.readAll();
}

/// What the security policy calls the one text that it lets through.
static QByteArray hashOf(const QByteArray &text)
{
    return "'sha256-" + QCryptographicHash::hash(text, QCryptographicHash::Sha256).toBase64() + "'";
}

static QByteArray head(const QByteArray &title)
{
    const QByteArray style = pageResource(QStringLiteral("page.css"));
    const QByteArray script = pageResource(QStringLiteral("page.js"));
    return "<!DOCTYPE html>\n<html lang=\"zh-CN\">\n<head>\n<meta charset=\"utf-8\">\n"
           "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; img-src data:; "
           "style-src " +
           hashOf(style) + "; script-src " + hashOf(script) +
           "; base-uri 'none'; form-action 'none'\">\n"
           "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
           "<meta name=\"referrer\" content=\"no-referrer\">\n<title>" +
           title + "</title>\n<style>" + style + "</style>\n</head>\n<body>\n";
}

static const char kFilter[] =
    "<div class=\"filter\">\n"
    "<select id=\"drawing\" aria-label=\"图纸\"><option value=\"\">全部图纸</option></select>\n"
    "<select id=\"reviewer\" aria-label=\"校审人\"><option value=\"\">全部校审人</option></select>\n"
    "<select id=\"state\" aria-label=\"处理方式\"><option value=\"\">全部处理方式</option></select>\n"
    "<input id=\"words\" type=\"search\" placeholder=\"查找文字\" aria-label=\"查找文字\">\n"
    "<output id=\"count\"></output>\n</div>\n";

// Marks --------------------------------------------------------------------------------------------------

static const char *stateClass(std::int16_t status)
{
    switch (status) {
    case handling::kRefused:
        return " refused";
    case handling::kDisputed:
        return " disputed";
    case handling::kPartlyCorrected:
        return " partly";
    case handling::kCorrected:
        return " corrected";
    default:
        return "";
    }
}

static QString reviewerOf(const ReportedMark &mark)
{
    const QString name = mark.reviewer.trimmed();
    return name.isEmpty() ? QString::fromUtf16(kUnnamedReviewer) : name;
}

static QString stateOf(const ReportedMark &mark)
{
    const QString state = handling::statusText(mark.status);
    return state.isEmpty() ? QStringLiteral("未处理") : state;
}

static QByteArray frame(const ReviewPicture &picture, const QByteArray &kind, const QByteArray &label)
{
    return "<div class=\"frame " + kind + "\"><img alt=\"" + label + "\" width=\"" +
           QByteArray::number(picture.size.width()) + "\" height=\"" +
           QByteArray::number(picture.size.height()) + "\" decoding=\"async\" src=\"" + dataAddress(picture) +
           "\"><span>" + label + "</span></div>\n";
}

static QByteArray pictures(const ReviewRow &row)
{
    const bool hasThen = !row.then.png.isEmpty();
    const bool hasNow = !row.now.png.isEmpty();
    if (!hasThen && !hasNow)
        return {};
    QByteArray html = "<div class=\"pictures\"><div class=\"frames ";
    html += hasThen && hasNow ? "two\">\n" : "one\">\n";
    if (hasThen)
        html += frame(row.then, "then", "标记时");
    if (hasNow)
        html += frame(row.now, "now", "现在");
    if (hasThen && hasNow)
        html += "<input type=\"range\" min=\"0\" max=\"100\" value=\"50\" aria-label=\"标记时与现在\">\n";
    return html + "</div></div>\n";
}

static QByteArray answer(const ReportedMark &mark)
{
    if (mark.feedback.isEmpty() && mark.designer.isEmpty())
        return {};
    QString who = QStringLiteral("反馈意见");
    for (const QString &each : {mark.designer, mark.revisionDate}) {
        if (!each.isEmpty())
            who += QStringLiteral(" · ") + each;
    }
    return "<div class=\"answer\"><span class=\"who\">" + escaped(who) + "</span><p class=\"text\">" +
           escaped(mark.feedback) + "</p></div>\n";
}

static QByteArray article(const ReviewRow &row, const QByteArray &key)
{
    const ReportedMark &mark = row.mark;
    const QByteArray reviewer = escaped(reviewerOf(mark));
    const QByteArray state = escaped(stateOf(mark));
    return "<article class=\"mark\" id=\"m" + key + "\" data-reviewer=\"" + reviewer + "\" data-state=\"" +
           state + "\">\n<header><a class=\"number\" href=\"#p" + key + "\">" + escaped(mark.number) +
           "</a> <span class=\"state" + stateClass(mark.status) + "\">" + state +
           "</span> <span class=\"who\">" + reviewer + "</span> <span>" + escaped(mark.reviewDate) +
           "</span> <span class=\"who\">" + escaped(row.layout) +
           "</span></header>\n<div class=\"words\"><p class=\"text\">" + escaped(mark.opinion) + "</p>\n" +
           answer(mark) + "</div>\n" + pictures(row) + "</article>\n";
}

// Overviews ----------------------------------------------------------------------------------------------

/// Sizes in the overview go with its width, so that numbers can be read when it fills a page.
static QByteArray place(const ReviewPlace &place, const ReportedMark &mark, const QByteArray &key,
                        double unit)
{
    const QRectF box = place.box.adjusted(-unit / 4, -unit / 4, unit / 4, unit / 4);
    const double width = unit * (0.8 + 0.62 * double(mark.number.size()));
    const QRectF tag(box.left(), std::max(0.0, box.top() - unit * 1.3), width, unit * 1.3);
    const auto rectangle = [](const QRectF &r) {
        return " x=\"" + number(r.x()) + "\" y=\"" + number(r.y()) + "\" width=\"" + number(r.width()) +
               "\" height=\"" + number(r.height()) + "\"/>";
    };
    return "<a class=\"place\" id=\"p" + key + "\" href=\"#m" + key + "\"><rect" + rectangle(box) +
           "<rect class=\"tag\"" + rectangle(tag) + "<text font-size=\"" + number(unit) + "\" x=\"" +
           number(tag.center().x()) + "\" y=\"" + number(tag.center().y()) + "\">" + escaped(mark.number) +
           "</text></a>\n";
}

static QByteArray countText(std::size_t count)
{
    return QByteArray::number(static_cast<qlonglong>(count));
}

static QByteArray keyOf(std::size_t drawing, std::size_t row)
{
    return countText(drawing + 1) + '-' + countText(row + 1);
}

/// Smaller where there are many, or they hide the drawing.
static double tagHeight(const ReviewOverview &overview)
{
    const double crowd = std::clamp(std::sqrt(double(overview.places.size()) / 60.0), 1.0, 2.5);
    return std::max(overview.picture.size.width(), overview.picture.size.height()) / (70.0 * crowd);
}

static QByteArray overviewFigure(const ReviewOverview &overview, const Review &review, std::size_t drawing)
{
    const QByteArray width = QByteArray::number(overview.picture.size.width());
    const QByteArray height = QByteArray::number(overview.picture.size.height());
    QByteArray html = "<figure><figcaption><span>" + escaped(overview.layout) +
                      "</span><button type=\"button\" class=\"whole\">全图</button></figcaption>\n"
                      "<svg viewBox=\"0 0 " +
                      width + ' ' + height + "\" data-size=\"" + width + ' ' + height +
                      "\" role=\"img\"><image width=\"" + width + "\" height=\"" + height + "\" href=\"" +
                      dataAddress(overview.picture) + "\"/>\n";
    const double unit = tagHeight(overview);
    for (const ReviewPlace &each : overview.places)
        html += place(each, review.rows[each.row].mark, keyOf(drawing, each.row), unit);
    return html + "</svg></figure>\n";
}

static QByteArray section(const Review &review, std::size_t drawing)
{
    QByteArray html = "<section class=\"drawing\" id=\"d" + countText(drawing + 1) + "\">\n<h2>" +
                      escaped(review.name) + "</h2>\n";
    if (review.rows.empty())
        return html + "<p class=\"none\">本图中无评图标签。</p>\n</section>\n";
    html += "<div class=\"columns\">\n<div class=\"overviews\">\n";
    for (const ReviewOverview &each : review.overviews) {
        if (!each.picture.png.isEmpty())
            html += overviewFigure(each, review, drawing);
    }
    html += "</div>\n<div class=\"list\">\n";
    for (std::size_t row = 0; row < review.rows.size(); ++row)
        html += article(review.rows[row], keyOf(drawing, row));
    return html + "</div>\n</div>\n</section>\n";
}

// The page -----------------------------------------------------------------------------------------------

QByteArray reviewPage(const std::vector<Review> &reviews)
{
    std::size_t marks = 0;
    for (const Review &review : reviews)
        marks += review.rows.size();
    QString title = QStringLiteral("评图报告");
    if (reviews.size() == 1)
        title += QStringLiteral("：") + reviews.front().name;
    const QString told = QStringLiteral("%1 张图纸，%2 个评图标签 · %3")
                             .arg(QString::number(reviews.size()), QString::number(marks),
                                  os::localNow().toString(QStringLiteral("yyyy-MM-dd hh:mm")));
    QByteArray html = head(escaped(title));
    html += "<div class=\"top\"><h1>" + escaped(title) + "</h1><p>" + escaped(told) + "</p></div>\n" +
            QByteArray(kFilter) + "<main>\n";
    for (std::size_t drawing = 0; drawing < reviews.size(); ++drawing)
        html += section(reviews[drawing], drawing);
    return html + "</main>\n<script>" + pageResource(QStringLiteral("page.js")) +
           "</script>\n</body>\n</html>\n";
}

base::Result<void, QString> writeReviewPage(const std::vector<Review> &reviews, const QString &path)
{
    if (const auto written = base::writeFileAtomically(path, reviewPage(reviews)); !written)
        return base::Failure{written.error().text()};
    return {};
}

void QN3_outputPage()
{
    const auto start = startReport();
    if (!start)
        return;
    const Review review = takeReview(*curDoc(), ReviewPictures::all);
    tellHiddenMarks(review);
    const QString path = reviewPagePath(start->drawing);
    if (const auto written = writeReviewPage({review}, path); !written) {
        acutPrintf(u'\n' + written.error());
        acedFail(QStringLiteral("创建文件<%1>失败！").arg(path));
        return;
    }
    acutPrintf(QStringLiteral("\n评图网页已输出为<%1>。").arg(path));
    acedOpenWithDesktop(path);
}
