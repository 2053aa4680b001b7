// The table of kinds: for each, its fields as DWG stores them and its groups as DXF orders them.
//
// `fields` is a list of "CODE:group" in the order of the file. The codes are those of the published
// description:
//   B BS BL RC RS RL BLL     integers          BD RD BT       reals
//   A                        an angle (BD)     T              a text
//   2BD 3BD 2RD 3RD BE       points            CMC CMV        a colour; a colour as its 32 bits
//   H                        a handle          N              a handle, shown as the record's name
// "-" for the group reads and forgets. "@2004" behind it: since that version; "@<2004": before. "*name" is a
// function of dwgspecials.h.
//
// `groups` says what DXF writes: words are subclass markers, numbers are groups, each with all that was read
// for it. "=0" behind it leaves out what has that value ("=z" the direction z, "=x" x, "=Standard" a text).
// "*" stands for all groups that the row does not name, "*62" also for those 62 that follow one of them.
#pragma once

#include "host/formats/dwg/dwgdecoder.h"

namespace dwg
{

class Encoder;

struct Field {
    enum class Code : std::uint8_t {
        b,
        bs,
        bl,
        rc,
        rs,
        rl,
        bll,
        bd,
        rd,
        bt,
        angle,
        text,
        p2bd,
        p3bd,
        p2rd,
        p3rd,
        be,
        color,
        colorValue,
        handle,
        name,
        special
    };
    Code code = Code::special;
    int group = 0; ///< 0: dropped.
    int since = 0; ///< Version number, 1015 ...
    int until = 0; ///< Before this one; 0 for no end.
    void (*special)(Decoder &) = nullptr;
    void (*writeSpecial)(Encoder &) = nullptr; ///< Null for what is only read.
};

struct Group {
    QString marker;        ///< A subclass marker, when not empty.
    int code = 0;          ///< 0 with an empty marker: all that are left.
    std::vector<int> also; ///< Named in front of those that are left, and among them.
    bool hasDefault = false;
    resbuf::Value absent; ///< Left out when it has this value.
};

struct Kind {
    int type; ///< Of those with a number of their own; 0 for classes.
    const char *dxfName;
    DrawingVersion until; ///< The row describes files before this version; unknown: all.
    std::vector<Field> fields;
    std::vector<Group> groups;
};

/// Whether DXF leaves a value out.
bool isAbsent(const Group &group, const resbuf::Value &value);

/// Null for kinds without a table.
const Kind *kindOfType(int type);
const Kind *kindOfClass(const QByteArray &dxfName);
/// The kind that a new object's groups are of, whose name several may have; null when there is none.
const Kind *kindOfGroups(const QByteArray &dxfName, const ResbufList &groups);
/// The DXF name of a type below kFirstClass; null for numbers without a kind.
const char *nameOfType(int type);
bool isEntityType(int type);

} // namespace dwg
