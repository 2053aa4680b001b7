#include "host/base/terminal_text.h"

namespace base
{

static bool turnsDirection(char16_t unit)
{
    return unit == 0x061C || unit == 0x200E || unit == 0x200F || (unit >= 0x202A && unit <= 0x202E) ||
           (unit >= 0x2066 && unit <= 0x2069);
}

bool isUnsafeOnTerminal(QStringView text, qsizetype at)
{
    const QChar unit = text[at];
    if (unit.isHighSurrogate())
        return at + 1 == text.size() || !text[at + 1].isLowSurrogate();
    if (unit.isLowSurrogate())
        return at == 0 || !text[at - 1].isHighSurrogate();
    const char16_t code = unit.unicode();
    const bool isControl = (code < 0x20 && code != '\n' && code != '\t') || (code >= 0x7F && code < 0xA0);
    return isControl || code == 0x2028 || code == 0x2029 || turnsDirection(code);
}

static QString writtenOut(char16_t unit)
{
    const bool isByte = unit >= 0xDC80 && unit <= 0xDCFF; // base::decodePath
    return isByte ? QStringLiteral("\\x%1").arg(unit - 0xDC00, 2, 16, QLatin1Char('0'))
                  : QStringLiteral("\\u%1").arg(unit, 4, 16, QLatin1Char('0'));
}

QString terminalText(QString text)
{
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    QString safe;
    qsizetype begin = 0;
    for (qsizetype at = 0; at < text.size(); ++at) {
        if (!isUnsafeOnTerminal(text, at))
            continue;
        safe += QStringView(text).sliced(begin, at - begin);
        safe += writtenOut(text[at].unicode());
        begin = at + 1;
    }
    safe += QStringView(text).sliced(begin);
    return safe;
}

} // namespace base
