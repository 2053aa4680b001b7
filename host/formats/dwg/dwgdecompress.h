// The two compressions of DWG files: runs of literal bytes and copies of what came before.
#pragma once

#include <QByteArray>

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

} // namespace dwg
