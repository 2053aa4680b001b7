// A drawing as a value: everything that saving would write and that undo has to bring back.
#pragma once

#include "host/acdb/dbdatabase.h"

#include <vector>

namespace tests
{

struct WholeObject {
    std::uint64_t handle = 0; ///< 0 for a drawing variable.
    ResbufList groups;
    QByteArray filed; ///< All fields of a custom object, also those that DXF does not carry.

    friend bool operator==(const WholeObject &, const WholeObject &) = default;
};

/// Objects that are not erased in order of creation, then the drawing variables.
std::vector<WholeObject> wholeDrawing(const AcDbDatabase &database);

/// Handles of the objects that differ, "variable" for variables; empty when the drawings are equal. For
/// messages.
QStringList wholeDifference(const std::vector<WholeObject> &a, const std::vector<WholeObject> &b);

} // namespace tests
