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

struct Names;
/// What a drawing changed of its variables.
struct HeaderChanges {
    std::vector<HeaderVariable> variables;
    std::uint64_t handleSeed = 0; ///< 0 leaves it as it is.
};
struct EncodedHeader {
    QByteArray section;          ///< The whole of AcDb:Header.
    QList<QByteArray> notStored; ///< Variables that this version of DWG has no place for here.
};
/// The section of variables again, with changes; without any it has the same bits. AC1015 and later. The
/// error is a sentence without the file's name.
base::Result<EncodedHeader, QString> encodeHeader(const FileFacts &facts, const Container &container,
                                                  const Names &names, const HeaderChanges &changes);

} // namespace dwg
