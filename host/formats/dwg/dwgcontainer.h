// The container of a DWG file: its named sections, unpacked, whatever version packed them.
//
// AC1012 to AC1015 hold sections as they are and objects anywhere in the file; AC1018 and later pack them
// into pages, with a map of pages and a map of sections; AC1021 does so in a way of its own, behind
// Reed-Solomon codes. Every checksum is looked at. What does not match is told in `warnings` and used as far
// as it goes; without its maps a file is refused.
#pragma once

#include "host/acdb/dbsource.h"
#include "host/base/result.h"

#include <cstring>
#include <map>
#include <string_view>
#include <vector>

namespace dwg
{

inline constexpr qsizetype kMostWarnings = 100;

inline std::string_view viewOf(const QByteArray &bytes)
{
    return {bytes.constData(), std::size_t(bytes.size())};
}

/// A section as the file's own map describes it, for writing the file again.
struct SectionForm {
    QByteArray name;
    QByteArray description; ///< As it stands in the map, without the pages.
    std::uint64_t at = 0;   ///< Of its first page; 0 when it has none.
};

struct Container {
    std::string_view file;
    DrawingVersion version = DrawingVersion::unknown;
    int maintenance = 0;                       ///< Of the version.
    std::uint16_t codePage = 0;                ///< DWG's number.
    std::map<QByteArray, QByteArray> sections; ///< "AcDb:Header" ...; views into the file up to AC1015.
    std::string_view objects; ///< What the object map's offsets count in: the file or "AcDb:AcDbObjects".
    QStringList warnings;     ///< At most kMostWarnings.
    QString damage;           ///< The first thing that could not be read; empty when all was.

    // Since AC1018.
    QByteArray head;                ///< What stands at 0x80, without mask or parity.
    std::vector<SectionForm> forms; ///< In the order of the file's map.

    void warn(const QString &sentence);
    /// A warning of something that is lost, so that the file cannot be written again as a whole.
    void warnOfLoss(const QString &sentence);

    std::string_view section(const QByteArray &name) const
    {
        const auto found = sections.find(name);
        return found == sections.end() ? std::string_view() : viewOf(found->second);
    }
};

/// What the sections of variables and of classes end with.
inline constexpr std::string_view kSectionEnds[] = {
    "\x30\x84\xE0\xDC\x02\x21\xC7\x56\xA0\x83\x97\x47\xB1\x92\xCC\xA0",
    "\x72\x5E\x3B\x47\x3B\x56\x07\x3A\x3F\x23\x0B\xA0\x18\x30\x49\x75"};

/// "AC1027" ...; unknown for a version that cannot be read.
DrawingVersion versionOf(std::string_view file);

/// `file` must outlive the result. Unpacked, a file takes at most 32 times its size and 16 MB; one that wants
/// more is refused. The error is a sentence without the file's name.
base::Result<Container, QString> openContainer(std::string_view file);

// One for each way of packing; called by openContainer().
base::Result<void, QString> openPlain(std::string_view file, Container &container);
base::Result<void, QString> openPaged(std::string_view file, Container &container);
base::Result<void, QString> openPaged21(std::string_view file, Container &container);

std::size_t unpackedLimit(std::string_view file);

/// Little-endian number at a place; 0 past the end.
template <class Number>
Number numberAt(std::string_view bytes, std::size_t at)
{
    Number value{};
    if (at <= bytes.size() && bytes.size() - at >= sizeof value)
        std::memcpy(&value, bytes.data() + at, sizeof value);
    return value;
}

/// Overwrites a little-endian number that lies in the bytes.
template <class Number>
void putNumber(QByteArray &bytes, std::size_t at, Number value)
{
    std::memcpy(bytes.data() + at, &value, sizeof value);
}

template <class Number>
void appendNumber(QByteArray &bytes, Number value)
{
    bytes.append(reinterpret_cast<const char *>(&value), sizeof value);
}

/// The masked parts of AC1018 and its kin: masking twice gives the plain bytes again.
QByteArray masked18(std::string_view bytes);

/// A part of the file; empty when it does not lie in it.
inline std::string_view partOf(std::string_view bytes, std::uint64_t at, std::uint64_t size)
{
    if (at > bytes.size() || size > bytes.size() - at)
        return {};
    return bytes.substr(std::size_t(at), std::size_t(size));
}

} // namespace dwg
