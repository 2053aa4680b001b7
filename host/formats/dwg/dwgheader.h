// The variables of a drawing, in the section that DWG keeps them in.
#pragma once

#include "host/acdb/resbuf.h"
#include "host/formats/dwg/dwgcontainer.h"
#include "host/formats/dwg/dwgobject.h"

#include <vector>

namespace dwg
{

struct HeaderVariable {
    QByteArray name; ///< "$LTSCALE"
    ResbufList groups;
};

struct Header {
    std::vector<HeaderVariable> variables;
    /// Variables that hold the handle of a record, which DXF shows by its name: (place in `variables`,
    /// handle).
    std::vector<std::pair<std::size_t, std::uint64_t>> names;
    std::uint64_t namedObjects = 0;
    std::uint64_t paperSpace =
        0; ///< The sheet that is current: of several blocks the one called *Paper_Space.
    std::uint64_t handleSeed = 0;
    std::vector<std::uint64_t> tables; ///< Control objects: blocks, layers, styles, linetypes, views ...
    bool isWhole = false;              ///< Everything could be read.
};

Header readHeader(const FileFacts &facts, Container &container);

/// A section that is framed by sentinels, with its size and its checksum; empty when it is damaged beyond
/// use. What is wrong is told in the container's warnings.
std::string_view framedSection(Container &container, const QByteArray &name, std::string_view sentinel);

/// The streams of a section that begins, since AC1021, with its size in bits.
struct SectionStreams {
    Bits data, texts, handles;
    std::size_t textsEnd = 0;
};
SectionStreams sectionStreams(const FileFacts &facts, std::string_view section);

} // namespace dwg
