// Fields that no simple code describes, in both directions.
#pragma once

#include "host/formats/dwg/dwgdecoder.h"
#include "host/formats/dwg/dwgencoding.h"

#include <span>
#include <string_view>

namespace dwg
{

/// What rows call "*name": a function that reads, and one that writes the same from groups; null where an
/// object can only be kept.
struct SpecialRow {
    std::string_view name;
    void (*read)(Decoder &);
    void (*write)(Encoder &);
};

/// Null when there is none of that name.
const SpecialRow *findSpecial(std::string_view name);
// One file for each family; findSpecial() asks them all.
std::span<const SpecialRow> textSpecials();
std::span<const SpecialRow> curveSpecials();
std::span<const SpecialRow> blockSpecials();
std::span<const SpecialRow> dimensionSpecials();
std::span<const SpecialRow> hatchSpecials();
std::span<const SpecialRow> pictureSpecials();
std::span<const SpecialRow> tableSpecials();
std::span<const SpecialRow> viewSpecials();
std::span<const SpecialRow> dictionarySpecials();
std::span<const SpecialRow> multileaderSpecials();

inline AcGePoint3d at(const AcGePoint2d &plane, double z)
{
    return {plane.x, plane.y, z};
}

/// The head of a symbol table record: its name and what it owes to external references.
struct RecordHead {
    QString name;
    int flags = 0;       ///< As in group 70: 16 depends on an external reference.
    int stored = 0;      ///< What the file has for that: since AC1021 256, before a number among its records.
    bool isUsed = false; ///< Before AC1021.
    std::uint64_t xref = 0; ///< The block of the external reference; read by those who need it.
};
RecordHead readRecordHead(ObjectReader &in);
void writeRecordHead(Encoder &e, const RecordHead &head);

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
    QByteArray insertMarks;             ///< A byte for each of them.

    int flags() const; ///< Group 70 of a BLOCK.
};
BlockHeader readBlockHeader(ObjectReader &in);

} // namespace dwg
