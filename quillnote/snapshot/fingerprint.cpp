#include "quillnote/snapshot/fingerprint.h"

#include "host/acap/docman.h"
#include "host/acdb/dbapi.h"
#include "host/aced/edselect.h"
#include "host/acgi/giregion.h"

#include <algorithm>
#include <array>
#include <charconv>

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

static ResbufList withoutMarks()
{
    return {{-4, QStringLiteral("<not")}, {0, QStringLiteral("QUILLNOTE*")}, {-4, QStringLiteral("not>")}};
}

static AcGiWindow windowOf(const MarkCorners &target)
{
    const auto flat = [](const AcGePoint3d &corner) { return AcGePoint2d(corner.x, corner.y); };
    return AcGiWindow(
        {flat(target.corner1), flat(target.corner4), flat(target.corner2), flat(target.corner3)});
}

TargetFingerprint computeTargetFingerprint(const MarkCorners &target)
{
    TargetFingerprint fingerprint;
    if (const AcApDocument *const document = curDoc())
        fingerprint.ids = acedCrossingWindow(*document, windowOf(target), withoutMarks());
    if (fingerprint.ids.empty())
        return {};
    std::int32_t sum = 0;
    // Extended data cannot count, its codes being above 99, so it is not asked for.
    for (const AcDbObjectId id : fingerprint.ids)
        sum = fingerprintSum(fingerprintText(acdbEntGetX(id)), sum);
    fingerprint.checksum = QStringLiteral("SUM=%1").arg(sum);
    return fingerprint;
}
