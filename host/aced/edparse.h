// Reading typed answers: pure functions from text to values.
#pragma once

#include "host/acge/gepoint.h"

#include <QString>
#include <QStringList>

#include <optional>

/// How angles are typed (AUNITS, ANGBASE, ANGDIR).
struct AcEdAngleFormat {
    int units = 0;     ///< 0 and 1 degrees, 2 gradians, 3 radians, 4 surveyor's.
    double base = 0.0; ///< Radians, counter-clockwise from the X axis.
    bool clockwise = false;
};

/// "12", "1.5e3", "-.5"; whole text. Fractions "1/2" and "1-1/2" too.
std::optional<double> acedParseNumber(const QString &text);
/// An angle as typed, in radians, counter-clockwise, without the base: "45", "45d30'15\"", "50g", "0.5r",
/// "N45dE".
std::optional<double> acedParseAngle(const QString &text, const AcEdAngleFormat &format);

/// A typed point. `relative` counts from the base or last point; `world` is no UCS coordinates.
struct AcEdTypedPoint {
    AcGePoint3d point; ///< For relative ones the offset.
    bool relative = false;
    bool world = false;
    bool hasZ = false;
};
/// "x,y", "x,y,z", "d<a", "d<a,z", each with "@" or "*" or both before it; "@" alone is no offset.
std::optional<AcEdTypedPoint> acedParsePoint(const QString &text, const AcEdAngleFormat &format);

/// What a text means among keywords.
struct AcEdKeywordMatch {
    int index = -1;         ///< -1: none.
    bool ambiguous = false; ///< It begins several.
    QStringList candidates;
};
/// A whole keyword, its capitals, or an unambiguous beginning (of the whole or from its first capital on);
/// letter case does not matter. "LType,LT" lists an abbreviation of its own.
AcEdKeywordMatch acedMatchKeyword(const QString &text, const QStringList &keywords);
