// A record's filed fields as a table: one row a field, walked by the DWG filers, the DXF filers, dumps
// and comparisons. What a field looks like in a file follows from the type of its member.
//
// The order of the rows is the order in DWG streams. Rows are never reordered or removed; a new field is
// a row at the end with a newer `since`, and records filed before read with the field's default.
#pragma once

#include "quillnote/entity/mark_styles.h"

#include "host/acdb/dbid.h"
#include "host/acge/gepoint.h"

#include <QByteArray>
#include <QString>

#include <array>
#include <cstdint>
#include <variant>
#include <vector>

namespace fields
{

/// Length of the fixed point arrays of a record.
inline constexpr std::size_t kSlots = 16;
using PointArray = std::array<AcGePoint3d, kSlots>;
using FlagArray = std::array<bool, kSlots>;

/// The first `filed(record)` points of an array. No count is filed with them: another field has it.
template <class Record>
struct PointRun {
    PointArray Record::*points;
    int (*filed)(const Record &); ///< 0 to kSlots
};

/// All slots of two arrays, a point and its flag after the other.
template <class Record>
struct PointSlots {
    PointArray Record::*points;
    FlagArray Record::*flags;
    int flagCode; ///< DXF group code of the flags; the row's own code is that of the points.
};

/// Where a field stands in DXF: group code and place in the sequence of groups; code 0: it is not in DXF.
/// Rows with the same code are told apart by the order of their groups.
struct Dxf {
    int code = 0;
    int place = 0;
};

/// Where a row stands in the sources.
struct RowPlace {
    const char *file;
    int line;
};

template <class Record>
struct Field {
    /// Byte buffers are filed as a 32-bit size and the bytes, id lists as a 32-bit count and hard pointers.
    using Member =
        std::variant<std::uint16_t Record::*, std::int16_t Record::*, bool Record::*, double Record::*,
                     QString Record::*, AcGePoint3d Record::*, AcGeVector3d Record::*, QByteArray Record::*,
                     std::vector<AcDbObjectId> Record::*, TargetStyle Record::*, FrameStyle Record::*,
                     LeaderMode Record::*, DisplayMode Record::*, PointRun<Record>, PointSlots<Record>>;
    /// Brings a value that was read into the field's range.
    using Repair = void (*)(Record &);

    // A constructor, because a default argument knows the line of the row. (std::source_location is not in
    // all compilers that build this.)
    constexpr Field(QStringView fieldName, Member fieldMember, std::uint16_t sinceVersion, Dxf inDxf = {},
                    Repair repairRead = nullptr, const char *file = __builtin_FILE(),
                    int line = __builtin_LINE())
        : name(fieldName), member(fieldMember), since(sinceVersion), dxf(inDxf),
          repair(repairRead), row{file, line}
    {
    }

    QStringView name;
    Member member;
    std::uint16_t since; ///< First format version whose records hold the field.
    Dxf dxf;
    Repair repair;
    RowPlace row; ///< Printed when the field cannot be filed.
};

} // namespace fields
