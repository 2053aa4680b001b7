// The container of a DWG file: its named sections, unpacked, whatever version packed them.
//
// AC1012 to AC1015 hold sections as they are and objects anywhere in the file; AC1018 and later pack them
// into pages, with a map of pages and a map of sections; AC1021 does so in a way of its own, behind
// Reed-Solomon codes. Every checksum is looked at. What does not match is told in `warnings` and used as far
// as it goes; without its maps a file is refused.
#pragma once

#include "host/acdb/dbsource.h"
#include "host/base/result.h"

#include <map>
#include <string_view>

namespace dwg
{

inline constexpr qsizetype kMostWarnings = 100;

struct Container {
    DrawingVersion version = DrawingVersion::unknown;
    int maintenance = 0;                       ///< Of the version.
    std::uint16_t codePage = 0;                ///< DWG's number.
    std::map<QByteArray, QByteArray> sections; ///< "AcDb:Header" ...; views into the file up to AC1015.
    std::string_view objects; ///< What the object map's offsets count in: the file or "AcDb:AcDbObjects".
    QStringList warnings;     ///< At most kMostWarnings.

    void warn(const QString &sentence);

    std::string_view section(const QByteArray &name) const
    {
        const auto found = sections.find(name);
        return found == sections.end()
                   ? std::string_view()
                   : std::string_view(found->second.constData(), std::size_t(found->second.size()));
    }
};

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

/// A part of the file; empty when it does not lie in it.
inline std::string_view partOf(std::string_view bytes, std::uint64_t at, std::uint64_t size)
{
    if (at > bytes.size() || size > bytes.size() - at)
        return {};
    return bytes.substr(std::size_t(at), std::size_t(size));
}

} // namespace dwg
