// Pieces that the pages in code page 936 have in common.
#pragma once

#include <QString>

namespace report_html
{

inline constexpr QStringView kHead =
    u"<html>\n<head>\n<meta http-equiv=\"Content-Type\" content=\"text/html; charset=gb2312\">\n";
inline constexpr QStringView kTable =
    u"<table border=1 cellspacing=0 bordercolor=#000000 width = 100% style=border-collapse:collapse>\n";

/// The text as it is stored; an empty cell would lose its frame.
inline QString cellText(const QString &text)
{
    return text.isEmpty() ? QStringLiteral("&nbsp;") : text;
}

} // namespace report_html
