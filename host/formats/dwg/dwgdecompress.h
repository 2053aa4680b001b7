// The two compressions of DWG files: runs of literal bytes and copies of what came before.
#pragma once

#include <QByteArray>

#include <cstdint>
#include <string_view>

namespace dwg
{

struct Decompressed {
    QByteArray bytes;
    bool whole = false; ///< False: the input was damaged; `bytes` is what came before the damage.
};

/// AC1018 and its kin. Never gives more than `limit` bytes.
Decompressed decompress18(std::string_view packed, std::size_t limit);
/// AC1021, whose literal runs are stored in an order of their own. Gives `size` bytes when whole.
Decompressed decompress21(std::string_view packed, std::size_t size);

/// How up to 32 literals of AC1021 stand in the file: pairs of (place, count) in the order of the plain
/// bytes, the rest zero. Pieces of 16 bytes have their halves swapped, those of 2 and 3 are turned round.
using LiteralOrder = std::uint8_t[10];
const LiteralOrder &literalOrder21(std::size_t count);

} // namespace dwg
