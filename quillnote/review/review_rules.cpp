#include "quillnote/review/review_rules.h"

#include "quillnote/authoring/collect_marks.h"
#include "quillnote/entity/mark_values.h"

#include <algorithm>
#include <array>
#include <limits>

std::vector<std::size_t> passingMarks(const std::vector<MarkSummary> &marks, const QString &filter)
{
    std::vector<std::size_t> places;
    for (std::size_t place = 0; place < marks.size(); ++place) {
        if (passesReviewer(filter, marks[place].reviewer))
            places.push_back(place);
    }
    return places;
}

QStringList reviewersOf(const std::vector<MarkSummary> &marks)
{
    QStringList names;
    for (const MarkSummary &mark : marks) {
        const QString name = mark.reviewer.isEmpty() ? QString::fromUtf16(kUnnamedReviewer) : mark.reviewer;
        if (names.size() == kMostReviewers)
            break;
        if (!names.contains(name))
            names.append(name);
    }
    return names;
}

std::optional<std::size_t> stepFrom(std::size_t current, int by, const std::vector<std::int16_t> &statuses,
                                    bool onlyUnhandled)
{
    const std::size_t last = statuses.empty() ? 0 : statuses.size() - 1;
    const std::size_t end = by < 0 ? 0 : last;
    if (current >= statuses.size() || current == end)
        return {};
    const auto stepped = [by](std::size_t from) { return by < 0 ? from - 1 : from + 1; };
    std::size_t place = stepped(current);
    while (onlyUnhandled && statuses[place] != handling::kNone && place != end)
        place = stepped(place);
    return place;
}

/// Its leading digits.
static int leadingNumber(QStringView text)
{
    text = text.trimmed();
    qsizetype digits = 0;
    while (digits < text.size() && text[digits].isDigit())
        ++digits;
    bool fits = false;
    const int number = text.left(digits).toInt(&fits);
    return fits ? number : digits > 0 ? std::numeric_limits<int>::max() : 0;
}

std::optional<WantedNumber> readWantedNumber(const QString &typed)
{
    const QString text = typed.trimmed();
    if (text.isEmpty())
        return {};
    const qsizetype dot = text.indexOf(u'.');
    const QStringView all = text;
    if (dot < 0)
        return WantedNumber{leadingNumber(all), 0};
    return WantedNumber{leadingNumber(all.left(dot)), leadingNumber(all.mid(dot + 1))};
}

std::optional<std::size_t> findNumber(const std::vector<MarkSummary> &marks, const WantedNumber &wanted)
{
    const auto found = std::ranges::find_if(marks, [&](const MarkSummary &mark) {
        return mark.markNumber == wanted.markNumber && mark.subNumber == wanted.subNumber;
    });
    if (found == marks.end())
        return {};
    return std::size_t(found - marks.begin());
}

std::vector<std::size_t> findText(const std::vector<MarkSummary> &marks, const QString &text)
{
    std::vector<std::size_t> places;
    for (std::size_t place = 0; place < marks.size(); ++place) {
        if (marks[place].opinion.contains(text) || marks[place].feedback.contains(text))
            places.push_back(place);
    }
    return places;
}

QString counterText(const MarkSummary &mark, std::size_t place, std::size_t count)
{
    return QStringLiteral("%1-%2/%3")
        .arg(markNumberText(mark.markNumber, mark.subNumber))
        .arg(place + 1)
        .arg(count);
}

QString reviewerLine(const QString &reviewer, const QString &chosen)
{
    return QStringLiteral("校审人:") + (reviewer == chosen ? QString() : reviewer);
}

ShownFeedback::ShownFeedback(const QString &feedbackName, const QString &feedbackContent)
    : prefix(feedbackName.isEmpty() ? QString() : feedbackName + QStringLiteral(":\n"))
{
    text = prefix + feedbackContent;
    // As a field gives it back.
    text.replace(QLatin1String("\r\n"), QLatin1String("\n")).replace(u'\r', u'\n');
}

// Somebody who deletes the whole field, or joins the name's line with his own, still means his words only.
QString ShownFeedback::stored(const QString &typed) const
{
    if (prefix.isEmpty() || !typed.startsWith(prefix.chopped(1)))
        return typed;
    const QString rest = typed.mid(prefix.size() - 1);
    return rest.startsWith(u'\n') ? rest.mid(1) : rest;
}

namespace
{

struct StatusRow {
    int control;
    std::int16_t status;
};
constexpr std::array<StatusRow, 5> kStatuses{{{1009, handling::kCorrected},
                                              {1010, handling::kPartlyCorrected},
                                              {1011, handling::kDisputed},
                                              {1012, handling::kNone},
                                              {1013, handling::kRefused}}};

} // namespace

int statusControl(std::int16_t status)
{
    const auto row = std::ranges::find(kStatuses, status, &StatusRow::status);
    return row == kStatuses.end() ? statusControl(handling::kNone) : row->control;
}

std::optional<std::int16_t> statusOf(int control)
{
    const auto row = std::ranges::find(kStatuses, control, &StatusRow::control);
    return row == kStatuses.end() ? std::nullopt : std::optional(row->status);
}

AcDbExtents sheetWindow(const AcDbExtents &mark, int viewScale, bool besidePicture)
{
    const double share = (100 - viewScale) / 100.0;
    const AcGeVector3d size = mark.maxPoint() - mark.minPoint();
    const AcGeVector3d margin(size.x * share, size.y * share, 0);
    const AcGeVector3d aside(besidePicture ? margin.x / 2 : 0.0, 0, 0);
    return {mark.minPoint() - margin + aside, mark.maxPoint() + margin + aside};
}
