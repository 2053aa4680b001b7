// Julian dates against known days, and the clock that can be held still.
#include "host/os/clock.h"
#include "host/os/guid.h"

#include <gtest/gtest.h>

#include <QRegularExpression>
#include <QSet>

TEST(Clock, JulianDatesCountDaysFromMidnight)
{
    EXPECT_EQ(os::toJulian(QDateTime(QDate(2000, 1, 1), QTime(0, 0))), 2451545.0);
    EXPECT_EQ(os::toJulian(QDateTime(QDate(1999, 12, 31), QTime(18, 0))), 2451544.75);
    EXPECT_EQ(os::fromJulian(2451544.75), QDateTime(QDate(1999, 12, 31), QTime(18, 0)));
    for (const QTime time : {QTime(0, 0), QTime(7, 8, 9), QTime(23, 59, 59, 999)}) {
        const QDateTime moment(QDate(2024, 2, 29), time);
        EXPECT_EQ(os::fromJulian(os::toJulian(moment)), moment) << qPrintable(time.toString());
    }
    EXPECT_EQ(os::fromJulian(2451544.9999999999), QDateTime(QDate(2000, 1, 1), QTime(0, 0)));
    for (const double noDate : {-1.0, 1e300, std::nan("")})
        EXPECT_FALSE(os::fromJulian(noDate).isValid());
}

TEST(Clock, CanBeHeldStill)
{
    const QDateTime moment(QDate(2024, 5, 6), QTime(12, 0));
    os::setFixedTime(moment);
    EXPECT_EQ(os::localNow(), moment);
    EXPECT_EQ(os::julianNow(), 2460437.5);
    os::setFixedTime(std::nullopt);
    EXPECT_LT(std::abs(os::localNow().msecsTo(QDateTime::currentDateTime())), 60'000);
}

TEST(Guid, HasTheFixedFormAndNeverRepeats)
{
    static const QRegularExpression form(
        QStringLiteral("^\\{[0-9A-F]{8}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{12}\\}$"));
    QSet<QString> seen;
    for (int i = 0; i < 1000; ++i) {
        const QString guid = os::newGuidText();
        EXPECT_TRUE(form.match(guid).hasMatch()) << qPrintable(guid);
        seen.insert(guid);
    }
    EXPECT_EQ(seen.size(), 1000);
}
