// Lengths and places as the drawing's units want them shown.
#pragma once

#include "host/acap/docman.h"

namespace window
{

/// By LUNITS (1 scientific, 2 decimal, 3 engineering, 4 architectural, 5 fractional) and LUPREC: decimals, or
/// the power of two of the smallest fraction. Feet and inches take the unit to be an inch.
QString lengthText(double length, int units, int precision);
/// "12.5000, 3.0000, 0.0000" of a place (world) in the document's coordinate system.
QString placeText(const AcGePoint3d &world);

} // namespace window
