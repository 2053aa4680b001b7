// Decoding an object into its DXF groups.
//
// What is known of a kind stands in one row (dwgkinds.h): the fields as DWG stores them, and the order in
// which DXF writes the groups. Fields that no simple code describes are read by functions that take a
// Decoder.
#pragma once

#include "host/acdb/resbuf.h"
#include "host/formats/dwg/dwgobject.h"

#include <unordered_map>

namespace dwg
{

/// What the vertices of a polyline in a plane show of the whole.
struct PlanePolyline {
    double elevation = 0.0;
    double startWidth = 0.0, endWidth = 0.0;
};

/// What of other objects an object's groups show; made once at opening and not changed afterwards.
struct Neighbours {
    std::unordered_map<std::uint64_t, QString> recordNames; ///< Of symbol table records, by handle.
    std::unordered_map<std::uint64_t, QString> bookColors;  ///< "book$colour" of colour objects, by handle.
    std::unordered_map<std::uint64_t, PlanePolyline> polylines;   ///< Those that are not all 0.
    std::unordered_map<std::uint64_t, std::uint64_t> sheetBlocks; ///< Blocks of sheets, with their layout.
    std::unordered_map<std::uint64_t, int> viewportNumbers;       ///< Of the viewports of a sheet, from 1.
};

/// The entities that an INSERT or POLYLINE owns: handles since AC1018, before that the ends of a chain.
struct OwnedParts {
    std::vector<std::uint64_t> owned;
    std::uint64_t first = 0, last = 0;
    std::uint64_t end = 0; ///< SEQEND
};

/// A group in the making. Two groups of one number in different subclasses are told apart by a multiple of
/// kSubclass.
inline constexpr int kSubclass = 10000;

class Decoder
{
public:
    Decoder(ObjectReader &reader, const Common &objectCommon, const Neighbours &others)
        : in(reader), common(objectCommon), neighbours(others)
    {
    }

    void add(int group, resbuf::Value value) { out.emplace_back(group, std::move(value)); }
    void integer(int group, std::int64_t value) { add(group, value); }
    void real(int group, double value) { add(group, value); }
    void text(int group, QString value) { add(group, std::move(value)); }
    void handle(int group, std::uint64_t value) { add(group, AcDbHandle{value}); }
    /// What DXF does not show, under a number that the kind gives.
    void hidden(int number, resbuf::Value value)
    {
        if (in.kept)
            in.kept->hidden.emplace_back(number, std::move(value));
    }
    /// Groups that DXF does not show because they have no effect.
    void withhold(ResbufList groups)
    {
        if (in.kept)
            in.kept->withheld = std::move(groups);
    }
    /// An angle that DWG holds in radians and DXF in degrees.
    void angle(int group, double radians);
    /// The index, and 420 to 427 with the true colour when there is one.
    void color(int group, const Color &color);
    /// The name of a symbol table record.
    QString recordName(std::uint64_t record) const;
    bool since(DrawingVersion first) const { return in.facts().since(first); }
    /// The next handle, unless it is null.
    void optionalHandle(int group);
    /// Sets further bits of group 70.
    void addFlags(std::int64_t flags);
    /// The value that was read for a group; none when there is none.
    const resbuf *find(int group) const;
    void remove(int group);

    /// A count of things that take at least `bits` each; fails when there cannot be so many.
    std::size_t count(std::int64_t told, std::size_t bits = 1);

    ObjectReader &in;
    const Common &common;
    const Neighbours &neighbours;
    ResbufList out;
    OwnedParts parts;
    std::size_t partCount = 0;     ///< Since AC1018.
    bool hasParts = true;          ///< An INSERT says so.
    std::uint64_t owningBlock = 0; ///< For BLOCK: what holds its data.
};

/// The index of colour nearest to a true colour is what stands beside it in DXF.
int nearestColorIndex(std::uint32_t rgb);

struct Kind;

/// Numbers of hidden values below this one are places in a row of fields.
inline constexpr int kFirstHidden = 1000;

/// Reads the object's own fields by its row; `decoder` stands behind the common part.
void readFields(const Kind &kind, Decoder &decoder);

/// An object to be decoded, and what the file knows of it.
struct ObjectPlace {
    std::string_view record;
    QByteArray kindName;        ///< "LINE"
    const Kind *kind = nullptr; ///< Null for kinds without a table: their bits are shown as they are.
    bool isEntity = false;
    std::uint64_t owner = 0;       ///< Its handle, where the object itself does not store it.
    int classVersion = 0;          ///< For kinds without a table: version and maintenance of the class.
    QString tableName;             ///< For the head of a symbol table.
    std::string_view blockOfBegin; ///< For BLOCK: the record of the block's header.
};

/// All groups, kind first. Damage ends the list there; what was read stays.
ResbufList decodeObject(const FileFacts &facts, const Neighbours &neighbours, const ObjectPlace &place);

/// The head of an object's groups, which all have: up to the owner, and up to the graphics of an entity.
void appendHead(const ObjectReader &reader, const Common &common, const Neighbours &neighbours,
                const ObjectPlace &place, ResbufList &out);

/// What BLOCK shows of its block's header.
void appendBlockBegin(const FileFacts &facts, std::string_view header, Decoder &decoder);

/// The extended data that stand at the object's beginning, as groups from 1001 on.
void appendExtendedData(const ObjectReader &reader, const Common &common, const Neighbours &neighbours,
                        ResbufList &out);

} // namespace dwg
