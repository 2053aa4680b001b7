#include "quillnote/reports/report_verb.h"

#include "quillnote/authoring/all_marks.h"
#include "quillnote/reports/report_file.h"
#include "quillnote/reports/review_page.h"
#include "quillnote/reports/review_table.h"
#include "quillnote/reports/text_report.h"
#include "quillnote/reports/xml_report.h"

#include "host/acap/docman.h"
#include "host/aced/edfrontend.h"
#include "host/base/atomic_file.h"

#include <QFileInfo>
#include <QJsonObject>

#include <algorithm>
#include <array>
#include <memory>

// The text report ----------------------------------------------------------------------------------------

/// What the text report says of each mark.
static void printAsJson(const CollectedMarks &marks)
{
    int position = 0;
    for (const AcDbObjectId id : marks.ids) {
        ++position;
        if (const auto mark = readReportedMark(id))
            acedPrintResult(
                QJsonObject{{QStringLiteral("file"), curDoc()->fileName()},
                            {QStringLiteral("handle"), QString::number(id.handle().value, 16).toUpper()},
                            {QStringLiteral("position"), position},
                            {QStringLiteral("suggestionContent"), mark->opinion},
                            {QStringLiteral("feedbackContent"), mark->feedback},
                            {QStringLiteral("feedbackType"), mark->status}});
    }
}

static int printText(const AcEdVerbCall &call, const CollectedMarks &marks)
{
    if (call.json)
        printAsJson(marks);
    else if (!marks.ids.empty())
        acedPrintResult(textReport(*acdbCurDwg()));
    return 0;
}

// Files of all drawings ----------------------------------------------------------------------------------

namespace
{

struct SharedReport {
    const char *option;
    const char *help;
    ReviewPictures pictures;
    base::Result<void, QString> (*write)(const std::vector<Review> &reviews, const QString &path);
};

constexpr std::array kSharedReports{
    SharedReport{"--page",
                 "Write one web page of all drawings, with pictures, for people without the program.",
                 ReviewPictures::all, writeReviewPage},
    SharedReport{"--csv", "Write the marks of all drawings as a table of text.", ReviewPictures::none,
                 writeReviewCsv},
    SharedReport{"--xlsx", "Write the marks of all drawings as a workbook, with pictures.",
                 ReviewPictures::targets, writeReviewWorkbook},
};

} // namespace

static QString nameOf(const SharedReport &report)
{
    return QString::fromLatin1(report.option);
}

/// The most that a wanted report needs; none when no such report is wanted.
static std::optional<ReviewPictures> wantedPictures(const AcEdVerbCall &call)
{
    std::optional<ReviewPictures> wanted;
    for (const SharedReport &report : kSharedReports) {
        if (call.has(nameOf(report)))
            wanted = std::max(wanted.value_or(ReviewPictures::none), report.pictures);
    }
    return wanted;
}

static int writeShared(const AcEdVerbCall &call, const std::vector<Review> &reviews)
{
    const bool hasMarks = std::ranges::any_of(reviews, [](const Review &each) { return !each.rows.empty(); });
    if (!hasMarks)
        return 0; // Each drawing has said so.
    for (const SharedReport &report : kSharedReports) {
        if (!call.has(nameOf(report)))
            continue;
        const QString path = call.options.at(nameOf(report));
        if (const auto written = report.write(reviews, path); !written) {
            acutPrintf(u'\n' + written.error());
            return 2;
        }
        if (call.json)
            acedPrintResult(QJsonObject{{QStringLiteral("written"), path}});
    }
    return 0;
}

// The XML document ---------------------------------------------------------------------------------------

static const QString kXml = QStringLiteral("--xml");

/// As the command does with all marks and nothing typed.
static void addToXml(XmlReport &xml, const CollectedMarks &marks)
{
    std::vector<ReportedMark> sorted;
    for (const AcDbObjectId id : marks.ids) {
        if (auto mark = readReportedMark(id))
            sorted.push_back(*std::move(mark));
    }
    std::ranges::stable_sort(sorted, {}, &ReportedMark::order);
    XmlProject project;
    project.fileName = QFileInfo(curDoc()->fileName()).fileName();
    xml.add(project, sorted);
}

static int writeXml(const AcEdVerbCall &call, const XmlReport &xml)
{
    if (!call.has(kXml) || xml.isEmpty())
        return 0;
    const auto written = base::writeFileAtomically(call.options.at(kXml), xml.document());
    if (!written)
        acutPrintf(u'\n' + written.error().text());
    else if (call.json)
        acedPrintResult(QJsonObject{{QStringLiteral("written"), call.options.at(kXml)}});
    return written ? 0 : 2;
}

// The verb -----------------------------------------------------------------------------------------------

/// Standard output gets the text report unless a file gets one.
static int report(const AcEdVerbCall &call, std::vector<Review> &reviews, XmlReport &xml)
{
    const CollectedMarks marks = collectAllMarks(*acdbCurDwg());
    const auto pictures = wantedPictures(call);
    const auto output = call.options.find(QStringLiteral("--output"));
    const bool isForFiles = pictures || call.has(kXml) || output != call.options.end();
    if (call.json || !isForFiles)
        printText(call, marks);
    if (call.has(kXml))
        addToXml(xml, marks);
    if (pictures) {
        reviews.push_back(takeReview(*curDoc(), *pictures));
        tellHiddenMarks(reviews.back());
    }
    if (marks.ids.empty() || output == call.options.end())
        return 0;
    return writeReportFile(output->second, textReport(*acdbCurDwg())) ? 0 : 2;
}

AcEdVerb reportVerb()
{
    AcEdVerb verb;
    verb.name = QStringLiteral("report");
    verb.help = QStringLiteral("Print the text report, or write reports to files");
    verb.options = {{QStringLiteral("--output"), QStringLiteral("FILE"),
                     QStringLiteral("Write the text report of one drawing, as the report command does.")}};
    for (const SharedReport &each : kSharedReports)
        verb.options.push_back({nameOf(each), QStringLiteral("OUT"), QString::fromLatin1(each.help)});
    verb.options.push_back(
        {kXml, QStringLiteral("OUT"), QStringLiteral("Write the marks of all drawings as an XML document.")});
    verb.options.push_back({QStringLiteral("-f"), {}, QStringLiteral("Let OUT overwrite.")});
    const auto reviews = std::make_shared<std::vector<Review>>();
    const auto xml = std::make_shared<XmlReport>();
    verb.run = [reviews, xml](const AcEdVerbCall &call) { return report(call, *reviews, *xml); };
    verb.finish = [reviews, xml](const AcEdVerbCall &call) {
        return std::max(writeShared(call, *reviews), writeXml(call, *xml));
    };
    return verb;
}
