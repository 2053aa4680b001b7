// Encoding an object from its DXF groups, by the same rows that decode it (dwgkinds.h).
//
// An edit starts from the object's old record. What the groups do not show is taken from there: scales of
// dimension blocks, extents of texts, flags nobody shows, the code of each handle. An object whose own groups
// are those that the old record decodes to keeps its own bits, whatever its kind is; only what all objects
// have (layer, colour, reactors, extended data ...) is written anew. Own groups that differ are encoded for
// kinds and versions that mayEncode() knows: those whose decoded records gave the same bits again on real
// drawings. AC1015 and later.
#pragma once

#include "host/acdb/dbdatabase.h"
#include "host/base/result.h"
#include "host/formats/dwg/dwgdecoder.h"

#include <optional>

class DwgSource;

namespace dwg
{

/// Where names of records and what objects show of each other are found; includes what is new.
struct Names {
    const AcDbDatabase &database;
    const Neighbours &neighbours;

    /// The record of a table; 0 for none.
    std::uint64_t handleOf(SymbolTable table, const QString &name) const;
};

/// What a custom object filed (dwgfiler.h). Its texts stand in the data up to AC1018.
struct FiledFields {
    QByteArray data, texts;
    std::size_t dataBits = 0, textBits = 0;
    std::vector<HandleRef> handles;
};

/// The lists of a block's header. Entities stand in `owned` since AC1018; before, their chain has two ends.
struct BlockLists {
    std::uint64_t begin = 0, end = 0; ///< BLOCK and ENDBLK
    std::uint64_t layout = 0;
    std::uint64_t first = 0, last = 0;
    std::vector<std::uint64_t> owned;
    std::vector<std::uint64_t> inserts; ///< The INSERTs that show the block.
};

/// An object to be encoded, and what its groups do not say. An optional that is empty leaves what the old
/// record has; for a new object it is nothing.
struct EncodePlace {
    std::uint64_t handle = 0;
    int type = 0;                  ///< Its own, or that of its class.
    ObjectPlace old;               ///< As for decoding; without a record for a new object.
    std::optional<int> entityMode; ///< 0 the owner is stored, 1 paper space, 2 model space.
    std::optional<std::uint64_t> owner;
    /// AC1015: what is drawn before and after; 0 at an end.
    std::optional<std::pair<std::uint64_t, std::uint64_t>> chain;
    std::optional<OwnedParts> parts;        ///< Of an INSERT or POLYLINE.
    std::optional<BlockLists> block;        ///< Of a block's header.
    const ResbufList *blockBegin = nullptr; ///< Of a block's header: the groups of its BLOCK.
    std::optional<std::vector<std::uint64_t>>
        entries;                         ///< Of a table's head: its records in order, 0 for a gap.
    const FiledFields *fields = nullptr; ///< Of a custom object: its own groups do not count then.
    /// Encodes everything anew, known to be right or not: what finds out.
    bool isTrial = false;
};

/// Where an object of the database stands. `type` is 0 for a class that the file does not have yet; the lists
/// of its file are the caller's to add.
EncodePlace encodePlace(const AcDbDatabase &database, const DwgSource &source, const AcDbStub &stub,
                        const ResbufList &groups);

/// The record, from its size to its checksum. The error is a sentence without the file's name.
base::Result<QByteArray, QString> encodeObject(const FileFacts &facts, const Names &names,
                                               const EncodePlace &place, const ResbufList &groups);

/// Whether own groups of a kind may be encoded for a version.
bool mayEncode(const Kind &kind, DrawingVersion version);

} // namespace dwg
