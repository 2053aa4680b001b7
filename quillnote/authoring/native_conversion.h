// Marks into plain entities, for readers that know no marks.
#pragma once

#include <cstddef>

class AcDbDatabase;

/// Command: converts all marks of the drawing.
void QN8_ToNativeEnt();

struct NativeConversion {
    std::size_t converted = 0;
    std::size_t hidden = 0;    ///< Left as they are.
    std::size_t notErased = 0; ///< Converted, but not erased: the mark stands beside its picture.
};
/// Every mark that is not hidden becomes an anonymous block with its picture as it is seen now, inserted
/// where the mark stood; marks too small to be seen are converted as seen from nearby. The mark is erased
/// when it lets itself be.
NativeConversion convertMarks(AcDbDatabase &database);
