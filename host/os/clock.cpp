#include "host/os/clock.h"

#include <chrono>
#include <cmath>
#include <cstdio>

namespace os
{

static constexpr qint64 kMillisecondsPerDay = 24 * 60 * 60 * 1000;

static std::optional<QDateTime> timeFromEnvironment()
{
    const QString text = qEnvironmentVariable("QUILLNOTE_FIXED_TIME");
    if (text.isEmpty())
        return std::nullopt;
    const QDateTime time = QDateTime::fromString(text, Qt::ISODateWithMs);
    if (time.isValid())
        return time.toLocalTime();
    std::fprintf(stderr, "QUILLNOTE_FIXED_TIME is no ISO date and time, the clock runs: %s\n",
                 qPrintable(text));
    return std::nullopt;
}

static std::optional<QDateTime> &fixedTime()
{
    static std::optional<QDateTime> time = timeFromEnvironment();
    return time;
}

void setFixedTime(const std::optional<QDateTime> &time)
{
    fixedTime() = time;
}

QDateTime localNow()
{
    return fixedTime().value_or(QDateTime::currentDateTime());
}

static std::optional<std::int64_t> &fixedMilliseconds()
{
    static std::optional<std::int64_t> reading;
    return reading;
}

std::int64_t milliseconds()
{
    using std::chrono::steady_clock;
    const auto running =
        std::chrono::duration_cast<std::chrono::milliseconds>(steady_clock::now().time_since_epoch());
    return fixedMilliseconds().value_or(running.count());
}

void setFixedMilliseconds(const std::optional<std::int64_t> &reading)
{
    fixedMilliseconds() = reading;
}

double julianNow()
{
    return toJulian(localNow());
}

double toJulian(const QDateTime &localTime)
{
    return static_cast<double>(localTime.date().toJulianDay()) +
           static_cast<double>(localTime.time().msecsSinceStartOfDay()) /
               static_cast<double>(kMillisecondsPerDay);
}

QDateTime fromJulian(double julian)
{
    constexpr double kLastDay = 5373484.0; // 31 December 9999.
    if (!(julian >= 0.0 && julian <= kLastDay + 1.0))
        return {};
    const double day = std::floor(julian);
    const auto milliseconds = std::llround((julian - day) * static_cast<double>(kMillisecondsPerDay));
    // The last half millisecond of a day rounds up into the next one.
    const QDate date = QDate::fromJulianDay(static_cast<qint64>(day) + milliseconds / kMillisecondsPerDay);
    return QDateTime(date,
                     QTime::fromMSecsSinceStartOfDay(static_cast<int>(milliseconds % kMillisecondsPerDay)));
}

} // namespace os
