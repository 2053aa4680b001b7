// The local time, as a date and as the Julian date that drawings keep.
//
// The environment variable QUILLNOTE_FIXED_TIME ("2024-05-06T07:08:09", local time) holds the clock
// still, so that two runs write the same bytes.
#pragma once

#include <QDateTime>

#include <cstdint>
#include <optional>

namespace os
{

QDateTime localNow();

/// Local Julian date: the day number, plus the part of the day since midnight. Day 2451545 is 1 January 2000.
double julianNow();
double toJulian(const QDateTime &localTime);
/// Rounded to the millisecond; invalid for numbers that are no date.
QDateTime fromJulian(double julian);

/// Holds the clock at a time, before the environment variable; nothing lets it run again.
void setFixedTime(const std::optional<QDateTime> &time);

/// Milliseconds since some moment; only differences mean something. Setting the system's time does not
/// disturb them.
std::int64_t milliseconds();
/// Holds that clock at a reading; no value lets it run.
void setFixedMilliseconds(const std::optional<std::int64_t> &reading);

} // namespace os
