#include "app/window/unit_text.h"

#include "host/aced/edinput.h"
#include "host/aced/edsysvar.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace window
{

static constexpr double kInchesOfFoot = 12.0;
static constexpr double kMostForFractions = 1e9; ///< Beyond, a count of fractions overflows.

/// "15 1/2" of a number that is not negative.
static QString fractionText(double number, int precision)
{
    const std::int64_t denominator = std::int64_t(1) << precision;
    const std::int64_t parts = std::llround(number * double(denominator));
    const std::int64_t whole = parts / denominator;
    const std::int64_t rest = parts % denominator;
    if (rest == 0)
        return QString::number(whole);
    const std::int64_t common = std::gcd(rest, denominator);
    const QString fraction = QStringLiteral("%1/%2").arg(rest / common).arg(denominator / common);
    return whole == 0 ? fraction : QStringLiteral("%1 %2").arg(whole).arg(fraction);
}

/// Rounded before it is split, so that no inch count reaches twelve.
static double roundTo(double number, int units, int precision)
{
    const double step = units == 3 ? std::pow(10.0, -precision) : std::pow(2.0, -precision);
    return std::round(number / step) * step;
}

static QString feetText(double length, int units, int precision)
{
    const double rounded = roundTo(length, units, precision);
    const double feet = std::floor(rounded / kInchesOfFoot + 1e-12);
    const double inches = std::max(0.0, rounded - feet * kInchesOfFoot);
    const QString inchText =
        (units == 3 ? QString::number(inches, 'f', precision) : fractionText(inches, precision)) + u'"';
    return feet == 0.0 ? inchText : QStringLiteral("%1'-%2").arg(QString::number(feet, 'f', 0), inchText);
}

QString lengthText(double length, int units, int precision)
{
    precision = std::clamp(precision, 0, 8);
    if (units == 1)
        return QString::number(length, 'E', precision);
    const bool hasFractions = units >= 3 && units <= 5 && std::abs(length) < kMostForFractions;
    if (!hasFractions) {
        const QString text = QString::number(length, 'f', precision);
        const bool isZero =
            std::ranges::all_of(text, [](QChar c) { return QStringView(u"-0.").contains(c); });
        return isZero && text.startsWith(u'-') ? text.mid(1) : text;
    }
    const double size = std::abs(length);
    const QString text = units == 5 ? fractionText(size, precision) : feetText(size, units, precision);
    const bool isZero = roundTo(size, units, precision) == 0.0;
    return length < 0 && !isZero ? u'-' + text : text;
}

QString placeText(const AcGePoint3d &world)
{
    const int units = acedIntVar(QStringLiteral("LUNITS"), 2);
    const int precision = acedIntVar(QStringLiteral("LUPREC"), 4);
    const AcGePoint3d place = acedTrans(world, AcEdSpace::world, AcEdSpace::ucs);
    return QStringLiteral("%1, %2, %3")
        .arg(lengthText(place.x, units, precision), lengthText(place.y, units, precision),
             lengthText(place.z, units, precision));
}

} // namespace window
