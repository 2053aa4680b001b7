#include "host/aced/edparse.h"

#include "host/base/format_number.h"

#include <cmath>

// Numbers -----------------------------------------------------------------------------------------

static std::optional<double> plainNumber(QStringView text)
{
    const QByteArray bytes = text.trimmed().toLatin1();
    return base::parseReal({bytes.constData(), std::size_t(bytes.size())});
}

/// What no double can hold is no number.
static std::optional<double> ifFinite(double value)
{
    return std::isfinite(value) ? std::optional(value) : std::nullopt;
}

/// "1/2" or "1-1/2", as carpenters write.
static std::optional<double> fraction(QStringView text)
{
    const qsizetype slash = text.indexOf(u'/');
    const qsizetype dash = text.indexOf(u'-', 1);
    const QStringView whole = dash > 0 ? text.first(dash) : QStringView(u"0");
    const qsizetype begin = dash > 0 ? dash + 1 : 0;
    if (slash <= begin)
        return std::nullopt;
    const auto units = plainNumber(whole);
    const auto above = plainNumber(text.mid(begin, slash - begin));
    const auto below = plainNumber(text.mid(slash + 1));
    if (!units || !above || !below || *below <= 0)
        return std::nullopt;
    return ifFinite(*units < 0 ? *units - *above / *below : *units + *above / *below);
}

std::optional<double> acedParseNumber(const QString &text)
{
    const QString trimmed = text.trimmed();
    return trimmed.contains(u'/') ? fraction(trimmed) : plainNumber(trimmed);
}

// Angles ------------------------------------------------------------------------------------------

static double radians(double degrees)
{
    return degrees * kGePi / 180.0;
}

/// "45d30'15.5"" in degrees; the parts behind the degrees may be missing.
static std::optional<double> degreesMinutesSeconds(QStringView text)
{
    const qsizetype d = text.indexOf(u'd');
    const auto degrees = plainNumber(text.first(d));
    QStringView rest = text.mid(d + 1);
    double minutes = 0;
    double seconds = 0;
    if (const qsizetype mark = rest.indexOf(u'\''); mark >= 0) {
        const auto value = plainNumber(rest.first(mark));
        if (!value)
            return std::nullopt;
        minutes = *value;
        rest = rest.mid(mark + 1);
    }
    if (const qsizetype mark = rest.indexOf(u'"'); mark >= 0) {
        const auto value = plainNumber(rest.first(mark));
        if (!value)
            return std::nullopt;
        seconds = *value;
        rest = rest.mid(mark + 1);
    }
    if (!degrees || !rest.isEmpty())
        return std::nullopt;
    const double part = minutes / 60 + seconds / 3600;
    return ifFinite(std::signbit(*degrees) ? *degrees - part : *degrees + part);
}

/// "N45d30'E": from north or south towards east or west; also "N", "E", "S", "W" alone.
static std::optional<double> bearing(const QString &text)
{
    const QChar from = text.front();
    if (text.size() == 1) {
        const qsizetype quarter = QStringLiteral("ENWS").indexOf(from);
        return quarter < 0 ? std::nullopt : std::optional(double(quarter) * kGePi / 2);
    }
    const QChar towards = text.back();
    if ((from != u'N' && from != u'S') || (towards != u'E' && towards != u'W'))
        return std::nullopt;
    const QString middle = text.mid(1, text.size() - 2).toLower();
    const auto degrees = middle.contains(u'd') ? degreesMinutesSeconds(middle) : plainNumber(middle);
    if (!degrees)
        return std::nullopt;
    const double start = from == u'N' ? kGePi / 2 : -kGePi / 2;
    const bool clockwise = (from == u'N') == (towards == u'E');
    return start + (clockwise ? -radians(*degrees) : radians(*degrees));
}

static std::optional<double> inUnits(QStringView number, double unit)
{
    const auto value = plainNumber(number);
    return value ? std::optional(*value * unit) : std::nullopt;
}

std::optional<double> acedParseAngle(const QString &text, const AcEdAngleFormat &format)
{
    const QString typed = text.trimmed().toLower();
    if (typed.isEmpty())
        return std::nullopt;
    if (typed.front() == u'n' || typed.front() == u's' || typed == u"e" || typed == u"w")
        return bearing(typed.toUpper());

    std::optional<double> angle;
    if (typed.contains(u'd')) {
        angle = degreesMinutesSeconds(typed);
        if (angle)
            angle = radians(*angle);
    } else if (typed.endsWith(u'g')) {
        angle = inUnits(QStringView(typed).chopped(1), kGePi / 200);
    } else if (typed.endsWith(u'r')) {
        angle = inUnits(QStringView(typed).chopped(1), 1.0);
    } else {
        const double unit = format.units == 2 ? kGePi / 200 : format.units == 3 ? 1.0 : kGePi / 180;
        angle = inUnits(typed, unit);
    }
    if (angle && format.clockwise)
        angle = -*angle;
    return angle;
}

// Points ------------------------------------------------------------------------------------------

static bool readMarks(QStringView &rest, AcEdTypedPoint &typed)
{
    while (!rest.isEmpty() && (rest.front() == u'@' || rest.front() == u'*')) {
        bool &flag = rest.front() == u'@' ? typed.relative : typed.world;
        if (flag)
            return false;
        flag = true;
        rest = rest.mid(1);
    }
    return true;
}

/// "d<a" with the angle's base added, for it is a direction.
static std::optional<AcGePoint3d> polar(QStringView text, const AcEdAngleFormat &format)
{
    const qsizetype mark = text.indexOf(u'<');
    const auto distance = acedParseNumber(text.first(mark).toString());
    const auto angle = acedParseAngle(text.mid(mark + 1).toString(), format);
    if (!distance || !angle)
        return std::nullopt;
    return polarOffset({}, *angle + format.base, *distance);
}

static std::optional<AcGePoint3d> cartesian(const QList<QStringView> &parts, bool &hasZ)
{
    if (parts.size() < 2 || parts.size() > 3)
        return std::nullopt;
    double values[3] = {};
    for (qsizetype i = 0; i < parts.size(); ++i) {
        const auto value = acedParseNumber(parts[i].toString());
        if (!value)
            return std::nullopt;
        values[i] = *value;
    }
    hasZ = parts.size() == 3;
    return AcGePoint3d(values[0], values[1], values[2]);
}

static std::optional<AcGePoint3d> polarWithHeight(const QList<QStringView> &parts,
                                                  const AcEdAngleFormat &format, bool &hasZ)
{
    if (parts.size() > 2)
        return std::nullopt;
    auto point = polar(parts.front(), format);
    if (point && parts.size() == 2) {
        const auto height = acedParseNumber(parts[1].toString());
        if (!height)
            return std::nullopt;
        point->z = *height;
        hasZ = true;
    }
    return point;
}

std::optional<AcEdTypedPoint> acedParsePoint(const QString &text, const AcEdAngleFormat &format)
{
    AcEdTypedPoint typed;
    const QString trimmed = text.trimmed();
    QStringView rest(trimmed);
    if (!readMarks(rest, typed))
        return std::nullopt;
    if (rest.isEmpty())
        return typed.relative ? std::optional(typed) : std::nullopt;
    const QList<QStringView> parts = rest.split(u',');
    const auto point = parts.front().contains(u'<') ? polarWithHeight(parts, format, typed.hasZ)
                                                    : cartesian(parts, typed.hasZ);
    if (!point)
        return std::nullopt;
    typed.point = *point;
    return typed;
}

// Keywords ----------------------------------------------------------------------------------------

static QString capitals(const QString &keyword)
{
    QString found;
    for (const QChar c : keyword) {
        if (c.isUpper() || c.isDigit())
            found += c;
    }
    return found;
}

static QString fromFirstCapital(const QString &keyword)
{
    for (qsizetype i = 0; i < keyword.size(); ++i) {
        if (keyword[i].isUpper() || keyword[i].isDigit())
            return keyword.mid(i);
    }
    return keyword;
}

namespace
{
enum class Fit { none, beginning, exact };
} // namespace

static Fit fit(const QString &text, const QString &keyword)
{
    const QString full = keyword.section(u',', 0, 0);
    const QString abbreviation = keyword.section(u',', 1, 1);
    const auto same = [&text](const QString &other) { return text.compare(other, Qt::CaseInsensitive) == 0; };
    if (same(full) || same(abbreviation.isEmpty() ? capitals(full) : abbreviation))
        return Fit::exact;
    if (full.startsWith(text, Qt::CaseInsensitive) ||
        fromFirstCapital(full).startsWith(text, Qt::CaseInsensitive))
        return Fit::beginning;
    return Fit::none;
}

AcEdKeywordMatch acedMatchKeyword(const QString &text, const QStringList &keywords)
{
    AcEdKeywordMatch match;
    if (text.isEmpty())
        return match;
    for (qsizetype i = 0; i < keywords.size(); ++i) {
        switch (fit(text, keywords[i])) {
        case Fit::exact:
            return {int(i), false, {}};
        case Fit::beginning:
            match.index = int(i);
            match.candidates += keywords[i].section(u',', 0, 0);
            break;
        case Fit::none:
            break;
        }
    }
    if (match.candidates.size() > 1)
        return {-1, true, match.candidates};
    return match;
}
