#include "host/base/code_page.h"

#include "host/base/assert.h"

#include <algorithm>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>

#include <iconv.h>

namespace base
{

// The older East Asian names get the tables of their Windows successors, which contain them: files that
// carry the old name were written with the larger set more often than not.
// clang-format off
static constexpr CodePage kCodePages[] = {
    // name         system          DWG  double  aliases
    {"UTF-8",       nullptr,          0, false, "utf8 65001 cp65001 unicode"},
    {"ANSI_1252",   "CP1252",        30, false, "cp1252 windows1252 1252"},
    {"ASCII",       "ASCII",          1, false, "usascii"},
    {"ISO8859-1",   "ISO-8859-1",     2, false, "latin1"},
    {"ISO8859-2",   "ISO-8859-2",     3, false, ""},
    {"ISO8859-3",   "ISO-8859-3",     4, false, ""},
    {"ISO8859-4",   "ISO-8859-4",     5, false, ""},
    {"ISO8859-5",   "ISO-8859-5",     6, false, ""},
    {"ISO8859-6",   "ISO-8859-6",     7, false, ""},
    {"ISO8859-7",   "ISO-8859-7",     8, false, ""},
    {"ISO8859-8",   "ISO-8859-8",     9, false, ""},
    {"ISO8859-9",   "ISO-8859-9",    10, false, ""},
    {"DOS437",      "CP437",         11, false, "cp437 ibm437 437"},
    {"DOS850",      "CP850",         12, false, "cp850 ibm850 850"},
    {"DOS852",      "CP852",         13, false, "cp852 ibm852 852"},
    {"DOS855",      "CP855",         14, false, "cp855 ibm855 855"},
    {"DOS857",      "CP857",         15, false, "cp857 ibm857 857"},
    {"DOS860",      "CP860",         16, false, "cp860 ibm860 860"},
    {"DOS861",      "CP861",         17, false, "cp861 ibm861 861"},
    {"DOS863",      "CP863",         18, false, "cp863 ibm863 863"},
    {"DOS864",      "CP864",         19, false, "cp864 ibm864 864"},
    {"DOS865",      "CP865",         20, false, "cp865 ibm865 865"},
    {"DOS869",      "CP869",         21, false, "cp869 ibm869 869"},
    {"DOS932",      "CP932",         22, true,  ""},
    {"MACINTOSH",   "MACINTOSH",     23, false, "macroman mac"},
    {"BIG5",        "CP950",         24, true,  ""},
    {"KSC5601",     "CP949",         25, true,  ""},
    {"JOHAB",       "JOHAB",         26, true,  ""},
    {"DOS866",      "CP866",         27, false, "cp866 ibm866 866"},
    {"ANSI_1250",   "CP1250",        28, false, "cp1250 windows1250 1250"},
    {"ANSI_1251",   "CP1251",        29, false, "cp1251 windows1251 1251"},
    {"GB2312",      "CP936",         31, true,  ""},
    {"ANSI_1253",   "CP1253",        32, false, "cp1253 windows1253 1253"},
    {"ANSI_1254",   "CP1254",        33, false, "cp1254 windows1254 1254"},
    {"ANSI_1255",   "CP1255",        34, false, "cp1255 windows1255 1255"},
    {"ANSI_1256",   "CP1256",        35, false, "cp1256 windows1256 1256"},
    {"ANSI_1257",   "CP1257",        36, false, "cp1257 windows1257 1257"},
    {"ANSI_874",    "WINDOWS-874",   37, false, "cp874 windows874 874 tis620"},
    {"ANSI_932",    "CP932",         38, true,  "cp932 windows932 932 shiftjis sjis"},
    {"ANSI_936",    "CP936",         39, true,  "cp936 windows936 936 gbk"},
    {"ANSI_949",    "CP949",         40, true,  "cp949 windows949 949"},
    {"ANSI_950",    "CP950",         41, true,  "cp950 windows950 950"},
    {"ANSI_1361",   "JOHAB",         42, true,  "cp1361 1361"},
    {"ANSI_1258",   "CP1258",        44, false, "cp1258 windows1258 1258"},
};
// clang-format on
static constexpr std::size_t kCodePageCount = std::size(kCodePages);

static std::string plain(std::string_view name)
{
    std::string result;
    for (const char c : name) {
        if (c >= 'A' && c <= 'Z')
            result += static_cast<char>(c - 'A' + 'a');
        else if (c != '_' && c != '-' && c != ' ')
            result += c;
    }
    return result;
}

static bool hasAlias(std::string_view aliases, std::string_view name)
{
    while (!aliases.empty()) {
        const std::size_t end = std::min(aliases.find(' '), aliases.size());
        if (aliases.substr(0, end) == name)
            return true;
        aliases.remove_prefix(std::min(end + 1, aliases.size()));
    }
    return false;
}

namespace
{

/// One direction of the system's converter. Used on single characters, to fill the tables.
class Converter
{
public:
    Converter(const char *to, const char *from) : m_handle(::iconv_open(to, from)) {}
    ~Converter()
    {
        if (isOpen())
            ::iconv_close(m_handle);
    }
    Converter(const Converter &) = delete;
    Converter &operator=(const Converter &) = delete;

    bool isOpen() const { return m_handle != iconv_t(-1); }

    /// The bytes that `input` becomes when all of it stands for something; at most four.
    std::optional<std::string_view> convert(std::span<const char> input)
    {
        char *from = const_cast<char *>(input.data());
        std::size_t fromLeft = input.size();
        char *to = m_output.data();
        std::size_t toLeft = m_output.size();
        ::iconv(m_handle, nullptr, nullptr, nullptr, nullptr);
        constexpr std::size_t kFailed = ~std::size_t(0);
        if (::iconv(m_handle, &from, &fromLeft, &to, &toLeft) == kFailed ||
            ::iconv(m_handle, nullptr, nullptr, &to, &toLeft) == kFailed) // A held back combining letter.
            return std::nullopt;
        return std::string_view(m_output.data(), m_output.size() - toLeft);
    }

private:
    iconv_t m_handle;
    std::array<char, 4> m_output{};
};

struct Tables {
    std::once_flag decodeOnce;
    std::once_flag encodeOnce;
    DecodeTable decode;
    EncodeTable encode;
};

} // namespace

static char16_t oneUnit(Converter &toUtf16, std::span<const char> bytes)
{
    const auto units = toUtf16.convert(bytes);
    if (!units || units->size() != sizeof(char16_t))
        return kNoCharacter;
    return static_cast<char16_t>(static_cast<unsigned char>((*units)[0]) |
                                 static_cast<unsigned char>((*units)[1]) << 8);
}

/// ASCII is itself in every code page here, also where the system reads a backslash as a currency sign:
/// drawings need their backslashes.
static DecodeTable buildDecodeTable(const CodePage &page)
{
    Converter toUtf16("UTF-16LE", page.systemName);
    QUILL_ASSERT(toUtf16.isOpen());
    DecodeTable table;
    for (unsigned byte = 0; byte < 256; ++byte) {
        const char bytes[] = {static_cast<char>(byte)};
        table.single[byte] = byte < 0x80 ? static_cast<char16_t>(byte) : oneUnit(toUtf16, bytes);
    }
    for (unsigned lead = 0x80; page.doubleByte && lead < 0xFF; ++lead) {
        std::vector<char16_t> &pairs = table.pairs[lead];
        if (table.single[lead] != kNoCharacter)
            continue;
        pairs.assign(256, kNoCharacter);
        for (unsigned trail = 0x30; trail < 0xFF; ++trail) {
            const char bytes[] = {static_cast<char>(lead), static_cast<char>(trail)};
            pairs[trail] = oneUnit(toUtf16, bytes);
        }
    }
    return table;
}

/// Asks the system for the bytes, because it knows which of several pairs for one character is the usual
/// one; takes them only when they read back as the same character.
static EncodeTable buildEncodeTable(const CodePage &page, const DecodeTable &decode)
{
    Converter fromUtf16(page.systemName, "UTF-16LE");
    QUILL_ASSERT(fromUtf16.isOpen());
    EncodeTable table(0x10000, kNoBytes);
    for (unsigned unit = 0; unit < 0x10000; ++unit) {
        if (unit < 0x80) {
            table[unit] = static_cast<std::uint16_t>(unit);
            continue;
        }
        const char units[] = {static_cast<char>(unit & 0xFF), static_cast<char>(unit >> 8)};
        const auto bytes = fromUtf16.convert(units);
        if (!bytes || bytes->empty() || bytes->size() > 2)
            continue;
        const auto first = static_cast<unsigned char>(bytes->front());
        const auto last = static_cast<unsigned char>(bytes->back());
        if (bytes->size() == 1 && decode.single[first] == unit)
            table[unit] = first;
        else if (bytes->size() == 2 && !decode.pairs[first].empty() && decode.pairs[first][last] == unit)
            table[unit] = static_cast<std::uint16_t>(first << 8 | last);
    }
    return table;
}

static Tables &tablesOf(const CodePage &page)
{
    static std::array<Tables, kCodePageCount> tables;
    const auto row = static_cast<std::size_t>(&page - kCodePages);
    QUILL_ASSERT(row < kCodePageCount && page.systemName);
    return tables[row];
}

const DecodeTable &decodeTable(const CodePage &page)
{
    Tables &tables = tablesOf(page);
    std::call_once(tables.decodeOnce, [&] { tables.decode = buildDecodeTable(page); });
    return tables.decode;
}

const EncodeTable &encodeTable(const CodePage &page)
{
    Tables &tables = tablesOf(page);
    std::call_once(tables.encodeOnce, [&] { tables.encode = buildEncodeTable(page, decodeTable(page)); });
    return tables.encode;
}

/// A small system may come without the converter's data.
static const CodePage *ifAvailable(const CodePage &page)
{
    return !page.systemName || Converter("UTF-16LE", page.systemName).isOpen() ? &page : nullptr;
}

const CodePage *findCodePage(std::string_view name)
{
    const std::string wanted = plain(name);
    for (const CodePage &page : kCodePages) {
        if (plain(page.name) == wanted || hasAlias(page.aliases, wanted))
            return ifAvailable(page);
    }
    return nullptr;
}

const CodePage *findCodePage(std::uint16_t dwgNumber)
{
    for (const CodePage &page : kCodePages) {
        if (dwgNumber != 0 && page.dwgNumber == dwgNumber)
            return ifAvailable(page);
    }
    return nullptr;
}

} // namespace base
