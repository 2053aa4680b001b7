// The two compressions of DWG files, the way in: runs of literal bytes and copies of what came before.
#pragma once

#include <QByteArray>

#include <string_view>

namespace dwg
{

/// AC1018 and its kin; four bytes at least. Bytes that do not repeat become a little longer.
QByteArray compress18(std::string_view plain);
/// AC1021. What comes out longer than it was is stored as it was; the caller compares.
QByteArray compress21(std::string_view plain);

} // namespace dwg
