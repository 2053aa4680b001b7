// Values that are derived from a mark's fields in one way everywhere: number, dates, handling status.
#pragma once

#include <QDateTime>
#include <QString>

#include <cstdint>
#include <span>

/// "12", or "12.3" with a sub-number.
QString markNumberText(std::uint16_t markNumber, std::uint16_t subNumber);

/// "2024-05-06 07:08:09": a Julian date shown by its distance from now. Empty for what is no date.
QString markDateText(double julian);
/// The same, with now given as a Julian date and as the local time.
QString markDateText(double julian, double julianNow, const QDateTime &localNow);

/// How the designer dealt with an opinion.
namespace handling
{
inline constexpr std::int16_t kNone = 0;
inline constexpr std::int16_t kRefused = -1;
inline constexpr std::int16_t kDisputed = 1;
inline constexpr std::int16_t kPartlyCorrected = 2;
inline constexpr std::int16_t kCorrected = 3;

/// "拒绝修正"; empty for kNone and for codes that are no status.
QString statusText(std::int16_t code);
/// The same as a sentence, with its full stop.
QString statusSentence(std::int16_t code);
} // namespace handling

/// The colours of a new mark: the settings when they are colour indexes, else 2 and 5.
std::uint16_t firstColorOfNewMarks();
std::uint16_t secondColorOfNewMarks();
