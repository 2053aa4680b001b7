// Listed groups: which groups of a kind a data list shows always, which only away from their default, and in
// which order. The rows stand with their kinds.
#pragma once

#include "host/acdb/resbuf.h"

#include <vector>

namespace listed
{

enum class Habit : std::uint8_t {
    given,        ///< Listed when the entity has it.
    always,       ///< Listed with its default when the entity has none.
    unlessDefault ///< Not listed at its default.
};

struct Row {
    int code;
    Habit habit;
    resbuf::Value defaultValue;
};

struct Section {
    /// The marker of the subclass; several when kinds of one name differ in it.
    std::vector<const char *> markers;
    std::vector<Row> rows; ///< In the order of the list.
};

struct Groups {
    std::vector<Section> sections; ///< None: the kind's own groups are listed as the file has them.
    bool planar = false;           ///< Its points have no z.
    int stop = 101;                ///< From this group on nothing is touched.
};

inline Row given(int code)
{
    return {code, Habit::given, {}};
}

inline Row real(int code, double value)
{
    return {code, Habit::always, value};
}

inline Row integer(int code, int value)
{
    return {code, Habit::always, std::int64_t(value)};
}

inline Row text(int code, const char *value)
{
    return {code, Habit::always, QString::fromLatin1(value)};
}

inline Row point(int code, double x, double y, double z)
{
    return {code, Habit::always, AcGePoint3d(x, y, z)};
}

inline Row unlessDefault(Row row)
{
    row.habit = Habit::unlessDefault;
    return row;
}

inline Row normal()
{
    return point(210, 0, 0, 1);
}

inline Row thickness()
{
    return unlessDefault(real(39, 0));
}

} // namespace listed
