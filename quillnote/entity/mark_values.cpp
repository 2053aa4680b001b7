#include "quillnote/entity/mark_values.h"

#include "quillnote/frame/settings/settings.h"

#include "host/os/clock.h"

#include <cmath>

QString markNumberText(std::uint16_t markNumber, std::uint16_t subNumber)
{
    const QString number = QString::number(markNumber);
    return subNumber == 0 ? number : number + u'.' + QString::number(subNumber);
}

QString markDateText(double julian)
{
    return markDateText(julian, os::julianNow(), os::localNow());
}

QString markDateText(double julian, double julianNow, const QDateTime &localNow)
{
    const double elapsed = julianNow - julian;
    // Ten million days is further back than calendars go; damaged records hold such numbers.
    if (!(std::abs(elapsed) < 1e7))
        return {};
    const double days = std::trunc(elapsed);
    const double part = elapsed - days;
    const double hours = std::trunc(24.0 * part);
    const double minutes = std::trunc((24.0 * part - hours) * 60.0);
    const double seconds = std::trunc(86400.0 * part - 3600.0 * hours - 60.0 * minutes);
    const double span = ((days * 24.0 + hours) * 60.0 + minutes) * 60.0 + seconds;
    return localNow.addSecs(-static_cast<qint64>(span)).toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"));
}

QString handling::statusText(std::int16_t code)
{
    switch (code) {
    case kRefused:
        return QStringLiteral("拒绝修正");
    case kDisputed:
        return QStringLiteral("有争议，未修正");
    case kPartlyCorrected:
        return QStringLiteral("部分修正");
    case kCorrected:
        return QStringLiteral("完全修正");
    default:
        return {};
    }
}

QString handling::statusSentence(std::int16_t code)
{
    const QString text = statusText(code);
    return text.isEmpty() ? text : text + u'。';
}

std::uint16_t firstColorOfNewMarks()
{
    return static_cast<std::uint16_t>(settings::number(u"color1"));
}

std::uint16_t secondColorOfNewMarks()
{
    return static_cast<std::uint16_t>(settings::stored(u"color2").value_or(5));
}
