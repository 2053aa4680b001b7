// The colours behind the colour indices of drawings.
#pragma once

#include <QColor>

namespace acgi
{

/// Red, green, blue of a colour index 1 to 255; 7 as white.
QRgb indexColor(int index);

} // namespace acgi
