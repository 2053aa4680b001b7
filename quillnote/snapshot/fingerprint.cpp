#include "quillnote/snapshot/fingerprint.h"

#include "host/acdb/dbapi.h"
#include "host/aced/edselect.h"

#include <array>
#include <cstdio>
#include <string_view>

static constexpr int kColor = 62;

/// Six significant digits. Exponents have three digits at least, so that sums agree with those of marks made
/// elsewhere.
static QString numberText(double value)
{
    std::array<char, 32> buffer;
    const int length = std::snprintf(buffer.data(), buffer.size(), "%g", value);
    QString text = QString::fromLatin1(buffer.data(), length);
    const qsizetype digits = text.indexOf(QLatin1Char('e')) + 2;
    if (digits >= 2)
        text.insert(digits, QString(std::max<qsizetype>(0, 3 - (text.size() - digits)), QLatin1Char('0')));
    return text;
}

static QString pointText(const AcGePoint3d &point)
{
    return QStringLiteral("(%1, %2, %3)").arg(numberText(point.x), numberText(point.y), numberText(point.z));
}

static QString valueText(const resbuf &group)
{
    const int code = group.restype;
    if (code <= 9) {
        const bool isNone = std::holds_alternative<std::monostate>(group.resval);
        return isNone ? QStringLiteral("(NULL)") : QLatin1Char('"') + group.text() + QLatin1Char('"');
    }
    if (code <= 17)
        return pointText(group.point());
    if (code >= 38 && code <= 59)
        return numberText(group.real());
    if (code >= 60 && code <= 79)
        return QString::number(static_cast<std::int16_t>(group.integer()));
    if (code >= 90)
        return QString::number(static_cast<std::int32_t>(group.integer()));
    return QStringLiteral("*Unknown*");
}

QString fingerprintText(const ResbufList &data)
{
    QString text;
    for (const resbuf &group : data) {
        if (group.restype < 0 || group.restype > 99 || group.restype == kColor)
            continue;
        text += QLatin1Char('(') + QString::number(group.restype) + QLatin1Char(',') + valueText(group) +
                QLatin1Char(')');
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

TargetFingerprint computeTargetFingerprint(const AcGePoint3d &corner1, const AcGePoint3d &corner2)
{
    const AcGePoint3d point1 = acedTrans(corner1, AcEdSpace::world, AcEdSpace::ucs);
    const AcGePoint3d point2 = acedTrans(corner2, AcEdSpace::world, AcEdSpace::ucs);
    TargetFingerprint fingerprint;
    if (acedSSGet(QStringLiteral("C"), &point1, &point2, withoutMarks(), fingerprint.ids) != RTNORM)
        return {};
    std::int32_t sum = 0;
    // Extended data cannot count, its codes being above 99, so it is not asked for.
    for (const AcDbObjectId id : fingerprint.ids)
        sum = fingerprintSum(fingerprintText(acdbEntGetX(id)), sum);
    fingerprint.checksum = QStringLiteral("SUM=%1").arg(sum);
    return fingerprint;
}
