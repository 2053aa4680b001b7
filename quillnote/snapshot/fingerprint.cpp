#include "quillnote/snapshot/fingerprint.h"

#include "quillnote/entity/mark_record.h"

#include "host/acap/docman.h"
#include "host/acdb/dbapi.h"
#include "host/acgi/gispatialindex.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <functional>

static constexpr int kColor = 62;

/// Six significant digits, as "%g" writes them. Exponents have three digits at least, so that sums agree with
/// those of marks made elsewhere.
static void appendNumber(QString &text, double value)
{
    std::array<char, 32> buffer;
    const char *const end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::general, 6).ptr;
    const char *const sign = std::find(static_cast<const char *>(buffer.data()), end, 'e') + 1;
    const char *const digits = sign < end ? sign + 1 : end;
    text += QLatin1String(buffer.data(), digits - buffer.data());
    for (auto missing = end - digits; digits < end && missing < 3; ++missing)
        text += QLatin1Char('0');
    text += QLatin1String(digits, end - digits);
}

static void appendInteger(QString &text, std::int32_t value)
{
    std::array<char, 16> buffer;
    const char *const end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
    text += QLatin1String(buffer.data(), end - buffer.data());
}

static void appendPoint(QString &text, const AcGePoint3d &point)
{
    text += QLatin1Char('(');
    appendNumber(text, point.x);
    text += QLatin1String(", ");
    appendNumber(text, point.y);
    text += QLatin1String(", ");
    appendNumber(text, point.z);
    text += QLatin1Char(')');
}

static void appendQuoted(QString &text, const resbuf &group)
{
    text += QLatin1Char('"');
    text += group.text();
    text += QLatin1Char('"');
}

static void appendValue(QString &text, const resbuf &group)
{
    const int code = group.restype;
    if (code <= 9 && std::holds_alternative<std::monostate>(group.resval))
        text += QLatin1String("(NULL)");
    else if (code <= 9)
        appendQuoted(text, group);
    else if (code <= 17)
        appendPoint(text, group.point());
    else if (code >= 38 && code <= 59)
        appendNumber(text, group.real());
    else if (code >= 60 && code <= 79)
        appendInteger(text, static_cast<std::int16_t>(group.integer()));
    else if (code >= 90)
        appendInteger(text, static_cast<std::int32_t>(group.integer()));
    else
        text += QLatin1String("*Unknown*");
}

QString fingerprintText(const ResbufList &data)
{
    QString text;
    text.reserve(qsizetype(data.size()) * 16);
    for (const resbuf &group : data) {
        if (group.restype < 0 || group.restype > 99 || group.restype == kColor)
            continue;
        text += QLatin1Char('(');
        appendInteger(text, group.restype);
        text += QLatin1Char(',');
        appendValue(text, group);
        text += QLatin1Char(')');
    }
    return text;
}

std::int32_t fingerprintSum(const QString &text, std::int32_t sum)
{
    auto wrapping = static_cast<std::uint32_t>(sum);
    for (const QChar unit : text)
        wrapping += unit.unicode();
    return static_cast<std::int32_t>(wrapping);
}

bool isReviewMark(AcDbObjectId entity)
{
    return acdbKindName(entity.stub()->kind).startsWith("QUILLNOTE");
}

std::vector<AcDbObjectId> targetEntities(AcDbDatabase &database, AcDbObjectId space, const AcGiWindow &window)
{
    std::vector<AcDbObjectId> ids = acgiSpatialIndex(database).crossingWindow(space, window);
    std::erase_if(ids, isReviewMark);
    std::ranges::sort(ids, std::greater(), [](AcDbObjectId id) { return id.stub()->index; });
    return ids;
}

// Extended data cannot count, its codes being above 99, so it is not asked for.
std::int32_t FingerprintTaker::sumOf(AcDbObjectId entity)
{
    const auto [place, isNew] = m_sums.try_emplace(entity, 0);
    if (isNew)
        place->second = fingerprintSum(fingerprintText(acdbEntGetX(entity)));
    return place->second;
}

TargetFingerprint FingerprintTaker::take(AcDbObjectId space, const AcGiWindow &window)
{
    TargetFingerprint fingerprint;
    fingerprint.ids = targetEntities(m_database, space, window);
    if (fingerprint.ids.empty())
        return fingerprint;
    std::uint32_t sum = 0; // Wraps.
    for (const AcDbObjectId id : fingerprint.ids)
        sum += static_cast<std::uint32_t>(sumOf(id));
    fingerprint.checksum = QStringLiteral("SUM=%1").arg(static_cast<std::int32_t>(sum));
    return fingerprint;
}

AcGiWindow targetWindow(const QuillnoteObj3 &mark)
{
    const double angle = std::atan2(mark.xDirection.y, mark.xDirection.x);
    return AcGiWindow::fromCorners(mark.targetCorner1, mark.targetCorner2, angle);
}

TargetFingerprint computeTargetFingerprint(const AcGePoint3d &corner1, const AcGePoint3d &corner2)
{
    const AcApDocument *const document = curDoc();
    if (!document)
        return {};
    AcDbDatabase &database = *document->database();
    return FingerprintTaker(database).take(database.currentSpaceId(),
                                           AcGiWindow::fromCorners(corner1, corner2, -document->view().twist));
}
