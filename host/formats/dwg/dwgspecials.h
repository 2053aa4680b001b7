// Fields that no simple code describes.
#pragma once

#include "host/formats/dwg/dwgdecoder.h"

namespace dwg
{

using Special = void (*)(Decoder &);
/// Null when there is no function of that name.
Special findSpecial(std::string_view name);
/// Those of dwgspecials_objects.cpp and dwgspecials_multileader.cpp, which findSpecial() asks.
Special findObjectSpecial(std::string_view name);
Special findMultileaderSpecial(std::string_view name);

/// The head of a symbol table record: its name and what it owes to external references.
struct RecordHead {
    QString name;
    int flags = 0; ///< As in group 70: 16 depends on an external reference.
};
RecordHead readRecordHead(ObjectReader &in);

/// A block header, which in DXF is a record and a BLOCK.
struct BlockHeader {
    RecordHead head;
    bool isAnonymous = false, hasAttributes = false, isXref = false, isOverlay = false, isUnloaded = false;
    AcGePoint3d base;
    QString path, description;
    QByteArray preview;
    int insertUnits = 0, scaling = 0;
    bool isExplodable = true;
    std::uint64_t begin = 0, end = 0, layout = 0, first = 0, last = 0;
    std::vector<std::uint64_t> owned;   ///< Since AC1018; before, `first` and `last` of a chain.
    std::vector<std::uint64_t> inserts; ///< Where the block is used.

    int flags() const; ///< Group 70 of a BLOCK.
};
BlockHeader readBlockHeader(ObjectReader &in);

} // namespace dwg
