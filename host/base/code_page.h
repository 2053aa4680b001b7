// Code pages as tables: which bytes stand for which character.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

namespace base
{

inline constexpr char16_t kNoCharacter = 0xFFFF;  ///< A non-character, so no code page holds it.
inline constexpr std::uint16_t kNoBytes = 0xFFFF; ///< 0xFF never leads a pair.

/// One or two bytes to one UTF-16 unit; every code page that drawings name fits.
struct DecodeTable {
    /// kNoCharacter for a byte that stands for nothing or leads a pair.
    std::array<char16_t, 256> single;
    /// By the second byte; empty for a first byte that leads no pair.
    std::array<std::vector<char16_t>, 256> pairs;
};

/// UTF-16 unit to one byte (below 0x100) or two (the first in the high half); kNoBytes for none.
using EncodeTable = std::vector<std::uint16_t>;

struct CodePage {
    std::string_view name;   ///< As $DWGCODEPAGE spells it.
    const char *systemName;  ///< As iconv spells it; null for UTF-8, which needs no table.
    std::uint16_t dwgNumber; ///< As DWG files number it; 0 for none.
    bool doubleByte;
    std::string_view aliases; ///< Further names, lower case without punctuation, separated by blanks.
};

/// Null for a name or number that is not known, and for a code page that the system has no data for.
const CodePage *findCodePage(std::string_view name);
const CodePage *findCodePage(std::uint16_t dwgNumber);

/// The tables of a page that was found and is not UTF-8. Built at the first call, from any thread.
const DecodeTable &decodeTable(const CodePage &page);
const EncodeTable &encodeTable(const CodePage &page);

} // namespace base
