#include "quillnote/snapshot/fingerprint.h"

#include "host/acap/docman.h"
#include "host/acdb/dbapi.h"
#include "host/acgi/query/spatial_index.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <functional>

static constexpr int kColor = 62;

/// Six significant digits, as "%g" writes them. Exponents have three digits at least, so that sums agree with
/// those of marks made elsewhere.
template <class Text>
static void appendNumber(Text &text, double value)
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

template <class Text>
static void appendInteger(Text &text, std::int32_t value)
{
    std::array<char, 16> buffer;
    const char *const end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
    text += QLatin1String(buffer.data(), end - buffer.data());
}

template <class Text>
static void appendPoint(Text &text, const AcGePoint3d &point)
{
    text += QLatin1Char('(');
    appendNumber(text, point.x);
    text += QLatin1String(", ");
    appendNumber(text, point.y);
    text += QLatin1String(", ");
    appendNumber(text, point.z);
    text += QLatin1Char(')');
}

template <class Text>
static void appendQuoted(Text &text, const resbuf &group)
{
    text += QLatin1Char('"');
    text += group.text();
    text += QLatin1Char('"');
}

template <class Text>
static void appendValue(Text &text, const resbuf &group)
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

template <class Text>
static void appendData(Text &text, const ResbufList &data)
{
    for (const resbuf &group : data) {
        if (group.restype < 0 || group.restype > 99 || group.restype == kColor)
            continue;
        text += QLatin1Char('(');
        appendInteger(text, group.restype);
        text += QLatin1Char(',');
        appendValue(text, group);
        text += QLatin1Char(')');
    }
}

QString fingerprintText(const ResbufList &data)
{
    QString text;
    appendData(text, data);
    return text;
}

namespace
{

/// A text of which only the sum of its code units is kept.
struct UnitSum {
    std::uint32_t sum = 0; ///< Wraps.

    void operator+=(QLatin1Char unit) { sum += static_cast<unsigned char>(unit.toLatin1()); }
    void operator+=(QLatin1String text)
    {
        for (const char unit : text)
            sum += static_cast<unsigned char>(unit);
    }
    void operator+=(const QString &text)
    {
        for (const QChar unit : text)
            sum += unit.unicode();
    }
};

} // namespace

std::int32_t fingerprintSum(const QString &text, std::int32_t sum)
{
    UnitSum wrapping{static_cast<std::uint32_t>(sum)};
    wrapping += text;
    return static_cast<std::int32_t>(wrapping.sum);
}

bool isReviewMark(AcDbObjectId entity)
{
    return acdbKindName(entity.stub()->kind).startsWith("QUILLNOTE");
}

std::vector<AcDbObjectId> targetEntities(AcDbDatabase &database, AcDbObjectId space,
                                         const acgi::Window &window,
                                         const std::function<void(AcDbObjectId)> &whileOpen)
{
    std::vector<AcDbObjectId> ids = acgi::spatialIndexOf(database).crossingWindow(space, window, whileOpen);
    std::erase_if(ids, isReviewMark);
    std::ranges::sort(ids, std::greater(), [](AcDbObjectId id) { return id.stub()->index; });
    return ids;
}

// Extended data cannot count, its codes being above 99, so it is not asked for.
std::uint32_t FingerprintTaker::sumOf(AcDbObjectId entity)
{
    const auto [place, isNew] = m_sums.try_emplace(entity, 0);
    if (isNew) {
        UnitSum sum;
        appendData(sum, acdbEntGetX(entity));
        place->second = sum.sum;
    }
    return place->second;
}

TargetFingerprint FingerprintTaker::take(AcDbObjectId space, const acgi::Window &window)
{
    TargetFingerprint fingerprint;
    const auto takeSum = [this](AcDbObjectId id) {
        if (!isReviewMark(id))
            sumOf(id);
    };
    fingerprint.ids = targetEntities(m_database, space, window, takeSum);
    if (fingerprint.ids.empty())
        return fingerprint;
    std::uint32_t sum = 0; // Wraps.
    for (const AcDbObjectId id : fingerprint.ids)
        sum += sumOf(id);
    fingerprint.checksum = QStringLiteral("SUM=%1").arg(static_cast<std::int32_t>(sum));
    return fingerprint;
}

static acgi::Window windowOf(const MarkCorners &target)
{
    const auto flat = [](const AcGePoint3d &corner) { return AcGePoint2d(corner.x, corner.y); };
    return acgi::Window(
        {flat(target.corner1), flat(target.corner4), flat(target.corner2), flat(target.corner3)});
}

acgi::Window targetWindow(const QuillnoteObj3 &mark)
{
    return windowOf(targetCorners(mark));
}

TargetFingerprint computeTargetFingerprint(const MarkCorners &target)
{
    const AcApDocument *const document = curDoc();
    if (!document)
        return {};
    AcDbDatabase &database = *document->database();
    return FingerprintTaker(database).take(database.currentSpaceId(), windowOf(target));
}
